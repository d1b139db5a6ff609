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
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"

namespace orven {

/// Some lines of a text file, with their line ends.
struct LogPiece {
  std::string bytes;
  std::vector<std::uint16_t> ends;  ///< the offset in `bytes` after each line
};

/// The lines of a file of any size, stored as the file's bytes and two bytes per line.
class LogLines {
 public:
  std::size_t Count() const { return count_; }

  /// The line with this 0-based index, without its end. Valid until Clear.
  std::string_view Line(std::size_t index) const;

  void Append(LogPiece piece);
  void Clear();

 private:
  std::vector<LogPiece> pieces_;
  std::vector<std::size_t> first_lines_;  ///< of each piece
  std::size_t count_ = 0;
};

/// Reads a file piece by piece. Any thread, but one at a time.
class LogReading {
 public:
  /// Few enough that showing a piece does not block the window.
  static constexpr std::size_t kMostLinesInPiece = 1024;
  /// A longer line, as in a binary file, is split, because the window must draw it.
  static constexpr std::size_t kMostBytesInLine = 2048;
  /// The rest of a larger file is left out, to limit the memory used.
  static constexpr std::uint64_t kMostBytes = std::uint64_t{512} << 20U;
  static constexpr std::size_t kMostLines = 50'000'000;

  LogReading(const Files& files, std::string path) : files_(files), path_(std::move(path)) {}

  /// The next lines; empty at the end. Throws as Files::ReadPart does.
  LogPiece Next();

  /// The file has more than Next has returned.
  bool LeftOut() const { return left_out_; }

 private:
  LogPiece Cut();
  std::size_t EndOfLine(std::size_t begin) const;
  void ReadOn();

  const Files& files_;
  std::string path_;
  std::uint64_t offset_ = 0;
  std::size_t lines_ = 0;
  std::string pending_;  ///< read, but not returned yet
  bool at_end_ = false;
  bool left_out_ = false;
};

/// The log viewer's window as the engine sees it. Its operations raise no event.
class LogViewerWindow {
 public:
  virtual ~LogViewerWindow() = default;

  /// Fills `List1` and selects this name; empty for none.
  virtual void ShowFiles(const std::vector<std::string>& names, const std::string& selected) noexcept = 0;

  /// `List2` shows this many of the engine's lines: more than before, or 0.
  virtual void ShowLineCount(std::size_t count) noexcept = 0;

  /// The larger of `widest` (0 for the first line) and the line's width in pixels.
  virtual std::int32_t Widest(std::string_view line, std::int32_t widest) noexcept = 0;

  /// `List2` can be scrolled over this many pixels.
  virtual void ShowExtent(std::int32_t pixels) noexcept = 0;

  /// A sentence about the shown file.
  virtual void ShowState(const Words& text) noexcept = 0;
};

/// The rules of the log viewer: lists the log files, shows the lines of one, deletes it or saves a copy. A
/// file is read in the background and shown piece by piece, so that a large file does not block the window.
/// Failures are shown by ShowState only. User-interface thread.
class LogViewer {
 public:
  struct Parts {
    LogFiles& log;
    const Files& files;
    Background& background;
    SettingsStore& store;
    const Settings& settings;
    Dialogs& dialogs;
    /// Saves a copy of the file at `path` under a name that the user chooses.
    std::function<void(const std::string& path)> save_file;
  };

  /// `window` outlives this object. Background work may end after this object is destroyed.
  LogViewer(Parts parts, LogViewerWindow& window) : parts_(std::move(parts)), window_(window) {}

  /// The window opens: purges old logs, then lists all files.
  void Open();

  /// `cmbWhatToShow`: "All", "Calls" or "System". The shown file stays if it is still listed.
  void ChangeFilter(const std::string& filter);

  /// `List1`: a file was clicked; an empty name for none. Stops reading the previous file.
  void Select(const std::string& file_name);

  void Delete();  ///< `cmdDelete`
  void SaveAs();  ///< `cmdSaveAs`

  /// A function that lists the files again; does nothing after this object is destroyed.
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
  std::shared_ptr<Reading> reading_;  ///< null when no file is being read
  Lifeline lifeline_;
};

/// The rules of the log properties: which logs are written, how long they are kept, and whether the viewer
/// asks before it deletes one. User-interface thread.
class LogProperties {
 public:
  LogProperties(Settings& settings, SettingsStore& store, LogFiles& log, std::function<void()> purged)
      : settings_(settings), store_(store), log_(log), purged_(std::move(purged)) {}

  /// What the controls show. Without one of the list's entries no log is purged, as with the last one.
  Choices Load();

  /// `cmdOK`: stores and applies everything, then purges; `purged` runs after the purge, in a later event.
  void Ok(const Choices& choices);

 private:
  Settings& settings_;
  SettingsStore& store_;
  LogFiles& log_;
  std::function<void()> purged_;
};

}  // namespace orven
