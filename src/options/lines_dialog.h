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

/// The lines dialog without its window. Changes to the configured telephone lines are stored by Ok.
/// User-interface thread.
class LinesDialog {
 public:
  struct Parts {
    TelephoneLines& lines;
    Dialogs& dialogs;
    SystemLog& log;
    SettingsStore& store;
    Settings& settings;
    /// Starts to use the stored lines; false when a call delays it. Empty: they are used from the next start
    /// on.
    std::function<bool()> use_changed;
  };

  /// The texts of one row of the list.
  struct Row {
    std::string name;
    Words kind;
    std::string address;
    Words state;
    bool operator==(const Row&) const = default;
  };

  /// Reads the stored lines.
  explicit LinesDialog(Parts parts);
  /// Cancels a running test.
  ~LinesDialog();
  LinesDialog(const LinesDialog&) = delete;
  LinesDialog& operator=(const LinesDialog&) = delete;

  /// What is wrong with the stored lines, one text per fault.
  const std::vector<std::string>& Complaints() const { return complaints_; }

  std::size_t Count() const { return lines_.size(); }
  const TelephoneLine& At(std::size_t index) const { return lines_.at(index).line; }
  Row RowAt(std::size_t index) const;

  /// A new line with an unused name.
  TelephoneLine NewLine() const;

  /// Why `line` cannot be added, or cannot replace the line at `index`; nothing when it can.
  std::optional<LineFault> Check(const TelephoneLine& line, std::optional<std::size_t> index) const;

  /// Adds `line`, or replaces the line at `index`. It must have passed Check.
  void Put(const TelephoneLine& line, std::optional<std::size_t> index);

  /// Removes the line at `index` after a confirmation. False when the user declined.
  bool Remove(std::size_t index);

  std::vector<SerialPortFound> SerialPorts() const { return parts_.lines.SerialPorts(); }

  /// Tests `line`, stored or not; see TelephoneLines::Test.
  void Test(const TelephoneLine& line, TelephoneLines::TestDone done) const;
  void CancelTest() const { parts_.lines.CancelTest(); }

  /// Stores the changes and uses them. False when storing failed; a box has shown the reason.
  bool Ok();

  /// The name of the line that Ok has added, of several the last one; empty: none.
  const std::string& Added() const { return added_; }

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
  std::vector<Entry> stored_;  ///< as they were read
  std::string added_;
};

}  // namespace orven
