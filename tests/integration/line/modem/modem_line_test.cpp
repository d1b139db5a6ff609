// SPDX-License-Identifier: GPL-3.0-or-later
// Calls on an emulated modem, from the first ring to on-hook.
#include <cmath>

#include "integration/line/modem/emulated_line.h"

namespace orven::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Noise with every value that a sample can have, 0x10 in either byte among them, in whole blocks.
Samples Noise(int blocks, unsigned seed) {
  Samples samples;
  for (int i = 0; i < blocks * kBlockSamples; ++i) {
    seed = seed * 1'103'515'245U + 12'345U;
    samples.push_back(static_cast<std::int16_t>(static_cast<int>(seed >> 16U & 0x3FFFU) - 0x2000));
  }
  return samples;
}

/// `off`: how far a sample may be off, in a format of 8 bits.
bool Within(const Samples& part, const Samples& whole, int off = 0) {
  const auto same = [off](int a, int b) { return std::abs(a - b) <= off; };
  return std::search(whole.begin(), whole.end(), part.begin(), part.end(), same) != whole.end();
}

struct Case {
  std::string name;
  std::string profile;
  ModemFaults faults;
};

/// Every modem, and every fault that modems are known for.
std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const auto& profile : ModemProfileNames()) cases.push_back({profile, profile, {}});
  const auto add = [&](const char* name, auto fault, auto value) {
    cases.push_back({name, "softmodem", {}});
    cases.back().faults.*fault = value;
  };
  add("SilenceDetection", &ModemFaults::ignores_silence_detection, true);
  add("NoHangUpCode", &ModemFaults::no_hang_up_code, true);
  add("OffHookInRing", &ModemFaults::refuses_off_hook_in_ring, true);
  add("AnswerDoesNotTake", &ModemFaults::answer_does_not_take, true);
  add("StaleOk", &ModemFaults::stale_ok, true);
  add("RingInsideAReply", &ModemFaults::ring_inside_a_reply, true);
  add("TripledKeys", &ModemFaults::tripled_keys, true);
  add("ThreeStops", &ModemFaults::stops_needed, 3);
  return cases;
}

struct EveryModemAndFault : ModemLine, testing::WithParamInterface<Case> {};

