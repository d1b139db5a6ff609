// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mMain.h"

namespace orven {
namespace {

constexpr const char* kApplicationVersion = "1.0.0.22";

// INITCOMMONCONTROLSEX of the Windows common controls: its size and ICC_USEREX_CLASSES.
constexpr std::uint32_t kInitRecordSize = 8;
constexpr std::uint32_t kExtendedComboBoxClasses = 0x200;

constexpr const char* kStartHidden = "-st";

}  // namespace

bool EntryRoutine::Run(const std::string& command_line, MainWindowStart& window) {
  shared_.application_version = kApplicationVersion;
  system_.InitCommonControls(kInitRecordSize, kExtendedComboBoxClasses);
  if (!system_.ClaimInstance()) {
    dialogs_.Message("ORVEN is still running");
    return false;
  }
  const bool first = first_start_.IsDue();
  prepare_(first);
  if (first) first_start_.Run();
  if (command_line == kStartHidden) {
    window.LoadHidden();
  } else {
    window.Show();
  }
  return true;
}

}  // namespace orven
