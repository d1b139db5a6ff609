// SPDX-License-Identifier: GPL-3.0-or-later
// Storing telephone lines in a file that a person has written.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/service/line_service.h"
#include "adapters/line/setup/file_telephone_lines.h"
#include "adapters/line/setup/modem_probe.h"
#include "base/runtime_error.h"
#include "integration/line/setup/waiting_loop.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::chrono_literals;

class LinesStore : public testing::Test {
 protected:
  TelephoneLines::Configured Given(const std::string& text) {
    PutFile(path, text);
    return lines.Read();
  }

  ScratchFolder folder;
  const std::string path = folder / "lines.ini";
  WaitingLoop loop;
  LineStates states;
  LineService service{loop, {}};
  FileTelephoneLines lines{path, loop, service, states};
};

TEST_F(LinesStore, ChangesOnlyWhatChangedAndLeavesCommentsAndTheRest) {
  auto given = Given(
      "\xEF\xBB\xBF; my lines\r\n\r\n[Home] ; the house\r\ntype = SIP\r\nlisten=127.0.0.1:5070\r\n"
      "Password = old    ; from the letter\r\naccount = sip:100@example.org\r\nring_seconds = 2.6\r\n\r\n"
      "; the boat\r\n[Boat]\r\ntype = modem\r\nport = /dev/ttyACM0\r\n\r\n[Sim]\r\ntype = "
      "sim\r\nidle_seconds = 0\r\n");
  ASSERT_THAT(given.lines, SizeIs(3));
  const auto sections = ReadLines(path).sections;
  EXPECT_EQ(IdleLimitOf(sections[0]), 120s);
  EXPECT_EQ(IdleLimitOf(sections[2]), 0s);
  EXPECT_THAT(given.complaints, IsEmpty());
  auto home = given.lines[0];
  EXPECT_EQ(home.user + "@" + home.server, "100@example.org");
  EXPECT_EQ(home.ring_seconds, 3);
  home.name = "House";
  home.password = "new#;1";
  home.auth_user = "anna";
  home.server.clear();
  home.user.clear();
  TelephoneLine fresh;
  fresh.name = "Office";
  fresh.user = "7";
  fresh.server = "pbx:5061";
  fresh.transport = "tls";
  lines.Store({home, given.lines[2], fresh});
  EXPECT_EQ(
      ContentOf(path),
      "\xEF\xBB\xBF; my lines\r\n\r\n[House] ; the house\r\ntype = SIP\r\nlisten=127.0.0.1:5070\r\n"
      "Password = new#;1    ; from the letter\r\nring_seconds = 2.6\r\nauth_user = anna\r\n\r\n"
      "; the boat\r\n[Sim]\r\ntype = sim\r\nidle_seconds = 0\r\n\r\n"
      "[Office]\r\ntype = sip\r\naccount = sip:7@pbx:5061\r\nlisten = 0.0.0.0:5060\r\ntransport = tls\r\n");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  auto again = lines.Read().lines;
  ASSERT_THAT(again, SizeIs(3));
  for (auto* line : {&again[0], &again[2], &home, &fresh}) line->origin = 0;
  EXPECT_EQ(again[0], home);
  EXPECT_EQ(again[2], fresh);
  EXPECT_EQ(folder.Count("lines.ini.damaged"), 0U);
}

TEST_F(LinesStore, WithoutAFileTheLineThatThereIsIsStored) {
  auto given = lines.Read();
  ASSERT_THAT(given.lines, SizeIs(1));
  given.lines[0].name = "Here";
  lines.Store(given.lines);
  EXPECT_EQ(lines.Read().lines.at(0).listen, "127.0.0.1:5060");
  lines.Store({});
  EXPECT_THAT(lines.Read().lines, IsEmpty());
}

