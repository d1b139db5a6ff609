// SPDX-License-Identifier: GPL-3.0-or-later
// Recording: what is on disk during and after a recording, even when disks fail; the level and the monitor.
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

bool IsFaulty(int descriptor) {
  std::error_code unknown;
  const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), unknown);
  return !disk.folder.empty() && path.string().starts_with(disk.folder);
}

void WaitAt(std::size_t offset) {
  if (offset < disk.hangs_from) return;
  ++disk.held;
  Eventually([offset] { return offset < disk.hangs_from; });
  --disk.held;
}

Samples Block(int value) {
  return Samples(kBlockSamples, static_cast<std::int16_t>(value));
}

class Record : public AudioTest {
 protected:
  void Capture() {
    ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
    line.Capture(spoken);
  }

  /// Waits until `folder` has only one file, whose name ends in `suffix` and which holds `samples`. Returns
  /// its path.
  std::string OnlyFile(const std::string& folder, const std::string& suffix, const Samples& samples) {
    std::string path;
    EXPECT_TRUE(Eventually([&] {
      std::error_code missing;
      std::filesystem::directory_iterator file(folder, missing), none;
      path = file == none ? "" : file->path().string();
      return path.ends_with(suffix) && Read(path) == samples && ++file == none;
    })) << path;
    return path;
  }

  void ExpectSavedAs(const std::string& path) {
    ASSERT_EQ(kWaveOk, control->StopRecordToFile(path));
    EXPECT_EQ(spoken, Read(path));
  }

  const Samples spoken = Noise(5 * kSampleRate);
  const test::ScratchFolder other;  ///< for other files
  const std::string kept = rescue / "kept";
};

TEST_F(Record, TheFileHoldsExactlyWhatWasCaptured) {
  PutWave(other / "mulaw.wav", spoken, SF_FORMAT_ULAW);
  for (const bool to_disk : {true, false}) {
    for (const bool pcm : {true, false}) {
      PutFile(message, std::string(1'000'000, 'x'));  // an older recording
      control->SetRecordToDisk(to_disk);
      ASSERT_EQ(kWaveOk, control->StartRecord(kLine, pcm ? kPcm : kMuLaw));
      EXPECT_TRUE(control->IsRecording());
      line.Capture(spoken);
      ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
      EXPECT_FALSE(control->IsRecording() || line.sink);
      EXPECT_EQ(pcm ? spoken : Read(other / "mulaw.wav"), Read(message));
      EXPECT_EQ(1U, messages.Count("")) << "a temporary file was left behind";
    }
  }
}

TEST_F(Record, InvalidRequestsAreRefused) {
  for (const WaveFormat& wrong :
       {WaveFormat{1, 2, 16, 8000}, {1, 1, 8, 8000}, {7, 1, 16, 8000}, {1, 1, 16, 11025}}) {
    EXPECT_EQ(kWaveBadFormat, control->QueryRecordFormat(kLine, 1, wrong));
    EXPECT_EQ(kWaveBadFormat, control->StartRecord(kLine, wrong));
  }
  EXPECT_EQ(kWaveOk, control->QueryRecordFormat(kLine, 1, kMuLaw));
  EXPECT_EQ(kWaveNoDevice, control->QueryRecordFormat(kLine + 7, 1, kPcm));
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine + 7, kPcm));
  line.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartRecord(kLine, kPcm));
  line.refuse = kWaveOk;
  EXPECT_EQ(kWaveNotRecording, control->StopRecordToFile(message));
  Capture();
  EXPECT_EQ(kWaveBusy, control->StartRecord(kCard, kPcm));
}

TEST_F(Record, LevelIsThePeakOfTheLastBlockInThousandths) {
  ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
  for (const auto& [sample, level] :
       std::map<int, int>{{-32768, 1000}, {-33, 1}, {0, 0}, {20000, 610}, {32767, 999}}) {
    Samples block = kSilence;
    block[77] = static_cast<std::int16_t>(sample);
    line.Capture(block);
    EXPECT_EQ(level, control->InputLevel(0ms));
  }
  const auto now = std::chrono::steady_clock::now();
  for (const auto& [from, sample] :
       std::map<std::chrono::milliseconds, int>{{-900ms, 6554}, {-400ms, 9831}, {60s, 1}})
    line.sink->Hear(Block(sample), now + from);
  EXPECT_EQ(200, control->InputLevel(800ms)) << "each moment has the level of its own block";
  EXPECT_EQ(300, control->InputLevel(0ms));
  EXPECT_TRUE(Eventually([&] { return control->InputLevel(0ms) == 0; }))
      << "the device delivers no more audio";
  line.Capture(Block(20000));
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(0, control->InputLevel(0ms));
  for (const auto& [device, level] : std::map<int, int>{{kCard, 0}, {kLine, 500}}) {
    ASSERT_EQ(kWaveOk, control->PlayFile(message, device)) << "during a greeting";
    line.Capture(Block(16384));
    EXPECT_EQ(level, control->InputLevel(0ms));
    control->StopPlay();
  }
  EXPECT_EQ(0, control->InputLevel(0ms));
}

