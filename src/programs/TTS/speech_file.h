// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "base/durable_file.h"

namespace orven {

/// An audio file that appears under its name only when it is complete: WAV, PCM 16-bit, mono. It grows under
/// a hidden name in the same folder (".ttstmp.wav.tts-x1Y2z3"). Failures throw std::runtime_error and remove
/// the hidden file. One thread at a time.
class SpeechFile {
 public:
  SpeechFile(std::string path, int sample_rate);

  /// Removes the file unless Appear has succeeded.
  ~SpeechFile();
  SpeechFile(const SpeechFile&) = delete;
  SpeechFile& operator=(const SpeechFile&) = delete;

  void Write(std::span<const std::int16_t> samples);

  /// Completes the file and waits until it is on the disk. Also throws when it contains only silence.
  void Finish();

  /// Renames the finished file to its name; replaces an older file.
  void Appear();

 private:
  struct CloseSound {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  [[noreturn]] void Fail(const std::string& reason) const;

  std::string path_;
  std::string hidden_path_;
  std::optional<Descriptor> file_;
  std::unique_ptr<SNDFILE, CloseSound> audio_;
  std::uint64_t samples_ = 0;
  bool heard_ = false;
};

/// Removes the hidden files that killed helpers have left for the file at `path`.
void RemoveLeftovers(const std::string& path);

/// Removes the file at `path` and its leftovers. Throws std::runtime_error when it cannot be removed.
void RemoveSpeechFile(const std::string& path);

}  // namespace orven
