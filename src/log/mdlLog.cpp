// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/mdlLog.h"

#include <array>
#include <optional>
#include <set>
#include <utility>

#include "base/paths.h"
#include "core/error_trap.h"

namespace orven {
namespace {

/// Lines kept while the disk is full: about fifty calls.
constexpr std::size_t kMostWaiting = 1000;

/// How many months a log is kept, by the text of `LogFor`.
std::optional<int> MonthsKept(const std::string& log_for) {
  if (log_for == "1 Last Month") return 1;
  if (log_for == "2 Last Month") return 2;
  if (log_for == "3 Last Month") return 3;
  return std::nullopt;
}

/// Without control characters: a line feed in a text must not look like another log line.
std::string OneLine(std::string text) {
  for (char& character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20 || code == 0x7F) character = ' ';
  }
  return text;
}

std::string PatternOf(const std::string& filter) {
  constexpr std::array<std::pair<const char*, const char*>, 3> kPatterns{
      {{"All", "*.txt"}, {"System", "*_Sys.txt"}, {"Calls", "*_Calls.txt"}}};
  for (const auto& [name, pattern] : kPatterns) {
    if (filter == name) return pattern;
  }
  return {};
}

}  // namespace

std::chrono::year_month_day MonthsBefore(std::chrono::year_month_day day, int months) {
  const auto moved = day - std::chrono::months(months);
  return moved.ok() ? moved : moved.year() / moved.month() / std::chrono::last;
}

void LogFiles::WriteSystem(const std::string& text) {
  if (settings_.cLogSys != 0) Append("_Sys.txt", text);
}

void LogFiles::WriteCalls(const std::string& text) {
  if (settings_.cLogCalls != 0) Append("_Calls.txt", text);
}

void LogFiles::Append(const std::string& suffix, const std::string& text) {
  const auto now = clock_.Now();
  const auto path = Folder() + FileStamp(clock_.DateText(now), "") + suffix;
  waiting_.push_back({path, clock_.TimeText(now) + " : " + OneLine(text) + "\r\n"});
  WriteWaiting();
  if (waiting_.size() > kMostWaiting) waiting_.pop_front();
}

/// After a failure the other lines of that file wait too, to keep their order; other files are not delayed.
void LogFiles::WriteWaiting() {
  std::set<std::string> refused;
  std::erase_if(waiting_, [&](const Line& line) {
    if (refused.contains(line.path)) return false;
    if (Write(line)) return true;
    refused.insert(line.path);
    return false;
  });
}

bool LogFiles::Write(const Line& line) {
  const auto trap = ErrorTrap::Silent();
  if (trap([&] { files_.Append(line.path, line.text); })) return true;
  // The user may have removed the folder.
  return trap([&] {
    files_.MakeFolder(Folder());
    files_.Append(line.path, line.text);
  });
}

std::vector<std::string> LogFiles::List(const std::string& filter) const {
  std::vector<std::string> names;
  const auto pattern = PatternOf(filter);
  if (!pattern.empty()) ErrorTrap::Silent()([&] { names = files_.List(Folder(), pattern); });
  return names;
}

void LogFiles::Delete(const std::string& file_name) {
  ErrorTrap::Silent()([&] { files_.Delete(PathOf(file_name)); });
}

void LogFiles::PurgeOldLogs(std::function<void()> done) {
  const auto months = MonthsKept(settings_.LogFor);
  auto names = std::make_shared<std::vector<std::string>>();
  if (months) ErrorTrap::Silent()([&] { *names = files_.List(Folder(), "*.*"); });
  const auto limit_day = MonthsBefore(clock_.LocalDay(clock_.Now()), months.value_or(0));
  PurgeNext(std::move(names), clock_.Midnight(limit_day), std::move(done));
}

void LogFiles::PurgeNext(std::shared_ptr<std::vector<std::string>> names, Clock::WallTime limit,
                         std::function<void()> done) {
  if (names->empty()) {
    if (done) done();
    return;
  }
  loop_.Post(lifeline_.Bind([this, names = std::move(names), limit, done = std::move(done)]() mutable {
    const auto path = PathOf(names->back());
    names->pop_back();
    ErrorTrap::Silent()([&] {
      if (limit >= files_.LastModified(path)) files_.Delete(path);
    });
    PurgeNext(std::move(names), limit, std::move(done));
  }));
}

}  // namespace orven
