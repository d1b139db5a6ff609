// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/installation.h"

#include <gmock/gmock.h>

#include "adapters/desktop/desktop_system.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InstallationTest : public ::testing::Test {
 protected:
  InstallationTest() {
    for (const char* name : {"assets/Greets", "assets/Sound", "assets/Help/pictures", "app/Help"})
      fs::create_directories(root_ / name);
    for (const char* name :
         {"beep.wav", "Greets/Default.wav", "Sound/Ring.wav", "Help/index.htm", "Help/pictures/a.png"})
      PutFile(root_ / "assets/" + name, name);
  }
  SeedReport Seed(bool first_start) const {
    return SeedApplicationFolder(App(), root_ / "assets", first_start);
  }
  SeedReport Refresh() const { return RefreshHelp(App(), root_ / "assets"); }
  std::string App() const { return root_ / "app"; }

  ScratchFolder root_;
};

TEST_F(InstallationTest, IsWhereTheEnvironmentOrTheProgramSaysElseInTheDataFolder) {
  const auto assets = root_ / "assets";
  EXPECT_EQ(FindApplicationFolder({root_ / "home//", assets, "/data", "/user"}), root_ / "home");
  EXPECT_EQ(FindApplicationFolder({"", assets, "/data", "/user"}), assets);
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "/data", "/user"}), "/data/orven");
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "relative", "/user"}), "/user/.local/share/orven");
  fs::create_directory(root_ / "share");
  fs::rename(assets, root_ / "share/orven");
  for (const char* programs : {"bin", "lib/orven"})
    EXPECT_EQ(FindAssets(root_ / programs), root_ / "share/orven");
  EXPECT_EQ(FindAssets(root_ / "lib/orven/deeper"), "");
}

TEST_F(InstallationTest, AnUnfinishedFirstStartIsFinishedByTheNextAndAUsersFilesStay) {
  fs::remove_all(App());
  DesktopSystem system(App());
  EXPECT_TRUE(system.ClaimInstance()) << "a folder that cannot be locked is claimed, and it is said why";
  EXPECT_THAT(system.ClaimProblem(), HasSubstr(App() + "/.lock"));
  EXPECT_EQ(MakeApplicationFolder(App()), "");
  EXPECT_EQ(fs::status(App()).permissions(), fs::perms::owner_all);
  PutFile(App() + "/Greets", "a file where a folder belongs");
  const auto report = Seed(true);
  EXPECT_THAT(report.copied, ElementsAre("beep.wav", "Sound/Ring.wav"));
  EXPECT_THAT(report.problems, ElementsAre(HasSubstr("Greets"), HasSubstr(App() + "/Greets/Default.wav")));
  fs::remove(App() + "/Greets");
  EXPECT_THAT(Seed(true).problems, IsEmpty());
  EXPECT_EQ(ContentOf(App() + "/Greets/Default.wav"), "Greets/Default.wav");
  PutFile(App() + "/beep.wav", "my own beep");
  fs::remove(App() + "/Greets/Default.wav");
  fs::remove_all(App() + "/Sound");
  EXPECT_THAT(Seed(false).copied, ElementsAre("Sound/Ring.wav")) << "a deleted greeting does not come back";
  EXPECT_EQ(ContentOf(App() + "/beep.wav"), "my own beep");
}

TEST_F(InstallationTest, TheHelpIsTheInstallationsHoweverItWasChanged) {
  PutFile(App() + "/Help/index.htm", "old");
  PutFile(App() + "/Help/gone.htm", "of an older version");
  EXPECT_THAT(Refresh().copied, ElementsAre("Help/index.htm", "Help/pictures/a.png"));
  EXPECT_EQ(ContentOf(App() + "/Help/index.htm"), "Help/index.htm");
  EXPECT_FALSE(fs::exists(App() + "/Help/gone.htm"));
  EXPECT_THAT(Refresh().copied, IsEmpty()) << "nothing differs";
  fs::remove_all(App() + "/Help");
  PutFile(App() + "/Help", "a file where a folder belongs");
  EXPECT_THAT(Refresh().problems, ElementsAre(HasSubstr(App() + "/Help")));
  fs::remove_all(root_ / "assets/Help");
  EXPECT_THAT(Refresh().problems, IsEmpty()) << "there is none to copy";
}

TEST_F(InstallationTest, TextsAreSpokenByAnExecutableHelperWithTheDataOfItsEngine) {
  ::setenv("ESPEAK_DATA_PATH", (root_ / "").c_str(), 1);
  fs::create_directory(root_ / "espeak-ng-data");
  PutFile(root_ / "espeak-ng-data/phontab", "x");
  EXPECT_FALSE(SpeechInstalled(root_ / "helper"));
  PutFile(root_ / "helper", "");
  EXPECT_FALSE(SpeechInstalled(root_ / "helper"));
  fs::permissions(root_ / "helper", fs::perms::owner_all);
  EXPECT_TRUE(SpeechInstalled(root_ / "helper"));
  fs::remove(root_ / "espeak-ng-data/phontab");
  EXPECT_FALSE(SpeechInstalled(root_ / "helper"));
  ::unsetenv("ESPEAK_DATA_PATH");
}

}  // namespace
}  // namespace orven::test
