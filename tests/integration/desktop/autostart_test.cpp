// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/autostart.h"

#include <gtest/gtest.h>
#include <sys/fsuid.h>

#include <filesystem>
#include <thread>

#include "support/memory_registry.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

namespace fs = std::filesystem;

constexpr auto kRoot = RegistryRoot::LocalMachine;

/// The registry of an installation in the folder "home", and its entry.
class AutostartTest : public ::testing::Test {
 protected:
  AutostartTest() { fs::create_directory(root_ / "other"); }

  AutostartRegistry Installation(const std::string& program, bool by_environment) {
    const AutostartSource source{file_, program, root_ / "home", by_environment};
    return {stored_, source, [this](const std::string& problem) { problem_ += problem; }};
  }
  static void Check(Registry& registry) {
    SetRegValue(registry, kRoot, kAutostartKey, "ORVEN", kRegString, "C:\\ORVEN.exe -st");
  }
  void Check() { Check(registry_); }
  void Clear() { DeleteRegValue(registry_, kRoot, kAutostartKey, "ORVEN"); }
  bool IsChecked() { return GetRegValue(registry_, kRoot, kAutostartKey, "ORVEN") != kNotFound; }
  bool IsStored() { return stored_.Text("ORVEN", kAutostartKey) == "C:\\ORVEN.exe -st"; }
  std::string Entry() const { return ContentOf(file_); }
  /// A person's edit; returns what the entry is then.
  std::string Edit(const std::string& from, const std::string& to) const {
    auto entry = Entry();
    entry.replace(entry.find(from), from.size(), to);
    PutFile(file_, entry);
    return entry;
  }

  ScratchFolder root_;
  MemoryRegistry stored_;
  std::string file_ = root_ / "config/autostart/orven.desktop";
  std::string problem_;
  AutostartRegistry registry_ = Installation("/opt/my programs\\orven", false);
};

TEST(ExecCommand, QuotesAndDoublesAsTheDesktopReadsIt) {
  EXPECT_EQ(ExecCommand({"/a b/100%", "say \"$x\" `\\", "", "-st"}),
            R"("/a b/100%%" "say \"\$x\" \`\\" "" -st)");
}

TEST_F(AutostartTest, TheValueIsAnEntryThatComesAndGoesWithIt) {
  SetRegValue(registry_, kRoot, kAutostartKey, "Other", kRegString, "x");
  SetRegValue(registry_, kRoot, kSettingsKey, "ORVEN", kRegString, "x");
  SetRegValue(registry_, RegistryRoot::CurrentUser, kAutostartKey, "ORVEN", kRegString, "x");
  stored_.refuse_writes = true;
  Check();
  EXPECT_FALSE(fs::exists(file_)) << "for other values, or one that is not stored";
  stored_.refuse_writes = false;
  EXPECT_FALSE(IsChecked());
  Check();
  EXPECT_TRUE(IsChecked());
  EXPECT_TRUE(IsStored());
  EXPECT_NE(Entry().find("\nExec=\"/opt/my programs\\\\\\\\orven\" -st\n"), std::string::npos) << Entry();
  Clear();
  EXPECT_FALSE(IsChecked() || fs::exists(file_));
  EXPECT_EQ(stored_.Text("ORVEN", kAutostartKey), kNotFound);
  EXPECT_EQ(problem_, "");
}

TEST_F(AutostartTest, APersonsEditStaysAndAnUneditedEntryFollowsTheProgram) {
  Check();
  auto moved = Installation("/usr/lib/orven/orven", true);
  Check(moved);
  const auto command = "Exec=env ORVEN_HOME=" + (root_ / "home") + " /usr/lib/orven/orven -st\n";
  const auto edited = Edit(command, "# wait for the network\nExec=nice env\n");
  Check();
  EXPECT_EQ(Entry(), edited);
}

TEST_F(AutostartTest, OnlyThePersonWhoChecksTheBoxEnablesAnEntryOfOthersOrOneSwitchedOff) {
  const auto home = "X-ORVEN-Home=" + (root_ / "home");
  const auto elsewhere = "X-ORVEN-Home=" + (root_ / "other");
  for (const auto& off :
       {std::string("Hidden=true"), std::string("X-GNOME-Autostart-enabled=false"), elsewhere}) {
    Check();
    const auto edited = Edit(home, off == elsewhere ? off : home + "\n" + off);
    EXPECT_FALSE(IsChecked()) << off;
    stored_ = {};
    Check();  // as a first start in an empty folder does
    EXPECT_FALSE(IsChecked()) << off;
    stored_.MakeKey(kSettingsKey);
    Clear();
    EXPECT_EQ(Entry(), edited) << "the box was clear, and is left so";
    Check();
    EXPECT_TRUE(IsChecked()) << off;
  }
  Edit(home, elsewhere);
  fs::remove(root_ / "other");
  EXPECT_TRUE(IsChecked()) << "what belongs to no installation is ours";
}

TEST_F(AutostartTest, AnEntryThatCannotBeRemovedIsStillInForce) {
  Check();
  fs::permissions(root_ / "", fs::perms{0755});
  fs::permissions(root_ / "config/autostart", fs::perms{0555});
  std::thread([&] {
    constexpr uid_t kNobody = 65534;
    ::setfsuid(kNobody);  // of this thread, where it is root's
    Clear();
    EXPECT_TRUE(IsChecked());
  }).join();
  EXPECT_NE(problem_, "");
  fs::permissions(root_ / "config/autostart", fs::perms{0755});
  stored_ = {};
  EXPECT_TRUE(IsChecked()) << "the desktop starts it, whatever is stored";
  Clear();
  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(AutostartTest, RubbishIsSetAsideAndAFailureIsReportedWhileTheValueIsStored) {
  fs::create_directories(root_ / "config/autostart");
  PutFile(file_, "rubbish");
  Check();
  EXPECT_TRUE(IsChecked());
  Clear();
  const fs::directory_iterator left(root_ / "config/autostart");
  EXPECT_EQ(ContentOf(left->path()), "rubbish");
  fs::remove_all(root_ / "config");
  PutFile(root_ / "config", "a file where a folder belongs");
  Check();
  EXPECT_NE(problem_.find(root_ / "config"), std::string::npos) << problem_;
  EXPECT_TRUE(IsStored());
}

}  // namespace
}  // namespace orven::test
