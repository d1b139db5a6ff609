// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/command_line.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>
#include <sys/socket.h>
#include <unistd.h>

#include "actions/actions_engine.h"
#include "adapters/desktop/qt_shell.h"
#include "adapters/line/service/caller_text.h"
#include "base/runtime_error.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

TEST(CommandLine, IsSplitAtBlanksOutsideQuotes) {
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"  play  \"a b\" c\td ", {"play", "a b", "c", "d"}},
      {"x \"\" y", {"x", "", "y"}},
      {"a\"b c\"d 'e f' \\g", {"ab cd", "'e", "f'", "\\g"}},
      {"a \"b c", {"a", "b c"}},
      {" \t", {}}};
  for (const auto& [line, parts] : rows) EXPECT_EQ(SplitCommandLine(line), parts) << line;
}

/// Programs that are shell scripts, and whose output is kept; one is the helper "TTS.exe".
class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() {
    shell.SetHelper("TTS.exe", [this] { return HelperStart{folder / "helper", {{"CHANNEL", "a path"}}}; });
  }
  std::string Program(const std::string& name, const std::string& script) {
    PutFile(folder / name,
            "#!/bin/sh\n{ " + script + "; } > \"$0.new\"\ncd \"${0%/*}\"; mv \"$0.new\" out\n");
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    return folder / name;
  }
  std::string OutputOf(const std::string& command) {
    shell.Run(command, 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return folder.Count("out") == 1; }, 20'000)) << command;
    const auto output = ContentOf(folder / "out");
    std::filesystem::remove(folder / "out");
    return output;
  }

  ScratchFolder folder;
  QtShell shell{QIcon()};
};

TEST_F(CommandLineTest, NoCallersNameBreaksOutOfItsQuotesAndNoSocketIsInherited) {
  const int line = ::socket(AF_INET, SOCK_DGRAM, 0);  // as libraries open them
  const auto program = Program("tell", "printf '%s\\n' \"$@\"; ls -l /proc/$$/fd | grep -c socket:");
  for (const char* name : {"Anna Garden", "", "$(touch evil)", "`touch evil`", "; touch evil",
                           "a & touch evil", "| touch evil", "x\" \"--evil", "x\"\"\" y", "'; touch evil; '",
                           "\\", "--help", "a\nb", "> evil", "*", "%s%n", "Zoë 😀", "<NUMBER>"}) {
    const auto clean = CleanCallerText(name);
    auto command = "\"" + program + "\" \"<NAME>\" last";
    EXPECT_EQ(OutputOf(SubstituteParameters(command, {clean, "555", "", "", ""})), clean + "\nlast\n0\n");
    EXPECT_EQ(folder.Count("evil"), 0U) << name;
  }
  ::close(line);
}

TEST_F(CommandLineTest, WhatCannotBeStartedIsNamed) {
  PutFile(folder / "text", "no program");
  const std::tuple<std::string, int, std::string> rows[] = {{"", 5, ""},
                                                            {" ", 5, ""},
                                                            {"\"\"", 5, ""},
                                                            {"/nowhere/program x", 53, "/nowhere/program"},
                                                            {"nothing-in-path", 53, "nothing"},
                                                            {folder / "text", 70, folder / "text"},
                                                            {folder / "", 70, folder / ""},
                                                            {folder / "TTS.exe", 53, folder / "helper"}};
  for (const auto& [command, number, named] : rows) {
    try {
      shell.Run(command, 2);
      ADD_FAILURE() << command;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), number) << command;
      EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
    }
  }
}

TEST_F(CommandLineTest, AHelperIsStartedInPlaceOfItsOtherName) {
  for (const auto& [file, output] : {std::pair{"helper", "-gc a path"}, {"TTS.exe", "-gc "}}) {
    Program(file, "printf '%s %s' \"$1\" \"$CHANNEL\"");
    EXPECT_EQ(OutputOf("\"" + (folder / "TTS.exe") + "\" -gc"), output);
  }
  EXPECT_FALSE(qEnvironmentVariableIsSet("CHANNEL"));
}

}  // namespace
}  // namespace orven::test
