// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/lines_ini.h"

#include <gmock/gmock.h>

#include <sstream>

#include "adapters/line/config/line_settings.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::literals;

using Values = std::map<std::string, std::string>;

TEST(LinesIni, EveryKindOfLineIsReadAndOnlyTheUsersChangesAreWritten) {
  const std::string text =
      "\xEF\xBB\xBF[ Home ] ; the house\r\ntype = SIP ; sip | modem | sim\r\n"
      "listen=127.0.0.1:5070\r\nPassword = a;b#c = \"d\"\t; from the letter\r\ntransport = TLS\r\n"
      "account = sip:100@example.org:5080\r\nring_seconds = 2.6\r\n\r\n; the boat\r\n[USB [modem]]\r\n"
      "type = modem\r\nport = auto\r\n\r\n[Home]\r\ntype = sim\r\nscript = a\r\nscript = b\r\nidle_seconds = "
      "0\r\n";
  const auto file = ParseLines(text, "lines.ini");
  EXPECT_THAT(file.complaints,
              ElementsAre(StartsWith("lines.ini:17: script is given more than once: expected ")));
  ASSERT_EQ(file.sections.size(), 3U) << "two sections with the same name are two devices";
  EXPECT_EQ(IdleLimitOf(file.sections[0]), 120s);
  EXPECT_EQ(IdleLimitOf(file.sections[2]), 0s);
  auto home = LineOf(file.sections[0]);
  EXPECT_EQ(home.name + ", " + home.user + ", " + home.server + ", " + home.listen + ", " + home.password,
            "Home, 100, example.org:5080, 127.0.0.1:5070, a;b#c = \"d\"");
  EXPECT_EQ(home.transport + std::to_string(home.ring_seconds), "tls3");
  home.name = "House";
  home.password = "new#;1";
  home.auth_user = "anna";
  home.user = home.server = "";
  const auto fresh = LineOf({"Office", 0, "sip", {{"account", "sip:7@pbx:5061"}, {"transport", "tls"}}});
  const auto sim = EditOf(LineOf(file.sections[2]), &file.sections[2]);
  const auto edited =
      EditLines(text, file.sections, {EditOf(home, &file.sections[0]), sim, EditOf(fresh, nullptr)});
  EXPECT_EQ(
      edited,
      "\xEF\xBB\xBF[House] ; the house\r\ntype = SIP ; sip | modem | sim\r\n"
      "listen=127.0.0.1:5070\r\nPassword = new#;1\t; from the letter\r\ntransport = TLS\r\n"
      "ring_seconds = 2.6\r\nauth_user = anna\r\n\r\n; the boat\r\n[Home]\r\ntype = sim\r\nscript = a\r\n"
      "script = b\r\nidle_seconds = 0\r\n\r\n[Office]\r\ntype = sip\r\naccount = sip:7@pbx:5061\r\n"
      "listen = 0.0.0.0:5060\r\ntransport = tls\r\n");
}

/// Parses text between two valid sections and checks that these stay unchanged.
LinesFile ParseBetween(const std::string& text) {
  auto file = ParseLines("[First]\ntype=sim\n" + text + "\n[Last]\ntype=sim\n", "lines.ini");
  EXPECT_GE(file.sections.size(), 2U) << text;
  EXPECT_EQ(file.sections.front().values, Values{}) << text;
  EXPECT_EQ(file.sections.back().name, "Last") << text;
  return file;
}

TEST(LinesIni, OnlyAWrongValueIsLeftOutAndItIsReported) {
  // The values of a key, each followed by a comma; those that are accepted begin with "+".
  const std::pair<std::string, const char*> keys[] = {
      {"tls_listen",
       "5061,1.2.3:1,1.2.3.4.5:1,1.2.3.256:1,01.2.3.4:1,1.2.3.4:0,1:65536,a_b:1,::1:1,[::1]1,[x]:1,[::1%]:1,"
       "+0.0.0.0:65535,+:1,+*:1,+[::]:1,+[fe80::1%eth0]:1,+pc-1.x:1,"},
      {"account9",
       "100@x,sip:1,sip:@x,sip:a b@x,sip:1@,sip:1@a_b,sip:1@x:0,+sip:1@X-1.org:65535,+sip:1@[::1],"},
      {"auth_user", ",+me,"},
      {"password", ",+#;=,"},
      {"transport", "sctp,+udp,+auto,"},
      {"proxy", "[::1]x,::1,a b,+[::1]:5060,+proxy.x,"},
      {"srtp", "maybe,+yes,+no,"},
      {"codecs", "g729,+pcmu,+G722,"},
      {"ring_seconds", "nan,0.9,61,5s,+1,+60,"},
      {"idle_seconds", "-1,86401,1.5,+86400,"}};
  for (const auto& [key, all] : keys) {
    std::istringstream values(all);
    for (std::string value; std::getline(values, value, ',');) {
      const bool accepted = value.starts_with('+');
      value.erase(0, accepted ? 1 : 0);
      const auto file = ParseBetween("[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n" + key + " = " + value);
      Values expected{{"listen", "127.0.0.1:5060"}};
      if (accepted) expected[key] = value;
      EXPECT_EQ(file.sections.at(1).values, expected) << key;
      const auto shown = key == "password" ? "wrong" : '"' + value + '"';
      EXPECT_EQ(file.complaints.size(), accepted ? 0U : 1U) << key << " = " << value;
      EXPECT_THAT(file.complaints, Each(HasSubstr(key + " is " + shown + ": expected ")));
    }
  }
}

