// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/autostart.h"

#include <gtest/gtest.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <regex>
#include <utility>
#include <vector>

#include "support/memory_registry.h"
#include "support/scratch_folder.h"

namespace orven {
namespace {

using test::ContentOf;
using test::PutFile;

/// While it lives this thread can read in `folder`, below `root`, and not write, even when it is root's.
class ReadOnly {
 public:
  ReadOnly(const std::string& root, std::string folder) : folder_(std::move(folder)) {
    ::chmod(root.c_str(), 0755);
    ::chmod(folder_.c_str(), 0555);
    constexpr uid_t kNobody = 65534;
    ::setfsuid(kNobody);
  }
  ReadOnly(const ReadOnly&) = delete;
  ReadOnly& operator=(const ReadOnly&) = delete;
  ~ReadOnly() {
    ::setfsuid(::geteuid());
    ::chmod(folder_.c_str(), 0755);
  }

 private:
  std::string folder_;
};

class AutostartTest : public ::testing::Test {
 protected:
  AutostartTest() {
    std::filesystem::create_directory(root_ / "home");
    std::filesystem::create_directory(root_ / "other");
  }

  /// The registry of an installation in the folder `home`, whose program is `program`.
  AutostartRegistry Installation(const std::string& home, const std::string& program = "/opt/orven",
                                 bool by_environment = false) {
    return {stored_,
            {.file = file_,
             .program = program,
             .application_folder = root_ / home,
             .folder_by_environment = by_environment},
            [this](const std::string& problem) { problems_.push_back(problem); }};
  }

  static void Check(Registry& registry) {
    SetRegValue(registry, RegistryRoot::LocalMachine, kAutostartKey, "ORVEN", kRegString,
                "C:\\ORVEN.exe -st");
  }
  static void Clear(Registry& registry) {
    DeleteRegValue(registry, RegistryRoot::LocalMachine, kAutostartKey, "ORVEN");
  }
  static bool IsChecked(Registry& registry) {
    return GetRegValue(registry, RegistryRoot::LocalMachine, kAutostartKey, "ORVEN") != kNotFound;
  }

  std::string Entry() const { return ContentOf(file_); }
  void Edit(const std::string& from, const std::string& to) const {
    const std::string edited = std::regex_replace(Entry(), std::regex(from), to);
    ASSERT_NE(edited, Entry());
    PutFile(file_, edited);
  }

