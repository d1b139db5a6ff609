// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/modem_call.h"
#include "adapters/line/modem/modem_preparation.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// "name/number", or "-" when neither was told.
std::string Caller(CallerIdLines& caller) {
  const auto told = caller.Finish();
  EXPECT_FALSE(caller.Any() || caller.Finish());
  return told ? told->name + "/" + told->number : "-";
}

TEST(CallerIdTest, EveryFormIsRead) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"DATE=0102", "TIME=1405", "NMBR=5551234", "NAME=Anna Bell"}, "Anna Bell/5551234"},
      {{"NAME = \"Anna Bell      \"", "nmbr =  5551234 ", "NMBR=O"}, "Anna Bell/5551234"},
      {{"NAME=J\xFCrgen"}, "J\xC3\xBCrgen/"},
      {{"NAME=J\xC3\xBCrgen", "NMBR="}, "J\xC3\xBCrgen/"},
      {{"DATE=0102", "TIME=1405"}, "-"},
      {{"NMBR = P", "NAME = P"}, "/"},
      {{"NMBR=O", "NAME=Anna"}, "Anna/"},
      {{"NAME=ANONYMOUS"}, "/"},
      // Messages: single (date, time and number), multiple (name, too), a number that is withheld.
      {{"MESG=040F303130323134303535353531323334F7"}, "/5551234"},
      {{"MESG = 80 19 01 08 30 31 30 32 31 34 30 35 02 07 35 35 35 31 32 33 34 07 04 41 6E 6E 61 D6"},
       "Anna/5551234"},
      {{"MESG=800304015028"}, "/"},
      // A wrong checksum, cut short, a parameter beyond the end, no digits, nothing.
      {{"MESG=040F303130323134303535353531323334F8"}, "-"},
      {{"MESG=040F303130", "MESG=8002020973", "MESG=80zz", "MESG=8", "MESG="}, "-"},
  };
  for (const auto& [lines, told] : rows) {
    CallerIdLines caller;
    for (const auto& line : lines) EXPECT_TRUE(caller.Take(line) && caller.Any()) << line;
    EXPECT_EQ(Caller(caller), told) << lines[0];
  }
  CallerIdLines packet;
  packet.TakePacket("DATE=0102\r\nTIME=1405\rNMBR=5551234\n\r\nNAME=Anna Bell");
  EXPECT_EQ(Caller(packet), "Anna Bell/5551234");
  for (const char* line : {"OK", "RING", "=", "NMBR", "DRON=20", "+VCID=1"})
    EXPECT_FALSE(packet.Take(line)) << line;
}

TEST(RingPatternTest, CountsRingsAndKnowsWhenTheCallerHasGivenUp) {
  RingPattern rings;
  const std::tuple<int, std::optional<int>, int> rows[] = {// ms, the ring's number, patience in ms
                                                           {50, 1, 8000},
                                                           {700, std::nullopt, 8000},
                                                           {3050, 2, 8000},
                                                           {9050, 3, 9000}};
  for (const auto& [at, count, patience] : rows) {
    EXPECT_EQ(rings.Ring(milliseconds(at)), count) << at;
    EXPECT_EQ(rings.Patience(), milliseconds(patience)) << at;
  }
  // A modem that reports all the time still rings more than once.
  int count = 3;
  for (int at = 12'100; at < 23'700; at += 400) count = rings.Ring(milliseconds(at)).value_or(count);
  EXPECT_EQ(count, 6);
}

TEST(KeyPressesTest, OnePressIsOneHoweverItIsReported) {
  const std::tuple<std::string, int, std::string> rows[] = {
      // events, ms between them, presses
      {"/5~", 70, "5"},       {"/55555555555~", 70, "5"},
      {"555", 30, "5"},       {"5555555", 70, "5"},
      {"/5~5", 70, "5"},      {"/5~/5~", 30, "55"},
      {"5  5  5", 70, "555"}, {"1*#AD9", 10, "1*#AD9"},
      {"RsbEa/~", 70, ""},    {"/5555 1111               1111", 70, "511"},
      {"/5/5/6", 70, "556"}};
  for (const auto& [events, pace, presses] : rows) {
    KeyPresses keys;
    std::string pressed;
    milliseconds now(0);
    for (const char event : events) {
      now += milliseconds(pace);
      if (const auto key = keys.Event(event, now)) pressed += *key;
    }
    EXPECT_EQ(pressed, presses) << events;
  }
}

TEST(FirmwareTest, TheFaultyOneIsKnown) {
  EXPECT_NE(FirmwareAdvice("56000, 56K FAX USB V1.2.18, 5637").find("firmware misses rings"),
            std::string::npos);
  for (const char* fine : {"5637 V1.2.23", "5637 V2.0.1", "HSF 1.2.18", "5637"})
    EXPECT_EQ(FirmwareAdvice(fine), "");
}

}  // namespace
}  // namespace orven
