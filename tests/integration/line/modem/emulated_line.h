// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/modem/modem_agent.h"
#include "adapters/line/sim/virtual_time.h"
#include "modem_emulator/modem_emulator.h"

namespace orven::test {

using Samples = std::vector<std::int16_t>;

/// The port that an emulated modem is at, on virtual time.
class EmulatedLink final : public ModemLink {
 public:
  EmulatedLink(const std::string& profile, const ModemFaults& faults, VirtualTime& time)
      : modem(*FindModemProfile(profile), faults, time, time, [this](auto bytes) { FromModem(bytes); }),
        time_(time) {}

  std::optional<LinkProblem> Open(const std::string& port, int rate, ModemLinkEvents& events) override {
    if (!plugged_in) return LinkProblem{LinkProblem::Kind::Absent, "There is no port " + port};
    if (forbidden) return LinkProblem{LinkProblem::Kind::Forbidden, "You may not use the port " + port};
    events_ = &events;
    rate_ = rate;
    return std::nullopt;
  }
  void Close() override { events_ = nullptr; }
  bool SetRate(int rate) override {
    rate_ = rate;
    return true;
  }
  void Write(std::span<const std::uint8_t> bytes) override {
    if (events_ == nullptr) return;
    bytes_to_modem += bytes.size();
    unsent_.insert(unsent_.end(), bytes.begin(), bytes.end());
    Send();
  }
  void DiscardUnsent() override { unsent_.clear(); }
  std::size_t Unsent() const override { return unsent_.size(); }

  void Unplug() {
    plugged_in = false;
    auto* events = std::exchange(events_, nullptr);
    if (events != nullptr) events->Lost();
  }

  std::size_t bytes_to_modem = 0;
  std::size_t lose = 0;  ///< bytes of what the modem says next
  bool plugged_in = true;
  bool forbidden = false;
  ModemEmulator modem;

 private:
  void FromModem(std::span<const std::uint8_t> bytes) {
    const auto lost = std::min(std::exchange(lose, 0), bytes.size());
    time_.Post([this, copy = std::vector(bytes.begin() + std::ptrdiff_t(lost), bytes.end())] {
      if (events_ != nullptr) events_->Received(copy);
    });
  }

  /// What flow control holds back goes later.
  void Send() {
    if (unsent_.empty()) return;
    const auto count = std::min(unsent_.size(), modem.Room());
    const std::vector<std::uint8_t> bytes(unsent_.begin(), unsent_.begin() + std::ptrdiff_t(count));
    unsent_.erase(unsent_.begin(), unsent_.begin() + std::ptrdiff_t(count));
    if (!bytes.empty()) modem.FromHost(bytes);
    if (!unsent_.empty()) time_.After(std::chrono::milliseconds(1), [this] { Send(); });
  }

  VirtualTime& time_;
  ModemLinkEvents* events_ = nullptr;
  std::deque<std::uint8_t> unsent_;
  int rate_ = 0;
};

/// What a line tells, one text an event.
struct ToldEvents : LineDriverEvents {
  std::vector<std::string> all;

  void Offered(CallNumber call) override { Add("Offered", call); }
  void Ring(CallNumber call, std::int32_t count) override { Add("Ring", call, std::to_string(count)); }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Add("CallerId", call, name + "|" + number);
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Add("Done", std::uint32_t(request), std::to_string(result));
  }
  void Connected(CallNumber call) override { Add("Connected", call); }
  void Digit(CallNumber call, char digit) override { Add("Digit", call, {digit}); }
  void Disconnected(CallNumber call) override { Add("Disconnected", call); }
  void Idle(CallNumber call) override { Add("Idle", call); }
  void Trouble(const std::string& text) override { all.push_back("Trouble " + text); }

  void Add(const std::string& what, std::uint32_t number, const std::string& more = "") {
    all.push_back(what + " " + std::to_string(number) + (more.empty() ? "" : " " + more));
  }
  bool Has(const std::string& event) const { return std::ranges::count(all, event) > 0; }
  std::string Keys() const {
    std::string keys;
    for (const auto& event : all) {
      if (event.starts_with("Digit ")) keys += event.back();
    }
    return keys;
  }
};

struct GivenSound : AudioSource {
  explicit GivenSound(Samples sound) : samples(std::move(sound)) {}
  bool Read(std::span<std::int16_t> block) override {
    if (next + block.size() > samples.size()) return false;
    std::copy_n(samples.begin() + std::ptrdiff_t(next), block.size(), block.begin());
    next += block.size();
    return true;
  }
  Samples samples;
  std::size_t next = 0;
};

struct KeptSound : AudioSink {
  void Write(std::span<const std::int16_t> block) override {
    samples.insert(samples.end(), block.begin(), block.end());
  }
  Samples samples;
};

/// A modem line as the program has it, at an emulated modem on virtual time.
struct EmulatedLine : testing::Test {
  void Begin(const std::string& profile, const ModemFaults& faults = {}) {
    agent.reset();
    link = std::make_unique<EmulatedLink>(profile, faults, time);
    ModemLineSettings settings;
    settings.port = "/dev/modem";
    settings.report = [this](const std::string& text) { log.push_back(text); };
    settings.state_news = [this](const std::string& text) { state = text; };
    agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{*link, time, time, audio, events});
    refused = agent->Start();
  }
  void Ready(const std::string& profile, const ModemFaults& faults = {}) {
    Begin(profile, faults);
    ASSERT_TRUE(Until([this] { return state == kModemReady; })) << state;
  }
  bool Until(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    return time.RunUntil(done, limit);
  }
  bool Wait(const std::string& event, std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    return Until([&] { return events.Has(event); }, limit);
  }
  ModemEmulator& Modem() { return link->modem; }
  /// The bell rings every five seconds until the call is answered.
  void RingTimes(int times, const std::string& call = "1") {
    for (int i = 0; i < times; ++i) {
      time.After(std::chrono::seconds(5 * i), [this, call] {
        if (!Modem().OffHook() && !events.Has("Idle " + call)) Modem().Ring();
      });
    }
  }
  /// What the modem took amiss; to ask for a command that it does not have is no fault.
  std::vector<std::string> Complaints() {
    auto complaints = Modem().Complaints();
    std::erase(complaints, "+VCID outside voice mode");
    return complaints;
  }
  /// Call number `call`, answered at its first ring.
  void Answered(CallNumber call = 1) {
    const auto text = std::to_string(call);
    RingTimes(4, text);
    ASSERT_TRUE(Wait("Ring " + text + " 1"));
    agent->Answer(call, 100 + std::int32_t(call));
    ASSERT_TRUE(Wait("Connected " + text));
    agent->MonitorDigits(call, true);
  }

  VirtualTime time{{}};
  ToldEvents events;
  LineAudio audio;
  std::unique_ptr<EmulatedLink> link;
  std::unique_ptr<ModemAgent> agent;
  std::optional<std::string> refused;
  std::vector<std::string> log;
  std::string state;
};

}  // namespace orven::test
