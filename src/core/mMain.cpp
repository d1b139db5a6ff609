// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mMain.h"

#include <vector>

#include "core/mdlReg.h"
#include "core/mdlWinVersion.h"
#include "core/settings.h"

namespace orven {
namespace {

constexpr int kPasswordDigits = 6;

// INITCOMMONCONTROLSEX of the Windows common controls: its size and ICC_USEREX_CLASSES.
constexpr std::uint32_t kInitRecordSize = 8;
constexpr std::uint32_t kExtendedComboBoxClasses = 0x200;

constexpr const char* kStartHidden = "-st";

std::vector<NamedRegistryValue> FirstValues() {
  std::vector<NamedRegistryValue> values;
  for (const auto group : {Group::Options, Group::Actions, Group::Events, Group::Log, Group::Window}) {
    for (const auto* row : RowsOf(group)) {
      if (row->first != nullptr) values.push_back(RegString(std::string(row->name), row->first));
    }
  }
  return values;
}

}  // namespace

bool FirstStart::IsDue() const {
  return !registry_.KeyExists(RegistryRoot::LocalMachine, kSettingsKey);
}

void FirstStart::Run() {
  SetRegValue(registry_, RegistryRoot::LocalMachine, kAutostartKey, "ORVEN", kRegString,
              home_.Path("\\ORVEN.exe -st"));
  auto values = FirstValues();
  if (GetWindowsVersionName(system_.Version()) == "Windows XP")
    values.push_back(RegString("cAnimation", "1"));
  values.push_back(RegString("MassagesPath", home_.Path("\\Messages\\")));
  std::string password;
  for (int digit = 0; digit < kPasswordDigits; ++digit)
    password += static_cast<char>('0' + sources_.random(10));
  values.push_back(RegString("Pass", password));
  if (registry_.Write(RegistryRoot::LocalMachine, kSettingsKey, values)) sources_.announce_password(password);
}

bool EntryRoutine::Run(const std::string& command_line, MainWindowStart& window) {
  system_.InitCommonControls(kInitRecordSize, kExtendedComboBoxClasses);
  if (!system_.ClaimInstance()) {
    dialogs_.Message(Words("ORVEN is still running"));
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