TEST_F(LinesStore, WhatIsWrongStaysInTheFileAndWhatIsNoTextIsKeptBesideItsPlace) {
  const std::string text =
      "[Odd]\ntype = telegraph\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\ntransport = bus\n";
  auto given = Given(text);
  ASSERT_THAT(given.lines, SizeIs(1));
  EXPECT_THAT(given.complaints, SizeIs(2));
  given.lines[0].transport = "tcp";
  lines.Store(given.lines);
  EXPECT_EQ(ContentOf(path),
            "[Odd]\ntype = telegraph\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\ntransport = tcp\n");
  EXPECT_EQ(folder.Count("lines.ini.damaged"), 0U) << "nothing was lost";
  given = Given("\xFF\xFE\x01 no text\n[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n");
  lines.Store(given.lines);
  EXPECT_EQ(folder.Count("lines.ini.damaged"), 1U);
  EXPECT_THAT(lines.Read().complaints, IsEmpty());
  EXPECT_EQ(lines.Read().lines.at(0).name, "Home");
}

TEST_F(LinesStore, OthersChangesAndDisksThatRefuseStoreNothing) {
  auto given = Given("[Home]\ntype = sip\nlisten = 127.0.0.1:5060\n");
  PutFile(path, "[Home]\ntype = sim\n");
  EXPECT_THROW(lines.Store(given.lines), RuntimeError);
  EXPECT_EQ(ContentOf(path), "[Home]\ntype = sim\n");
  FileTelephoneLines nowhere(folder / "no/such/folder/lines.ini", loop, service, states);
  EXPECT_THROW(nowhere.Store(nowhere.Read().lines), RuntimeError);
}

TEST_F(LinesStore, BadInputIsNamedAtItsField) {
  TelephoneLine good;
  good.name = "Home";
  EXPECT_FALSE(lines.Check(good));
  good.server = "192.168.1.1:5060";
  good.user = "100";
  good.password = "p #x;y=z";
  EXPECT_FALSE(lines.Check(good));
  const auto fault = [&](auto change) {
    auto line = good;
    change(line);
    const auto found = lines.Check(line);
    if (!found) return -1;
    EXPECT_EQ(found->text.find("hidden"), std::string::npos) << "no text quotes a password";
    return static_cast<int>(found->field);
  };
  const auto at = [](LineField field) { return static_cast<int>(field); };
  EXPECT_EQ(fault([](auto& line) { line.name.clear(); }), at(LineField::Name));
  EXPECT_EQ(fault([](auto& line) { line.name = "a ;b"; }), at(LineField::Name));
  EXPECT_EQ(fault([](auto& line) { line.listen = "localhost:5060"; }), at(LineField::Listen));
  EXPECT_EQ(fault([](auto& line) { line.server = "a b"; }), at(LineField::Server));
  EXPECT_EQ(fault([](auto& line) { line.server.clear(); }), at(LineField::Server));
  EXPECT_EQ(fault([](auto& line) { line.user.clear(); }), at(LineField::User));
  EXPECT_EQ(fault([](auto& line) { line.user = "1@2"; }), at(LineField::User));
  EXPECT_EQ(fault([](auto& line) { line.password = " hidden"; }), at(LineField::Password));
  EXPECT_EQ(fault([](auto& line) { line.password = "hidden ;x"; }), at(LineField::Password));
  EXPECT_EQ(fault([](auto& line) { line.auth_user = ";x"; }), at(LineField::AuthUser));
  EXPECT_EQ(fault([](auto& line) { line.ring_seconds = 61; }), at(LineField::RingSeconds));
  EXPECT_EQ(fault([](auto& line) { line.kind = LineKind::Modem; }), at(LineField::Port));
}

TEST_F(LinesStore, FindsSerialPortsUnderTheNameThatStays) {
  namespace fs = std::filesystem;
  fs::create_directories(folder / "serial/by-id");
  for (const char* name : {"ttyACM0", "ttyUSB1", "tty0"}) PutFile(folder / name, "");
  fs::create_symlink("../../ttyACM0", folder / "serial/by-id/usb-Modem-if00");
  fs::create_symlink("../../ttyACM9", folder / "serial/by-id/usb-Gone-if00");
  std::vector<std::string> found;
  for (const auto& port : FindSerialPorts(folder / "")) found.push_back(fs::path(port.path).filename());
  EXPECT_THAT(found, ElementsAre("usb-Modem-if00", "ttyUSB1"));
}

}  // namespace
}  // namespace orven::test
