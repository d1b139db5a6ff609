// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/telephony_control.h"

#include <gmock/gmock.h>

#include "adapters/line/sim/virtual_time.h"
#include "base/text.h"
#include "support/line_events.h"
#include "support/scratch_folder.h"
#include "support/test_line.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// The second of two lines, its caller, and a program that hangs up when the caller does. All events of the
/// control are collected in one text.
struct Scene {
  explicit Scene(const SimScript& script = {}) {
    std::vector<TelephoneDevice> devices;
    for (int i = 0; i < 2; ++i) {
      auto driver = std::make_unique<test::TestLine>(time, script);
      sim = driver.get();
      devices.push_back({VoiceDevice("Sim"), std::move(driver), 120s});
    }
    const auto report = [this](const std::string&) { Tell(1, "idle call"); };
    Tapi1 = std::make_unique<TelephonyControl>(time, std::move(devices),
                                               IdleCalls{[this] { return plays; }, report});
    Tapi1->SetEvents([this](const LineEvent& event) { Handle(event); });
    Tapi1->LineOpen(1, 4, 8);
  }

  void Handle(const LineEvent& event) {
    Tell(event.line, test::ToText(event));
    if (event.kind == LineEvent::Kind::Disconnected) Play("?DD");
  }

  /// Plays `steps`, one letter each, and returns all events so far.
  std::string Play(const std::string& steps) {
    for (const char step : steps) Do(step);
    return told;
  }
  void Do(char step) {
    switch (step) {
      // The caller
      case 'o': return sim->Offer();
      case 'r': return sim->Ring();
      case 'n': return sim->CallerId("\"Bob\"\r\n", "");
      case 'x': return sim->CallerId("\x01", "  ");
      case '1': return sim->Press('1');
      case 'h': return sim->HangUp();
      // The program
      case 'A': return TellRefusal(Tapi1->LineAnswer(1));
      case 'D': return TellRefusal(Tapi1->LineDrop(1));
      case 'M': return Tapi1->MonitorDigits(1, true);
      case 'C': return TellRefusal(Tapi1->LineClose(1));
      case 'O': return TellRefusal(Tapi1->LineOpen(1, 4, 8));
      case 'P': return void(plays = !plays);
      case '?': return Tell(1, Tapi1->IsCallConnected(1) ? "connected" : "not connected");
      // Time passes
      case '.': return time.RunFor(1ms);
      case '_': return time.RunFor(100ms);
      case 's': return time.RunFor(2s);
      default: return time.RunFor(58s);
    }
  }

  void Tell(std::int32_t line, const std::string& event) {
    told += (told.empty() ? "" : ", ") + (line == 1 ? event : "of another line: " + event);
  }
  void TellRefusal(std::int32_t result) {
    if (result < 0) Tell(1, "refused " + std::to_string(result));
  }
  VirtualTime time{std::chrono::sys_days{}};
  test::TestLine* sim = nullptr;
  bool plays = false;
  std::string told;
  std::unique_ptr<TelephonyControl> Tapi1;
};

TEST(TelephonyControl, ReportsACallToTheProgram) {
  const std::pair<const char*, const char*> rows[] = {
      {"o.rnxr.A_r?h_?",
       "Offered 1, Ring 1 1, CallerId 1 'Bob'/UNKNOWN, Ring 1 2, Done 1 1, Connected 1, connected, "
       "Disconnected 1, connected, refused -4, Done 2 2, Idle 1, not connected"},
      // Our own hang-up is not reported as the caller's; a digit that is still queued is dropped.
      {"o.A_MD?1_", "Offered 1, Done 1 1, Connected 1, not connected, Done 2 2, Idle 1"},
      {"ADo.AAD_", "refused -4, refused -4, Offered 1, refused -5, Done 3 3, Done 5 5, Idle 1"},
      // An answer that is requested as its call ends does not affect the next call.
      {"o.Aho_?", "Offered 1, Idle 1, Offered 2, Done 1 -4, not connected"},
      {"o.A_MCAC", "Offered 1, Done 1 1, Connected 1, Idle 1, refused -2, refused -2"},
      // A call may ring without limit, and lasts while something plays. Then it ends two minutes after the
      // last key.
      {"ommmmmmmmA_mPmmmmPMmm1mms?ss",
       "Offered 1, Done 1 1, Connected 1, Digit 1, connected, idle call, Disconnected 1, connected, "
       "refused -4, Done 2 2, Idle 1"},
  };
  for (const auto& [steps, told] : rows) EXPECT_EQ(Scene().Play(steps), told) << steps;
  const Scene scene;
  EXPECT_EQ(scene.Tapi1->LineOpen(2, 4, 8), kTelephonyBadDevice);
  EXPECT_EQ(scene.Tapi1->ErrorText(17), scene.Tapi1->ErrorText(0)) << "a request is not an error";
  for (int result = -8; result < 0; ++result)
    EXPECT_EQ(scene.Tapi1->ErrorText(result).starts_with("Unknown"), result == -8) << result;
}

TEST(SimScript, StartsWheneverTheLineIsOpenedAndReportsInvalidLines) {
  const test::ScratchFolder folder;
  const std::string path = folder / "script.sim";
  test::PutFile(path,
                "; a call\r\n0 offer\n0.1 callerid 555 Anna Smith\n\n1.25 press 12\n2 dance\n3 press\n"
                "-1 ring\n9 hangup\n");
  std::vector<std::string> complaints;
  EXPECT_EQ(
      Scene(ReadSimScript(path, complaints)).Play(".CO.AM_sssss"),
      "Offered 1, Idle 1, Offered 2, Done 1 1, Connected 2, CallerId 2 Anna Smith/555, Digit 1, Digit 2, "
      "Disconnected 2, connected, refused -4, Done 2 2, Idle 2");
  ReadSimScript(path + ".none", complaints);
  ASSERT_EQ(complaints.size(), 4U);
  EXPECT_THAT(complaints[0], testing::StartsWith("script.sim:6: \"2 dance\": expected "));
}

TEST(CallerText, RemovesHarmfulCharacters) {
  const std::pair<std::string, std::string> rows[] = {
      {"  Zoë \t Müller  ", "Zoë Müller"},
      {"a\"b\177c\302\205d", "a'b c d"},
      {"gpj.\342\200\256exe", "gpj. exe"},  // right-to-left override
      {"\xFF\xC0\xAF\xED\xA0\x80\xF5x\xE2\x82", "???????x??"},
      {{"a\0b", 3}, "a b"},
      {std::string(5000, 'x'), std::string(kMaxCallerText, 'x')}};
  for (const auto& [given, clean] : rows) EXPECT_EQ(CleanCallerText(given), clean);
}

}  // namespace
}  // namespace orven
