// SPDX-License-Identifier: GPL-3.0-or-later
#include <unistd.h>

#include "integration/registry/registry_fixture.h"
#include "support/file_size_limit.h"

namespace orven::test {
namespace {

TEST_F(RegistryFileTest, TheFirstWriteMakesAFileThatItsOwnerAloneReads) {
  EXPECT_FALSE(registry_.KeyExists(RegistryRoot::LocalMachine, kKey));
  EXPECT_TRUE(Write("Pass", Text("123456")));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"Pass\"=\"123456\"\n");
  using std::filesystem::perms;
  for (const auto& path : {path_, path_ + ".bak"})
    EXPECT_EQ(std::filesystem::status(path).permissions(), perms::owner_read | perms::owner_write);
  EXPECT_EQ(folder_.Count(""), 2U);
}

TEST_F(RegistryFileTest, SeesAtOnceWhatAnotherProcessWrote) {
  for (int number = 1000; number < 1020; ++number) {
    // Same size, same inode, within one tick of the file system's clock.
    PutFile(path_, kStart + ("\"A\"=\"" + std::to_string(number)) + "\"\n");
    ASSERT_EQ(Query("A"), Text(std::to_string(number)));
  }
  const std::vector<NamedRegistryValue> values{{"B", Text("other")}};
  EXPECT_TRUE(RegistryFile(path_, report_).Write(RegistryRoot::LocalMachine, kKey, values));
  EXPECT_TRUE(Write("C", Text("mine")));
  EXPECT_EQ(Query("B"), Text("other"));
  ::unlink(path_.c_str());
  EXPECT_EQ(Query("B"), Text("other"));
}

TEST_F(RegistryFileTest, ADamagedFileIsReportedOnceAndKept) {
  const std::string damaged = std::string(kStart) + "\"A\"=\"1\"\n\"B\"=\"open\n";
  PutFile(path_, damaged);
  for (int times = 0; times < 3; ++times) EXPECT_EQ(Query("A"), Text("1"));
  EXPECT_EQ(reports_, std::vector<std::string>{"registry.reg:5: the text has no closing quote"});
  EXPECT_EQ(folder_.Count(""), 1U) << "reading sets nothing aside";
  EXPECT_TRUE(Write("C", Text("3")));
  EXPECT_EQ(Stored(), std::string(kStart) + "\"A\"=\"1\"\n\"C\"=\"3\"\n");

  // Damaged again within the same second: the earlier one stays.
  PutFile(path_, damaged + "again\n");
  EXPECT_TRUE(Write("C", Text("5")));
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 2U);

  // A first line in the wrong place is damage that the next write mends, or each would keep a file.
  PutFile(path_, "[HKEY_LOCAL_MACHINE\\OTHER]\n" + std::string(kStart));
  for (const char* value : {"1", "2"}) EXPECT_TRUE(Write("A", Text(value)));
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 3U);
}

TEST_F(RegistryFileTest, WhatDamageTakesComesFromTheLastGoodVersion) {
  const std::string good = std::string(kStart) + "\"Pass\"=\"123456\"\n\"A\"=\"1\"\n";
  const std::string keyless = good.substr(0, 72) + good.substr(73);
  for (const auto& damaged : {std::string(), std::string(good.size(), '\0'), good.substr(0, 38),
                              good.substr(0, 60), good.substr(0, 74), good.substr(0, 85), good.substr(0, 90),
                              keyless, good.substr(0, 68) + "S" + good.substr(69),
                              kStart + std::string("\"A\"=\"1\"\n"), std::string("missing")}) {
    SCOPED_TRACE(damaged);
    PutFile(path_, good);
    EXPECT_EQ(Query("A"), Text("1"));
    PutFile(path_, damaged);
    if (damaged == "missing") ::unlink(path_.c_str());
    RegistryFile again(path_, report_);
    EXPECT_TRUE(again.KeyExists(RegistryRoot::LocalMachine, kKey));
    const std::vector<NamedRegistryValue> values{{"A", Text("1")}};  // stored for good, though no change
    EXPECT_TRUE(again.Write(RegistryRoot::LocalMachine, kKey, values));
    EXPECT_EQ(Query("Pass"), Text("123456"));
    EXPECT_TRUE(again.Delete(RegistryRoot::LocalMachine, kKey, "A"));
    EXPECT_EQ(RegistryFile(path_, report_).Query(RegistryRoot::LocalMachine, kKey, "A"), std::nullopt);
  }
  EXPECT_EQ(folder_.Count("registry.reg.damaged-2"), 5U) << "the others are no damage to look at";
}

TEST_F(RegistryFileTest, WhatCannotBeReadIsReportedOnceAndNeverWritten) {
  std::filesystem::create_symlink(path_, path_);
  for (int times = 0; times < 3; ++times) {
    EXPECT_EQ(Query("A"), std::nullopt);
    EXPECT_FALSE(Write("A", Text("1")));
  }
  ASSERT_EQ(reports_.size(), 1U);
  EXPECT_NE(reports_[0].find(path_), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
}

TEST_F(RegistryFileTest, AFullDiskLeavesEveryOldValue) {
  EXPECT_TRUE(Write("A", Text("old")));
  const std::string before = Stored();
  const std::string damaged = std::string(kStart) + "\"A\"=\"open\n; " + std::string(3000, 'x') + "\n";
  const std::vector<NamedRegistryValue> values{{"A", Text("new")}, {"B", Text(std::string(5000, 'x'))}};
  {
    FileSizeLimit limit(1000);
    for (int times = 0; times < 2; ++times) {
      EXPECT_FALSE(registry_.Write(RegistryRoot::LocalMachine, kKey, values));
    }
    EXPECT_EQ(Query("A"), Text("old"));
  }
  EXPECT_EQ(Stored(), before);
  EXPECT_EQ(folder_.Count(""), 2U);
  ASSERT_EQ(reports_.size(), 1U);
  EXPECT_NE(reports_[0].find("Disk full"), std::string::npos) << reports_[0];

  PutFile(path_, damaged);
  FileSizeLimit limit(1000);
  EXPECT_FALSE(Write("A", Text("1")));
  EXPECT_EQ(Stored(), damaged) << "what cannot be set aside is not replaced";
}

}  // namespace
}  // namespace orven::test
