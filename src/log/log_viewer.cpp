// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/log_viewer.h"

#include <algorithm>

#include "core/error_trap.h"

namespace orven {
namespace {

constexpr std::int32_t kBesideWidest = 50;  // pixels between the widest line's end and the range's

std::string CountText(std::size_t count) {
  auto digits = std::to_string(count);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), ",");
  }
  return digits + (count == 1 ? " line" : " lines");
}

std::string ReasonOf(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& reason) {
    return reason.what();
  } catch (...) {
    return "it cannot be read";
  }
}

}  // namespace

/// A file that is being read, and what of it has just been read.
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
  if (names.empty()) window_.ShowState("There is no such log.");
}

void LogViewer::Select(const std::string& file_name) {
  reading_.reset();
  selected_ = file_name;
  window_.ShowLineCount(0);
  lines_.Clear();
  widest_ = 0;
  window_.ShowExtent(0);
  window_.ShowState("");
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
    window_.ShowState("Reading\xE2\x80\xA6 " + CountText(count));
    ReadNext();
    return;
  }
  const char* const left_out = reading.file.LeftOut() ? ", the rest of this large file is left out" : "";
  window_.ShowState(reading.failure ? ReasonOf(reading.failure) : CountText(count) + left_out);
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
  const auto trap = ErrorTrap::Silent();
  const auto name = selected_;
  if (name.empty()) return;
  parts_.store.GetLogProperties();
  bool agreed = true;
  if (parts_.settings.cWornBeforeDelete == 1) {
    agreed = false;
    trap([&] { agreed = parts_.dialogs.Confirm("Delete " + name + " ?", QuestionIcon::None); });
  }
  if (!agreed) return;
  parts_.log.Delete(name);
  Select("");
  Refresh();
}

void LogViewer::SaveAs() {
  const auto trap = ErrorTrap::Silent();
  if (!selected_.empty()) trap([&] { parts_.save_file(parts_.log.PathOf(selected_)); });
}

}  // namespace orven