TEST_P(EveryModemAndFault, TakesAWholeCallAndTheNextOne) {
  const auto& [name, profile, faults] = GetParam();
  const int off = profile == "softmodem" || profile == "lucent" ? 0 : 256;
  Ready(profile, faults);
  for (CallNumber call : {1U, 2U}) {
    SCOPED_TRACE(call);
    const auto text = std::to_string(call);
    Modem().Ring();
    time.RunFor(2500ms);
    for (const char* line : {"DATE = 1121", "NMBR = 5551234", "NAME = ANNA"}) Modem().CallerIdLine(line);
    time.RunFor(2500ms);
    Modem().Ring();
    ASSERT_TRUE(Wait("Ring " + text + " 2"));
    EXPECT_TRUE(events.Has("CallerId " + text + " ANNA|5551234"));
    agent->Answer(call, 7);
    ASSERT_TRUE(Wait("Connected " + text, 3s));
    agent->MonitorDigits(call, true);

    auto sound = Noise(150, call);
    Play(sound);
    time.RunFor(1s);
    Modem().Press('5');
    ASSERT_TRUE(Played());
    const auto beep = Noise(20, 9);
    Play(beep);
    ASSERT_TRUE(Played());
    time.RunFor(300ms);
    ASSERT_EQ(audio.StartRecord(message), 0);
    time.RunFor(1500ms);
    const auto spoken = Noise(200, 77);
    Modem().Say(spoken);
    time.RunFor(2s);
    Modem().Press('5');
    Modem().Press('#');
    time.RunFor(3s);
    Modem().HangUp();
    ASSERT_TRUE(Wait("Disconnected " + text, 15s));
    audio.StopRecord();
    ASSERT_TRUE(Wait("Idle " + text));
    EXPECT_FALSE(Modem().OffHook());

    sound.insert(sound.end(), beep.begin(), beep.end());
    EXPECT_TRUE(Within(sound, Modem().Heard(), off)) << "played without a gap";
    EXPECT_TRUE(Within({spoken.begin(), spoken.begin() + 8000}, message.samples, off));
    EXPECT_TRUE(events.Has("Done 7 0"));
    EXPECT_EQ(std::exchange(events.keys, ""), "55#");
    message.samples.clear();
    events.all.clear();
    time.RunFor(20s);
    EXPECT_EQ(state, kModemReady);
  }
  auto complaints = Modem().Complaints();
  std::erase(complaints, "+VCID outside voice mode");  // some modems have it there only
  EXPECT_THAT(complaints, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, EveryModemAndFault, testing::ValuesIn(Cases()),
                         [](const auto& test) { return test.param.name; });

TEST_F(ModemLine, ACallerGivesUpAndACallerIdIsNoCall) {
  Ready("conexant");
  Modem().CallerIdLine("NMBR = 5550000");  // of a waiting call, or of nothing
  time.RunFor(30s);
  EXPECT_THAT(events.all, IsEmpty());
  Modem().CallerIdLine("NMBR = P");  // before the first ring
  time.RunFor(300ms);
  RingTimes(2);
  ASSERT_TRUE(Wait("Idle 1"));
  EXPECT_THAT(events.all, ElementsAre("Offered 1", "CallerId 1 |", "Ring 1 1", "Ring 1 2", "Idle 1"));
  time.RunFor(60s);
  RingTimes(1, "2");
  EXPECT_TRUE(Wait("Idle 2"));
}

TEST_F(ModemLine, StoppingIsHeardAtOnceAndWhatCameToItsEndIsPlayedWhole) {
  Ready("lucent");
  Answered();
  Play(Noise(500, 1));
  time.RunFor(2s);
  audio.StopPlay();
  const auto stopped = Modem().PlayedBytes().size();
  const auto second = Noise(60, 2);
  Play(second);
  ASSERT_TRUE(Played());
  agent->Drop(1, 7);
  ASSERT_TRUE(Wait("Idle 1"));
  EXPECT_TRUE(Within(second, Modem().Heard()));
  EXPECT_LT(Modem().PlayedBytes().size() - second.size() * 2 - stopped, 16'000U / 10) << "100 ms at most";
}

TEST_F(ModemLine, ALostByteSpoilsOnlyAMomentAndAnUnpluggedModemEndsTheCallAndIsUsedAgain) {
  Ready("lucent");
  Answered();
  ASSERT_EQ(audio.StartRecord(message), 0);
  time.RunFor(2s);
  link->lose = 3;
  time.RunFor(100ms);
  Modem().Event('o');
  time.RunFor(1s);
  const auto spoken = Noise(100, 8);
  Modem().Say(spoken);
  time.RunFor(3s);
  link->Unplug();
  time.RunFor(1ms);
  EXPECT_TRUE(events.Has("Disconnected 1") && events.Has("Idle 1"));
  EXPECT_TRUE(Within(spoken, message.samples));
  audio.StopRecord();
  time.RunFor(10s);
  EXPECT_THAT(events.all.back(), HasSubstr("Trouble ")) << state;
  Modem().PowerCycle();
  link->plugged_in = true;
  ASSERT_TRUE(Wait("Trouble "));
  Answered(2);
}

TEST_F(ModemLine, EverySignOfTheCallersEndEndsTheCall) {
  struct End {
    std::function<void(ModemEmulator&)> happen;
    Duration limit;
    const char* words;
  };
  const End ends[] = {{[](auto& modem) { modem.HangUp(); }, 10s, "the busy tone"},
                      {[](auto& modem) { modem.HangUpToDialTone(); }, 10s, "the dial tone"},
                      {[](auto& modem) { modem.HangUpToSilence(); }, 70s, "a minute of silence"},
                      {[](auto& modem) { modem.Event('H'); }, 1s, "a telephone at the same line was lifted"},
                      {[](auto& modem) { modem.Event('l'); }, 1s, "the loop was broken"},
                      {[](auto& modem) { modem.Event('K'); }, 1s, "the congestion tone"}};
  ModemFaults faults;
  faults.no_hang_up_code = true;
  Ready("silabs", faults);
  CallNumber call = 0;
  for (const auto& [happen, limit, words] : ends) {
    Answered(++call);
    time.RunFor(3s);
    happen(Modem());
    EXPECT_TRUE(Wait("Disconnected " + std::to_string(call), limit)) << words;
    ASSERT_TRUE(Wait("Idle " + std::to_string(call)));
    EXPECT_THAT(log.back(), HasSubstr(words));
    time.RunFor(10s);
  }
}

TEST_F(ModemLine, AnAbsentModemIsWaitedForASilentOneAskedLessOftenAForbiddenOneRefused) {
  link = std::make_unique<EmulatedLink>("v253", ModemFaults{}, time);
  link->plugged_in = false;
  Start(*link, kAnyPort);
  EXPECT_FALSE(refused);
  EXPECT_THAT(events.all, ElementsAre("Trouble No modem is plugged in"));
  Modem().Wedge();
  link->plugged_in = true;
  time.RunFor(20s);
  const auto asked = link->bytes_to_modem;
  time.RunFor(20s);
  EXPECT_GT(link->bytes_to_modem, asked) << "it may have been plugged in just now";
  time.RunFor(2min);
  const auto later = link->bytes_to_modem;
  time.RunFor(30s);
  EXPECT_LE(link->bytes_to_modem, later + asked);
  Modem().Wake();
  EXPECT_TRUE(Wait("Trouble ", 2min));
  link->forbidden = true;
  Start(*link);
  EXPECT_THAT(refused.value_or(""), HasSubstr("may not use"));
}

TEST_F(ModemLine, AWedgedModemIsReportedAndWorksAgainWhenItWakes) {
  Ready("conexant");
  Modem().PowerCycle();
  time.RunFor(2min);
  EXPECT_EQ(std::ranges::count(Modem().Commands(), "+VCID=1"), 2) << "it was switched off and on";
  Modem().Wedge();
  ASSERT_TRUE(Until([this] { return !events.all.empty(); }, 3min));
  EXPECT_THAT(events.all.back(), HasSubstr("switch it off and on"));
  EXPECT_THAT(log, Contains(HasSubstr("switch it off and on")));
  Modem().PowerCycle();
  ASSERT_TRUE(Wait("Trouble "));
  Answered();
  time.RunFor(3s);
  Modem().Wedge();  // while it receives
  EXPECT_TRUE(Wait("Idle 1", 15s));
  EXPECT_TRUE(events.Has("Disconnected 1"));
  Modem().Wake();
  time.RunFor(30s);
  EXPECT_FALSE(Modem().OffHook()) << "the line is free again";
  Answered(2);
  Play(Noise(2000, 1));
  time.RunFor(2s);
  Modem().Wedge();
  EXPECT_TRUE(Wait("Idle 2", 15s)) << "it takes nothing any more";
}

TEST_F(ModemLine, CallsAreTurnedAwayDroppedAndLeftAtTheEnd) {
  Ready("v253");
  RingTimes(4);
  ASSERT_TRUE(Wait("Ring 1 1"));
  agent->Answer(1, 5);
  agent->Drop(1, 6);  // as the program turns a caller away
  ASSERT_TRUE(Wait("Idle 1", 5s));
  EXPECT_TRUE(events.Has("Done 5 0") && events.Has("Done 6 0") && !events.Has("Connected 1"));
  EXPECT_FALSE(Modem().OffHook());
  time.RunFor(30s);
  Answered(2);
  Play(Noise(500, 1));
  time.RunFor(1s);
  agent->Drop(2, 7);
  ASSERT_TRUE(Wait("Idle 2", 3s));
  agent->Drop(2, 8);
  EXPECT_TRUE(events.Has("Done 7 0") && events.Has("Done 8 0") && !events.Has("Disconnected 2"));
  audio.StopPlay();
  for (const bool wedged : {false, true}) {
    Ready("v253");
    events.all.clear();
    Answered();
    if (wedged) Modem().Wedge();  // it does not delay the program's end
    bool closed = false;
    agent->Shutdown([&] { closed = true; });
    EXPECT_TRUE(Until([&] { return closed; }, 1500ms));
    EXPECT_TRUE(events.Has("Idle 1"));
    EXPECT_EQ(Modem().OffHook(), wedged);
  }
}

TEST_F(ModemLine, TheLineIsClosedInEveryStateAndLeftOnHook) {
  Ready("v253");
  bool closed = false;
  const auto close = [&] {
    closed = false;
    agent->Shutdown([&] { closed = true; });
    EXPECT_TRUE(Until([&] { return closed; }, 1500ms));
    EXPECT_FALSE(Modem().OffHook());
  };
  RingTimes(1);
  ASSERT_TRUE(Wait("Ring 1 1"));
  link->delay = 300ms;
  agent->Answer(1, 5);
  agent->Drop(1, 6);
  agent->Drop(1, 7);
  close();
  EXPECT_TRUE(events.Has("Done 6 0") && events.Has("Done 7 0") && events.Has("Idle 1"));
  link->delay = 0ms;
  for (auto at = 0ms; at < 4s; at += 70ms) {  // while the modem is being asked
    Start(*link);
    time.RunFor(at);
    close();
    time.RunFor(5s);
  }
}

TEST_F(ModemLine, ANoCarrierBehindTheAudioIsTheCallersEnd) {
  Ready("conexant");
  Answered();
  time.RunFor(1s);
  link->FromModem(std::span(reinterpret_cast<const std::uint8_t*>("\x10\x03\r\nNO CARRIER\r\n"), 16));
  EXPECT_TRUE(Wait("Disconnected 1", 1s));
  EXPECT_TRUE(Wait("Idle 1", 5s));
  EXPECT_EQ(std::ranges::count(Modem().Commands(), "+VLS=1"), 1) << "it is not answered again";
  EXPECT_THAT(log, Contains(HasSubstr("hung up")));
}

TEST_F(ModemLine, AModemThatAlwaysEchoesIsLeftAndOneThatGoesOffHookLateIsHungUp) {
  link = std::make_unique<EmulatedLink>("v253", ModemFaults{}, time);
  link->echoes = true;
  Start(*link);
  ASSERT_TRUE(Until([this] { return state == kModemReady; }));
  const auto asked = Modem().Commands().size();
  time.RunFor(10min);
  EXPECT_LE(Modem().Commands().size(), asked + 10);
  RingTimes(1);
  ASSERT_TRUE(Wait("Ring 1 1"));
  agent->Answer(1, 5);
  ASSERT_TRUE(Until([this] { return Modem().OffHook(); }));
  link->delay = 4s;
  time.RunFor(200ms);
  link->delay = 0s;
  ASSERT_TRUE(Wait("Idle 1", 15s));
  EXPECT_TRUE(events.Has("Done 5 " + std::to_string(kTelephonyDeviceFailed)));
  EXPECT_FALSE(Modem().OffHook());
}

}  // namespace
}  // namespace orven::test
