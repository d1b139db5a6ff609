// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/lines_file.h"

#include <gtest/gtest.h>

#include <random>

#include "support/scratch_folder.h"

namespace orven {
namespace {

using Texts = std::vector<std::string>;
using Values = std::map<std::string, std::string>;

LinesFile Parse(const std::string& text) {
  return ParseLines(text, "lines.ini");
}

/// What is wrong with a SIP line that has `line` as its fourth line.
Texts ComplaintsAbout(const std::string& line) {
  const LinesFile file = Parse("[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n" + line + "\nauth_user = me\n");
  EXPECT_EQ(file.sections.size(), 1U) << line;
  EXPECT_EQ(file.sections.at(0).values.at("auth_user"), "me") << line;
  return file.complaints;
}

TEST(LinesFileTest, ReadsEveryKindOfLineInOrder) {
  const LinesFile file = Parse(
      "\xEF\xBB\xBF; my lines\r\n"
      "# another comment\r\n"
      "[ Home ]                         ; the first\r\n"
      "type = sip                       ; sip | modem | sim\r\n"
      "listen = 127.0.0.1:5070\r\n"
      "account=sip:100@example.org:5080\r\n"
      "auth_user = 100\r\n"
      "PASSWORD = a;b#c = \"d\"\t; behind a tab\r\n"
      "transport = TLS\r\n"
      "ring_seconds = 2.5\r\n"
      "\r\n"
      "[USB [modem]]\r\n"
      "type = modem\r\n"
      "port = /dev/serial/by-id/x\r\n"
      "[\xC3\x9C"
      "bung]\r\n"
      "type = Sim\r\n"
      "[\xC3\x9C"
      "bung]\r\n"
      "type = sim\r\n"
      "script = calls.txt");
  EXPECT_EQ(file.complaints, Texts{});
  ASSERT_EQ(file.sections.size(), 4U);
  EXPECT_EQ(file.sections[0].name, "Home");
  EXPECT_EQ(file.sections[0].line_number, 3);
  EXPECT_EQ(file.sections[0].type, "sip");
  EXPECT_EQ(file.sections[0].values, (Values{{"listen", "127.0.0.1:5070"},
                                             {"account", "sip:100@example.org:5080"},
                                             {"auth_user", "100"},
                                             {"password", "a;b#c = \"d\""},
                                             {"transport", "tls"},
                                             {"ring_seconds", "2.5"}}));
  EXPECT_EQ(file.sections[1].name, "USB [modem]");
  EXPECT_EQ(file.sections[1].values, (Values{{"port", "/dev/serial/by-id/x"}}));
  EXPECT_EQ(file.sections[2].type, "sim");
  EXPECT_EQ(file.sections[2].name, file.sections[3].name) << "two devices of one name are two devices";
  EXPECT_EQ(file.sections[3].values, (Values{{"script", "calls.txt"}}));
}

TEST(LinesFileTest, AWrongKeyIsNamedAndOnlyItIsLeftOut) {
  const std::string seconds = ": expected a number of seconds from 1 to 60";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"ring_seconds = abc", "ring_seconds is \"abc\"" + seconds},
      {"ring_seconds = 0.9", "ring_seconds is \"0.9\"" + seconds},
      {"ring_seconds = 61", "ring_seconds is \"61\"" + seconds},
      {"ring_seconds = nan", "ring_seconds is \"nan\"" + seconds},
      {"ring_seconds = 6 s", "ring_seconds is \"6 s\"" + seconds},
      {"ring_seconds =", "ring_seconds is \"\"" + seconds},
      {"transport = sctp", "transport is \"sctp\": expected udp, tcp or tls"},
      {"account = 100@example.org",
       "account is \"100@example.org\": expected an address like sip:100@example.org"},
      {"account = sip:@x", "account is \"sip:@x\": expected an address like sip:100@example.org"},
      {"account = sip:1@x:99999",
       "account is \"sip:1@x:99999\": expected an address like sip:100@example.org"},
      {"password =", "password is wrong: expected a password"},
      {"port = /dev/x",
       "\"port\" is unknown for a sip line: expected listen, account, auth_user, password, "
       "transport or ring_seconds"},
      {"just text", "expected [section], key = value or ; comment"},
      {"= value", "expected [section], key = value or ; comment"},
      {"account = \xFF", "the line holds control characters or is not UTF-8: expected plain UTF-8 text"},
      {"account = a\x1B[0m", "the line holds control characters or is not UTF-8: expected plain UTF-8 text"},
  };
  for (const auto& [line, expected] : cases) {
    EXPECT_EQ(ComplaintsAbout(line), Texts{"lines.ini:4: " + expected});
  }
}

