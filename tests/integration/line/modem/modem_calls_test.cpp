// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include "adapters/line/modem/caller_id.h"
#include "adapters/line/modem/modem_call.h"

namespace orven {

void PrintTo(const ModemCaller& caller, std::ostream* out) {
  *out << caller.name << '/' << caller.number;
}

namespace {

using std::chrono::milliseconds;

std::optional<ModemCaller> Caller(const std::vector<std::string>& lines) {
  CallerIdLines caller;
  for (const auto& line : lines) EXPECT_TRUE(caller.Take(line)) << line;
  EXPECT_EQ(caller.Any(), !lines.empty());
  auto told = caller.Finish();
  EXPECT_FALSE(caller.Any());
  EXPECT_EQ(caller.Finish(), std::nullopt);
  return told;
}

TEST(CallerIdLinesTest, TakesThemInAnyFormAndOrder) {
  const ModemCaller anna{"Anna Bell", "5551234"};
  EXPECT_EQ(Caller({"DATE=0102", "TIME=1405", "NMBR=5551234", "NAME=Anna Bell"}), anna);
  EXPECT_EQ(Caller({"NAME = \"Anna Bell      \"", "nmbr =  5551234 "}), anna);
  CallerIdLines packet;
  packet.TakePacket("DATE=0102\r\nTIME=1405\rNMBR=5551234\n\r\nNAME=Anna Bell");
  EXPECT_EQ(packet.Finish(), anna);
  EXPECT_EQ(Caller({"NAME=J\xFCrgen"}), (ModemCaller{"J\xC3\xBCrgen", ""}));
  EXPECT_EQ(Caller({"NAME=J\xC3\xBCrgen", "NMBR="}), (ModemCaller{"J\xC3\xBCrgen", ""}));
  EXPECT_EQ(Caller({"DATE=0102", "TIME=1405"}), std::nullopt);
  CallerIdLines none;
  for (const char* line : {"OK", "RING", "=", "NMBR", "DRON=20", "+VCID=1"})
    EXPECT_FALSE(none.Take(line)) << line;
}

TEST(CallerIdLinesTest, WhoHidesIsNotNamed) {
  EXPECT_EQ(Caller({"NMBR = P", "NAME = P"}), ModemCaller());
  EXPECT_EQ(Caller({"NMBR=O", "NAME=Anna"}), (ModemCaller{"Anna", ""}));
  EXPECT_EQ(Caller({"NAME=ANONYMOUS"}), ModemCaller());
}

TEST(CallerIdLinesTest, ReadsWholeMessages) {
  // Single: 01021405 and 5551234.
  EXPECT_EQ(Caller({"MESG=040F303130323134303535353531323334F7"}), (ModemCaller{"", "5551234"}));
  // Multiple: date and time, number, name; and a number that is withheld.
  EXPECT_EQ(
      Caller({"MESG = 80 19 01 08 30 31 30 32 31 34 30 35 02 07 35 35 35 31 32 33 34 07 04 41 6E 6E 61 D6"}),
      (ModemCaller{"Anna", "5551234"}));
  EXPECT_EQ(Caller({"MESG=800304015028"}), ModemCaller());
  // A wrong checksum, cut short, a parameter beyond the end, no digits, nothing.
  for (const char* message :
       {"040F303130323134303535353531323334F8", "040F303130", "8002020973", "80zz", "8", ""}) {
    EXPECT_EQ(Caller({std::string("MESG=") + message}).value_or(ModemCaller()), ModemCaller()) << message;
  }
}

TEST(RingPatternTest, CountsRingsAndKnowsWhenTheCallerHasGivenUp) {
  RingPattern rings;
  EXPECT_FALSE(rings.Ringing());
  EXPECT_EQ(rings.Ring(milliseconds(50)), 1);
  EXPECT_EQ(rings.Patience(), milliseconds(8000));
  EXPECT_EQ(rings.Ring(milliseconds(700)), std::nullopt);  // the second half of a double ring
  EXPECT_EQ(rings.Ring(milliseconds(3050)), 2);
  EXPECT_EQ(rings.Patience(), milliseconds(8000));
  EXPECT_EQ(rings.Ring(milliseconds(9050)), 3);
  EXPECT_EQ(rings.Patience(), milliseconds(9000));
  rings.Reset();
  EXPECT_EQ(rings.Ring(milliseconds(9100)), 1);
  // A modem that reports all the time still rings more than once.
  int count = 1;
  for (int at = 9500; at < 21100; at += 400) count = rings.Ring(milliseconds(at)).value_or(count);
  EXPECT_EQ(count, 3);
}

/// The presses that come of `signs`, one each `pace`.
std::string Presses(const std::string& signs, milliseconds pace) {
  KeyPresses keys;
  std::string presses;
  milliseconds now(0);
  for (const char sign : signs) {
    now += pace;
    if (sign == ' ') continue;
    if (const auto key = keys.Event(sign, now)) presses += *key;
  }
  return presses;
}

TEST(KeyPressesTest, OnePressIsOneHoweverItIsReported) {
  const milliseconds repeated(70);
  EXPECT_EQ(Presses("/5~", repeated), "5");
  EXPECT_EQ(Presses("/55555555555~", repeated), "5");
  EXPECT_EQ(Presses("555", milliseconds(30)), "5");
  EXPECT_EQ(Presses("5555555", repeated), "5");
  EXPECT_EQ(Presses("/5~5", repeated), "5");
  EXPECT_EQ(Presses("/5~/5~", milliseconds(30)), "55");
  EXPECT_EQ(Presses("5  5  5", repeated), "555");
  EXPECT_EQ(Presses("1*#AD9", milliseconds(10)), "1*#AD9");
  EXPECT_EQ(Presses("RsbEa/~", repeated), "");
}

TEST(KeyPressesTest, ABracketThatIsNeverClosedSwallowsNothing) {
  EXPECT_EQ(Presses("/5555 1111               1111", milliseconds(70)), "511");
  EXPECT_EQ(Presses("/5/5/6", milliseconds(70)), "556");
}

}  // namespace
}  // namespace orven
