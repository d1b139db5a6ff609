// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/log_viewer.h"

#include <algorithm>
#include <limits>

#include "base/runtime_error.h"

namespace orven {
namespace {

constexpr std::size_t kReadBytes = 48 * 1024;
static_assert(kReadBytes + LogReading::kMostBytesInLine < std::numeric_limits<std::uint16_t>::max(),
              "a piece holds one read and the beginning of a line from the previous read");

/// A continuation byte of UTF-8.
bool Continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

constexpr std::int32_t kBesideWidest = 50;  // pixels of margin after the widest line

Words CountText(std::size_t count) {
  auto digits = std::to_string(count);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), ",");
  }
  return (count == 1 ? Words("%1 line") : Words("%1 lines")).Arg(digits);
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

/// The end of the line that starts at `begin`; `begin` itself when more must be read first.
std::size_t LogReading::EndOfLine(std::size_t begin) const {
  const auto limit = std::min(begin + kMostBytesInLine, pending_.size());
  const auto feed = std::string_view(pending_).substr(begin, limit - begin).find('\n');
  if (feed != std::string_view::npos) return begin + feed + 1;
  if (limit - begin < kMostBytesInLine) return at_end_ ? limit : begin;
  // Does not split a UTF-8 character.
  auto end = limit;
  while (limit - end < 4 && end < pending_.size() && Continues(pending_[end])) --end;
  return limit - end < 4 ? end : limit;
}

/// A file that is being read, and its last piece.
struct LogViewer::Reading {
  LogReading file;
  LogPiece piece;
  std::exception_ptr failure;
};

void LogViewer::Open() {
  parts_.store.GetLogProperties();
  parts_.log.PurgeOldLogs(Refresher());
}

void LogViewer::ChangeFilter(const std::string& filter) {
  filter_ = filter;
  Refresh();
}

void LogViewer::Refresh() {
  const auto names = parts_.log.List(filter_);
  const bool still_there = std::find(names.begin(), names.end(), selected_) != names.end();
  window_.ShowFiles(names, still_there ? selected_ : "");
  if (!still_there) Select("");
  if (names.empty()) window_.ShowState(Words("There are no such logs."));
}

void LogViewer::Select(const std::string& file_name) {
  reading_.reset();
  selected_ = file_name;
  window_.ShowLineCount(0);
  lines_.Clear();
  widest_ = 0;
  window_.ShowExtent(0);
  window_.ShowState({});
  if (selected_.empty()) return;
  reading_ = std::make_shared<Reading>(Reading{{parts_.files, parts_.log.PathOf(selected_)}, {}, {}});
  ReadNext();
}

void LogViewer::ReadNext() {
  const auto show = lifeline_.Bind([this, reading = reading_] {
    if (reading == reading_) Show(*reading);
  });
  parts_.background.Run([reading = reading_] { reading->piece = reading->file.Next(); },
                        [reading = reading_, show](const std::exception_ptr& failure) {
                          reading->failure = failure;
                          show();
                        });
}

void LogViewer::Show(Reading& reading) {
  const auto first = lines_.Count();
  if (!reading.failure) lines_.Append(std::move(reading.piece));
  const auto count = lines_.Count();
  if (count > first) {
    window_.ShowLineCount(count);
    Measure(first);
    window_.ShowState(Words("Reading… %1").Arg(CountText(count)));
    ReadNext();
    return;
  }
  const bool left_out = reading.file.LeftOut();
  window_.ShowState(reading.failure ? ReasonOf(reading.failure)
                    : left_out ? Words("%1, the rest of this large file is left out").Arg(CountText(count))
                               : CountText(count));
  reading_.reset();
}

void LogViewer::Measure(std::size_t first) {
  const auto before = widest_;
  for (auto index = first; index < lines_.Count(); ++index) {
    widest_ = window_.Widest(lines_.Line(index), widest_);
  }
  if (widest_ != before || first == 0) window_.ShowExtent(widest_ + kBesideWidest);
}

void LogViewer::Delete() {
  const auto name = selected_;
  if (name.empty()) return;
  parts_.store.GetLogProperties();
  const bool ask = parts_.settings.cWornBeforeDelete == 1;
  if (ask && !parts_.dialogs.Confirm(Words("Delete %1 ?").Arg(name), QuestionIcon::None)) return;
  parts_.log.Delete(name);
  Select("");
  Refresh();
}

void LogViewer::SaveAs() {
  if (!selected_.empty()) parts_.save_file(parts_.log.PathOf(selected_));
}

Choices LogProperties::Load() {
  store_.GetLogProperties();
  auto choices = store_.UsedChoices(Group::Log);
  const auto items = RowOf("LogFor").items;
  if (std::ranges::find(items, choices["LogFor"]) == items.end()) choices["LogFor"] = items.back();
  return choices;
}

void LogProperties::Ok(const Choices& choices) {
  for (const auto* row : RowsOf(Group::Log, &Order::store)) {
    const auto text = choices.Text(row->name);
    Assign(settings_, *row, text);
    store_.Set(row->name, text);
  }
  log_.PurgeOldLogs(purged_);
}

}  // namespace orven
