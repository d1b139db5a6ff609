// SPDX-License-Identifier: GPL-3.0-or-later
// Where the program finds its files, what it copies to its folder, and its start with the desktop.
#include "adapters/desktop/installation.h"

#include <gmock/gmock.h>

#include "adapters/desktop/autostart.h"
#include "adapters/desktop/desktop_system.h"
#include "support/memory_disk.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kRoot = RegistryRoot::LocalMachine;

/// An installation with its assets, its application folder "app" and its autostart entry.
struct InstallationTest : testing::Test {
  InstallationTest() {
    for (const char* name : {"assets/Greets", "assets/Sound", "assets/Help/pictures", "app/Help", "other"})
      fs::create_directories(root / name);
    for (const char* name :
         {"beep.wav", "Greets/Default.wav", "Sound/Ring.wav", "Help/index.htm", "Help/pictures/a.png"})
      PutFile(root / "assets/" + name, name);
  }
  SeedReport Seed(bool first_start) const {
    return SeedApplicationFolder(app, {assets, language}, first_start);
  }
  SeedReport Refresh() const { return RefreshHelp(app, {assets, language}); }

  AutostartRegistry Installed(const std::string& program, bool by_environment) {
    return {
        stored, {entry, program, app, by_environment}, [this](const std::string& text) { problem += text; }};
  }
  static void Check(Registry& in) {
    SetRegValue(in, kRoot, kAutostartKey, "ORVEN", kRegString, "C:\\ORVEN.exe -st");
  }
  void Clear() { DeleteRegValue(registry, kRoot, kAutostartKey, "ORVEN"); }
  bool IsChecked() { return GetRegValue(registry, kRoot, kAutostartKey, "ORVEN") != kNotFound; }
  /// Edits the entry as a user would and returns the new text.
  std::string Edit(const std::string& from, const std::string& to) const {
    auto text = ContentOf(entry);
    text.replace(text.find(from), from.size(), to);
    PutFile(entry, text);
    return text;
  }

  ScratchFolder root;
  std::string app = root / "app", assets = root / "assets", entry = root / "config/autostart/orven.desktop",
              problem, language = "en";
  MemoryRegistry stored;
  AutostartRegistry registry = Installed("/opt/my programs\\orven", false);
};

TEST_F(InstallationTest, IsFoundByTheEnvironmentThenBesideTheProgramThenInTheDataFolder) {
  EXPECT_EQ(FindApplicationFolder({root / "home//", assets, "/data", "/user"}), root / "home");
  ::setenv("ORVEN_HOME", (root / "home").c_str(), 1);
  EXPECT_EQ(FindApplicationFolder(ProcessFolderHints()), root / "home");
  EXPECT_EQ(FindApplicationFolder({"", assets, "/data", "/user"}), assets);
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "/data", "/user"}), "/data/orven");
  EXPECT_EQ(FindApplicationFolder({"", "/bin", "relative", "/user"}), "/user/.local/share/orven");
  fs::create_directory(root / "share");
  fs::rename(assets, root / "share/orven");
  for (const char* programs : {"bin", "lib/orven"})
    EXPECT_EQ(FindAssets(root / programs), root / "share/orven");
  EXPECT_EQ(FindAssets(root / "lib/orven/deeper"), "");
}

TEST_F(InstallationTest, TheNextStartCompletesAnUnfinishedFirstOneAndKeepsTheUsersFiles) {
  fs::remove_all(app);
  DesktopSystem system(app);
  EXPECT_TRUE(system.ClaimInstance()) << "a folder that cannot be locked is claimed, and the reason is given";
  EXPECT_THAT(system.ClaimProblem(), HasSubstr(app + "/.lock"));
  EXPECT_EQ(MakeApplicationFolder(app), "");
  EXPECT_TRUE(system.ClaimInstance() && system.ClaimInstance() && system.ClaimProblem().empty());
  EXPECT_FALSE(DesktopSystem(app).ClaimInstance()) << "another program uses the folder";
  EXPECT_EQ(fs::status(app).permissions(), fs::perms::owner_all);
  PutFile(app + "/Greets", "a file where a folder belongs");
  const auto report = Seed(true);
  EXPECT_THAT(report.copied, ElementsAre("beep.wav", "Sound/Ring.wav"));
  EXPECT_THAT(report.problems, ElementsAre(HasSubstr("Greets"), HasSubstr(app + "/Greets/Default.wav")));
  fs::remove(app + "/Greets");
  EXPECT_THAT(Seed(true).problems, IsEmpty());
  EXPECT_EQ(ContentOf(app + "/Greets/Default.wav"), "Greets/Default.wav");
  PutFile(app + "/beep.wav", "my own beep");
  fs::remove(app + "/Greets/Default.wav");
  fs::remove_all(app + "/Sound");
  EXPECT_THAT(Seed(false).copied, ElementsAre("Sound/Ring.wav")) << "a deleted greeting does not come back";
  EXPECT_EQ(ContentOf(app + "/beep.wav"), "my own beep");
}

