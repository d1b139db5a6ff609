// SPDX-License-Identifier: GPL-3.0-or-later
// Calls on an emulated modem, from the first ring to on-hook.
#include <cmath>

#include "adapters/line/modem/modem_preparation.h"
#include "adapters/line/modem/sample_codec.h"
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

/// `off`: how far a sample may be off, where emulator and line round in their own ways.
bool Within(const Samples& part, const Samples& whole, int off = 0) {
  const auto same = [off](int a, int b) { return std::abs(a - b) <= off; };
  return std::search(whole.begin(), whole.end(), part.begin(), part.end(), same) != whole.end();
}

/// What is left of samples that go through a modem's format.
Samples Through(const VoiceFormat& format, const Samples& samples) {
  std::vector<std::uint8_t> bytes;
  SampleEncoder(format).Encode(samples, bytes);
  Samples back;
  SampleDecoder(format).Decode(bytes, back);
  return back;
}

VoiceFormat FormatOf(const std::string& profile) {
  if (profile == "softmodem" || profile == "lucent") return {SampleKind::Linear16, 8000, ""};
  return {profile == "conexant" ? SampleKind::Unsigned8 : SampleKind::MuLaw, 8000, ""};
}

struct EveryModem : EmulatedLine, testing::WithParamInterface<std::string> {};

TEST_P(EveryModem, TakesAWholeCallAndTheNextOne) {
  Ready(GetParam());
  for (CallNumber call : {1U, 2U}) {
    SCOPED_TRACE(call);
    const auto text = std::to_string(call);
    Modem().Ring();
    time.RunFor(2500ms);
    for (const char* line : {"DATE = 1121", "TIME = 1304", "NMBR = 5551234", "NAME = ANNA GARDEN"}) {
      Modem().CallerIdLine(line);
    }
    time.RunFor(2500ms);
    Modem().Ring();
    ASSERT_TRUE(Wait("Ring " + text + " 2"));
    EXPECT_TRUE(events.Has("CallerId " + text + " ANNA GARDEN|5551234"));
    agent->Answer(call, 7);
    ASSERT_TRUE(Wait("Connected " + text, 3s));
    agent->MonitorDigits(call, true);

    GivenSound greeting(Noise(150, call));
    ASSERT_EQ(audio.StartPlay(greeting), 0);
    time.RunFor(1s);
    Modem().Press('5');
    ASSERT_TRUE(Until([this] { return !audio.Plays(); }));
    GivenSound beep(Noise(20, 9));
    ASSERT_EQ(audio.StartPlay(beep), 0);
    ASSERT_TRUE(Until([this] { return !audio.Plays(); }));
    time.RunFor(300ms);
    KeptSound message;
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

    auto played = greeting.samples;
    played.insert(played.end(), beep.samples.begin(), beep.samples.end());
    std::vector<std::uint8_t> bytes;
    SampleEncoder(FormatOf(GetParam())).Encode(played, bytes);
    EXPECT_TRUE(Modem().PlayedBytes() == bytes) << "played without a gap, bit by bit";
    const auto off = FormatOf(GetParam()).kind == SampleKind::Unsigned8 ? 256 : 0;
    const Samples before_the_keys(spoken.begin(), spoken.begin() + 8000);
    EXPECT_TRUE(Within(Through(FormatOf(GetParam()), before_the_keys), message.samples, off));
    EXPECT_EQ(events.Keys(), "55#");
    EXPECT_THAT(Complaints(), IsEmpty());
    events.all.clear();
    time.RunFor(20s);
    EXPECT_EQ(state, kModemReady);
  }
}

INSTANTIATE_TEST_SUITE_P(Profiles, EveryModem, testing::ValuesIn(ModemProfileNames()),
                         [](const auto& test) { return test.param; });

struct ModemLine : EmulatedLine {};

