// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/line_service.h"

#include <gmock/gmock.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "adapters/line/service/caller_text.h"
#include "adapters/line/service/line_audio.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/line/sim/virtual_time.h"
#include "platform/wave.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using std::to_string;

/// The second of two lines, its caller, and a program that hangs up when the caller has. Everything that
/// the service tells is added to one text.
class Scene : public TelephonyEvents {
 public:
  explicit Scene(const SimScript& script = {}) {
    std::vector<TelephoneDevice> devices;
    for (int i = 0; i < 2; ++i) {
      auto driver = std::make_unique<SimLine>("Sim", time_, script);
      sim_ = driver.get();
      devices.push_back({std::move(driver), 120s});
    }
    const auto report = [this](const std::string&) { Tell(kLine, "idle call"); };
    service = std::make_unique<LineService>(time_, std::move(devices),
                                            IdleCalls{[this] { return plays_; }, report});
    service->SetEvents(this);
    service->LineOpen(kLine, 4, 8);
  }

  /// What is told during `steps`, one letter each.
  std::string Play(const std::string& steps) {
    for (const char step : steps) Do(step);
    return told_;
  }

  void Proc(std::int32_t line, std::int32_t request, std::int32_t result) override {
    Tell(line, "done " + to_string(request) + (result == request ? "" : " as " + to_string(result)));
  }
  void InCommingCall(std::int32_t line, const CallInformation& call) override {
    Tell(line, "call " + to_string(call.call_number));
  }
  void MonitorDigit(std::int32_t line, char digit) override { Tell(line, std::string("digit ") + digit); }
  void Idle(std::int32_t line) override { Tell(line, "idle"); }
  void Disconnected(std::int32_t line) override {
    Tell(line, "gone");
    Play("?DD");
  }
  void Connected(std::int32_t line) override { Tell(line, "up"); }
  void Ring(std::int32_t line, std::int32_t count) override { Tell(line, "ring " + to_string(count)); }
  void CallerID(std::int32_t line, const std::string& name, const std::string& number) override {
    Tell(line, name + '/' + number);
  }

 private:
  static constexpr std::int32_t kLine = 1;

  void Tell(std::int32_t line, const std::string& event) {
    told_ += (told_.empty() ? "" : ", ") + (line == kLine ? event : "of another line: " + event);
  }
  void TellRefusal(std::int32_t result) {
    if (result < 0) Tell(kLine, "refused " + to_string(result));
  }
  void Do(char step) {
    switch (step) {
      // The caller
      case 'o': return sim_->Offer();
      case 'r': return sim_->Ring();
      case 'n': return sim_->CallerId("\"Bob\"\r\n", "");
      case 'x': return sim_->CallerId("\x01", "  ");
      case '1': return sim_->Press('1');
      case 'h': return sim_->HangUp();
      // The program
      case 'A': return TellRefusal(service->LineAnswer(kLine));
      case 'D': return TellRefusal(service->LineDrop(kLine));
      case 'M': return service->MonitorDigits(kLine, true);
      case 'C': return TellRefusal(service->LineClose(kLine));
      case 'O': return TellRefusal(service->LineOpen(kLine, 4, 8));
      case 'P': return void(plays_ = !plays_);
      case '?': return Tell(kLine, service->IsCallConnected(kLine) ? "connected" : "not connected");
      // Time passes
      case '.': return time_.RunFor(1ms);
      case '_': return time_.RunFor(100ms);
      case 's': return time_.RunFor(2s);
      default: return time_.RunFor(58s);
    }
  }

  VirtualTime time_{std::chrono::sys_days{}};
  SimLine* sim_ = nullptr;
  bool plays_ = false;
  std::string told_;

 public:
  std::unique_ptr<LineService> service;
};

