// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/disk_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "adapters/files/durable.h"
#include "adapters/files/utf8.h"
#include "platform/runtime_error.h"
#include "support/file_size_limit.h"
#include "support/scratch_folder.h"

namespace orven {
namespace {

using test::ContentOf;
using test::FileSizeLimit;
using test::PutFile;
using test::ScratchFolder;

/// Number of the error that `statement` fails with; 0 when it does not. Its text must name `path`.
std::int32_t Failure(const std::string& path, const std::function<void()>& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    return error.Number();
  }
  return 0;
}

class DiskFilesTest : public testing::Test {
 protected:
  ScratchFolder folder_;
  DiskFiles files_;
};

TEST_F(DiskFilesTest, AppendsReadsAndDeletes) {
  const std::string path = folder_ / "1-2-2024_Sys.txt";
  EXPECT_FALSE(files_.Exists(path));
  files_.Append(path, "one\r\n");
  files_.Append(path, "two\r\n");
  EXPECT_EQ(files_.Read(path), "one\r\ntwo\r\n");

  const auto age = std::chrono::system_clock::now() - files_.LastModified(path);
  EXPECT_LT(std::chrono::abs(age), std::chrono::minutes(1));

  files_.Delete(path);
  EXPECT_FALSE(files_.Exists(path));
}

TEST_F(DiskFilesTest, FailuresCarryTheClassicNumberAndThePath) {
  const std::string file = folder_ / "file";
  const std::string none = folder_ / "none";
  const std::string below = file + "/below";
  PutFile(file, "x");
  std::filesystem::create_directory(folder_ / "inner");

  EXPECT_EQ(Failure(none, [&] { files_.Read(none); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.Delete(none); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.Copy(none, file); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.Rename(none, folder_ / "new"); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.LastModified(none); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.List(none, "*"); }), 76);
  EXPECT_EQ(Failure(none, [&] { files_.Append(none + "/file", "x"); }), 76);
  EXPECT_EQ(Failure(none, [&] { files_.Copy(file, none + "/file"); }), 76);
  EXPECT_EQ(Failure(none, [&] { files_.Rename(file, none + "/file"); }), 76);
  EXPECT_EQ(Failure(below, [&] { files_.Append(below, "x"); }), 76);
  EXPECT_EQ(Failure(below, [&] { files_.MakeFolder(below); }), 76);
  EXPECT_NE(Failure(file, [&] { files_.MakeFolder(file); }), 0);
  EXPECT_EQ(Failure(folder_ / "inner", [&] { files_.Read(folder_ / "inner"); }), 75);
  EXPECT_EQ(Failure(folder_ / "inner", [&] { files_.Delete(folder_ / "inner"); }), 75);
  EXPECT_TRUE(files_.Exists(folder_ / "inner"));
}

TEST_F(DiskFilesTest, MakesFoldersWithTheirParents) {
  files_.MakeFolder(folder_ / "a/b/c/");
  files_.MakeFolder(folder_ / "a/b/c");
  EXPECT_TRUE(std::filesystem::is_directory(folder_ / "a/b/c"));
}

TEST_F(DiskFilesTest, ListsRegularFilesThatMatch) {
  for (const char* name : {"a.wav", "B.WAV", "c.wave", "x_Sys.txt", "plain", "\xC3\xA9.txt"}) {
    PutFile(folder_ / name, "");
  }
  std::filesystem::create_directory(folder_ / "folder.wav");
  const auto listed = [&](const char* pattern) {
    auto names = files_.List(folder_ / "", pattern);
    std::sort(names.begin(), names.end());
    return names;
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(listed("*.wav"), (Names{"B.WAV", "a.wav"}));
  EXPECT_EQ(listed("*_SYS.txt"), Names{"x_Sys.txt"});
  EXPECT_EQ(listed("?.txt"), Names{"\xC3\xA9.txt"});
  EXPECT_EQ(listed("*.*").size(), 6U);
  EXPECT_EQ(listed("*a*"), (Names{"B.WAV", "a.wav", "c.wave", "plain"}));
  EXPECT_TRUE(listed("").empty());
}

TEST_F(DiskFilesTest, ALongRunOfStarsIsMatchedInReasonableTime) {
  const std::string name(255, 'a');
  EXPECT_FALSE(MatchesPattern(name, "*a*a*a*a*a*a*a*a*a*a*a*a*b"));
  EXPECT_TRUE(MatchesPattern(name, "*a*a*a*a*a*a*a*a*a*a*a*a**"));
}

TEST_F(DiskFilesTest, CopyReplacesWholeAndKeepsPermissions) {
  PutFile(folder_ / "from", std::string(200000, 'x'));
  PutFile(folder_ / "to", "old");
  ::chmod((folder_ / "from").c_str(), 0640);
  files_.Copy(folder_ / "from", folder_ / "to");
  EXPECT_EQ(ContentOf(folder_ / "to"), ContentOf(folder_ / "from"));
  struct stat status {};
  ASSERT_EQ(::stat((folder_ / "to").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);

  files_.Copy(folder_ / "to", folder_ / "to");
  EXPECT_EQ(ContentOf(folder_ / "to").size(), 200000U);
}

TEST_F(DiskFilesTest, AFullDiskLeavesTheOldContentAndNoRest) {
  PutFile(folder_ / "from", std::string(200000, 'x'));
  PutFile(folder_ / "to", "old");
  {
    FileSizeLimit limit(100000);
    EXPECT_EQ(Failure(folder_ / "to", [&] { files_.Copy(folder_ / "from", folder_ / "to"); }), 61);
    EXPECT_EQ(Failure(folder_ / "to", [&] { files_.Append(folder_ / "to", std::string(100000, 'y')); }), 61);
  }
  EXPECT_EQ(ContentOf(folder_ / "to"), "old");
  EXPECT_EQ(folder_.Count(""), 2U);
  EXPECT_EQ(Failure("/dev/full", [&] { files_.Append("/dev/full", "line\r\n"); }), 61);
}

TEST_F(DiskFilesTest, RenameNeverReplaces) {
  PutFile(folder_ / "from", "new");
  PutFile(folder_ / "to", "old");
  EXPECT_EQ(Failure(folder_ / "to", [&] { files_.Rename(folder_ / "from", folder_ / "to"); }), 58);
  EXPECT_EQ(ContentOf(folder_ / "to"), "old");
  EXPECT_EQ(ContentOf(folder_ / "from"), "new");
  files_.Rename(folder_ / "from", folder_ / "third");
  EXPECT_EQ(ContentOf(folder_ / "third"), "new");
  EXPECT_FALSE(files_.Exists(folder_ / "from"));
}

TEST_F(DiskFilesTest, RenameMovesAcrossFileSystems) {
  struct stat here {};
  struct stat there {};
  ASSERT_EQ(::stat((folder_ / "").c_str(), &here), 0);
  if (::stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev) GTEST_SKIP() << "one file system only";
  const ScratchFolder other("/dev/shm");
  PutFile(folder_ / "from", "message");
  const auto modified = files_.LastModified(folder_ / "from");
  files_.Rename(folder_ / "from", other / "to");
  EXPECT_EQ(ContentOf(other / "to"), "message");
  EXPECT_EQ(files_.LastModified(other / "to"), modified);
  EXPECT_FALSE(files_.Exists(folder_ / "from"));

  PutFile(folder_ / "from", "second");
  EXPECT_EQ(Failure(other / "to", [&] { files_.Rename(folder_ / "from", other / "to"); }), 58);
  EXPECT_EQ(ContentOf(other / "to"), "message");
  EXPECT_EQ(ContentOf(folder_ / "from"), "second");
}

TEST(DurableTest, ReplacesWhatALinkLeadsToAndKeepsTheLink) {
  const ScratchFolder folder;
  PutFile(folder / "real", "old");
  std::filesystem::create_symlink("real", folder / "link");
  ReplaceFile(folder / "link", "new", 0600);
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
  EXPECT_EQ(ContentOf(folder / "real"), "new");
  EXPECT_THROW(CreateFile(folder / "real", "again", 0600), RuntimeError);
  EXPECT_EQ(ContentOf(folder / "real"), "new");
}

TEST(DurableTest, ANameToSetAsideIsNeverTaken) {
  const ScratchFolder folder;
  const auto now = std::chrono::system_clock::now();
  const std::string first = NameToSetAside(folder / "Calls", "damaged", now);
  EXPECT_TRUE(first.starts_with(folder / "Calls.damaged-2")) << first;
  EXPECT_EQ(first.size(), (folder / "Calls.damaged-").size() + std::string("20261121T041530").size());
  PutFile(first, "");
  PutFile(first + "-2-wal", "");
  EXPECT_EQ(NameToSetAside(folder / "Calls", "damaged", now), first + "-3");
}

TEST(Utf8Test, TellsWellFormedTextFromTheRest) {
  EXPECT_TRUE(IsUtf8("plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\x9E \xEF\xBF\xBF"));
  for (const char* bad : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF0\x80\x80\x80",
                          "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xE2\x82"}) {
    EXPECT_FALSE(IsUtf8(bad));
  }
}

}  // namespace
}  // namespace orven