TEST_F(InstallationTest, TheHelpIsReplacedByTheInstalledOneWheneverTheyDiffer) {
  PutFile(app + "/Help/index.htm", "old");
  PutFile(app + "/Help/gone.htm", "of an older version");
  EXPECT_THAT(Refresh().copied, ElementsAre("Help/index.htm", "Help/pictures/a.png"));
  EXPECT_FALSE(fs::exists(app + "/Help/gone.htm"));
  EXPECT_THAT(Refresh().copied, IsEmpty()) << "nothing differs";
  fs::create_directories(root / "assets/de/Help");
  PutFile(root / "assets/de/Help/index.htm", "Hilfe");
  language = "de";
  EXPECT_THAT(Refresh().copied, ElementsAre("Help/index.htm"));
  EXPECT_EQ(ContentOf(app + "/Help/index.htm"), "Hilfe");
  fs::remove_all(app + "/Help");
  PutFile(app + "/Help", "a file where a folder belongs");
  EXPECT_THAT(Refresh().problems, ElementsAre(HasSubstr(app + "/Help")));
}

TEST_F(InstallationTest, SpeechNeedsAnExecutableHelperAndTheDataOfItsEngine) {
  ::setenv("ESPEAK_DATA_PATH", (root / "").c_str(), 1);
  fs::create_directory(root / "espeak-ng-data");
  for (const char* name : {"espeak-ng-data/phontab", "helper"}) PutFile(root / name, "");
  EXPECT_FALSE(SpeechInstalled(root / "helper"));
  fs::permissions(root / "helper", fs::perms::owner_all);
  EXPECT_TRUE(SpeechInstalled(root / "helper"));
  fs::remove(root / "espeak-ng-data/phontab");
  EXPECT_FALSE(SpeechInstalled(root / "helper"));
  ::unsetenv("ESPEAK_DATA_PATH");
  EXPECT_TRUE(SpeechInstalled(root / "helper")) << "with the system's data";
}

TEST_F(InstallationTest, TheAutostartEntryIsCreatedAndRemovedWithItsValue) {
  SetRegValue(registry, kRoot, kAutostartKey, "Other", kRegString, "x");
  SetRegValue(registry, kRoot, kSettingsKey, "ORVEN", kRegString, "x");
  SetRegValue(registry, RegistryRoot::CurrentUser, kAutostartKey, "ORVEN", kRegString, "x");
  stored.refuse_writes = true;
  Check(registry);
  EXPECT_FALSE(fs::exists(entry)) << "an entry for other values, or for one that is not stored";
  stored.refuse_writes = false;
  Check(registry);
  EXPECT_TRUE(IsChecked());
  EXPECT_EQ(stored.Text("ORVEN", kAutostartKey), "C:\\ORVEN.exe -st");
  EXPECT_THAT(ContentOf(entry), HasSubstr("\nExec=\"/opt/my programs\\\\\\\\orven\" -st\n"));
  stored = {};
  EXPECT_TRUE(IsChecked()) << "the desktop starts the program, whatever is stored";
  Clear();
  EXPECT_FALSE(IsChecked() || fs::exists(entry));
  EXPECT_EQ(ExecCommand({"/a b/100%", "say \"$x\" `\\", "", "-st"}),
            R"("/a b/100%%" "say \"\$x\" \`\\" "" -st)");
}

TEST_F(InstallationTest, AUsersEditStaysAndAnUneditedEntryFollowsTheProgram) {
  Check(registry);
  auto moved = Installed("/usr/lib/orven/orven", true);
  Check(moved);
  const auto command = "Exec=env ORVEN_HOME=" + app + " /usr/lib/orven/orven -st\n";
  const auto edited = Edit(command, "# wait for the network\nExec=nice env\n");
  Check(registry);
  EXPECT_EQ(ContentOf(entry), edited);
}

TEST_F(InstallationTest, OnlyCheckingTheBoxEnablesADisabledEntryOrOneOfAnotherFolder) {
  const auto home = "X-ORVEN-Home=" + app, elsewhere = "X-ORVEN-Home=" + (root / "other");
  for (const auto& off : {home + "\nHidden=true", home + "\nX-GNOME-Autostart-enabled=false", elsewhere}) {
    Check(registry);
    const auto edited = Edit(home, off);
    EXPECT_FALSE(IsChecked()) << off;
    stored = {};
    Check(registry);  // as a first start in an empty folder does
    EXPECT_FALSE(IsChecked()) << off;
    stored.MakeKey(kSettingsKey);
    Clear();
    EXPECT_EQ(ContentOf(entry), edited) << "clearing a clear box changes nothing";
    Check(registry);
    EXPECT_TRUE(IsChecked()) << off;
  }
}

TEST_F(InstallationTest, ADamagedEntryIsSetAsideAndTheValueIsStoredEvenIfTheEntryCannotBe) {
  fs::create_directories(root / "config/autostart");
  PutFile(entry, "rubbish");
  Check(registry);
  EXPECT_TRUE(IsChecked());
  Clear();
  EXPECT_EQ(ContentOf(fs::directory_iterator(root / "config/autostart")->path()), "rubbish");
  fs::remove_all(root / "config");
  PutFile(root / "config", "a file where a folder belongs");
  Check(registry);
  EXPECT_THAT(problem, HasSubstr(root / "config"));
  EXPECT_EQ(stored.Text("ORVEN", kAutostartKey), "C:\\ORVEN.exe -st");
}

}  // namespace
}  // namespace orven::test
