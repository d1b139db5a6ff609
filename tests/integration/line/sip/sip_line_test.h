// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <sstream>

#include "adapters/line/sip/sip_line.h"
#include "integration/line/sip/sip_caller.h"

namespace orven::test {

/// A list to which one thread appends while another waits for its content.
template <typename Item>
class Arrivals {
 public:
  using Items = std::vector<Item>;

  void Append(std::span<const Item> more) {
    const std::lock_guard lock(mutex_);
    items_.insert(items_.end(), more.begin(), more.end());
    grown_.notify_all();
  }
  /// False when `done` is not fulfilled in time.
  bool WaitUntil(const std::function<bool(const Items&)>& done, milliseconds limit = milliseconds(10'000)) {
    std::unique_lock lock(mutex_);
    return grown_.wait_for(lock, limit, [&] { return done(items_); });
  }
  Items All() {
    const std::lock_guard lock(mutex_);
    return items_;
  }
  void Clear() {
    const std::lock_guard lock(mutex_);
    items_.clear();
  }

 private:
  std::mutex mutex_;
  std::condition_variable grown_;
  Items items_;
};

/// Records a line's events, one text each ("Ring 1 2"), and whatever else a test adds.
class RecordedEvents : public LineDriverEvents, public Arrivals<std::string> {
 public:
  void Add(const std::string& text) { Append({&text, 1}); }
  /// Waits for a text that has `part` in it.
  bool Wait(const std::string& part, milliseconds limit = milliseconds(10'000)) {
    const auto has = [&part](const std::string& text) { return text.find(part) != text.npos; };
    return WaitUntil([&](const Items& all) { return std::ranges::any_of(all, has); }, limit);
  }

  void Offered(CallNumber call) override { Note("Offered", call); }
  void Ring(CallNumber call, std::int32_t count) override { Note("Ring", call, std::to_string(count)); }
  void CallerId(CallNumber call, const std::string& name, const std::string& number) override {
    Note("CallerId", call, name + "|" + number);
  }
  void RequestDone(std::int32_t request, std::int32_t result) override {
    Note("RequestDone", request, std::to_string(result));
  }
  void Connected(CallNumber call) override { Note("Connected", call); }
  void Digit(CallNumber call, char digit) override { Note("Digit", call, {digit}); }
  void Disconnected(CallNumber call) override { Note("Disconnected", call); }
  void Idle(CallNumber call) override { Note("Idle", call); }

 private:
  void Note(const std::string& what, std::int64_t number, const std::string& more = "") {
    Add(what + " " + std::to_string(number) + (more.empty() ? "" : " ") + more);
  }
};

using Samples = std::vector<std::int16_t>;

/// Keeps what is recorded.
class KeptAudio : public AudioSink, public Arrivals<std::int16_t> {
 public:
  void Write(std::span<const std::int16_t> block) override { Append(block); }
  bool WaitFor(std::size_t samples) {
    return WaitUntil([&](const Samples& all) { return all.size() >= samples; });
  }
  /// How many whole blocks of `sent` have come.
  std::size_t BlocksOf(const Samples& sent) {
    const Samples all = All();
    std::size_t found = 0;
    for (auto block = sent.begin(); block != sent.end(); block += kBlockSamples)
      found += std::search(all.begin(), all.end(), block, block + kBlockSamples) != all.end() ? 1 : 0;
    return found;
  }
};

/// A SIP line on a port of its own, and a caller.
class SipLineTest : public ::testing::Test {
 protected:
  SipLineTest() {
    settings.ring_seconds = 1;
    settings.listen = "127.0.0.1:" + std::to_string(port);
  }
  ~SipLineTest() override {
    if (line != nullptr) line->Close();
  }

  void OpenLine() {
    line = MakeSipLine(settings);
    ASSERT_EQ(line->Open(events), kTelephonyOk) << line->LastError();
  }

  void ExpectFailure(std::int32_t result, const std::string& reason) {
    line = MakeSipLine(settings);
    EXPECT_EQ(line->Open(events), result);
    EXPECT_NE(line->LastError().find(reason), std::string::npos) << line->LastError();
  }

  /// Plays steps, separated by commas, with the line open: "> INVITE" and "< 180" are what the caller sends
  /// and waits for ("> INVITE 8 sendonly" has that codec and direction), "answer 7" and "drop 7" are our
  /// requests, "caller 2" is another caller from here, "hears" and "deaf 300" tell whether RTP comes (in 300
  /// ms). All else is an event of the line.
  void Play(const std::string& script) {
    if (line == nullptr) OpenLine();
    std::istringstream steps(script);
    for (std::string step; std::getline(steps >> std::ws, step, ',');)
      ASSERT_TRUE(Do(step)) << step << " of " << script;
  }

  const std::uint16_t port = FreePort();
  SipLineSettings settings;
  RecordedEvents events;
  CallNumber call = 0;  ///< the latest that has rung
  std::unique_ptr<LineDriver> line;
  std::map<std::string, SipCaller> callers;
  SipCaller* caller = &callers.try_emplace("1", port).first->second;

 private:
  bool Do(const std::string& step) {
    std::istringstream words(step);
    std::string what, which, codecs = "0 8 101", direction = "sendrecv";
    words >> what >> which >> codecs >> direction;
    if (what == "<") return !caller->Take(which).empty();
    if (what == "hears") return !caller->NextPacket().empty();
    if (what == "deaf") return caller->NextPacket(milliseconds(std::stoi(which))).empty();
    if (what == "Ring") call = static_cast<CallNumber>(std::stoi(which));
    const bool offers = which == "INVITE" && codecs != "none";
    if (what == ">") caller->Send(caller->Text(which, offers ? caller->Sdp(codecs, direction) : ""));
    if (what == "answer") line->Answer(call, std::stoi(which));
    if (what == "drop") line->Drop(call, std::stoi(which));
    if (what == "caller") caller = &callers.try_emplace(which, port).first->second;
    return std::islower(what[0]) || what == ">" || events.Wait(step);
  }
};

}  // namespace orven::test
