// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "platform/dialogs.h"
#include "platform/telephone_lines.h"

namespace orven {

/// The lines dialog without its window: the configured telephone lines, changed here and stored by Ok.
/// User-interface thread.
class LinesDialog {
 public:
  struct Parts {
    TelephoneLines& lines;
    Dialogs& dialogs;
    SystemLog& log;
    SettingsStore& store;
    Settings& settings;
    /// Takes the stored lines into use. False: not yet, because of a call. Without it: at the next start.
    std::function<bool()> use_changed;
  };

  /// One line of the list, in words.
  struct Row {
    std::string name, kind, address, state;
    bool operator==(const Row&) const = default;
  };

  /// Reads the stored lines.
  explicit LinesDialog(Parts parts);
  /// Gives up a test under way.
  ~LinesDialog();
  LinesDialog(const LinesDialog&) = delete;
  LinesDialog& operator=(const LinesDialog&) = delete;

  /// What is wrong with the stored lines, one text a fault.
  const std::vector<std::string>& Complaints() const { return complaints_; }

  std::size_t Count() const { return lines_.size(); }
  const TelephoneLine& At(std::size_t index) const { return lines_.at(index).line; }
  Row RowAt(std::size_t index) const;

  /// A line to begin with, under a name that no other has.
  TelephoneLine NewLine() const;

  /// What keeps `line` from being added, or from taking the place of the line at `index`.
  std::optional<LineFault> Check(const TelephoneLine& line, std::optional<std::size_t> index) const;

  /// Adds `line`, or puts it in the place of the one at `index`. It must have passed Check.
  void Put(const TelephoneLine& line, std::optional<std::size_t> index);

  /// Asks, and removes the line at `index`. False when it stays.
  bool Remove(std::size_t index);

  std::vector<SerialPortFound> SerialPorts() const { return parts_.lines.SerialPorts(); }

  /// Tries out `line` as it is here, stored or not; see TelephoneLines::Test.
  void Test(const TelephoneLine& line, TelephoneLines::TestDone done) const;
  void CancelTest() const { parts_.lines.CancelTest(); }

  /// Stores what was changed and takes it into use. False when it could not be stored; a box has said why.
  bool Ok();

 private:
  struct Entry {
    TelephoneLine line;
    std::string known_as;  ///< its name at the beginning; empty for a new line
    bool operator==(const Entry&) const = default;
  };

  bool HasName(const std::string& name) const;
  void KeepChosen();
  void UseChanged();

  Parts parts_;
  std::vector<std::string> complaints_;
  std::vector<Entry> lines_;
  std::vector<Entry> stored_;  ///< as the latest reading gave them
};

}  // namespace orven
