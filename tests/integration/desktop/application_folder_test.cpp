// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/installation.h"

#include <gtest/gtest.h>

#include "support/scratch_folder.h"

namespace orven {
namespace {

using test::ContentOf;
using test::PutFile;

class ApplicationFolderTest : public ::testing::Test {
 protected:
  ApplicationFolderTest() {
    for (const char* name : {"assets/Greets", "assets/Sound", "app"}) {
      std::filesystem::create_directories(root_ / name);
    }
    PutFile(root_ / "assets/beep.wav", "beep");
    PutFile(root_ / "assets/Greets/Default.wav", "hello");
    PutFile(root_ / "assets/Sound/Ring.wav", "ring");
  }
  SeedReport Seed(bool first_start) const {
    return SeedApplicationFolder(root_ / "app", root_ / "assets", first_start);
  }

  test::ScratchFolder root_;
};

TEST_F(ApplicationFolderTest, IsTheFirstOfOrvenHomeTheProgramsFolderAndTheDataFolder) {
  EXPECT_EQ(FindApplicationFolder({root_ / "home//", root_ / "assets", "/data", "/user"}), root_ / "home");
  EXPECT_EQ(FindApplicationFolder({"", root_ / "assets", "/data", "/user"}), root_ / "assets");
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "/data", "/user"}), "/data/orven");
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "relative", "/user"}), "/user/.local/share/orven");
}

TEST_F(ApplicationFolderTest, TheAssetsAreFoundFromABuildFolderAndFromAnInstallation) {
  std::filesystem::create_directory(root_ / "share");
  std::filesystem::rename(root_ / "assets", root_ / "share/orven");
  EXPECT_EQ(FindAssets(root_ / "bin"), root_ / "share/orven");
  EXPECT_EQ(FindAssets(root_ / "lib/orven"), root_ / "share/orven");
  EXPECT_EQ(FindAssets(root_ / "lib/orven/deeper"), "");
}

TEST_F(ApplicationFolderTest, IsItsUsersAloneAndAnUnfinishedFirstStartIsFinishedByTheNext) {
  std::filesystem::remove(root_ / "app");
  EXPECT_EQ(MakeApplicationFolder(root_ / "app"), "");
  EXPECT_EQ(std::filesystem::status(root_ / "app").permissions(), std::filesystem::perms::owner_all);
  PutFile(root_ / "app/Greets", "a file where a folder belongs");
  const SeedReport report = Seed(true);
  EXPECT_EQ(report.copied, (std::vector<std::string>{"beep.wav", "Sound/Ring.wav"}));
  ASSERT_EQ(report.problems.size(), 2U);
  EXPECT_NE(report.problems[1].find(root_ / "app/Greets/Default.wav"), std::string::npos);
  std::filesystem::remove(root_ / "app/Greets");
  EXPECT_TRUE(Seed(true).problems.empty());
  EXPECT_EQ(ContentOf(root_ / "app/Greets/Default.wav"), "hello");
}

TEST_F(ApplicationFolderTest, KeepsWhatTheUserHasAndDoesNotBringBackWhatHeDeleted) {
  PutFile(root_ / "app/beep.wav", "my own beep");
  std::filesystem::create_directory(root_ / "app/Greets");
  EXPECT_EQ(Seed(false).copied, std::vector<std::string>{"Sound/Ring.wav"});
  EXPECT_EQ(ContentOf(root_ / "app/beep.wav"), "my own beep");
}

TEST_F(ApplicationFolderTest, TheHelpIsThatOfTheInstallationHoweverItWasChanged) {
  EXPECT_TRUE(RefreshHelp(root_ / "app", root_ / "assets").problems.empty()) << "there is none to copy";
  for (const char* name : {"assets/Help/pictures", "app/Help"})
    std::filesystem::create_directories(root_ / name);
  PutFile(root_ / "assets/Help/index.htm", "new");
  PutFile(root_ / "assets/Help/pictures/a.png", "picture");
  PutFile(root_ / "app/Help/index.htm", "old");
  PutFile(root_ / "app/Help/gone.htm", "of an older version");
  EXPECT_EQ(RefreshHelp(root_ / "app", root_ / "assets").copied,
            (std::vector<std::string>{"Help/index.htm", "Help/pictures/a.png"}));
  EXPECT_EQ(ContentOf(root_ / "app/Help/index.htm"), "new");
  EXPECT_FALSE(std::filesystem::exists(root_ / "app/Help/gone.htm"));
  EXPECT_TRUE(RefreshHelp(root_ / "app", root_ / "assets").copied.empty()) << "nothing differs";
  std::filesystem::remove_all(root_ / "app/Help");
  PutFile(root_ / "app/Help", "a file where a folder belongs");
  const auto report = RefreshHelp(root_ / "app", root_ / "assets");
  ASSERT_EQ(report.problems.size(), 1U);
  EXPECT_NE(report.problems[0].find(root_ / "app/Help"), std::string::npos);
}

}  // namespace
}  // namespace orven
