// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mMain.h"

#include <algorithm>
#include <array>

#include "core/mdlReg.h"
#include "core/mdlWinVersion.h"

namespace orven {
namespace {

constexpr int kPasswordDigits = 6;

void Put(std::vector<NamedRegistryValue>& values, NamedRegistryValue value) {
  const auto same = std::find_if(values.begin(), values.end(),
                                 [&](const auto& existing) { return existing.name == value.name; });
  if (same == values.end()) {
    values.push_back(std::move(value));
  } else {
    *same = std::move(value);
  }
}

// INITCOMMONCONTROLSEX of the Windows common controls: its size and ICC_USEREX_CLASSES.
constexpr std::uint32_t kInitRecordSize = 8;
constexpr std::uint32_t kExtendedComboBoxClasses = 0x200;

constexpr const char* kStartHidden = "-st";

}  // namespace

bool FirstStart::IsDue() const {
  return !registry_.KeyExists(RegistryRoot::LocalMachine, kSettingsKey);
}

void FirstStart::Run() {
  SetRegValue(registry_, RegistryRoot::LocalMachine, kAutostartKey, "ORVEN", kRegString,
              shared_.InApplicationFolder("\\ORVEN.exe -st"));
  auto values = sources_.defaults();
  Put(values, RegString("MassagesPath", shared_.InApplicationFolder("\\Messages\\")));
  if (GetWindowsVersionName(system_.Version()) == "Windows XP") Put(values, RegString("cAnimation", "1"));
  std::string password;
  for (int digit = 0; digit < kPasswordDigits; ++digit)
    password += static_cast<char>('0' + sources_.random(10));
  Put(values, RegString("Pass", password));
  if (registry_.Write(RegistryRoot::LocalMachine, kSettingsKey, values)) sources_.announce_password(password);
}

bool EntryRoutine::Run(const std::string& command_line, MainWindowStart& window) {
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
