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

/// The samples of a sound file of one channel, 8000 a second. Throws std::runtime_error.
std::vector<std::int16_t> ReadAudio(const std::string& path);

/// A WAV file that grows, valid after each Append. No file when the path is empty.
class GrowingWav {
 public:
  explicit GrowingWav(std::string path) : path_(std::move(path)) {}
  /// Begins anew. Throws std::runtime_error.
  void Begin();
  /// What of `all` is not in the file yet.
  void Append(const std::vector<std::int16_t>& all);

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::string path_;
  std::unique_ptr<SNDFILE, Close> file_;
  std::size_t written_ = 0;
};

/// The same with plain bytes.
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
