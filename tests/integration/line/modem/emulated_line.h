// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <deque>

#include "adapters/line/modem/modem_agent.h"
#include "adapters/line/sim/virtual_time.h"
#include "modem_emulator/modem_emulator.h"

namespace orven::test {

using Samples = std::vector<std::int16_t>;
using Duration = std::chrono::milliseconds;

/// The port of an emulated modem, on virtual time.
struct EmulatedLink final : ModemLink {
  EmulatedLink(const std::string& profile, const ModemFaults& faults, VirtualTime& its_time)
      : time(its_time),
        modem(*FindModemProfile(profile), faults, time, time, [this](auto bytes) { FromModem(bytes); }) {}

  std::optional<LinkProblem> Open(const std::string&, int, ModemLinkEvents& events) override {
    if (!plugged_in) return LinkProblem{LinkProblem::Kind::Absent, "There is no such port"};
    if (forbidden) return LinkProblem{LinkProblem::Kind::Forbidden, "You may not use the port"};
    host = &events;
    return std::nullopt;
  }
  void Close() override { host = nullptr; }
  bool SetRate(int) override { return true; }
  void Write(std::span<const std::uint8_t> bytes) override {
    bytes_to_modem += bytes.size();
    if (echoes) FromModem(bytes);
    unsent.insert(unsent.end(), bytes.begin(), bytes.end());
    Send();
  }
  void DiscardUnsent() override { unsent.clear(); }
  std::size_t Unsent() const override { return unsent.size(); }

  void Unplug() {
    plugged_in = false;
    if (auto* events = std::exchange(host, nullptr)) events->Lost();
  }
  void FromModem(std::span<const std::uint8_t> bytes) {
    const auto rest = bytes.subspan(std::min(std::exchange(lose, 0), bytes.size()));
    time.After(delay, [this, copy = std::vector(rest.begin(), rest.end())] {
      if (host != nullptr) host->Received(copy);
    });
  }
  /// What flow control holds back is sent later.
  void Send() {
    const auto end = unsent.begin() + std::ptrdiff_t(std::min(unsent.size(), modem.Room()));
    const std::vector<std::uint8_t> bytes(unsent.begin(), end);
    unsent.erase(unsent.begin(), end);
    if (!bytes.empty()) modem.FromHost(bytes);
    if (!unsent.empty()) time.After(Duration(1), [this] { Send(); });
  }

  VirtualTime& time;
  ModemLinkEvents* host = nullptr;
  std::deque<std::uint8_t> unsent;
  std::size_t bytes_to_modem = 0;
  std::size_t lose = 0;  ///< bytes of the next thing that the modem says
  Duration delay{0};     ///< of what the modem says
  bool echoes = false;   ///< what the host sends, always
  bool plugged_in = true;
  bool forbidden = false;
  ModemEmulator modem;
};

/// What a line reports, one text per event.
struct ToldEvents : LineDriverEvents {
  void Offered(CallNumber call) override { Add("Offered", call); }
  void Ring(CallNumber call, std::int32_t count) override { Add("Ring", call, " " + std::to_string(count)); }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Add("CallerId", call, " " + name + "|" + number);
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Add("Done", std::uint32_t(request), " " + std::to_string(result));
  }
  void Connected(CallNumber call) override { Add("Connected", call); }
  void Digit(CallNumber, char digit) override { keys += digit; }
  void Disconnected(CallNumber call) override { Add("Disconnected", call); }
  void Idle(CallNumber call) override { Add("Idle", call); }
  void Trouble(const std::string& text) override { all.push_back("Trouble " + text); }

  void Add(const std::string& what, std::uint32_t number, const std::string& more = "") {
    all.push_back(what + " " + std::to_string(number) + more);
  }
  bool Has(const std::string& event) const { return std::ranges::count(all, event) > 0; }

  std::vector<std::string> all;
  std::string keys;
};

struct GivenAudio : AudioSource {
  bool Read(std::span<std::int16_t> block) override {
    if (next + block.size() > samples.size()) return false;
    std::copy_n(samples.begin() + std::ptrdiff_t(next), block.size(), block.begin());
    next += block.size();
    return true;
  }
  Samples samples;
  std::size_t next = 0;
};

struct KeptAudio : AudioSink {
  void Write(std::span<const std::int16_t> block) override {
    samples.insert(samples.end(), block.begin(), block.end());
  }
  Samples samples;
};

/// A modem line as the program has it, on virtual time.
struct ModemLine : testing::Test {
  void Start(ModemLink& its_link, const std::string& port = "/dev/modem") {
    ModemLineSettings settings;
    settings.port = port;
    settings.find_ports = [this] {
      return std::vector<std::string>(link->plugged_in ? 1 : 0, "/dev/ttyACM0");
    };
    settings.report = [this](const std::string& text) { log.push_back(text); };
    settings.state_news = [this](const std::string& text) { state = text; };
    agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{its_link, time, time, audio, events});
    refused = agent->Start();
  }
  void Ready(const std::string& profile, const ModemFaults& faults = {}) {
    agent.reset();
    link = std::make_unique<EmulatedLink>(profile, faults, time);
    Start(*link);
    ASSERT_TRUE(Until([this] { return state == kModemReady; })) << state;
  }
  bool Until(const std::function<bool()>& done, Duration limit = std::chrono::seconds(60)) {
    return time.RunUntil(done, limit);
  }
  bool Wait(const std::string& event, Duration limit = std::chrono::seconds(60)) {
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
  /// Call number `call`, answered at its first ring.
  void Answered(CallNumber call = 1) {
    RingTimes(4, std::to_string(call));
    ASSERT_TRUE(Wait("Ring " + std::to_string(call) + " 1"));
    agent->Answer(call, 100);
    ASSERT_TRUE(Wait("Connected " + std::to_string(call)));
  }
  void Play(Samples samples) {
    given.push_back({});
    given.back().samples = std::move(samples);
    ASSERT_EQ(audio.StartPlay(given.back()), 0);
  }
  bool Played() {
    return Until([this] { return !audio.Plays(); });
  }

  VirtualTime time{{}};
  ToldEvents events;
  std::deque<GivenAudio> given;
  KeptAudio message;
  LineAudio audio;
  std::unique_ptr<EmulatedLink> link;
  std::unique_ptr<ModemAgent> agent;
  std::optional<std::string> refused;
  std::vector<std::string> log;
  std::string state;
};

}  // namespace orven::test