TEST(LineService, TellsWhatTheProgramMustKnowOfACall) {
  const std::pair<const char*, const char*> rows[] = {
      {"o.rnxr.A_r?h_?",
       "call 1, ring 1, 'Bob'/UNKNOWN, ring 2, done 1, up, connected, gone, connected, refused -4, done 2, "
       "idle, not connected"},
      // Our own hang-up is not told as the caller's; a digit on its way is not told.
      {"o.A_MD?1_", "call 1, done 1, up, not connected, done 2, idle"},
      {"ADo.AAD_", "refused -4, refused -4, call 1, refused -5, done 3, done 5, idle"},
      // An answer that crosses the end of its call does not touch the next one.
      {"o.Aho_?", "call 1, idle, call 2, done 1 as -4, not connected"},
      {"o.A_MCAC", "call 1, done 1, up, idle, refused -2, refused -2"},
      // A call may ring for ever, and last while something plays; then it ends two minutes after the last
      // key.
      {"ommmmmmmmA_mPmmmmPMmm1mms?ss",
       "call 1, done 1, up, digit 1, connected, idle call, gone, connected, refused -4, done 2, idle"},
  };
  for (const auto& [steps, told] : rows) EXPECT_EQ(Scene().Play(steps), told) << steps;
  const Scene scene;
  EXPECT_EQ(scene.service->LineAnswer(0), kTelephonyLineNotOpen);
  EXPECT_EQ(scene.service->LineOpen(2, 4, 8), kTelephonyBadDevice);
  EXPECT_EQ(scene.service->ErrorText(17), scene.service->ErrorText(0)) << "the number of a request";
  const SimScript script{{0ms, SimStep::Kind::Offer, "", ""}, {20s, SimStep::Kind::HangUp, "", ""}};
  EXPECT_EQ(Scene(script).Play("sssCOsssssssss"), "call 1, idle, call 2") << "it begins with each opening";
  EXPECT_EQ(Scene(script).Play("ssssssssssss"), "call 1, idle");
}

TEST(CallerText, LetsNothingHarmfulThrough) {
  const std::pair<std::string, std::string> rows[] = {
      {"  Zoë \t Müller  ", "Zoë Müller"},
      {"a\"b\177c\302\205d", "a'b c d"},
      {"gpj.\342\200\256exe", "gpj. exe"},  // right-to-left override
      {"\xFF\xC0\xAF\xED\xA0\x80\xF5x\xE2\x82", "???????x??"},
      {{"a\0b", 3}, "a b"},
      {std::string(5000, 'x'), std::string(kMaxCallerText, 'x')}};
  for (const auto& [given, clean] : rows) EXPECT_EQ(CleanCallerText(given), clean);
}

/// A loop that runs nothing.
struct NoLoop : EventLoop {
  void Post(Task) override {}
  void After(std::chrono::milliseconds, Task) override {}
  std::unique_ptr<Timer> MakeTimer(Task) override { return nullptr; }
};

TEST(DriverEventQueue, LosesNothingBetweenTwoThreads) {
  NoLoop loop;
  DriverEventQueue queue(loop, [] {});
  DriverEventQueue next(loop, [] {});
  std::thread driver([&] {
    for (std::int32_t count = 1; count <= 1000; ++count) queue.Ring(1, count);
  });
  for (int delivered = 0; delivered < 1000;) delivered += queue.DeliverNext(next) ? 1 : 0;
  driver.join();
  EXPECT_FALSE(queue.DeliverNext(next));
}

struct CountedAudio : AudioSource, AudioSink {
  bool Read(std::span<std::int16_t> /*block*/) override { return ++uses > 0; }
  void Write(std::span<const std::int16_t> /*block*/) override { ++uses; }
  std::atomic<int> uses = 0;
};

TEST(LineAudio, WhatWasStoppedIsNotUsedAnyMore) {
  LineAudio audio;
  std::atomic<bool> over = false;
  std::thread call([&] {
    for (std::array<std::int16_t, kBlockSamples> block{}; !over; audio.Deliver(block)) audio.Fetch(block);
  });
  for (int i = 0; i < 100; ++i) {
    CountedAudio counted;
    EXPECT_EQ(audio.StartPlay(counted) + audio.StartRecord(counted), kWaveOk);
    while (counted.uses < 2) std::this_thread::yield();
    audio.StopPlay();
    audio.StopRecord();
    const int uses = counted.uses;
    std::this_thread::yield();
    EXPECT_EQ(counted.uses, uses);
  }
  over = true;
  call.join();
}

TEST(SimScript, IsReadAndItsWrongLinesAreNamed) {
  const auto path = testing::TempDir() + "/orven_script.sim";
  std::ofstream(path)
      << "; a call\r\n0 offer\n0.1 callerid 555 Anna Smith\n\n1.25 press 12*\n2 dance\n3 press\n"
         "-1 ring\n9 hangup\n";
  std::vector<std::string> complaints;
  std::string read;
  for (const auto& step : ReadSimScript(path, complaints))
    read += to_string(step.at.count()) + step.number + step.name +
            (step.kind == SimStep::Kind::HangUp ? "!" : ";");
  EXPECT_EQ(read, "0;100555Anna Smith;125012*;9000!");
  ReadSimScript(path + ".none", complaints);
  ASSERT_EQ(complaints.size(), 4U);
  EXPECT_THAT(complaints[0], testing::StartsWith("orven_script.sim:6: \"2 dance\": expected "));
}

}  // namespace
}  // namespace orven
