// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/options_dialog.h"

#include <algorithm>
#include <cmath>

#include "base/conversions.h"
#include "base/paths.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

using std::chrono_literals::operator""ms;

constexpr int kMostRings = 20;

/// Short enough for a smooth meter.
constexpr auto kLevelInterval = 50ms;

/// Looks for sound cards every two seconds, because one may be plugged in at any time.
constexpr int kTicksBetweenLooks = 40;

/// The maximum number of missing cards that are listed when the chosen one has a high number.
constexpr std::int32_t kMostMissingCards = 64;

/// Thousandths of full scale in one step of the slider.
constexpr int kThousandthsPerStep = 10;

constexpr const char* kAutostartName = "ORVEN";

}  // namespace

GreetingList GreetingPlayer::Fill(const std::string& selected) const {
  GreetingList list;
  const auto trap = ErrorTrap::Silent();
  trap([&] { list.names = parts_.library.Names(); });
  if (!list.names.empty()) list.selected = list.names.front();
  if (std::ranges::count(list.names, selected) > 0) list.selected = selected;
  return list;
}

void GreetingPlayer::ButtonClick(const std::string& key, GreetingList& list) {
  if (key == "Play") parts_.sounds.PlayWave(parts_.library.PathOf(list.selected));
  if (key == "Stop") parts_.player.Stop();
  if (key == "Add") ErrorTrap::Silent()([&] { Add(list); });
  if (key == "Delete") Delete(list);
}

void GreetingPlayer::Add(GreetingList& list) {
  // What the creator saved is the default greeting now; storing the list must not undo that.
  const auto saved = parts_.add();
  list = Fill(saved.value_or(list.selected));
}

void GreetingPlayer::Delete(GreetingList& list) {
  if (list.names.size() == 1) return parts_.dialogs.Information("Can't Delete Last Greeting.");
  const auto name = list.selected;
  if (!parts_.dialogs.Confirm("Delete " + name + " ?")) return;
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (!name.empty()) parts_.library.Delete(name);
  });
  list = Fill();
  trap([&] { parts_.refill_main(); });
  parts_.choose_default(list.selected);
}

OptionsDialog::OptionsDialog(Parts parts)
    : parts_(std::move(parts)), timer_(parts_.loop.MakeTimer([this] { LookAgain(); })) {}

OptionLists OptionsDialog::Lists() {
  const ErrorTrap trap(parts_.log, "ErrorLoadOptions->");
  OptionLists lists;
  for (int count = 1; count <= kMostRings; ++count) lists.txtNumOfRing.push_back(std::to_string(count));
  lists.txtRecLong = {"1", "2", "5"};
  lists.cmbSilenceSec = {"2", "3", "4", "5", "6", "8", "10", "15", "20", "30"};
  trap([&] { lists.cmbModemDev = Devices(); });
  trap([&] { lists.cmbSoundDev = SoundCards(); });
  return lists;
}

std::vector<std::string> OptionsDialog::Devices() const {
  std::vector<std::string> names;
  for (std::int32_t index = 0; index < parts_.Tapi1.GetNumDevs(); ++index) {
    DeviceCapabilities capabilities;
    parts_.Tapi1.GetDevCaps(index, capabilities);
    names.push_back(capabilities.device_name);
  }
  return names;
}

/// A card's place in the list is its number, so missing cards keep their places.
std::vector<std::string> OptionsDialog::SoundCards() {
  auto names = parts_.cards.Names();
  const auto chosen = parts_.settings.Sound;
  while (chosen < kMostMissingCards && ToCount(names.size()) <= chosen) {
    names.push_back("Sound card " + std::to_string(names.size()) + " (not connected)");
  }
  return names;
}

std::string OptionsDialog::Value(const char* name) {
  return GetRegValue(parts_.registry, RegistryRoot::LocalMachine, kSettingsKey, name);
}

