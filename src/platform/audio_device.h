// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orven {

/// Every audio device moves 8000 samples a second, mono, 16-bit signed: the telephone's own rate
/// (ITU-T G.711).
inline constexpr int kSampleRate = 8000;

/// Samples in one block of 20 ms, the usual RTP packet (RFC 3551, section 4.2).
inline constexpr int kBlockSamples = 160;

/// Where a playing device takes its samples from.
class AudioSource {
 public:
  virtual ~AudioSource() = default;

  /// Fills `block` (kBlockSamples samples), with silence where samples are missing for now, and
  /// returns true; or returns false, leaving the block alone, when everything has been read. Called
  /// on the device's own thread every 20 ms: must not wait, access a disk or call the device.
  virtual bool Read(std::span<std::int16_t> block) = 0;

  /// The device has stopped by itself (it was unplugged, its server died): Read will not be called again.
  /// Called at most once, never after StopPlay or after Read returned false, on a thread of the device or on
  /// the user-interface thread, with the same rules as Read.
  virtual void Gone() {}

  /// Its audio arises while it is played: the device plays it with as little delay as it can. Others are
  /// read up to 200 ms ahead, at most 100 ms at once. The same for the life of the source.
  virtual bool Live() const { return false; }
};

/// Where a recording device puts its samples. The device's own thread calls; the rules of AudioSource::Read.
class AudioSink {
 public:
  virtual ~AudioSink() = default;

  /// What is heard now, for levels and for listening along: one block (kBlockSamples samples) for each 20 ms.
  /// `at` is the moment from which it counts, in the order of the blocks; a device that wakes up less often
  /// delivers blocks up to 100 ms ahead of it.
  virtual void Hear(std::span<const std::int16_t> /*block*/, std::chrono::steady_clock::time_point /*at*/) {}

  /// Somebody listens along: what is heard should come as soon as it can, not in groups. Any thread.
  virtual bool Live() const { return false; }

  /// What is kept: the samples that follow those before, any number of them. A device that waits for late
  /// audio passes it on later than it was heard.
  virtual void Write(std::span<const std::int16_t> samples) = 0;
};

/// One numbered wave device of a telephone line or a sound card. It plays from one source and
/// records into one sink at a time. User-interface thread; all operations return at once.
class AudioDevice {
 public:
  virtual ~AudioDevice() = default;

  /// Starts pulling blocks from `source` until it returns false or StopPlay. Returns kWaveOk, or
  /// kWaveBusy while another source plays, or kWaveNoDevice when the device cannot play now.
  virtual std::int32_t StartPlay(AudioSource& source) = 0;

  /// Ends playing. After it returns, `Read` is not running and will not be called. Idempotent.
  virtual void StopPlay() = 0;

  /// The playing source, silent so far, now has its first samples: the device need not wait for its next
  /// block. Any thread; returns at once.
  virtual void SourceReady() {}

  /// Starts handing captured blocks to `sink` until StopRecord; same results as StartPlay.
  virtual std::int32_t StartRecord(AudioSink& sink) = 0;

  /// Ends recording; the same guarantee for `Write`. Idempotent.
  virtual void StopRecord() = 0;
};

/// All wave devices by number. Sound cards have the numbers 0 to 999 (the setting `Sound`), lines the numbers
/// from kFirstLineWaveDevice on.
class AudioDevices {
 public:
  virtual ~AudioDevices() = default;

  /// The device, or nullptr when there is none with that number (now). The device lives as long as
  /// this directory.
  virtual AudioDevice* Find(std::int32_t number) = 0;
};

/// Wave device number of the line with index 0; line i has this number plus i.
inline constexpr std::int32_t kFirstLineWaveDevice = 1000;

/// A number that no wave device has.
inline constexpr std::int32_t kNoWaveDevice = -1;

/// The names of the sound cards. User-interface thread; never waits.
class SoundCardNames {
 public:
  virtual ~SoundCardNames() = default;

  /// The names of the sound cards' outputs, as far as known; the index is the card's number,
  /// the setting `Sound`; 0 is the desktop's default. An unplugged card keeps its number and has no name.
  /// Also starts a new search: a card that was just plugged in appears in a later answer.
  virtual std::vector<std::string> Names() = 0;
};

}  // namespace orven