  test::ScratchFolder root_;
  test::MemoryRegistry stored_;
  std::string file_ = root_ / "config/autostart/orven.desktop";
  std::vector<std::string> problems_;
};

TEST(ExecCommandTest, QuotesAndDoublesAsTheDesktopReadsIt) {
  EXPECT_EQ(ExecCommand({"/usr/bin/orven", "-st"}), "/usr/bin/orven -st");
  EXPECT_EQ(ExecCommand({"/a b/100%", "say \"$x\" `\\", ""}), R"("/a b/100%%" "say \"\$x\" \`\\" "")");
}

TEST_F(AutostartTest, TheValueIsAnEntryThatComesAndGoesWithIt) {
  auto registry = Installation("home", "/opt/my programs\\orven");
  EXPECT_FALSE(IsChecked(registry));
  Check(registry);
  EXPECT_TRUE(IsChecked(registry));
  EXPECT_EQ(stored_.Text("ORVEN", kAutostartKey), "C:\\ORVEN.exe -st");
  EXPECT_NE(Entry().find("\nExec=\"/opt/my programs\\\\\\\\orven\" -st\n"), std::string::npos) << Entry();
  Clear(registry);
  EXPECT_FALSE(IsChecked(registry));
  EXPECT_FALSE(std::filesystem::exists(file_));
  EXPECT_EQ(stored_.Text("ORVEN", kAutostartKey), kNotFound);
  EXPECT_TRUE(problems_.empty());
}

TEST_F(AutostartTest, OtherValuesAreNoBusinessOfTheDesktop) {
  auto registry = Installation("home");
  SetRegValue(registry, RegistryRoot::LocalMachine, kAutostartKey, "Other", kRegString, "x");
  SetRegValue(registry, RegistryRoot::LocalMachine, kSettingsKey, "ORVEN", kRegString, "x");
  SetRegValue(registry, RegistryRoot::CurrentUser, kAutostartKey, "ORVEN", kRegString, "x");
  EXPECT_FALSE(std::filesystem::exists(file_));
  stored_.refuse_writes = true;
  Check(registry);
  EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AutostartTest, APersonsEditStaysAndAnUneditedEntryFollowsTheProgram) {
  auto registry = Installation("home");
  Check(registry);
  auto moved = Installation("home", "/usr/lib/orven/orven", true);
  Check(moved);
  EXPECT_NE(Entry().find("\nExec=env ORVEN_HOME=" + (root_ / "home") + " /usr/lib/orven/orven -st\n"),
            std::string::npos)
      << Entry();
  Edit("Exec=env", "# wait for the network\nExec=nice env");
  const std::string edited = Entry();
  Check(registry);
  EXPECT_EQ(Entry(), edited);
}

TEST_F(AutostartTest, WhatWasSwitchedOffIsSwitchedOnOnlyByThePersonWhoChecksTheBox) {
  for (const char* off : {"Hidden=true", "X-GNOME-Autostart-enabled=false"}) {
    auto registry = Installation("home");
    Check(registry);
    Edit("Terminal=false", std::string("Terminal=false\n") + off);
    EXPECT_FALSE(IsChecked(registry)) << off;
    stored_ = {};
    Check(registry);  // as a first start in an empty folder does
    EXPECT_FALSE(IsChecked(registry)) << off;
    stored_.MakeKey(kSettingsKey);
    const std::string edited = Entry();
    Clear(registry);
    EXPECT_EQ(Entry(), edited) << "the box was clear, and is left so";
    Check(registry);
    EXPECT_TRUE(IsChecked(registry)) << off;
    Clear(registry);
  }
}

TEST_F(AutostartTest, AnotherInstallationsEntryIsTakenOverOnlyByThePersonOrWhenThatIsGone) {
  auto other = Installation("other", "/opt/orven", true);
  Check(other);
  stored_ = {};
  const std::string others = Entry();
  auto registry = Installation("home");
  Check(registry);
  EXPECT_FALSE(IsChecked(registry));
  Clear(registry);
  EXPECT_EQ(Entry(), others);
  std::filesystem::remove(root_ / "other");
  Check(registry);
  EXPECT_TRUE(IsChecked(registry));
  EXPECT_NE(Entry().find("\nExec=/opt/orven -st\n"), std::string::npos) << Entry();
}

TEST_F(AutostartTest, AnEntryThatCannotBeRemovedIsStillInForce) {
  auto registry = Installation("home");
  Check(registry);
  {
    const ReadOnly folder(root_ / "", root_ / "config/autostart");
    Clear(registry);
    EXPECT_TRUE(IsChecked(registry));
  }
  EXPECT_EQ(problems_.size(), 1U);
  stored_ = {};
  EXPECT_TRUE(IsChecked(registry)) << "the desktop starts it, whatever is stored";
  Clear(registry);
  EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(AutostartTest, RubbishIsSetAsideAndAFailureReportedWhileTheValueIsStored) {
  auto registry = Installation("home");
  std::filesystem::create_directories(root_ / "config/autostart");
  PutFile(file_, "rubbish");
  Check(registry);
  EXPECT_TRUE(IsChecked(registry));
  std::size_t kept = 0;
  for (const auto& found : std::filesystem::directory_iterator(root_ / "config/autostart")) {
    kept += ContentOf(found.path()) == "rubbish" ? 1U : 0U;
  }
  EXPECT_EQ(kept, 1U);
  Clear(registry);
  std::filesystem::remove_all(root_ / "config");
  PutFile(root_ / "config", "a file where a folder belongs");
  Check(registry);
  ASSERT_EQ(problems_.size(), 1U);
  EXPECT_NE(problems_[0].find(root_ / "config"), std::string::npos) << problems_[0];
  EXPECT_EQ(stored_.Text("ORVEN", kAutostartKey), "C:\\ORVEN.exe -st");
}

}  // namespace
}  // namespace orven
