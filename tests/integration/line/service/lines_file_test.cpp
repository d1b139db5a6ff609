// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/lines_ini.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace orven {
namespace {

using Texts = std::vector<std::string>;
using Values = std::map<std::string, std::string>;

LinesFile Parse(const std::string& text) {
  return ParseLines(text, "lines.ini");
}

TEST(LinesFileTest, ReadsEveryKindOfLineInOrder) {
  const LinesFile file = Parse(
      "\xEF\xBB\xBF; my lines\r\n"
      "[ Home ]                         ; the first\r\n"
      "type = sip                       ; sip | modem | sim\r\n"
      "listen = 127.0.0.1:5070\r\n"
      "account=sip:100@example.org:5080\r\n"
      "PASSWORD = a;b#c = \"d\"\t; behind a tab\r\n"
      "transport = TLS\r\n"
      "\r\n"
      "[USB [modem]]\r\n"
      "type = modem\r\n"
      "port = /dev/serial/by-id/x\r\n"
      "[Home]\r\n"
      "type = Sim\r\n"
      "script = a\r\nscript = b");
  ASSERT_EQ(file.sections.size(), 3U) << "two devices of one name are two devices";
  EXPECT_EQ(file.sections[0].name, "Home");
  EXPECT_EQ(file.sections[0].type, "sip");
  EXPECT_EQ(file.sections[0].values, (Values{{"listen", "127.0.0.1:5070"},
                                             {"account", "sip:100@example.org:5080"},
                                             {"password", "a;b#c = \"d\""},
                                             {"transport", "tls"}}));
  EXPECT_EQ(file.sections[1].name, "USB [modem]");
  EXPECT_EQ(file.sections[2].values, (Values{{"script", "b"}}));
  EXPECT_EQ(file.complaints,
            Texts{"lines.ini:15: script is given more than once: expected once; the last one counts"});
}

TEST(LinesFileTest, AWrongKeyIsNamedAndOnlyItIsLeftOut) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"ring_seconds = nan", "ring_seconds is \"nan\": expected a number of seconds from 1 to 60"},
      {"ring_seconds = 61", "ring_seconds is \"61\": expected a number of seconds from 1 to 60"},
      {"transport = sctp", "transport is \"sctp\": expected udp, tcp or tls"},
      {"account = sip:1@x:99999",
       "account is \"sip:1@x:99999\": expected an address like sip:100@example.org"},
      {"password =", "password is wrong: expected a password"},
      {"port = /dev/x",
       "\"port\" is unknown for a sip line: expected listen, account, auth_user, password, "
       "transport, srtp, tls_trust, tls_listen, tls_certificate, ring_seconds or idle_seconds"},
      {"idle_seconds = -1",
       "idle_seconds is \"-1\": expected a whole number of seconds up to 86400, 0 for never"},
      {"srtp = maybe", "srtp is \"maybe\": expected yes or no"},
      {"tls_listen = 5061",
       "tls_listen is \"5061\": expected an IPv4 address and a port, for example 0.0.0.0:5061"},
      {"just text", "expected [section], key = value or ; comment"},
      {"account = a\x1B[0m", "the line holds control characters or is not UTF-8: expected plain UTF-8 text"},
  };
  for (const auto& [line, expected] : cases) {
    const LinesFile file = Parse("[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n" + line + "\nauth_user = me");
    EXPECT_EQ(file.complaints, Texts{"lines.ini:4: " + expected});
    EXPECT_EQ(file.sections.at(0).values, (Values{{"listen", "127.0.0.1:5060"}, {"auth_user", "me"}}));
  }
}

TEST(LinesFileTest, ALineThatCannotWorkIsLeftOutAndTheOthersStay) {
  for (const char* section :
       {"[Bad]\nlisten = 127.0.0.1:1", "[Bad]\ntype = isdn", "[Bad]\ntype = sip", "[Bad]\ntype = modem",
        "[Bad\ntype = sip", "[ ]\ntype = sip", "[Bad]\ntype = sip\nlisten = localhost:5060",
        "[Bad]\ntype = sip\nlisten = 127.0.0.256:5060", "[Bad]\ntype = sip\nlisten = 127.0.0.1:65536"}) {
    const LinesFile file = Parse(std::string("[First]\ntype=sim\n") + section + "\n[Last]\ntype=sim\n");
    ASSERT_EQ(file.complaints.size(), 1U) << section;
    EXPECT_NE(file.complaints[0].find(" is left out: "), std::string::npos) << file.complaints[0];
    ASSERT_EQ(file.sections.size(), 2U) << section;
    EXPECT_EQ(file.sections[0].values, Values{}) << "nothing of the bad section reaches the one before";
    EXPECT_EQ(file.sections[1].name, "Last");
  }
}

TEST(LinesFileTest, WithoutAFileThereIsTheLineForThisMachineWithABadOneNone) {
  const test::ScratchFolder folder;
  const LinesFile none = ReadLines(folder / "lines.ini");
  EXPECT_EQ(none.sections.at(0).values, (Values{{"listen", "127.0.0.1:5060"}}));
  EXPECT_EQ(none.complaints, Texts{});

  test::PutFile(folder / "empty.ini", "; nothing\n");
  std::filesystem::create_symlink("loop.ini", folder / "loop.ini");
  for (const char* name : {"empty.ini", "loop.ini"}) {
    const LinesFile bad = ReadLines(folder / name);
    EXPECT_TRUE(bad.sections.empty());
    ASSERT_EQ(bad.complaints.size(), 1U);
    EXPECT_TRUE(bad.complaints[0].starts_with(name)) << bad.complaints[0];
  }
}

}  // namespace
}  // namespace orven
