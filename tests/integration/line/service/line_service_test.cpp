// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/line_service.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <thread>

#include "adapters/line/service/caller_text.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/line/sim/virtual_time.h"

namespace orven {
namespace {

using testing::ElementsAre;
using namespace std::chrono_literals;

/// Writes every event down as a short text.
class EventList : public TelephonyEvents {
 public:
  std::vector<std::string> events;
  std::function<void(const std::string&)> react = [](const std::string&) {};

  void Proc(std::int32_t line, std::int32_t request, std::int32_t result) override {
    Add(line, "proc " + std::to_string(request) + " " + std::to_string(result));
  }
  void InCommingCall(std::int32_t line, const CallInformation& call) override {
    Add(line, "call " + std::to_string(call.call_number));
  }
  void MonitorDigit(std::int32_t line, char digit) override { Add(line, std::string("digit ") + digit); }
  void Idle(std::int32_t line) override { Add(line, "idle"); }
  void Disconnected(std::int32_t line) override { Add(line, "disconnected"); }
  void Connected(std::int32_t line) override { Add(line, "connected"); }
  void Ring(std::int32_t line, std::int32_t count) override { Add(line, "ring " + std::to_string(count)); }
  void CallerID(std::int32_t line, const std::string& name, const std::string& number) override {
    Add(line, "caller " + name + "/" + number);
  }

 private:
  void Add(std::int32_t line, const std::string& event) {
    events.push_back(std::to_string(line) + " " + event);
    react(event);
  }
};

class LineServiceTest : public testing::Test {
 protected:
  LineServiceTest() {
    std::vector<TelephoneDevice> devices;
    for (auto*& line : lines) {
      auto driver = std::make_unique<SimLine>("Sim", time);
      line = driver.get();
      devices.push_back({std::move(driver), 120s});
    }
    service = std::make_unique<LineService>(
        time, std::move(devices),
        IdleCalls{[this] { return in_use; }, [this](const std::string& line) { log.push_back(line); }});
    service->SetEvents(&list);
    service->LineOpen(1, 4, 8);
  }
  void Connect() {
    lines[1]->Offer();
    time.RunFor(1ms);
    service->LineAnswer(1);
    time.RunFor(100ms);
    list.events.clear();
  }

