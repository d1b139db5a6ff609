// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.h"

namespace orven {

/// A few lines of a text file as they stand in it, line ends included.
struct LogPiece {
  std::string bytes;
  std::vector<std::uint16_t> ends;  ///< where each line ends in `bytes`
};

/// Lines of a file of any size, kept as the file's own bytes and two bytes a line.
class LogLines {
 public:
  std::size_t Count() const { return count_; }

  /// The line of this 0-based index, without its end. Stays valid until Clear.
  std::string_view Line(std::size_t index) const;

  void Append(LogPiece piece);
  void Clear();

 private:
  std::vector<LogPiece> pieces_;
  std::vector<std::size_t> first_lines_;  ///< of each piece
  std::size_t count_ = 0;
};

/// Reads one file from its beginning, a piece at a time. Any thread, one at a time.
class LogReading {
 public:
  /// So little work is in a piece that it never holds anybody up.
  static constexpr std::size_t kMostLinesInPiece = 1024;
  /// A longer line, as binary files have them, counts as several: a window must draw it.
  static constexpr std::size_t kMostBytesInLine = 2048;
  /// What is beyond is left out: it would cost its reader the computer's memory.
  static constexpr std::uint64_t kMostBytes = std::uint64_t{512} << 20U;
  static constexpr std::size_t kMostLines = 50'000'000;

  LogReading(const Files& files, std::string path) : files_(files), path_(std::move(path)) {}

  /// The next lines; none at the end. Throws as Files::ReadPart does.
  LogPiece Next();

  /// Whether the file goes on where Next has ended.
  bool LeftOut() const { return left_out_; }

 private:
  LogPiece Cut();
  std::size_t EndOfLine(std::size_t begin) const;
  void ReadOn();

  const Files& files_;
  std::string path_;
  std::uint64_t offset_ = 0;
  std::size_t lines_ = 0;
  std::string pending_;  ///< read, but not handed out yet
  bool at_end_ = false;
  bool left_out_ = false;
};

}  // namespace orven
