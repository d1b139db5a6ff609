// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/options_dialog.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/paths.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

using std::chrono_literals::operator""ms;

/// Short enough for a smooth meter.
constexpr auto kLevelInterval = 50ms;

/// Looks for sound cards every two seconds, because one may be plugged in at any time.
constexpr int kTicksBetweenLooks = 40;

/// The maximum number of missing cards that are listed when the chosen one has a high number.
constexpr std::int32_t kMostMissingCards = 64;

constexpr const char* kAutostartName = "ORVEN";

Words MissingCard(std::int32_t number) {
  return Words("Sound card %1 (not connected)").Arg(number);
}

}  // namespace

SoundList GreetingPlayer::Fill(const std::string& selected) const {
  SoundList list;
  const auto trap = ErrorTrap::Silent();
  trap([&] { list.names = parts_.library.Names(); });
  if (!list.names.empty()) list.selected = list.names.front();
  if (std::ranges::count(list.names, selected) > 0) list.selected = selected;
  return list;
}

void GreetingPlayer::ButtonClick(const std::string& key, SoundList& list) {
  if (key == "Play") parts_.sounds.PlayWave(parts_.library.PathOf(list.selected));
  if (key == "Stop") parts_.player.Stop();
  if (key == "Add") ErrorTrap::Silent()([&] { Add(list); });
  if (key == "Delete") Delete(list);
}

void GreetingPlayer::Add(SoundList& list) {
  // What the creator saved is the default greeting now; storing the list must not undo that.
  const auto saved = parts_.add();
  list = Fill(saved.value_or(list.selected));
}

void GreetingPlayer::Delete(SoundList& list) {
  if (list.names.size() == 1) return parts_.dialogs.Information(Words("Can't Delete Last Greeting."));
  const auto name = list.selected;
  if (!parts_.dialogs.Confirm(Words("Delete %1 ?").Arg(name))) return;
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
  trap([&] { lists.devices = Devices(); });
  trap([&] { lists.cards = SoundCards(); });
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
std::vector<Words> OptionsDialog::SoundCards() {
  std::vector<Words> cards;
  for (const auto& name : parts_.cards.Names()) {
    const auto number = ToCount(cards.size());
    cards.push_back(number == 0 ? Words("Default output") : name.empty() ? MissingCard(number) : Words(name));
  }
  const auto chosen = parts_.settings.Sound;
  while (chosen < kMostMissingCards && ToCount(cards.size()) <= chosen)
    cards.push_back(MissingCard(ToCount(cards.size())));
  return cards;
}

Choices OptionsDialog::Load() {
  return parts_.store.StoredChoices(Group::Options, ErrorTrap(parts_.log, "ErrGetOptions->"));
}

std::vector<std::pair<Words, Words>> OptionsDialog::Capabilities(const std::string& device) const {
  const auto index = parts_.line.FindByName(device);
  const bool there = index >= 0;
  DeviceCapabilities capabilities;
  if (there) parts_.Tapi1.GetDevCaps(index, capabilities);
  const auto flag = [there](bool on) { return !there ? Words() : on ? Words("Yes") : Words("No"); };
  return {{Words("Device Name:"), capabilities.device_name},
          {Words("Max Rate: "), there ? Words("%1 bit/s").Arg(capabilities.max_rate) : Words()},
          {Words("Support CallerID: "), flag(capabilities.caller_id)},
          {Words("Support Monitor Digits: "), flag(capabilities.monitor_digits)},
          {Words("Support Generate Digits: "), flag(capabilities.generate_digits)},
          {Words("Data Mode:"), flag(capabilities.data_mode)},
          {Words("Interactivevoice:"), flag(capabilities.interactive_voice)},
          {Words("Auto Voice:"), flag(capabilities.automated_voice)}};
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
  view_->ShowMessagesPath(MessagesPath(), parts_.move.Relocating());
  if (++ticks_ % kTicksBetweenLooks == 0) view_->ShowSoundCards(SoundCards());
}

void OptionsDialog::BrowsMessagesPath() {
  auto path = parts_.dialogs.BrowseFolder(Words("Save Messages To"), MessagesPath());
  if (path.empty()) return;
  const auto separator = NativePath("\\");
  if (!path.ends_with(separator)) path += separator;
  const ErrorTrap trap(parts_.log, "ErrcmdBrowsMessagesPath ");
  trap([&] { parts_.move_messages(path); });
}

/// The values to store. What is not chosen keeps its value.
std::vector<NamedRegistryValue> OptionsDialog::Take(const Choices& choices, const ErrorTrap& trap) {
  std::vector<NamedRegistryValue> values;
  for (const auto* row : RowsOf(Group::Options, &Order::store)) {
    const auto choice = choices.find(row->name);
    if (choice == choices.end()) continue;
    trap([&] {
      const auto text = ToStored(*row, choice->second);
      Assign(parts_.settings, *row, text);
      values.push_back(RegString(row->name, text));
    });
  }
  return values;
}

void OptionsDialog::Save(Choices choices, bool autostart) {
  const ErrorTrap trap(parts_.log, "ErrSaveOptionOption ");
  trap([&] { parts_.fill_greetings(choices.Text("Greeting")); });
  choices["Modem"] = std::to_string(parts_.line.FindByName(choices.Text("ModemName")));
  const auto values = Take(choices, trap);
  // One write: a crash leaves either the old options or the new ones, and a slow disk delays us once.
  const bool stored = parts_.registry.Write(RegistryRoot::LocalMachine, kSettingsKey, values);
  parts_.store.TakeMaxRec(trap);
  StoreAutostart(autostart);
  parts_.show_in_main();
  TellOfFailures(stored, autostart);
}

void OptionsDialog::TellOfFailures(bool stored, bool autostart) {
  if (!stored) {
    parts_.dialogs.Information(
        Words("The options could not be stored. They apply until the program ends; see the system log."));
  }
  if (Autostarts() == autostart) return;
  parts_.dialogs.Information(
      autostart ? Words("The program does not start with the desktop: this could not be changed. "
                        "The system log has the details.")
                : Words("The program still starts with the desktop: this could not be changed. "
                        "The system log has the details."));
}

bool OptionsDialog::Autostarts() {
  return GetRegValue(parts_.registry, RegistryRoot::LocalMachine, kAutostartKey, kAutostartName) != kNotFound;
}

void OptionsDialog::StoreAutostart(bool on) {
  constexpr auto kRoot = RegistryRoot::LocalMachine;
  if (on) {
    SetRegValue(parts_.registry, kRoot, kAutostartKey, kAutostartName, kRegString,
                parts_.home.Path("\\ORVEN.exe -st"));
  } else {
    DeleteRegValue(parts_.registry, kRoot, kAutostartKey, kAutostartName);
  }
}

}  // namespace orven
