// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/disk_files.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

#include "adapters/files/background_thread.h"
#include "base/durable_file.h"
#include "base/runtime_error.h"
#include "base/unicode.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::test {
namespace {

using Names = std::vector<std::string>;

/// Returns the number of the error that `statement` fails with, or 0. The text of the error must name `path`.
std::int32_t Failure(const std::string& path, const std::function<void()>& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    return error.Number();
  }
  return 0;
}

class DiskFilesTest : public ::testing::Test {
 protected:
  ScratchFolder folder_;
  std::string from_ = folder_ / "from", to_ = folder_ / "to";
  DiskFiles files_;
};

TEST_F(DiskFilesTest, FailuresHaveTheirErrorNumberAndNameThePath) {
  const std::string none = folder_ / "none", proc = "/proc/version";
  PutFile(from_, "x");
  EXPECT_EQ(Failure(none, [&] { files_.Read(none); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.LastModified(none); }), 53);
  EXPECT_EQ(Failure(none, [&] { files_.Copy(from_, none + "/file"); }), 76);
  EXPECT_EQ(Failure(folder_ / "", [&] { files_.Delete(folder_ / ""); }), 75);
  EXPECT_EQ(Failure(proc, [&] { files_.Rename(proc, to_); }), 70);
  EXPECT_FALSE(files_.Exists(to_)) << "a file that cannot be moved is not left in both places";
}

TEST_F(DiskFilesTest, ListsRegularFilesThatMatchAPattern) {
  const Names ordered{"1.txt", "2-9.txt", "02-10.txt", "10.TXT", "a.txt", "B.txt", "b01.txt", "b1.txt"};
  for (const auto& name : ordered) PutFile(folder_ / name, "");
  for (const auto& name : {std::string("B.WAV"), std::string("c.wave"), std::string(255, 'a')})
    PutFile(folder_ / name, "");
  files_.MakeFolder(folder_ / "folder.wav");
  EXPECT_EQ(files_.List(folder_ / "", "*.txt"), ordered);
  EXPECT_EQ(files_.List(folder_ / "", "*.wav"), Names{"B.WAV"});
  EXPECT_EQ(files_.List(folder_ / "", "C.w*e"), Names{"c.wave"});
  EXPECT_EQ(files_.List(folder_ / "", "b.wa*av"), Names{}) << "no character matches twice";
}

TEST_F(DiskFilesTest, AFullDiskKeepsTheOldContentAndLeavesNoPartialFile) {
  PutFile(from_, std::string(200000, 'x'));
  PutFile(to_, "old");
  {
    const FileSizeLimit limit(100000);
    EXPECT_EQ(Failure(to_, [&] { files_.Copy(from_, to_); }), 61);
    EXPECT_EQ(Failure(to_, [&] { files_.Append(to_, std::string(100000, 'y')); }), 61);
  }
  EXPECT_EQ(ContentOf(to_), "old");
  EXPECT_EQ(folder_.Count(""), 2U);
  files_.Copy(from_, to_);
  files_.Copy(to_, to_);
  EXPECT_EQ(ContentOf(to_), ContentOf(from_));
}

TEST_F(DiskFilesTest, RenameMovesEvenAcrossFileSystemsAndNeverReplaces) {
  if (!files_.Exists("/dev/shm")) GTEST_SKIP() << "no second file system";
  const ScratchFolder memory("/dev/shm");
  for (const std::string& target : {to_, memory / "to"}) {
    PutFile(from_, "first");
    files_.Rename(from_, target);
    EXPECT_FALSE(files_.Exists(from_));
    PutFile(from_, "second");
    EXPECT_EQ(Failure(target, [&] { files_.Rename(from_, target); }), 58);
    EXPECT_EQ(ContentOf(target) + ContentOf(from_), "firstsecond");
  }
}

TEST_F(DiskFilesTest, TheCaseOfAnExtensionDoesNotMatter) {
  PutFile(folder_ / "X.WAV", "first");
  const std::string path = folder_ / "X.wav";
  EXPECT_TRUE(files_.Exists(path));
  EXPECT_FALSE(files_.Exists(folder_ / "x.wav"));
  EXPECT_EQ(files_.Read(path) + files_.ReadPart(path, 4, 1), "firstt");
  const std::chrono::sys_seconds then(std::chrono::seconds(1234567890));
  std::filesystem::last_write_time(folder_ / "X.WAV", std::chrono::file_clock::from_sys(then));
  EXPECT_EQ(files_.LastModified(path), then);
  files_.Copy(path, to_);
  EXPECT_EQ(Failure(path, [&] { files_.Rename(to_, path); }), 58);
  files_.Copy(to_, path);
  EXPECT_EQ(files_.List(folder_ / "", "*.wav"), Names{"X.wav"}) << "it was replaced";
  std::filesystem::rename(path, folder_ / "X.wAV");
  files_.Rename(path, folder_ / "Y.wav");
  files_.Delete(folder_ / "Y.WAV");
  EXPECT_EQ(folder_.Count(""), 1U);
}

TEST_F(DiskFilesTest, ReplacingALinkReplacesItsTarget) {
  std::filesystem::create_symlink("to", folder_ / "link");
  PutFile(to_, "old");
  ReplaceFile(folder_ / "link", "new", 0600);
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link"));
  EXPECT_EQ(ContentOf(to_), "new");
}

TEST(Utf8Test, AcceptsOnlyWellFormedText) {
  EXPECT_TRUE(IsUtf8("plain \xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\x9E \xEF\xBF\xBF"));
  for (const char* bad : {"\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80"})
    EXPECT_FALSE(IsUtf8(bad));
}

TEST(BackgroundThread, RunsTasksInOrderReportsFailuresAndFinishesTheQueueBeforeItEnds) {
  testing::TestLoop loop;
  std::optional<BackgroundThread> background(std::in_place, loop);
  std::string done, told;
  const auto run = [&, here = std::this_thread::get_id()](char piece) {
    const auto work = [&, piece] {
      EXPECT_NE(std::this_thread::get_id(), here);
      done += piece;
      if (piece == 'b') throw RuntimeError(ErrorNumber::DiskFull);
    };
    background->Run(work, [&, piece](const std::exception_ptr& failure) { told += failure ? '!' : piece; });
  };
  for (const char piece : {'a', 'b', 'c'}) run(piece);
  EXPECT_TRUE(loop.RunUntil([&] { return told == "a!c"; }));
  for (const char piece : std::string(1000, 'd')) run(piece);
  background.reset();
  loop.Run();
  EXPECT_EQ(done, "abc" + std::string(1000, 'd'));
  EXPECT_EQ(told, "a!c");
}

}  // namespace
}  // namespace orven::test