TEST(LinesIni, ALineThatCannotWorkIsLeftOutAndInvalidEntriesAreReported) {
  const std::pair<const char*, const char*> rows[] = {
      {"[Bad]\nlisten = 1.1.1.1:1", "3: the line \"Bad\" is left out because type is missing: expected "},
      {"[Bad]\ntype = isdn", "4: the line \"Bad\" is left out because type is \"isdn\": expected sip"},
      {"[Bad]\ntype = modem", "3: the line \"Bad\" is left out because port is missing: expected"},
      {"[Bad]\ntype = sip\nlisten = x_:1", "5: the line \"Bad\" is left out because listen is \"x_:1\""},
      {"[Bad\ntype = sip", "3: the section is left out: expected its name in brackets, like [Home]"},
      {"[ ]\ntype = sip", "3: the section is left out: expected its name in brackets, like [Home]"},
      {"just text", "3: expected [section], key = value or ; comment"},
      {"= text", "3: expected [section], key = value or ; comment"},
      {"script2 = x", "3: \"script2\" is unknown for a sim line: expected script or idle_seconds"},
      {"port = x", "3: \"port\" is unknown for a sim line: expected script or idle_seconds"},
      {"script = a\x1B[0m", "3: the line holds control characters or is not UTF-8: expected plain UTF-8"},
      {"script = \xFF", "3: the line holds control characters or is not UTF-8: expected plain UTF-8 text"},
      {"type = sim", "3: type is given more than once: expected once; the last one counts"},
  };
  for (const auto& [text, complaint] : rows) {
    const auto file = ParseBetween(text);
    EXPECT_THAT(file.complaints, ElementsAre(StartsWith(std::string("lines.ini:") + complaint)));
    EXPECT_EQ(file.sections.size(), 2U) << text;
  }
  EXPECT_THAT(ParseLines("a = b", "x").complaints.at(0), StartsWith("x:1: \"a\" comes before "));
  EXPECT_THAT(ParseLines("[a]\ntype = sip\nlisten = :1\nproxy2 = x", "x").complaints,
              ElementsAre("x:1: the line \"a\" has proxy2 but no account2: expected both or none"));
}

TEST(LinesIni, ABadFileMeansNoLine) {
  const ScratchFolder folder;
  PutFile(folder / "empty.ini", "; nothing\n");
  std::filesystem::create_symlink("loop.ini", folder / "loop.ini");
  std::filesystem::create_directory(folder / "folder.ini");
  for (const char* name : {"empty.ini", "loop.ini", "folder.ini"}) {
    const auto bad = ReadLines(folder / name);
    EXPECT_TRUE(bad.sections.empty());
    EXPECT_THAT(bad.complaints, ElementsAre(StartsWith(name)));
  }
}

TEST(LineSettings, AnInvalidEntryIsReportedAtItsField) {
  EXPECT_FALSE(FaultOf(LineOf({"Home", 0, "sip", {}}))) << "an account is not needed";
  const auto good = LineOf({"Home", 0, "sip", {{"account", "sip:1@1.1.1.1:5060"}, {"password", "p #x;y=z"}}});
  EXPECT_FALSE(FaultOf(good));
  const std::tuple<const char*, std::string TelephoneLine::*, const char*> rows[] = {
      {"txtName", &TelephoneLine::name, ""},
      {"txtName", &TelephoneLine::name, "a ;b"},
      {"txtListen", &TelephoneLine::listen, "x_:5060"},
      {"txtServer", &TelephoneLine::server, "a b"},
      {"txtServer", &TelephoneLine::server, ""},
      {"txtUser", &TelephoneLine::user, ""},
      {"txtUser", &TelephoneLine::user, "1@2"},
      {"txtPassword", &TelephoneLine::password, " hidden"},
      {"txtAuthUser", &TelephoneLine::auth_user, ";x"},
      {"cmbTransport", &TelephoneLine::srtp, "maybe"}};
  for (const auto& [control, text, value] : rows) {
    auto line = good;
    line.*text = value;
    const auto fault = FaultOf(line).value();
    EXPECT_EQ(fault.control, control) << fault.text.English();
    EXPECT_EQ(fault.text.English().find("hidden"), std::string::npos) << "no message quotes a password";
  }
  auto line = good;
  line.ring_seconds = 61;
  EXPECT_EQ(FaultOf(line).value().control, "spnRing");
  EXPECT_EQ(FaultOf(LineOf({"Home", 0, "modem", {}})).value().control, "cmbPort");
}

}  // namespace
}  // namespace orven::test