TEST_F(Record, TheMonitorPlaysTheCallerInOrderAndWithAShortDelay) {
  EXPECT_EQ(kWaveNotRecording, control->StartMonitor(kCard, kPcm));
  Capture();  // before anyone listens
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(7, kMuLaw));
  EXPECT_EQ(kWaveBadFormat, control->StartMonitor(kCard, {1, 2, 16, 44100}));
  card.refuse = kWaveNoDevice;
  EXPECT_EQ(kWaveNoDevice, control->StartMonitor(kCard, kMuLaw));
  card.refuse = kWaveOk;
  ASSERT_EQ(kWaveOk, control->StartMonitor(kCard, kMuLaw));
  EXPECT_EQ(kWaveBusy, control->StartMonitor(kCard, kMuLaw));
  EXPECT_EQ(Block(0), card.Pull());
  for (int i = 1; i <= 100; ++i) {
    line.Capture(Block(i));
    EXPECT_EQ(Block(i - 1), card.Pull()) << "one block is buffered";
  }
  for (int i = 101; i <= 110; ++i) line.Capture(Block(i));  // the card has stalled
  for (const int i : {109, 110, 0}) EXPECT_EQ(Block(i), card.Pull()) << "the delay stays short";
  ASSERT_EQ(kWaveOk, control->StopRecordToFile(message));
  EXPECT_EQ(Block(0), card.Pull()) << "the monitor goes on with silence";
  EXPECT_EQ(kWaveOk, control->StopMonitor());
  EXPECT_EQ(std::nullopt, card.Pull());
}

TEST_F(Record, ABadDestinationIsReportedAndTheRecordingIsKeptUnderANewName) {
  PutFile(other / "file", "");
  const std::map<std::string, std::string> new_names{{"file/m.wav", "m.unsaved-1.wav"},
                                                     {"missing/m.wav", "m.unsaved-2.wav"},
                                                     {std::string(300, 'x'), ".wav.part"}};
  for (const auto& [name, new_name] : new_names) {
    control->SetRecordToDisk(name.ends_with("/m.wav"));
    Capture();
    EXPECT_EQ(kWavePathNotFound, control->StopRecordToFile(other / name)) << name;
    const std::string text = control->RecordErrorText(kWavePathNotFound);
    EXPECT_TRUE(text.ends_with(new_name + "\".")) << text;
    const auto start = text.find('"') + 1;
    EXPECT_EQ(spoken, Read(text.substr(start, text.size() - start - 2)));
  }
  Capture();
  EXPECT_EQ("The folder for the recording was not found.", control->RecordErrorText(kWavePathNotFound));
}

TEST_F(Record, AMissingFolderOrAFullOrLyingDiskMovesTheRecordingToTheRescueFolder) {
  const test::ScratchFolder elsewhere("/dev/shm");  // another file system: files are copied there
  for (const std::string fault : {"missing", "full", "lying"}) {
    control->SetRecordFolder(fault == "missing" ? "" : messages / "");
    if (fault == "full") disk.limit = 30'001;
    if (fault == "lying") disk.sync_error = EIO;
    Capture();
    OnlyFile(kept, ".wav.part", spoken);
    EXPECT_TRUE(Eventually([&] { return messages.Count("") == 0; }));
    ExpectSavedAs(fault == "full" ? elsewhere / "m.wav" : message);
    if (fault == "lying")
      OnlyFile(kept, "m.unsaved-1.wav", spoken);  // in case the disk did not keep the other copy
    std::filesystem::remove(message);
    disk.Mend();
  }
}

TEST_F(Record, WithoutSpaceAnywhereTheRecordingStaysInMemoryUntilThereIsSpace) {
  PutFile(kept, "a file where the folder belongs");
  for (const bool ends : {false, true}) {
    PutFile(message, "old");
    disk.limit = 30'001;
    Capture();
    EXPECT_EQ(kWaveDiskFull, control->StopRecordToFile(message));
    EXPECT_EQ("The disk is full. The recording waits in memory for a place on a disk.",
              control->RecordErrorText(kWaveDiskFull));
    EXPECT_EQ("old", ContentOf(message)) << "an old message survives the failure of the new one";
    if (!ends) std::filesystem::remove(message);
    disk.Mend();
    if (ends) control.reset();
    const std::string name = ends ? "m.unsaved-1.wav" : "m.wav";
    EXPECT_TRUE(Eventually([&] { return Read(messages / name) == spoken; }));
    EXPECT_EQ(ends ? 2U : 1U, messages.Count(""));
  }
}

TEST_F(Record, StoppingDoesNotWaitForASlowDisk) {
  disk.hangs_from = SIZE_MAX - 1;
  for (const std::string name : {"1.wav", "2.wav"}) {
    Capture();
    ASSERT_TRUE(Eventually([&] { return disk.held > 0 && messages.Count(".recording") == 1; }));
    ExpectSavedAs(messages / name);  // would hang if it waited for the disk
  }
}

}  // namespace

void FaultyDisk::Mend() {
  limit = hangs_from = SIZE_MAX;
  sync_error = 0;
  Eventually([this] { return held == 0; });
}

// The program's definitions take precedence over those of the C library, even for shared libraries.

extern "C" ssize_t read(int descriptor, void* data, size_t count) {
  if (IsFaulty(descriptor)) WaitAt(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_CUR)));
  return syscall(SYS_read, descriptor, data, count);
}

extern "C" ssize_t pwrite(int descriptor, const void* data, size_t count, off_t offset) {
  const std::size_t limit = IsFaulty(descriptor) ? disk.limit.load() : SIZE_MAX;
  count = std::min(count, limit - std::min(static_cast<std::size_t>(offset), limit));
  if (count > 0) return syscall(SYS_pwrite64, descriptor, data, count, offset);
  errno = ENOSPC;
  return -1;
}

extern "C" int fdatasync(int descriptor) {
  if (!IsFaulty(descriptor)) return static_cast<int>(syscall(SYS_fdatasync, descriptor));
  WaitAt(SIZE_MAX - 1);
  errno = disk.sync_error;
  return errno == 0 ? 0 : -1;
}

}  // namespace orven::testing