bool OptionsDialog::Flag(const char* name) {
  return ToInt16(Value(name)) != 0;
}

std::string OptionsDialog::NumberText(const char* name) {
  auto text = Value(name);
  ToInt32(text);  // throws when it is not a number
  return text;
}

OptionChoices OptionsDialog::Load() {
  const ErrorTrap trap(parts_.log, "ErrGetOptions->");
  OptionChoices choices;
  choices.chkRenOnStart = Autostarts();
  trap([&] { choices.cmbSilenceSec = NumberText("SecSilence"); });
  trap([&] { choices.chkDropIfSilnce = Flag("cDropSilence"); });
  trap([&] {
    const auto steps = std::nearbyint(double(ToInt16(Value("ValSilence"))) / kThousandthsPerStep);
    choices.sldSilence = std::clamp(static_cast<std::int32_t>(steps), 0, kLoudestSilence);
  });
  choices.txtMassagesPath = parts_.folders.Serving();
  trap([&] { choices.cmdRecordMessage = Flag("RecordMessage"); });
  trap([&] { choices.txtNumOfRing = NumberText("NumOfRing"); });
  trap([&] { choices.txtRecLong = NumberText("MaxRec"); });
  choices.txtPass = Value("Pass");
  trap([&] { choices.chkWornDelete = Flag("WornDelete"); });
  trap([&] { choices.chkWornClear = Flag("WornClear"); });
  trap([&] { choices.chkListMessagesOnly = Flag("ListMessageOnly"); });
  trap([&] { choices.chkPreScreen = Flag("PreScreen"); });
  choices.cmbModemDev = Value("ModemName");
  trap([&] { choices.cmbSoundDev = ToInt32(Value("Sound")); });
  choices.CmbGreetsMessages = Value("Greeting");
  trap([&] { choices.chkAllowRemoteAccess = Flag("AllowRemoteAccess"); });
  trap([&] { choices.chkCompress = Flag("CompressMessages"); });
  trap([&] { choices.chkQuickToolBar = Flag("pQuickToolbar"); });
  return choices;
}

std::vector<std::pair<std::string, std::string>> OptionsDialog::Capabilities(
    const std::string& device) const {
  const auto index = parts_.line.FindByName(device);
  const bool there = index >= 0;
  DeviceCapabilities capabilities;
  if (there) parts_.Tapi1.GetDevCaps(index, capabilities);
  const auto flag = [there](bool on) { return std::string(!there ? "" : on ? "Yes" : "No"); };
  return {{"Device Name:", capabilities.device_name},
          {"Max Rate: ", there ? std::to_string(capabilities.max_rate) + " bit/s" : ""},
          {"Support CallerID: ", flag(capabilities.caller_id)},
          {"Support Monitor Digits: ", flag(capabilities.monitor_digits)},
          {"Support Generate Digits: ", flag(capabilities.generate_digits)},
          {"Data Mode:", flag(capabilities.data_mode)},
          {"Interactivevoice:", flag(capabilities.interactive_voice)},
          {"Auto Voice:", flag(capabilities.automated_voice)}};
}

bool OptionsDialog::AnotherLineIsOpen(const std::string& device) const {
  return parts_.line.LineOn() && parts_.line.FindByName(device) != parts_.line.CurrentIndex();
}

void OptionsDialog::Watch(OptionsView* view) {
  view_ = view;
  ticks_ = 0;
  view != nullptr ? timer_->Start(kLevelInterval) : timer_->Stop();
}

void OptionsDialog::LookAgain() {
  view_->ShowLevel(parts_.line_level());
  view_->ShowMessagesPath(parts_.folders.Serving(), parts_.move.Relocating());
  if (++ticks_ % kTicksBetweenLooks == 0) view_->ShowSoundCards(SoundCards());
}

