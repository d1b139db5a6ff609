// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/stat.h>
#include <unistd.h>

#include "integration/registry/registry_fixture.h"
#include "support/file_size_limit.h"

namespace orven::test {
namespace {

TEST_F(RegistryFileTest, TheFirstWriteMakesAFileThatItsOwnerAloneReads) {
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::LocalMachine, kKey));
  EXPECT_EQ(Query("Pass"), std::nullopt);
  EXPECT_TRUE(Write("Pass", Text("123456")));
  EXPECT_TRUE(registry_.KeyExists(RegistryRoot::LocalMachine, kKey));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"Pass\"=\"123456\"\n");
  struct stat status {};
  ASSERT_EQ(::stat(path_.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(folder_.Count(""), 1U);
}

TEST_F(RegistryFileTest, AKeyWithoutValuesExists) {
  EXPECT_TRUE(registry_.Write(RegistryRoot::CurrentUser, "Software\\Run", {}));
  RegistryFile fresh(path_, report_);
  EXPECT_TRUE(fresh.KeyExists(RegistryRoot::CurrentUser, "software\\run"));
  EXPECT_FALSE(fresh.KeyExists(RegistryRoot::LocalMachine, "software\\run"));
}

TEST_F(RegistryFileTest, SeesAtOnceWhatAnotherProcessWrote) {
  for (int number = 1000; number < 1020; ++number) {
    // Same size, same inode, within one tick of the file system's clock.
    PutFile(path_, kStart + ("\"A\"=\"" + std::to_string(number)) + "\"\n");
    ASSERT_EQ(Query("A"), Text(std::to_string(number)));
  }
  RegistryFile other(path_, report_);
  const std::vector<NamedRegistryValue> values{{"B", Text("other")}};
  EXPECT_TRUE(other.Write(RegistryRoot::LocalMachine, kKey, values));
  EXPECT_TRUE(Write("C", Text("mine")));
  EXPECT_EQ(Query("B"), Text("other"));
  ::unlink(path_.c_str());
  EXPECT_EQ(Query("B"), std::nullopt);
}

TEST_F(RegistryFileTest, AWriteThatChangesNothingLeavesTheFileAlone) {
  EXPECT_TRUE(Write("A", Text("1")));
  struct stat before {};
  struct stat after {};
  ASSERT_EQ(::stat(path_.c_str(), &before), 0);
  EXPECT_TRUE(Write("a", Text("1")));
  ASSERT_EQ(::stat(path_.c_str(), &after), 0);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(RegistryFileTest, ADamagedFileIsReportedOnceAndKept) {
  const std::string damaged = std::string(kStart) + "\"A\"=\"1\"\n\"B\"=\"open\n";
  PutFile(path_, damaged);
  for (int times = 0; times < 3; ++times) EXPECT_EQ(Query("A"), Text("1"));
  EXPECT_EQ(reports_, std::vector<std::string>{"registry.reg:5: the text has no closing quote"});
  EXPECT_EQ(folder_.Count(""), 1U) << "reading sets nothing aside";

  EXPECT_TRUE(Write("C", Text("3")));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"A\"=\"1\"\n\"C\"=\"3\"\n");
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 1U);
  EXPECT_TRUE(Write("C", Text("4")));
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 1U);

  // Damaged again within the same second: the earlier one stays.
  PutFile(path_, damaged + "again\n");
  EXPECT_TRUE(Write("C", Text("5")));
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 2U);
  bool first_kept = false;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) {
    first_kept = first_kept || ContentOf(entry.path().string()) == damaged;
  }
  EXPECT_TRUE(first_kept);
}

TEST_F(RegistryFileTest, WhatCannotBeReadIsReportedOnceAndNeverWritten) {
  std::filesystem::create_directory(path_);
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(Query("A"), std::nullopt);
    EXPECT_FALSE(Write("A", Text("1")));
  }
  ASSERT_EQ(reports_.size(), 1U);
  EXPECT_NE(reports_[0].find(path_), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_directory(path_));

  std::filesystem::remove(path_);
  std::filesystem::create_symlink(path_, path_);
  EXPECT_EQ(Query("A"), std::nullopt);
  EXPECT_FALSE(Write("A", Text("1")));
  EXPECT_EQ(reports_.size(), 2U);

  std::filesystem::remove(path_);
  EXPECT_TRUE(Write("A", Text("1")));
  EXPECT_EQ(Query("A"), Text("1"));
}

TEST_F(RegistryFileTest, AFullDiskLeavesEveryOldValue) {
  EXPECT_TRUE(Write("A", Text("old")));
  const std::string before = Stored();
  const std::vector<NamedRegistryValue> values{{"A", Text("new")}, {"B", Text(std::string(5000, 'x'))}};
  {
    FileSizeLimit limit(1000);
    EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, kKey, values));
    EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, kKey, values));
    EXPECT_EQ(Query("A"), Text("old"));
  }
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(folder_.Count(""), 1U);
  ASSERT_EQ(reports_.size(), 1U);
  EXPECT_NE(reports_[0].find("Disk full"), std::string::npos) << reports_[0];
  EXPECT_TRUE(registry_.Write(RegistryRoot::LocalMachine, kKey, values));
  EXPECT_EQ(Query("A"), Text("new"));
}

TEST_F(RegistryFileTest, ADamagedFileThatCannotBeKeptIsNotReplaced) {
  const std::string damaged = std::string(kStart) + "\"A\"=\"open\n; " + std::string(3000, 'x') + "\n";
  PutFile(path_, damaged);
  FileSizeLimit limit(1000);
  EXPECT_FALSE(Write("A", Text("1")));
  EXPECT_EQ(Stored(), damaged);
}

TEST_F(RegistryFileTest, NamesThatTheFormatCannotHoldAreRefusedTogether) {
  const std::vector<NamedRegistryValue> values{{"A", Text("1")}, {"line\nend", Text("2")}};
  EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, kKey, values));
  EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, "K]\n[X", {}));
  EXPECT_FALSE(std::filesystem::exists(path_));
}

}  // namespace
}  // namespace orven::test
