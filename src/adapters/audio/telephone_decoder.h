// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <samplerate.h>
#include <sndfile.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/audio_device.h"

namespace orven {

struct CloseSoundFile {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, CloseSoundFile>;

/// Opens the regular file at `path` for reading and fills `info`; reads its header only. Returns
/// kWaveOk, kWaveFileNotFound or kWaveFileUnreadable.
std::int32_t OpenSoundFile(const std::string& path, SoundFile& file, SF_INFO& info);

/// Reads a sound file of any rate and number of channels as what a telephone carries: 8000 samples a
/// second, mono (the mean of the channels), 16-bit. What needs no conversion passes bit by bit. One
/// thread at a time.
class TelephoneDecoder {
 public:
  /// Opens the file, reading its header only; one without samples is at its end at once. Results as
  /// OpenSoundFile, also kWaveBadFormat for a rate that is more than 256 times higher or lower than the
  /// telephone's. `decoder` is set on kWaveOk.
  static std::int32_t Open(const std::string& path, std::unique_ptr<TelephoneDecoder>& decoder);

  /// Whether SkipTo can be used.
  bool CanSkip() const { return seekable_; }

  /// Length of the file as its header tells it.
  std::chrono::milliseconds Length() const;

  /// Makes the next Read begin at `position`, which is within the file. False when that part of the
  /// file cannot be read. Before the first Read only.
  bool SkipTo(std::chrono::milliseconds position);

  /// Fills `out` from its beginning and returns how many samples it got: fewer than asked for at the
  /// end of the file, or where the rest of it cannot be read.
  std::size_t Read(std::span<std::int16_t> out);

 private:
  struct DeleteResampler {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };

  TelephoneDecoder(SoundFile file, const SF_INFO& info);

  std::size_t ReadMono(std::span<float> out);
  std::size_t Resample(std::span<float> out);

  SoundFile file_;
  std::size_t channels_;
  sf_count_t frames_in_file_;
  int rate_;  ///< the file's, samples a second
  bool seekable_;
  double ratio_;                                           ///< output rate / input rate
  std::unique_ptr<SRC_STATE, DeleteResampler> resampler_;  ///< none at the telephone's own rate
  std::vector<float> frames_;                              ///< interleaved, as read
  std::vector<float> input_;                               ///< mono, waiting for the resampler
  std::span<float> waiting_;                               ///< the part of input_ not resampled yet
  bool file_ended_ = false;
};

}  // namespace orven
