// SPDX-License-Identifier: GPL-3.0-or-later
// A line's sound between the program's thread and that of the call.
#include "adapters/line/service/line_audio.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

#include "platform/wave.h"

namespace orven::test {
namespace {

/// Not to be used by another thread once it was stopped: the count is nobody's but the user's.
struct CountedSound : AudioSource, AudioSink {
  bool Read(std::span<std::int16_t> /*block*/) override { return ++uses > 0; }
  void Write(std::span<const std::int16_t> /*block*/) override { ++uses; }
  int uses = 0;
};

TEST(LineAudio, WhatWasStoppedIsNotTouchedAnyMore) {
  LineAudio audio;
  std::atomic<int> rounds = 0;
  std::atomic<bool> over = false;
  std::thread call([&] {
    std::array<std::int16_t, kBlockSamples> block{};
    while (!over.load(std::memory_order_relaxed)) {
      audio.Fetch(block);
      audio.Deliver(block);
      rounds.fetch_add(1, std::memory_order_relaxed);
    }
  });
  const auto wait = [&rounds] {
    const int enough = rounds.load(std::memory_order_relaxed) + 2;
    while (rounds.load(std::memory_order_relaxed) < enough) std::this_thread::yield();
  };
  for (int i = 0; i < 100; ++i) {
    CountedSound sound;
    EXPECT_EQ(audio.StartPlay(sound), kWaveOk);
    EXPECT_EQ(audio.StartRecord(sound), kWaveOk);
    wait();
    audio.StopPlay();
    audio.StopRecord();
    const int uses = sound.uses;
    EXPECT_GE(uses, 2);
    wait();
    EXPECT_EQ(sound.uses, uses);
  }
  over = true;
  call.join();
}

}  // namespace
}  // namespace orven::test
