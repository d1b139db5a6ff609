// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/command_line.h"

#include <gtest/gtest.h>
#include <qtestsupport_core.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "actions/actions_engine.h"
#include "adapters/line/service/caller_text.h"
#include "base/runtime_error.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using Parts = std::vector<std::string>;

TEST(CommandLine, IsSplitAtBlanksOutsideQuotes) {
  EXPECT_EQ(SplitCommandLine("  play  \"a b\" c\td "), (Parts{"play", "a b", "c", "d"}));
  EXPECT_EQ(SplitCommandLine("x \"\" y"), (Parts{"x", "", "y"}));
  EXPECT_EQ(SplitCommandLine("a\"b c\"d 'e f' \\g"), (Parts{"ab cd", "'e", "f'", "\\g"}));
  EXPECT_EQ(SplitCommandLine("a \"b c"), (Parts{"a", "b c"}));
  EXPECT_TRUE(SplitCommandLine(" \t").empty());
}

/// A program that writes each of its arguments as a line, or the sockets that it inherited.
class Scribe {
 public:
  explicit Scribe(const std::string& what = "for argument; do printf '%s\\n' \"$argument\"; done") {
    PutFile(Path(), "#!/bin/sh\n{ " + what +
                        "; } > \"$0.new\"\n"
                        "mv \"$0.new\" \"$0.out\"\n");
    ::chmod(Path().c_str(), 0700);
  }
  std::string Path() const { return folder_ / "scribe"; }
  std::string Wrote() const {
    EXPECT_TRUE(QTest::qWaitFor([&] { return folder_.Count("scribe.out") == 1; }, 20'000));
    return ContentOf(Path() + ".out");
  }
  ScratchFolder& Folder() { return folder_; }

 private:
  ScratchFolder folder_;
};

TEST(CommandLine, NoCallersNameBreaksOutOfItsQuotes) {
  for (const char* name : {"Anna Garden", "", "$(touch evil)", "`touch evil`", "; touch evil",
                           "a & touch evil", "| touch evil", "x\" \"--evil", "x\"\"\" y", "'; touch evil; '",
                           "\\", "--help", "a\nb", "> evil", "*", "%s%n", "Zoë 😀", "<NUMBER>"}) {
    Scribe scribe;
    const auto clean = CleanCallerText(name);
    auto command = "\"" + scribe.Path() + "\" \"<NAME>\" last";
    StartCommandLine(SubstituteParameters(command, {clean, "555", "", "", ""}));
    EXPECT_EQ(scribe.Wrote(), clean + "\nlast\n") << name;
    EXPECT_EQ(scribe.Folder().Count("evil"), 0U) << name;
  }
}

TEST(CommandLine, AProgramDoesNotInheritWhatLibrariesHaveOpen) {
  const int line = ::socket(AF_INET, SOCK_DGRAM, 0);
  Scribe scribe("ls -l /proc/$$/fd | grep -c socket:");
  StartCommandLine(scribe.Path());
  EXPECT_EQ(scribe.Wrote(), "0\n");
  ::close(line);
}

TEST(CommandLine, WhatCannotBeStartedIsNamed) {
  ScratchFolder folder;
  PutFile(folder / "text", "no program");
  const std::pair<std::string, std::int32_t> cases[] = {{"", 5},
                                                        {" ", 5},
                                                        {"\"\"", 5},
                                                        {"/nowhere/program x", 53},
                                                        {"no-such-program-anywhere", 53},
                                                        {folder / "text", 70},
                                                        {folder / "", 70}};
  for (const auto& [command, number] : cases) {
    try {
      StartCommandLine(command);
      ADD_FAILURE() << command;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), number) << command;
    }
  }
}

}  // namespace
}  // namespace orven::test
