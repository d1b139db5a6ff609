// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/events_dialog.h"

#include <algorithm>
#include <utility>

#include "base/conversions.h"
#include "base/paths.h"
#include "core/error_trap.h"

namespace orven {
namespace {

constexpr const char* kAddTitle = "Add Sound";
const std::string kSoundFilter("wav (*.wav)\0*.wav\0", 18);

}  // namespace

void DeskSounds::PlayWave(const std::string& path) {
  if (player_.IsPlaying()) player_.Stop();
  const auto result = WavePlay_.PlayFile(path, settings_.Sound);
  if (result != kWaveOk) log_.WriteSystem("Play Sound " + WavePlay_.PlayErrorText(result));
}

EventChoices EventsDialog::Load() const {
  const Settings& settings = parts_.settings;
  EventChoices choices;
  Fill(choices.CmbPlayWhenCall, settings.PlayInRing);
  Fill(choices.CmbPlayWhenMessage, settings.PlayInIdle);
  if (!settings.PlayInRing.empty()) choices.chkPlayInCall = settings.cPlayInRing != 0;
  choices.chkOnlyIfGotMessage = settings.cOnlyIfGotMessage != 0;
  if (!settings.PlayInIdle.empty()) choices.chkPlayInMessage = settings.cPlayInIdle != 0;
  choices.chkMsgInMsg = settings.WhenMsgViewMsg != 0;
  choices.chkViewDet = settings.ViewDetails != 0;
  choices.chkAnimation = settings.cAnimation != 0;
  choices.sldAnimationFast = std::clamp<std::int32_t>(settings.AnimationFast, 0, kFastestAnimation);
  choices.cmbCloseCVAfter = settings.CloseCallerView;
  choices.chkCloseCVAfter = settings.cCloseCallerView != 0;
  return choices;
}

void EventsDialog::ButtonClick(Sounds sounds, const std::string& key, EventChoices& choices) {
  const bool call = sounds == Sounds::WhenCall;
  SoundList& list = call ? choices.CmbPlayWhenCall : choices.CmbPlayWhenMessage;
  SoundList& other = call ? choices.CmbPlayWhenMessage : choices.CmbPlayWhenCall;
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
  Fill(other, other.selected);
  Fill(list, *name);
}

std::optional<std::string> EventsDialog::AddSound() {
  const auto path = parts_.dialogs.OpenFile(kAddTitle, kSoundFilter);
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
  Fill(list, "");
  Fill(other, other.selected == name ? "" : other.selected);
}

/// A folder that cannot be read counts as empty. `selected` may be the list's own.
void EventsDialog::Fill(SoundList& list, std::string selected) const {
  list = {};
  const auto trap = ErrorTrap::Silent();
  trap([&] { list.names = parts_.files.List(SoundFolder(), "*.wav"); });
  if (std::ranges::count(list.names, selected) > 0) list.selected = std::move(selected);
}

std::string EventsDialog::SoundFolder() const {
  return parts_.shared.InApplicationFolder("\\Sound\\");
}

void EventsDialog::TestViewer(const EventChoices& choices) {
  parts_.caller_view.ViewCallViewer(choices.chkAnimation, NarrowToInt16(choices.sldAnimationFast),
                                    choices.chkCloseCVAfter, NarrowToInt16(choices.cmbCloseCVAfter));
}

void EventsDialog::ChangeCloseSeconds(std::int32_t seconds) {
  Put("CloseCallerView", &Settings::CloseCallerView, seconds);
}

void EventsDialog::Save(const EventChoices& choices) {
  Put("cPlayInIdle", &Settings::cPlayInIdle, choices.chkPlayInMessage ? 1 : 0);
  Put("PlayInIdle", &Settings::PlayInIdle, choices.CmbPlayWhenMessage.selected);
  Put("ViewDetails", &Settings::ViewDetails, choices.chkViewDet ? 1 : 0);
  Put("WhenMsgViewMsg", &Settings::WhenMsgViewMsg, choices.chkMsgInMsg ? 1 : 0);
  Put("PlayInRing", &Settings::PlayInRing, choices.CmbPlayWhenCall.selected);
  Put("cPlayInRing", &Settings::cPlayInRing, choices.chkPlayInCall ? 1 : 0);
  Put("cAnimation", &Settings::cAnimation, choices.chkAnimation ? 1 : 0);
  Put("AnimationFast", &Settings::AnimationFast, choices.sldAnimationFast);
  Put("cCloseCallerView", &Settings::cCloseCallerView, choices.chkCloseCVAfter ? 1 : 0);
  Put("CloseCallerView", &Settings::CloseCallerView, choices.cmbCloseCVAfter);
  Put("cOnlyIfGotMessage", &Settings::cOnlyIfGotMessage, choices.chkOnlyIfGotMessage ? 1 : 0);
}

void EventsDialog::Put(const char* name, std::int16_t Settings::*field, std::int32_t value) {
  parts_.store.Set(name, std::to_string(value));
  parts_.settings.*field = NarrowToInt16(value);
}

void EventsDialog::Put(const char* name, std::string Settings::*field, const std::string& value) {
  parts_.store.Set(name, value);
  parts_.settings.*field = value;
}

}  // namespace orven