void OptionsDialog::BrowsMessagesPath() {
  auto path = parts_.dialogs.BrowseFolder("Save Messages To", parts_.folders.Serving());
  if (path.empty()) return;
  const auto separator = NativePath("\\");
  if (!path.ends_with(separator)) path += separator;
  const ErrorTrap trap(parts_.log, "ErrcmdBrowsMessagesPath ");
  trap([&] { parts_.move_messages(path); });
}

void OptionsDialog::Put(Values& values, const char* name, const std::string& text) {
  const ErrorTrap trap(parts_.log, "ErrSaveOptionOption ");
  trap([&] {
    Assign(parts_.settings, RowOf(name), text);
    values.push_back(RegString(name, text));
  });
}

void OptionsDialog::Collect(const OptionChoices& choices, Values& values) {
  Put(values, "SecSilence", choices.cmbSilenceSec);
  Put(values, "cDropSilence", choices.chkDropIfSilnce);
  Put(values, "ValSilence", std::to_string(std::int64_t{choices.sldSilence} * kThousandthsPerStep));
  Put(values, "WornDelete", choices.chkWornDelete);
  Put(values, "WornClear", choices.chkWornClear);
  Put(values, "ListMessageOnly", choices.chkListMessagesOnly);
  Put(values, "Modem", std::to_string(parts_.line.FindByName(choices.cmbModemDev)));
  Put(values, "PreScreen", choices.chkPreScreen);
  Put(values, "ModemName", choices.cmbModemDev);
  // Card and greeting keep their values when none is chosen.
  if (choices.cmbSoundDev >= 0) Put(values, "Sound", std::to_string(choices.cmbSoundDev));
  Put(values, "RecordMessage", choices.cmdRecordMessage);
  if (!choices.CmbGreetsMessages.empty()) Put(values, "Greeting", choices.CmbGreetsMessages);
  Put(values, "NumOfRing", choices.txtNumOfRing);
  Put(values, "MaxRec", choices.txtRecLong);
  Put(values, "AllowRemoteAccess", choices.chkAllowRemoteAccess);
  Put(values, "Pass", choices.txtPass);
  Put(values, "CompressMessages", choices.chkCompress);
  Put(values, "pQuickToolbar", choices.chkQuickToolBar);
}

void OptionsDialog::Save(const OptionChoices& choices) {
  const ErrorTrap trap(parts_.log, "ErrSaveOptionOption ");
  trap([&] { parts_.fill_greetings(choices.CmbGreetsMessages); });
  Values values;
  Collect(choices, values);
  // One write: a crash leaves either the old options or the new ones, and a slow disk delays us once.
  const bool stored = parts_.registry.Write(RegistryRoot::LocalMachine, kSettingsKey, values);
  parts_.store.TakeMaxRec(trap);
  StoreAutostart(choices.chkRenOnStart);
  parts_.show_in_main();
  TellOfFailures(stored, choices.chkRenOnStart);
}

void OptionsDialog::TellOfFailures(bool stored, bool autostart) {
  if (!stored) {
    parts_.dialogs.Information(
        "The options could not be stored. They apply until the program ends; see the system log.");
  }
  if (Autostarts() == autostart) return;
  parts_.dialogs.Information(std::string("The program ") + (autostart ? "does not start" : "still starts") +
                             " with the desktop: this could not be changed. The system log has the details.");
}

bool OptionsDialog::Autostarts() {
  return GetRegValue(parts_.registry, RegistryRoot::LocalMachine, kAutostartKey, kAutostartName) != kNotFound;
}

void OptionsDialog::StoreAutostart(bool on) {
  constexpr auto kRoot = RegistryRoot::LocalMachine;
  if (on) {
    SetRegValue(parts_.registry, kRoot, kAutostartKey, kAutostartName, kRegString,
                parts_.shared.InApplicationFolder("\\ORVEN.exe -st"));
  } else {
    DeleteRegValue(parts_.registry, kRoot, kAutostartKey, kAutostartName);
  }
}

}  // namespace orven
