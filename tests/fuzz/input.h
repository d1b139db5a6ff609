// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace orven::fuzz {

using Bytes = std::span<const std::uint8_t>;

/// Ends the program where a promise is broken.
inline void Require(bool kept) {
  if (!kept) std::abort();
}

inline std::string TextOf(Bytes bytes) {
  return {bytes.begin(), bytes.end()};
}

/// What an input decides, byte by byte; zeros when it has no more.
class Choices {
 public:
  explicit Choices(Bytes bytes) : rest_(bytes) {}

  bool Any() const { return !rest_.empty(); }

  std::uint8_t Byte() {
    if (rest_.empty()) return 0;
    const std::uint8_t byte = rest_.front();
    rest_ = rest_.subspan(1);
    return byte;
  }

  /// A number from 0 to `end` - 1; `end` is at most 256.
  std::size_t Below(std::size_t end) { return end == 0 ? 0 : Byte() % end; }

  Bytes Take(std::size_t size) {
    const Bytes taken = rest_.first(std::min(size, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  /// One byte that tells the length (at most 255), then so many.
  Bytes Piece() {
    const std::size_t size = Byte();
    return Take(size);
  }

  Bytes Rest() { return Take(rest_.size()); }

 private:
  Bytes rest_;
};

/// Where files cost no disk, if there is such a place.
inline std::string MemoryFolder() {
  return std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path().string();
}

/// An input that is a file's content, and behind `mark`, if that is in it, what is done with the file.
inline std::pair<std::string, Choices> ContentAndChoices(Bytes input, std::string_view mark) {
  const auto found =
      std::search(input.begin(), input.end(), mark.begin(), mark.end(),
                  [](auto byte, char letter) { return byte == static_cast<std::uint8_t>(letter); });
  const auto size = static_cast<std::size_t>(found - input.begin());
  return {TextOf(input.first(size)), Choices(input.subspan(std::min(size + mark.size(), input.size())))};
}

}  // namespace orven::fuzz
