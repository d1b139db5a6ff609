// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/settings_store.h"
#include "log/log_lines.h"
#include "log/mdlLog.h"
#include "platform/background.h"
#include "platform/dialogs.h"

namespace orven {

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

}  // namespace orven
