// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/log_lines.h"

#include <algorithm>
#include <limits>

namespace orven {
namespace {

constexpr std::size_t kReadBytes = 48 * 1024;
static_assert(kReadBytes + LogReading::kMostBytesInLine < std::numeric_limits<std::uint16_t>::max(),
              "a piece holds what is read and the beginning of a line from before");

/// Whether a UTF-8 character goes on with this byte.
bool Continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

std::string_view LogLines::Line(std::size_t index) const {
  const auto after = std::upper_bound(first_lines_.begin(), first_lines_.end(), index);
  const auto number = static_cast<std::size_t>(after - first_lines_.begin()) - 1;
  const auto& piece = pieces_[number];
  const auto at = index - first_lines_[number];
  const std::size_t begin = at == 0 ? 0 : piece.ends[at - 1];
  auto line = std::string_view(piece.bytes).substr(begin, piece.ends[at] - begin);
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

void LogLines::Append(LogPiece piece) {
  if (piece.ends.empty()) return;
  first_lines_.push_back(count_);
  count_ += piece.ends.size();
  pieces_.push_back(std::move(piece));
}

void LogLines::Clear() {
  pieces_.clear();
  first_lines_.clear();
  count_ = 0;
}

LogPiece LogReading::Next() {
  while (true) {
    auto piece = Cut();
    if (!piece.ends.empty() || at_end_) return piece;
    ReadOn();
  }
}

void LogReading::ReadOn() {
  const auto part = files_.ReadPart(path_, offset_, kReadBytes);
  left_out_ = !part.empty() && (offset_ >= kMostBytes || lines_ >= kMostLines);
  at_end_ = part.empty() || left_out_;
  if (left_out_) return;
  offset_ += part.size();
  pending_ += part;
}

LogPiece LogReading::Cut() {
  LogPiece piece;
  std::size_t begin = 0;
  while (begin < pending_.size() && piece.ends.size() < kMostLinesInPiece) {
    const auto end = EndOfLine(begin);
    if (end == begin) break;
    piece.ends.push_back(static_cast<std::uint16_t>(end));
    begin = end;
  }
  piece.bytes = pending_.substr(0, begin);
  pending_.erase(0, begin);
  lines_ += piece.ends.size();
  return piece;
}

/// `begin` itself when more must be read to know it.
std::size_t LogReading::EndOfLine(std::size_t begin) const {
  const auto limit = std::min(begin + kMostBytesInLine, pending_.size());
  const auto feed = std::string_view(pending_).substr(begin, limit - begin).find('\n');
  if (feed != std::string_view::npos) return begin + feed + 1;
  if (limit - begin < kMostBytesInLine) return at_end_ ? limit : begin;
  // Not within a character, if these are characters.
  auto end = limit;
  while (limit - end < 4 && end < pending_.size() && Continues(pending_[end])) --end;
  return limit - end < 4 ? end : limit;
}

}  // namespace orven