TEST_F(ModemLine, ACallerGivesUpAndACallerIdIsNoCall) {
  Ready("conexant");
  Modem().CallerIdLine("NMBR = 5550000");  // of a call that waits, or of nothing
  time.RunFor(30s);
  EXPECT_THAT(events.all, IsEmpty());
  Modem().CallerIdLine("NMBR = P");  // before the first ring
  time.RunFor(300ms);
  RingTimes(2);
  ASSERT_TRUE(Wait("Idle 1"));
  ASSERT_GE(events.all.size(), 5U);
  EXPECT_EQ(events.all[0] + "," + events.all[2], "Offered 1,Ring 1 1") << testing::PrintToString(events.all);
  EXPECT_THAT(events.all[1], HasSubstr("CallerId 1 "));
  EXPECT_FALSE(events.Has("Disconnected 1"));
  time.RunFor(60s);
  RingTimes(1, "2");
  EXPECT_TRUE(Wait("Idle 2"));
}

TEST_F(ModemLine, StoppingIsHeardAtOnceAndTheNextSoundIsPlayedWhole) {
  Ready("lucent");
  Answered();
  GivenSound first(Noise(500, 1));
  ASSERT_EQ(audio.StartPlay(first), 0);
  time.RunFor(2s);
  audio.StopPlay();
  const auto stopped = Modem().PlayedBytes().size();
  GivenSound second(Noise(60, 2));
  ASSERT_EQ(audio.StartPlay(second), 0);
  ASSERT_TRUE(Until([this] { return !audio.Plays(); }));
  time.RunFor(1s);
  Samples played;
  SampleDecoder(FormatOf("lucent")).Decode(Modem().PlayedBytes(), played);
  EXPECT_TRUE(Within(second.samples, played));
  EXPECT_LT(Modem().PlayedBytes().size() - second.samples.size() * 2 - stopped, 16'000U / 10)
      << "no more than 100 ms of the first were heard after it was stopped";
}

TEST_F(ModemLine, DroppingTheCallLeavesWhatHasComeToItsEndWhole) {
  Ready("lucent");
  Answered();
  GivenSound sound(Noise(60, 1));
  ASSERT_EQ(audio.StartPlay(sound), 0);
  ASSERT_TRUE(Until([this] { return !audio.Plays(); }));
  agent->Drop(1, 7);
  ASSERT_TRUE(Wait("Idle 1"));
  Samples played;
  SampleDecoder(FormatOf("lucent")).Decode(Modem().PlayedBytes(), played);
  EXPECT_TRUE(Within(sound.samples, played));
}

TEST_F(ModemLine, ALostByteSpoilsOnlyAMoment) {
  Ready("lucent");
  Answered();
  KeptSound message;
  ASSERT_EQ(audio.StartRecord(message), 0);
  time.RunFor(2s);
  link->lose = 3;
  time.RunFor(100ms);
  Modem().Event('o');
  time.RunFor(1s);
  const auto spoken = Noise(100, 8);
  Modem().Say(spoken);
  time.RunFor(3s);
  audio.StopRecord();
  EXPECT_TRUE(Within(spoken, message.samples));
}

struct Fault {
  const char* name;
  std::function<void(ModemFaults&)> set;
};

struct EveryFault : EmulatedLine, testing::WithParamInterface<Fault> {};

TEST_P(EveryFault, ACallGoesWell) {
  ModemFaults faults;
  GetParam().set(faults);
  Ready("softmodem", faults);
  RingTimes(4);
  ASSERT_TRUE(Wait("Ring 1 1"));
  agent->Answer(1, 5);
  ASSERT_TRUE(Wait("Connected 1", 15s));
  agent->MonitorDigits(1, true);
  GivenSound greeting(Noise(100, 3));
  ASSERT_EQ(audio.StartPlay(greeting), 0);
  ASSERT_TRUE(Until([this] { return !audio.Plays(); }));
  KeptSound message;
  ASSERT_EQ(audio.StartRecord(message), 0);
  time.RunFor(8s);
  const auto spoken = Noise(100, 4);
  Modem().Say(spoken);
  time.RunFor(3s);
  Modem().Press('7');
  time.RunFor(1s);
  Modem().Press('7');
  time.RunFor(1s);
  Modem().HangUp();
  ASSERT_TRUE(Wait("Idle 1", 90s));
  EXPECT_TRUE(events.Has("Done 5 0") && events.Has("Disconnected 1"));
  EXPECT_TRUE(Within(greeting.samples, Modem().Heard())) << "the caller has heard all of the greeting";
  EXPECT_TRUE(Within(spoken, message.samples));
  EXPECT_EQ(events.Keys(), "77");
  audio.StopRecord();
  EXPECT_THAT(Complaints(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Faults, EveryFault,
    testing::Values(Fault{"None", [](auto&) {}},
                    Fault{"SilenceDetection", [](auto& faults) { faults.ignores_silence_detection = true; }},
                    Fault{"NoHangUpCode", [](auto& faults) { faults.no_hang_up_code = true; }},
                    Fault{"OffHookInRing", [](auto& faults) { faults.refuses_off_hook_in_ring = true; }},
                    Fault{"AnswerDoesNotTake", [](auto& faults) { faults.answer_does_not_take = true; }},
                    Fault{"StaleOk", [](auto& faults) { faults.stale_ok = true; }},
                    Fault{"RingInsideAReply", [](auto& faults) { faults.ring_inside_a_reply = true; }},
                    Fault{"TripledKeys", [](auto& faults) { faults.tripled_keys = true; }},
                    Fault{"ThreeStops", [](auto& faults) { faults.stops_needed = 3; }}),
    [](const auto& test) { return test.param.name; });

TEST_F(ModemLine, TheCallersEndIsHeardInTheSound) {
  ModemFaults faults;
  faults.no_hang_up_code = true;
  Ready("silabs", faults);
  const std::vector<std::pair<void (ModemEmulator::*)(), std::chrono::milliseconds>> ends{
      {&ModemEmulator::HangUp, 10s},
      {&ModemEmulator::HangUpToDialTone, 10s},
      {&ModemEmulator::HangUpToSilence, 70s}};
  CallNumber call = 0;
  for (const auto& [hang_up, limit] : ends) {
    Answered(++call);
    time.RunFor(2s);
    (Modem().*hang_up)();
    EXPECT_TRUE(Wait("Disconnected " + std::to_string(call), limit));
    ASSERT_TRUE(Wait("Idle " + std::to_string(call)));
    time.RunFor(10s);
  }
}

TEST_F(ModemLine, AnUnpluggedModemEndsTheCallAndIsUsedAgain) {
  Ready("v253");
  Answered();
  KeptSound message;
  ASSERT_EQ(audio.StartRecord(message), 0);
  time.RunFor(1s);
  Modem().Say(Noise(50, 5));
  time.RunFor(3s);
  link->Unplug();
  time.RunFor(1ms);
  EXPECT_TRUE(events.Has("Disconnected 1") && events.Has("Idle 1"));
  EXPECT_TRUE(Within(Through(FormatOf("v253"), Noise(50, 5)), message.samples)) << "what was recorded stays";
  audio.StopRecord();
  time.RunFor(10s);
  EXPECT_THAT(events.all.back(), HasSubstr("Trouble ")) << state;
  Modem().PowerCycle();
  link->plugged_in = true;
  ASSERT_TRUE(Wait("Trouble "));
  Answered(2);
}

TEST_F(ModemLine, AModemThatIsNotThereIsWaitedForAndAForbiddenOneRefused) {
  link = std::make_unique<EmulatedLink>("v253", ModemFaults{}, time);
  ModemLineSettings settings;
  settings.find_ports = [this] {
    return link->plugged_in ? std::vector<std::string>{"/dev/ttyACM0"} : std::vector<std::string>{};
  };
  agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{*link, time, time, audio, events});
  link->plugged_in = false;
  EXPECT_FALSE(agent->Start());
  EXPECT_THAT(events.all, ElementsAre("Trouble No modem is plugged in"));
  link->plugged_in = true;
  EXPECT_TRUE(Wait("Trouble "));
  Begin("v253");
  link->forbidden = true;
  EXPECT_THAT(agent->Start().value_or(""), HasSubstr("may not use"));
}

TEST_F(ModemLine, AWedgedModemIsToldAndWorksAgainWhenItWakes) {
  Ready("conexant");
  Modem().Wedge();
  ASSERT_TRUE(Until([this] { return !events.all.empty(); }, 3min));
  EXPECT_THAT(events.all.back(), HasSubstr("switch it off and on"));
  EXPECT_THAT(log, Contains(HasSubstr("switch it off and on")));
  Modem().PowerCycle();
  Modem().Wake();
  ASSERT_TRUE(Wait("Trouble "));
  Answered();
  time.RunFor(3s);
  Modem().Wedge();  // in mid-call
  EXPECT_TRUE(Wait("Idle 1", 15s));
  EXPECT_TRUE(events.Has("Disconnected 1"));
  Modem().Wake();
  time.RunFor(30s);
  EXPECT_FALSE(Modem().OffHook()) << "the line is free again";
  Answered(2);
  GivenSound greeting(Noise(2000, 1));
  ASSERT_EQ(audio.StartPlay(greeting), 0);
  time.RunFor(2s);
  Modem().Wedge();
  EXPECT_TRUE(Wait("Idle 2", 15s)) << "it takes nothing any more";
}

TEST_F(ModemLine, AModemThatWasSwitchedOffAndOnIsSetUpAgain) {
  Ready("conexant");
  Modem().PowerCycle();
  time.RunFor(2min);
  const auto& commands = Modem().Commands();
  EXPECT_EQ(std::ranges::count(commands, "+VCID=1"), 2);
}

TEST(ModemFirmware, TheFaultyOneIsKnown) {
  EXPECT_THAT(FirmwareAdvice("56000, 56K FAX USB V1.2.18, 5637"), HasSubstr("firmware misses rings"));
  for (const char* fine : {"5637 V1.2.23", "5637 V2.0.1", "HSF 1.2.18", "5637"}) {
    EXPECT_EQ(FirmwareAdvice(fine), "") << fine;
  }
}

TEST_F(ModemLine, TheTelephoneBesideTakesTheCallOver) {
  Ready("lucent");
  Answered();
  Modem().Event('H');
  EXPECT_TRUE(Wait("Idle 1", 5s));
  EXPECT_TRUE(events.Has("Disconnected 1"));
}

TEST_F(ModemLine, CallsAreTurnedAwayDroppedAndLeftAtTheEnd) {
  Ready("v253");
  RingTimes(4);
  ASSERT_TRUE(Wait("Ring 1 1"));
  agent->Answer(1, 5);
  agent->Drop(1, 6);  // as the program turns a caller away
  ASSERT_TRUE(Wait("Idle 1", 5s));
  EXPECT_TRUE(events.Has("Done 5 0") && events.Has("Done 6 0"));
  EXPECT_FALSE(events.Has("Connected 1"));
  EXPECT_FALSE(Modem().OffHook());
  time.RunFor(30s);
  Answered(2);
  GivenSound greeting(Noise(500, 1));
  ASSERT_EQ(audio.StartPlay(greeting), 0);
  time.RunFor(1s);
  agent->Drop(2, 7);
  ASSERT_TRUE(Wait("Idle 2", 3s));
  EXPECT_TRUE(events.Has("Done 7 0"));
  EXPECT_FALSE(events.Has("Disconnected 2"));
  agent->Drop(2, 8);
  EXPECT_TRUE(events.Has("Done 8 0"));
  audio.StopPlay();
  time.RunFor(30s);
  Answered(3);
  bool closed = false;
  agent->Shutdown([&] { closed = true; });
  EXPECT_TRUE(Until([&] { return closed; }, 1500ms));
  EXPECT_TRUE(events.Has("Idle 3"));
  EXPECT_FALSE(Modem().OffHook());
}

TEST_F(ModemLine, WhatIsNoModemIsNotBotheredAllTheTimeAndWhatIsSilentIsForAMinute) {
  link = std::make_unique<EmulatedLink>("v253", ModemFaults{}, time);
  Modem().Wedge();
  ModemLineSettings settings;
  settings.find_ports = [] { return std::vector<std::string>{"/dev/ttyACM0"}; };
  agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{*link, time, time, audio, events});
  EXPECT_FALSE(agent->Start());
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
}

TEST_F(ModemLine, AWedgedModemDoesNotHoldTheProgramsEnd) {
  Ready("v253");
  Answered();
  Modem().Wedge();
  bool closed = false;
  agent->Shutdown([&] { closed = true; });
  EXPECT_TRUE(Until([&] { return closed; }, 1500ms));
  EXPECT_TRUE(events.Has("Idle 1"));
}

}  // namespace
}  // namespace orven::test