TEST(LinesFileTest, ALineThatCannotWorkIsLeftOutAndTheOthersStay) {
  const std::string left_out = "the line \"Bad\" is left out: ";
  const std::string listen = ": expected an IPv4 address and a port, for example 127.0.0.1:5060";
  const std::vector<std::pair<std::string, std::string>> cases{
      {"[Bad]\nlisten = 127.0.0.1:1", "3: " + left_out + "type is missing: expected sip, modem or sim"},
      {"[Bad]\ntype = isdn", "4: " + left_out + "type is \"isdn\": expected sip, modem or sim"},
      {"[Bad]\ntype = sip", "3: " + left_out + "listen is missing" + listen},
      {"[Bad]\ntype = modem", "3: " + left_out +
                                  "port is missing: expected the serial device of the modem, "
                                  "for example /dev/ttyACM0"},
      {"[Bad\ntype = sip", "3: the section is left out: expected its name in brackets, like [Home]"},
      {"[ ]\ntype = sip", "3: the section is left out: expected its name in brackets, like [Home]"},
  };
  for (const auto& [section, expected] : cases) {
    const LinesFile file = Parse("[First]\ntype=sim\n" + section + "\n[Last]\ntype=sim\n");
    EXPECT_EQ(file.complaints, Texts{"lines.ini:" + expected});
    ASSERT_EQ(file.sections.size(), 2U) << section;
    EXPECT_EQ(file.sections[0].values, Values{}) << "nothing of the bad section reaches the one before";
    EXPECT_EQ(file.sections[1].name, "Last");
  }
  for (const char* address : {"127.0.0.1", "127.0.0.1:0", "127.0.0.1:65536", "127.0.0.1:", "localhost:5060",
                              "127.0.1:5060", "127.0.0.256:5060", "127.0.0.01:5060", "1.2.3.4.5:5060",
                              "127.0.0.1:+5060", "[::1]:5060", ":5060", "127.0.0.:5060"}) {
    const LinesFile file = Parse(std::string("[Bad]\ntype = sip\nlisten = ") + address);
    EXPECT_TRUE(file.sections.empty()) << address;
    std::string expected = left_out;
    expected.append("listen is \"").append(address).append("\"").append(listen);
    EXPECT_EQ(file.complaints, Texts{"lines.ini:3: " + expected});
  }
}

TEST(LinesFileTest, OfAKeyGivenTwiceTheLastCounts) {
  const LinesFile file = Parse("[Home]\ntype=sim\nscript=a\nscript=b\ntype=sim\n");
  ASSERT_EQ(file.sections.size(), 1U);
  EXPECT_EQ(file.sections[0].values, (Values{{"script", "b"}}));
  EXPECT_EQ(file.complaints,
            (Texts{"lines.ini:5: type is given more than once: expected once; the last one counts",
                   "lines.ini:4: script is given more than once: expected once; the last one counts"}));
}

TEST(LinesFileTest, WithoutAnyLineThereIsAComplaint) {
  for (const char* text : {"", "; nothing\n\n", "\xEF\xBB\xBF"}) {
    const LinesFile file = Parse(text);
    EXPECT_TRUE(file.sections.empty());
    EXPECT_EQ(file.complaints, Texts{"lines.ini:1: there is no line here: expected a section like [Home]"});
  }
  EXPECT_EQ(Parse("type = sip\n[Home]\ntype=sim").complaints,
            Texts{"lines.ini:1: \"type\" comes before any section: expected a section like [Home] first"});
}

TEST(LinesFileTest, ReadsTheFileOrHasTheLineForThisMachine) {
  const test::ScratchFolder folder;
  const LinesFile none = ReadLines(folder / "lines.ini");
  ASSERT_EQ(none.sections.size(), 1U);
  EXPECT_EQ(none.sections[0].name, "SIP 127.0.0.1:5060");
  EXPECT_EQ(none.sections[0].type, "sip");
  EXPECT_EQ(none.sections[0].values, (Values{{"listen", "127.0.0.1:5060"}}));
  EXPECT_EQ(none.complaints, Texts{});

  test::PutFile(folder / "lines.ini", "[Home]\ntype = sim\nwrong = 1\n");
  const LinesFile file = ReadLines(folder / "lines.ini");
  EXPECT_EQ(file.sections.size(), 1U);
  EXPECT_EQ(file.complaints, Texts{"lines.ini:3: \"wrong\" is unknown for a sim line: expected script"});

  std::filesystem::create_directory(folder / "folder.ini");
  std::filesystem::create_symlink("loop.ini", folder / "loop.ini");
  for (const char* name : {"folder.ini", "loop.ini"}) {
    const LinesFile unreadable = ReadLines(folder / name);
    EXPECT_TRUE(unreadable.sections.empty());
    ASSERT_EQ(unreadable.complaints.size(), 1U);
    EXPECT_TRUE(unreadable.complaints[0].starts_with(name + std::string(": cannot be read")))
        << unreadable.complaints[0];
  }
}

TEST(LinesFileTest, NoContentBreaksTheReader) {
  const Texts pieces{"[",       "]",       "=",           ";",
                     "#",       "\n",      "\r\n",        " ",
                     "type",    "sip",     "listen",      "127.0.0.1:5060",
                     "sim",     "script",  "\xFF",        std::string(1, '\0'),
                     "account", "sip:a@b", "\xEF\xBB\xBF"};
  std::mt19937 random(3);
  for (int round = 0; round < 3000; ++round) {
    std::string text;
    for (auto count = random() % 60; count > 0; --count) text += pieces[random() % pieces.size()];
    const LinesFile file = Parse(text);
    EXPECT_TRUE(!file.sections.empty() || !file.complaints.empty()) << text;
    for (const LineSection& section : file.sections) {
      EXPECT_TRUE(section.type == "sim" || section.values.contains("listen")) << text;
    }
  }
}

}  // namespace
}  // namespace orven
