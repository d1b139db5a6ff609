// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/events_dialog.h"

#include <algorithm>

#include "base/conversions.h"
#include "base/paths.h"
#include "core/error_trap.h"

namespace orven {
namespace {

const std::string kSoundFilter("wav (*.wav)\0*.wav\0", 18);

}  // namespace

Choices EventsDialog::Load() const {
  auto choices = parts_.store.UsedChoices(Group::Events);
  // A sound that is not named is not played.
  if (choices["PlayInRing"].empty()) choices["cPlayInRing"] = "0";
  if (choices["PlayInIdle"].empty()) choices["cPlayInIdle"] = "0";
  return choices;
}

void EventsDialog::ButtonClick(const std::string& key, SoundList& list, SoundList& other) {
  if (key == "Play") Play(list.selected);
  if (key == "Stop" && parts_.player.IsPlaying()) parts_.player.Stop();
  if (key == "Add") Add(list, other);
  if (key == "Delete") Delete(list, other);
}

void EventsDialog::Play(const std::string& name) {
  if (!name.empty()) parts_.sounds.PlayWave(SoundFolder() + name);
}

void EventsDialog::Add(SoundList& list, SoundList& other) {
  const auto name = AddSound();
  if (!name) return;
  other = Sounds(other.selected);
  list = Sounds(*name);
}

std::optional<std::string> EventsDialog::AddSound() {
  const auto path = parts_.dialogs.OpenFile(Words("Add Sound"), kSoundFilter);
  if (!path) return std::nullopt;
  const auto name = FileNamePart(*path);
  const auto trap = ErrorTrap::Silent();
  trap([&] { parts_.files.Copy(*path, SoundFolder() + name); });
  return name;
}

void EventsDialog::Delete(SoundList& list, SoundList& other) {
  const auto name = list.selected;
  if (name.empty()) return;
  const auto trap = ErrorTrap::Silent();
  trap([&] { parts_.files.Delete(SoundFolder() + name); });
  list = Sounds("");
  other = Sounds(other.selected == name ? "" : other.selected);
}

SoundList EventsDialog::Sounds(const std::string& selected) const {
  SoundList list;
  const auto trap = ErrorTrap::Silent();
  trap([&] { list.names = parts_.files.List(SoundFolder(), "*.wav"); });
  if (std::ranges::count(list.names, selected) > 0) list.selected = selected;
  return list;
}

std::string EventsDialog::SoundFolder() const {
  return parts_.home.Path("\\Sound\\");
}

void EventsDialog::TestViewer(const Choices& choices) {
  parts_.caller_view.ViewCallViewer(choices.On("cAnimation"), ToInt16(choices.Text("AnimationFast")),
                                    choices.On("cCloseCallerView"), ToInt16(choices.Text("CloseCallerView")));
}

void EventsDialog::ChangeCloseSeconds(const Choices& choices) {
  Store(RowOf("CloseCallerView"), choices);
}

void EventsDialog::Save(const Choices& choices) {
  for (const auto* row : RowsOf(Group::Events, &Order::store)) Store(*row, choices);
}

void EventsDialog::Store(const SettingRow& row, const Choices& choices) {
  const auto text = choices.Text(row.name);
  parts_.store.Set(row.name, text);
  Assign(parts_.settings, row, text);
}

}  // namespace orven
