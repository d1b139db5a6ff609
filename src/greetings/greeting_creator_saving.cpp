// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/error_trap.h"
#include "greetings/greeting_creator.h"

namespace orven {
namespace {

constexpr const char* kBadName = "Greeting name with ? \\ / | * < > : \" is not legal";

std::string Trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

void GreetingCreator::Save() {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (saving_ || unloaded_) return;
    const auto name = view_.GreetingName();
    if (!recorded_) return parts_.dialogs.Information("Empty Message");
    if (name.empty()) return parts_.dialogs.Information("Enter Greeting Name");
    if (!IsLegalGreetingName(name)) return parts_.dialogs.Information(kBadName);
    StopRecord();
    if (!recorded_) return;
    name_ = Trimmed(name);
    saving_ = true;
    ShowButtons();
    if (speech_.Pending()) return view_.ShowState("The greeting is saved as soon as it is made of the text");
    Copy();
  });
}

std::string GreetingCreator::TakePath() const {
  return speech_take_ ? speech_.Path() : parts_.microphone.Path();
}

void GreetingCreator::Copy() {
  const auto outcome = std::make_shared<std::exception_ptr>();
  parts_.background.Run(
      [library = parts_.library, name = name_, source = TakePath()] { library.Add(name, source); },
      [outcome, finish = lifeline_.Bind([this, outcome] { Copied(*outcome); })](std::exception_ptr failure) {
        *outcome = std::move(failure);
        finish();
      });
}

void GreetingCreator::Copied(const std::exception_ptr& failure) {
  saving_ = false;
  const ErrorTrap trap(parts_.log, "ErrSaveGreeting ");
  if (!trap([&] {
        if (failure) std::rethrow_exception(failure);
      })) {
    view_.ShowState("The greeting could not be saved; the system log says why");
    return ShowButtons();
  }
  trap([&] { parts_.saved(name_); });
  trap([&] { parts_.files.Delete(TakePath()); });
  trap([&] { view_.Close(); });
}

void GreetingCreator::Unload() {
  if (unloaded_) return;
  unloaded_ = true;
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (parts_.player.IsPlaying()) parts_.player.Stop();
  });
  trap([&] {
    if (parts_.microphone.Recording()) parts_.microphone.Stop();
  });
  for (const auto* timer : {&TimerRec, &TimerLevel, &TimerPlay}) (*timer)->Stop();
  speech_.Forget();
  parts_.waveforms.Cancel();
  trap([&] { link_.Unload(); });
}

}  // namespace orven
