// SPDX-License-Identifier: GPL-3.0-or-later
// Records a counting signal into the folder given as its argument, in real time times ten, until it is
// killed; ends by itself after a minute.
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "adapters/audio/file_wave_control.h"

namespace {

using namespace std::chrono_literals;

/// No event is ever posted: nothing is played.
class NoLoop : public orven::EventLoop {
 public:
  void Post(Task /*task*/) override {}
  void After(std::chrono::milliseconds /*delay*/, Task /*task*/) override {}
  std::unique_ptr<orven::Timer> MakeTimer(Task /*tick*/) override { return nullptr; }
};

class OneDevice : public orven::AudioDevice, public orven::AudioDevices {
 public:
  orven::AudioSink* sink = nullptr;

  std::int32_t StartPlay(orven::AudioSource& /*source*/) override { return orven::kWaveNoDevice; }
  void StopPlay() override {}
  std::int32_t StartRecord(orven::AudioSink& to) override {
    sink = &to;
    return orven::kWaveOk;
  }
  void StopRecord() override { sink = nullptr; }
  orven::AudioDevice* Find(std::int32_t /*number*/) override { return this; }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  NoLoop loop;
  OneDevice device;
  orven::FileWaveControl control(loop, device, "");
  control.SetRecordToDisk(true);
  control.SetRecordFolder(argv[1]);
  if (control.StartRecord(0, orven::WaveFormat{}) != orven::kWaveOk) return 1;
  unsigned count = 0;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 30000; ++i) {
    std::int16_t block[orven::kBlockSamples];
    for (auto& sample : block) sample = static_cast<std::int16_t>(count++ % 30000);
    device.sink->Write(block);
    std::this_thread::sleep_until(start + i * 2ms);
  }
  return 0;
}
