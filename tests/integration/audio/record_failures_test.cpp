// SPDX-License-Identifier: GPL-3.0-or-later
// Recording onto disks that fail: what was captured is always found somewhere.
#include <cerrno>

#include "integration/audio/audio_test.h"

namespace orven::testing {
namespace {

class RecordFailures : public AudioTest {
 protected:
  void Capture() {
    ASSERT_EQ(kWaveOk, control->StartRecord(kLine, kPcm));
    line.Capture(spoken);
  }

  /// The whole recording is the only file in the folder, under a name that ends in `suffix`.
  void ExpectOnlyFile(const TempFolder& in, const std::string& suffix) {
    EXPECT_TRUE(Eventually([&] {
      const auto names = in.Names();
      return names.size() == 1 && names[0].ends_with(suffix) && Read(in / names[0]) == spoken;
    })) << suffix;
  }

  void ExpectSavedAs(const std::string& path) {
    ASSERT_EQ(kWaveOk, control->StopRecordToFile(path));
    EXPECT_EQ(spoken, Read(path));
  }

  const Samples spoken = Noise(5 * kSecond);
  const TempFolder folder;  ///< for anything
};

TEST_F(RecordFailures, AMissingRecordFolderIsReplacedByTheRescueFolderAndAnyFileSystemReachedByCopying) {
  const TempFolder elsewhere(std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp");
  PutFile(folder / "file", "");
  std::filesystem::remove(rescue.Path());
  for (const std::string& record_folder :
       {folder / "missing", folder / "file", std::string(), elsewhere.Path()}) {
    const TempFolder& growing = record_folder == elsewhere.Path() ? elsewhere : rescue;
    control->SetRecordFolder(record_folder);
    Capture();
    ExpectOnlyFile(growing, ".wav.part");
    ExpectSavedAs(message);
    EXPECT_EQ(1U, messages.Names().size() + growing.Names().size());
  }
}

TEST_F(RecordFailures, ABadDestinationIsReportedAndTheRecordingKeptUnderANewName) {
  PutFile(folder / "file", "");
  std::filesystem::create_directory(folder / "folder.wav");
  for (const auto& [name, kept] : std::map<std::string, std::string>{{"file/m.wav", "m.unsaved-1.wav"},
                                                                     {"folder.wav", "folder.unsaved-1.wav"},
                                                                     {"missing/m.wav", "m.unsaved-2.wav"},
                                                                     {std::string(300, 'x'), ".wav.part"}}) {
    control->SetRecordToDisk(name.ends_with("/m.wav"));
    Capture();
    const std::int32_t result = name == "folder.wav" ? kWaveWriteFailed : kWavePathNotFound;
    EXPECT_EQ(result, control->StopRecordToFile(folder / name)) << name;
    const std::string text = control->RecordErrorText(result);
    EXPECT_TRUE(text.ends_with(kept + "\".")) << text;
    const auto start = text.find('"') + 1;
    EXPECT_EQ(spoken, Read(text.substr(start, text.size() - start - 2)));
  }
  Capture();
  EXPECT_EQ("The folder for the recording was not found.", control->RecordErrorText(kWavePathNotFound));
}

TEST_F(RecordFailures, AFullOrLyingDiskMovesTheRecordingToTheRescueFolder) {
  for (const bool full : {true, false}) {
    full ? disk.limit = 30'001 : disk.sync_error = EIO;
    Capture();
    ExpectOnlyFile(rescue, ".wav.part");
    EXPECT_TRUE(Eventually([&] { return messages.Names().empty(); }));
    ExpectSavedAs(full ? folder / "m.wav" : message);
    if (!full) ExpectOnlyFile(rescue, "m.unsaved-1.wav");  // in case the disk did not keep the other
    disk.Mend();
  }
}

TEST_F(RecordFailures, WithoutSpaceAnywhereTheRecordingWaitsForItsPlace) {
  std::filesystem::remove(rescue.Path());
  PutFile(rescue.Path(), "a file where the folder belongs");
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
    EXPECT_EQ(ends ? 2U : 1U, messages.Names().size());
  }
}

TEST_F(RecordFailures, StoppingDoesNotWaitForASlowDisk) {
  disk.hold_syncs = true;
  for (const std::string name : {"1.wav", "2.wav"}) {
    Capture();
    ASSERT_TRUE(Eventually([&] { return disk.held > 0 && messages.Names(".part").size() == 1; }));
    ExpectSavedAs(messages / name);  // would never return
  }
}

}  // namespace
}  // namespace orven::testing
