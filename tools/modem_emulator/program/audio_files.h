// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace orven::emulator {

/// The samples of a mono sound file of 8000 samples a second. Throws std::runtime_error.
std::vector<std::int16_t> ReadAudio(const std::string& path);

/// A growing WAV file, valid after each Append. Does nothing when the path is empty.
class GrowingWav {
 public:
  explicit GrowingWav(std::string path) : path_(std::move(path)) {}
  /// Starts a new, empty file. Throws std::runtime_error.
  void Begin();
  /// Appends the part of `all` that is not in the file yet.
  void Append(const std::vector<std::int16_t>& all);

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::string path_;
  std::unique_ptr<SNDFILE, Close> file_;
  std::size_t written_ = 0;
};

/// The same for plain bytes.
class GrowingFile {
 public:
  explicit GrowingFile(std::string path) : path_(std::move(path)) {}
  void Begin();
  void Append(const std::vector<std::uint8_t>& all);

 private:
  std::string path_;
  std::ofstream file_;
  std::size_t written_ = 0;
};

}  // namespace orven::emulator
