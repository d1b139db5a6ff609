// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "adapters/audio/file_wave_control.h"
#include "integration/audio/disk_faults.h"
#include "integration/audio/sounds.h"
#include "integration/audio/test_device.h"
#include "integration/audio/test_loop.h"

namespace orven::testing {

inline constexpr std::int32_t kLine = kFirstLineWaveDevice;
inline constexpr std::int32_t kCard = 0;
inline constexpr std::size_t kSecond = kSampleRate;  ///< in samples
inline constexpr std::size_t kBlock = kBlockSamples;
inline constexpr WaveFormat kPcm{kWaveFormatPcm, 1, 16, 8000};
inline constexpr WaveFormat kMuLaw{kWaveFormatMuLaw, 1, 8, 8000};

/// A wave control with a line, a sound card, and folders of its own.
class AudioTest : public ::testing::Test, public WaveEvents {
 protected:
  AudioTest() {
    devices.numbered = {{kLine, &line}, {kCard, &card}};
    NewControl();
  }

  ~AudioTest() override {
    for (DiskFaults* disk : {&folder_disk, &messages_disk, &rescue_disk}) disk->Release();
  }

  void NewControl() {
    control = std::make_unique<FileWaveControl>(loop, devices, rescue.Path());
    control->SetEvents(this);
    control->SetRecordFolder(messages.Path());
    control->SetRecordToDisk(true);
  }

  void PlayFinished() override {
    ++finished;
    if (on_finished) on_finished();
  }

  TempFolder folder;    ///< for anything
  TempFolder messages;  ///< the record folder
  TempFolder rescue;
  DiskFaults folder_disk{folder.Path()};
  DiskFaults messages_disk{messages.Path()};
  DiskFaults rescue_disk{rescue.Path()};
  TestLoop loop;
  TestDevice line;
  TestDevice card;
  TestDevices devices;
  int finished = 0;  ///< PlayFinished events
  std::function<void()> on_finished;
  std::unique_ptr<FileWaveControl> control;
};

}  // namespace orven::testing