  VirtualTime time{std::chrono::sys_days{}};
  SimLine* lines[2] = {};
  std::unique_ptr<LineService> service;
  EventList list;
  bool in_use = false;
  std::vector<std::string> log;
};

TEST_F(LineServiceTest, ACallOnWhichNothingHappensIsEndedAsByItsCaller) {
  list.react = [&](const std::string& event) {
    if (event == "disconnected") service->LineDrop(1);
  };
  lines[1]->Offer();
  time.RunFor(500s);
  ASSERT_TRUE(lines[1]->HasCall()) << "it may ring for ever";
  service->LineAnswer(1);
  time.RunFor(60s);
  in_use = true;
  time.RunFor(500s);
  in_use = false;
  list.events.clear();
  lines[1]->MonitorDigits(1, true);
  time.RunFor(110s);
  lines[1]->Press('1');
  time.RunFor(118s);
  EXPECT_TRUE(service->IsCallConnected(1));
  time.RunFor(3s);
  EXPECT_THAT(list.events, ElementsAre("1 digit 1", "1 disconnected", "1 proc 2 2", "1 idle"));
  EXPECT_FALSE(lines[1]->HasCall());
  EXPECT_EQ(log.size(), 1U);
}

TEST_F(LineServiceTest, ConnectedHoldsFromAnswerUntilAfterDisconnected) {
  Connect();
  EXPECT_TRUE(service->IsCallConnected(1));
  EXPECT_FALSE(service->IsCallConnected(0));
  bool connected_inside = false;
  list.react = [&](const std::string& event) {
    if (event != "disconnected") return;
    connected_inside = service->IsCallConnected(1);
    EXPECT_GT(service->LineDrop(1), 0);
    EXPECT_LT(service->LineDrop(1), 0) << "our side has hung up already";
  };
  lines[1]->HangUp();
  time.RunFor(100ms);
  EXPECT_TRUE(connected_inside);
  EXPECT_FALSE(service->IsCallConnected(1));
  EXPECT_THAT(list.events, ElementsAre("1 disconnected", "1 proc 2 2", "1 idle"));
}

TEST_F(LineServiceTest, OurOwnHangUpIsNoDisconnect) {
  Connect();
  service->LineDrop(1);
  EXPECT_FALSE(service->IsCallConnected(1));
  lines[1]->MonitorDigits(1, true);
  lines[1]->Press('1');  // on its way when we hung up
  time.RunFor(100ms);
  EXPECT_THAT(list.events, ElementsAre("1 proc 2 2", "1 idle"));
}

TEST_F(LineServiceTest, RequestsWithoutACallOrALineAreRefused) {
  EXPECT_EQ(service->LineAnswer(1), kTelephonyNoCall);
  EXPECT_EQ(service->LineDrop(1), kTelephonyNoCall);
  EXPECT_EQ(service->LineAnswer(0), kTelephonyLineNotOpen);
  EXPECT_EQ(service->LineOpen(9, 4, 8), kTelephonyBadDevice);
  EXPECT_EQ(service->LineClose(0), kTelephonyLineNotOpen);
  EXPECT_EQ(service->ErrorText(17), service->ErrorText(0));
  lines[1]->Offer();
  time.RunFor(1ms);
  EXPECT_GT(service->LineAnswer(1), 0);
  EXPECT_EQ(service->LineAnswer(1), kTelephonyAlreadyAnswered);
}

TEST_F(LineServiceTest, AnAnswerThatCrossesTheEndOfItsCallLeavesTheNextAlone) {
  lines[1]->Offer();
  time.RunFor(1ms);
  service->LineAnswer(1);
  lines[1]->HangUp();
  lines[1]->Offer();
  time.RunFor(100ms);
  EXPECT_FALSE(lines[1]->IsAnswered());
  EXPECT_THAT(list.events, ElementsAre("1 call 1", "1 idle", "1 call 2", "1 proc 1 -4"));
}

TEST_F(LineServiceTest, CallerTextsAreCleanedAndUnknownOnesNamed) {
  lines[1]->Offer();
  lines[1]->CallerId("\"Bob\"\r\n", "");
  lines[1]->CallerId("\x01", "  ");
  time.RunFor(1ms);
  EXPECT_THAT(list.events, ElementsAre("1 call 1", "1 caller 'Bob'/UNKNOWN"));
}

TEST(CallerText, LetsNothingHarmfulThrough) {
  EXPECT_EQ(CleanCallerText("  Zoë \t Müller  "), "Zoë Müller");
  EXPECT_EQ(CleanCallerText("a\"b\x7F"
                            "c\xC2\x85"
                            "d"),
            "a'b c d");
  EXPECT_EQ(CleanCallerText("gpj.\xE2\x80\xAE"
                            "exe"),
            "gpj. exe")
      << "right-to-left override";
  EXPECT_EQ(CleanCallerText("\xFF\xC0\xAF\xED\xA0\x80\xF5x\xE2\x82"),
            "???????x"
            "??");
  EXPECT_EQ(CleanCallerText(std::string("a\0b", 3)), "a b");
  EXPECT_EQ(CleanCallerText(std::string(5000, 'x')).size(), kMaxCallerText);
}

TEST(DriverEventQueue, CarriesEventsOfAnotherThreadInOrder) {
  struct Collect : LineDriverEvents {
    std::vector<std::int32_t> rings;
    void Offered(CallNumber) override {}
    void Ring(CallNumber, std::int32_t count) override { rings.push_back(count); }
    void CallerId(CallNumber, const std::string&, const std::string&) override {}
    void RequestDone(std::int32_t, std::int32_t) override {}
    void Connected(CallNumber) override {}
    void Digit(CallNumber, char) override {}
    void Disconnected(CallNumber) override {}
    void Idle(CallNumber) override {}
  } target;
  struct CountingLoop : EventLoop {
    std::atomic<int> posts = 0;
    void Post(Task) override { ++posts; }
    void After(std::chrono::milliseconds, Task) override {}
    std::unique_ptr<Timer> MakeTimer(Task) override { return nullptr; }
  } loop;
  DriverEventQueue queue(loop, [] {});
  constexpr std::int32_t kEvents = 1000;
  std::thread driver([&] {
    for (std::int32_t count = 1; count <= kEvents; ++count) queue.Ring(1, count);
  });
  while (target.rings.size() < kEvents) {
    if (!queue.DeliverNext(target)) std::this_thread::yield();
  }
  driver.join();
  EXPECT_EQ(loop.posts, kEvents);
  EXPECT_TRUE(std::ranges::is_sorted(target.rings));
}

TEST(SimLine, AScriptBeginsAnewWithEachOpening) {
  VirtualTime time{std::chrono::sys_days{}};
  const SimScript script{{0ms, SimStep::Kind::Offer, "", ""}, {20s, SimStep::Kind::HangUp, "", ""}};
  std::vector<TelephoneDevice> devices;
  devices.push_back({std::make_unique<SimLine>("Sim", time, script)});
  LineService service(time, std::move(devices));
  EventList list;
  service.SetEvents(&list);
  service.LineOpen(0, 4, 8);
  time.RunFor(6s);
  service.LineClose(0);
  service.LineOpen(0, 4, 8);
  time.RunFor(19s);
  EXPECT_THAT(list.events, ElementsAre("0 call 1", "0 idle", "0 call 2"));
  time.RunFor(2s);
  EXPECT_EQ(list.events.back(), "0 idle");
}

TEST(SimScript, ReadsWhatItWritesAndNamesTheWrongLine) {
  const auto path = testing::TempDir() + "/orven_script.sim";
  {
    std::ofstream(path) << "; a call\r\n0 offer\n0.1 callerid 555 Anna Smith\n\n1.25 press 12*\n2 dance\n3 "
                           "press\n-1 ring\n9 hangup\n";
  }
  std::vector<std::string> complaints;
  const auto script = ReadSimScript(path, complaints);
  EXPECT_EQ(WriteSimScript(script), "0 offer\n0.1 callerid 555 Anna Smith\n1.25 press 12*\n9 hangup\n");
  ASSERT_EQ(complaints.size(), 3U);
  EXPECT_THAT(complaints[0], testing::StartsWith("orven_script.sim:6: \"2 dance\": expected "));
  ReadSimScript(path + ".none", complaints);
  EXPECT_EQ(complaints.size(), 4U);
}

}  // namespace
}  // namespace orven
