// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings_store.h"
#include "log/mdlLog.h"
#include "platform/background.h"
#include "platform/dialogs.h"
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

/// The log viewer's window, as its engine sees it. It shows; it raises nothing by being told.
class LogViewerWindow {
 public:
  virtual ~LogViewerWindow() = default;

  /// Fills `List1` and selects this name; none for an empty one.
  virtual void ShowFiles(const std::vector<std::string>& names, const std::string& selected) = 0;

  /// `List2` shows this many of the engine's lines: more than before, or 0.
  virtual void ShowLineCount(std::size_t count) = 0;

  /// The greater of `widest`, 0 for the first line, and the width of the line in pixels of the window's font.
  virtual std::int32_t Widest(std::string_view line, std::int32_t widest) = 0;

  /// `List2` can be scrolled over this many pixels.
  virtual void ShowExtent(std::int32_t pixels) = 0;

  /// A sentence about what is shown.
  virtual void ShowState(const std::string& text) = 0;
};

/// What the log viewer does: it lists the day files, shows the lines of one, deletes it or saves a copy.
/// A file is read away from the user-interface thread and shown piece by piece, so that its size never
/// holds up the window. What fails leaves no trace but the sentence that ShowState is given.
/// User-interface thread.
class LogViewer {
 public:
  struct Parts {
    LogFiles& log;
    const Files& files;
    Background& background;
    SettingsStore& store;
    const Settings& settings;
    Dialogs& dialogs;
    /// Saves a copy of the file at a path under a name that the user picks.
    std::function<void(const std::string& path)> save_file;
  };

  /// `window` outlives this object; pieces of work under way end harmlessly after it.
  LogViewer(Parts parts, LogViewerWindow& window) : parts_(std::move(parts)), window_(window) {}

  /// The window opens: purges old logs, then lists all.
  void Open();

  /// `cmbWhatToShow`: "All", "Calls" or "System". The file that is shown stays so if it is among them.
  void ChangeFilter(const std::string& filter);

  /// `List1`: a file was clicked; an empty name for none. Whatever is being read is given up.
  void Select(const std::string& file_name);

  void Delete();  ///< `cmdDelete`
  void SaveAs();  ///< `cmdSaveAs`

  /// Lists the files again when it is called, as after the log properties have purged some; nothing once
  /// this object is gone.
  std::function<void()> Refresher() {
    return lifeline_.Bind([this] { Refresh(); });
  }

  const LogLines& Lines() const { return lines_; }
  const std::string& Selected() const { return selected_; }

 private:
  struct Reading;

  void Refresh();
  void ReadNext();
  void Show(Reading& reading);
  void Measure(std::size_t first);

  Parts parts_;
  LogViewerWindow& window_;
  std::string filter_ = "All";
  std::string selected_;
  LogLines lines_;
  std::int32_t widest_ = 0;
  std::shared_ptr<Reading> reading_;  ///< the one that is under way
  Lifeline lifeline_;
};

/// The entries of `cmbLogFor`. The last, and any other text, means that no log is purged.
inline constexpr const char* kLogForChoices[] = {"1 Last Month", "2 Last Month", "3 Last Month", "For Ever"};

/// The state of every control of the log properties, under the controls' names.
struct LogChoices {
  bool chkLogCalls = false;
  bool chkLogSys = false;
  std::string cmbLogFor;  ///< one of kLogForChoices
  bool chkWornBeforeDelete = false;
};

/// What the log properties do: which logs are written, for how long they are kept, and whether the viewer
/// asks before it deletes one. A statement that fails leaves no trace. User-interface thread.
class LogProperties {
 public:
  LogProperties(Settings& settings, SettingsStore& store, LogFiles& log, std::function<void()> purged)
      : settings_(settings), store_(store), log_(log), purged_(std::move(purged)) {}

  LogChoices Load();

  /// `cmdOK`: stores everything, uses it at once and purges; `purged` runs after that, when other events
  /// have run in between.
  void Ok(const LogChoices& choices);

 private:
  void Put(const char* name, std::int16_t Settings::*field, bool on);

  Settings& settings_;
  SettingsStore& store_;
  LogFiles& log_;
  std::function<void()> purged_;
};

}  // namespace orven
