// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>
#include <qtestsupport_core.h>
#include <sys/stat.h>

#include "adapters/desktop/installation.h"
#include "adapters/desktop/qt_shell.h"
#include "base/runtime_error.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

void PutProgram(const std::string& path) {
  PutFile(path, "#!/bin/sh\nprintf '%s %s' \"$1\" \"$CHANNEL\" > \"$0.new\"; mv \"$0.new\" \"$0.out\"\n");
  ::chmod(path.c_str(), 0700);
}

std::string OutputOf(const std::string& path) {
  EXPECT_TRUE(QTest::qWaitFor([&] { return !ContentOf(path + ".out").empty(); }, 20'000)) << path;
  return ContentOf(path + ".out");
}

TEST(HelperStart, HelperIsStartedInPlaceOfItsOtherName) {
  ScratchFolder folder;
  QtShell shell{QIcon()};
  shell.SetHelper("TTS.exe", [&] { return HelperStart{folder / "helper", {{"CHANNEL", "a path"}}}; });
  const auto command = "\"" + (folder / "TTS.exe") + "\" -gc";
  try {
    shell.Run(command, 2);
    ADD_FAILURE() << "started what is not there";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.Number(), 53);
    EXPECT_NE(std::string(error.what()).find(folder / "helper"), std::string::npos);
  }
  PutProgram(folder / "helper");
  shell.Run(command, 2);
  EXPECT_EQ(OutputOf(folder / "helper"), "-gc a path");
  EXPECT_FALSE(qEnvironmentVariableIsSet("CHANNEL"));

  PutProgram(folder / "TTS.exe");
  shell.Run(command, 2);
  EXPECT_EQ(OutputOf(folder / "TTS.exe"), "-gc ");
}

TEST(SpeechInstalled, NeedsTheHelperAndTheDataOfItsEngine) {
  ScratchFolder folder;
  qputenv("ESPEAK_DATA_PATH", (folder / "").c_str());
  std::filesystem::create_directory(folder / "espeak-ng-data");
  PutFile(folder / "espeak-ng-data/phontab", "x");
  EXPECT_FALSE(SpeechInstalled(folder / "helper"));
  PutFile(folder / "helper", "no program yet");
  EXPECT_FALSE(SpeechInstalled(folder / "helper"));
  PutProgram(folder / "helper");
  EXPECT_TRUE(SpeechInstalled(folder / "helper"));
  std::filesystem::remove(folder / "espeak-ng-data/phontab");
  EXPECT_FALSE(SpeechInstalled(folder / "helper"));
  qunsetenv("ESPEAK_DATA_PATH");
}

}  // namespace
}  // namespace orven::test
