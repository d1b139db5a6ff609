// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/clock.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace orven {

/// The two activity logs: one text file for each day and kind in the folder "\Log\". Operations ignore
/// errors. A line that cannot be written (disk full, file locked) is kept with its time and written before
/// the next one. User-interface thread.
class LogFiles : public SystemLog, public CallsLog {
 public:
  LogFiles(Clock& clock, Files& files, EventLoop& loop, const Settings& settings,
           const ApplicationFolder& home)
      : clock_(clock), files_(files), loop_(loop), settings_(settings), home_(home) {}

  /// Appends "time : text" to today's file if the settings enable that log.
  void WriteSystem(const std::string& text) override;
  void WriteCalls(const std::string& text) override;

  /// Sorted names, without folder, of the log files that `filter` ("All", "System" or "Calls") selects; none
  /// for any other filter.
  std::vector<std::string> List(const std::string& filter) const;

  /// The path of the file with this name.
  std::string PathOf(const std::string& file_name) const { return Folder() + file_name; }

  void Delete(const std::string& file_name);

  /// Deletes each file of the log folder that was last modified at or before the limit that `LogFor` sets;
  /// any text but its three choices sets none. Each file is one task, so that other events run in between;
  /// `done` runs after the last.
  void PurgeOldLogs(std::function<void()> done);

 private:
  struct Line {
    std::string path, text;
  };

  void WriteWaiting();
  bool Write(const Line& line);
  void Append(const std::string& suffix, const std::string& text);
  void PurgeNext(std::shared_ptr<std::vector<std::string>> names, Clock::WallTime limit,
                 std::function<void()> done);
  std::string Folder() const { return home_.Path("\\Log\\"); }

  Clock& clock_;
  Files& files_;
  EventLoop& loop_;
  const Settings& settings_;
  const ApplicationFolder& home_;
  std::deque<Line> waiting_;  ///< not written yet, oldest first
  Lifeline lifeline_;
};

/// `months` calendar months before `day`; the last day of that month if it is too short.
std::chrono::year_month_day MonthsBefore(std::chrono::year_month_day day, int months);

}  // namespace orven
