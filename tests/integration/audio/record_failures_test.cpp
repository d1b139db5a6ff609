// SPDX-License-Identifier: GPL-3.0-or-later
// Recording onto disks that fail: whatever happens, what was captured is found somewhere.
#include <sys/mount.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

class RecordFailures : public AudioTest {
 protected:
  const Samples spoken = Noise(5 * kSecond);
  const std::string message = messages / "m.wav";

  void Capture() {
    ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
    line.Capture(spoken);
  }

  /// The recording as working file or as kept one, complete, and nothing else in that folder.
  void ExpectOnlyFile(const TempFolder& in, const std::string& suffix) {
    EXPECT_TRUE(Eventually([&] {
      return in.Names().size() == 1 && in.Names(suffix).size() == 1 &&
             ReadWithSndfile(in / in.Names(suffix)[0]) == spoken;
    })) << in.Names().size()
        << " files";
  }

  void ExpectKept(std::int32_t code, const std::string& path) {
    EXPECT_NE(std::string::npos, control->RecordErrorText(code).find("\"" + path + "\""))
        << control->RecordErrorText(code);
    EXPECT_EQ(spoken, ReadWithSox(path));
  }
};

TEST_F(RecordFailures, AMissingRecordFolderIsReplacedByTheRescueFolder) {
  WriteText(folder / "file", "");
  std::filesystem::remove(rescue.Path());
  for (const std::string& bad : {folder / "missing", folder / "file", std::string()}) {
    control->SetRecordFolder(bad);
    Capture();
    ExpectOnlyFile(rescue, ".wav.part");
    ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
    EXPECT_EQ(spoken, ReadWithSox(message));
    EXPECT_TRUE(rescue.Names().empty());
  }
}

TEST_F(RecordFailures, ABadDestinationIsNamedAndTheRecordingKept) {
  WriteText(folder / "file", "");
  std::filesystem::create_directory(folder / "folder.wav");
  const std::vector<std::pair<std::string, std::int32_t>> cases{
      {folder / "missing/m.wav", kWavePathNotFound},
      {folder / "file/m.wav", kWavePathNotFound},
      {folder / ("m" + std::string(300, 'x')), kWavePathNotFound},
      {folder / "folder.wav", kWaveWriteFailed}};
  for (const bool to_disk : {true, false}) {
    control->SetRecordToDisk(to_disk);
    for (const auto& [path, code] : cases) {
      Capture();
      EXPECT_EQ(code, control->StopRecordToFile(path)) << path;
      if (path.size() > 300) continue;
      const std::string stem = std::filesystem::path(path).stem();
      const std::string kept = messages / (stem + ".unsaved-1.wav");
      ExpectKept(code, kept);
      std::filesystem::remove(kept);
    }
  }
  Capture();
  EXPECT_EQ(std::string::npos, control->RecordErrorText(kWaveWriteFailed).find("unsaved"))
      << "of an earlier one";
}

TEST_F(RecordFailures, KeptRecordingsReplaceEachOtherNever) {
  for (const std::string name : {"m.unsaved-1.wav", "m.unsaved-2.wav"}) {
    Capture();
    EXPECT_EQ(kWavePathNotFound, control->StopRecordToFile(folder / "missing/m.wav"));
    ExpectKept(kWavePathNotFound, messages / name);
  }
}

TEST_F(RecordFailures, AFullDiskMovesTheRecordingToTheRescueFolder) {
  messages_disk.LimitSize(30'001);
  Capture();
  ExpectOnlyFile(rescue, ".wav.part");
  EXPECT_TRUE(Eventually([&] { return messages.Names().empty(); }));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(folder / "m.wav"));
  EXPECT_EQ(spoken, ReadWithSox(folder / "m.wav"));
}

TEST_F(RecordFailures, WithoutSpaceAnywhereTheRecordingWaitsForItsPlace) {
  for (const bool dying : {false, true}) {
    messages_disk.LimitSize(30'001);
    rescue_disk.LimitSize(0);
    Capture();
    EXPECT_EQ(kWaveDiskFull, control->StopRecordToFile(message));
    EXPECT_NE(std::string::npos, control->RecordErrorText(kWaveDiskFull).find("waits in memory"));
    messages_disk.LimitSize({});
    if (dying) control.reset();
    ExpectOnlyFile(messages, "m.wav");
    std::filesystem::remove(message);
  }
}

TEST_F(RecordFailures, AnOldMessageSurvivesTheFailureOfTheNewOne) {
  WriteText(message, "old");
  messages_disk.LimitSize(30'001);
  rescue_disk.LimitSize(0);
  Capture();
  EXPECT_EQ(kWaveDiskFull, control->StopRecordToFile(message));
  EXPECT_EQ(3U, std::filesystem::file_size(message));
}

TEST_F(RecordFailures, StoppingDoesNotWaitForASlowDisk) {
  messages_disk.HoldSyncs();
  for (const std::string name : {"1.wav", "2.wav"}) {
    Capture();
    ASSERT_TRUE(Eventually([&] { return messages_disk.Holds() && messages.Names(".part").size() == 1; }));
    ASSERT_EQ(kWaveOk, control->StopRecordToFile(messages / name));  // would never return
    EXPECT_EQ(spoken, ReadWithSox(messages / name));
  }
}

TEST_F(RecordFailures, WhatADiskDoesNotKeepIsWrittenElsewhereToo) {
  messages_disk.FailSync(EIO);
  Capture();
  ExpectOnlyFile(rescue, ".wav.part");
  EXPECT_TRUE(Eventually([&] { return messages.Names().empty(); }));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(spoken, ReadWithSox(message));
  ExpectOnlyFile(rescue, "m.unsaved-1.wav");
}

TEST_F(RecordFailures, AnotherFileSystemIsReachedByCopying) {
  const std::filesystem::path memory = "/dev/shm";
  struct stat here {};
  struct stat there {};
  if (stat(memory.c_str(), &there) != 0 || stat(folder.Path().c_str(), &here) != 0 ||
      here.st_dev == there.st_dev)
    GTEST_SKIP() << "one file system only";
  const TempFolder elsewhere(memory);
  control->SetRecordFolder(elsewhere.Path());
  Capture();
  ExpectOnlyFile(elsewhere, ".wav.part");
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(spoken, ReadWithSox(message));
  EXPECT_EQ(1U, messages.Names().size());
  EXPECT_TRUE(elsewhere.Names().empty());
}

/// A real, small file system.
class SmallDisk {
 public:
  explicit SmallDisk(std::string at)
      : at_(std::move(at)), mounted_(mount("none", at_.c_str(), "tmpfs", 0, "size=64k") == 0) {}
  ~SmallDisk() {
    if (mounted_) umount2(at_.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
  bool Mounted() const { return mounted_; }

 private:
  const std::string at_;
  const bool mounted_;
};

TEST_F(RecordFailures, ARealFullDiskLeavesTheRecordingInTheRescueFolder) {
  const SmallDisk disk(messages.Path());
  if (!disk.Mounted()) GTEST_SKIP() << "mounting is not permitted";
  Capture();
  ExpectOnlyFile(rescue, ".wav.part");
  EXPECT_EQ(kWaveDiskFull, control->StopRecordToFile(message));
  ExpectKept(kWaveDiskFull, rescue / "m.unsaved-1.wav");
  EXPECT_TRUE(messages.Names().empty());
}

}  // namespace
}  // namespace orven::testing
