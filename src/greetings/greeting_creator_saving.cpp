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
    if (!speech_take_ || speech_.Unchanged()) return Copy();
    // A helper that hung for long has written what an earlier window asked it for.
    recorded_ = speech_take_ = saving_ = false;
    view_.ShowState("The take was replaced meanwhile; please create the greeting again");
    ShowButtons();
  });
}

std::string GreetingCreator::TakePath() const {
  return speech_take_ ? speech_.Path() : parts_.microphone.Path();
}

/// From here on the greeting is saved, whole, also when the window is closed meanwhile.
void GreetingCreator::Copy() {
  const auto source = TakePath();
  const auto done = std::make_shared<bool>();
  const auto finish = [name = name_, source, done, saved = parts_.saved, &log = parts_.log,
                       &files = parts_.files](const std::exception_ptr& failure) {
    const ErrorTrap trap(log, "ErrSaveGreeting ");
    *done = trap([&] {
      if (failure) std::rethrow_exception(failure);
    });
    if (!*done) return;
    trap([&] { saved(name); });
    trap([&] { files.Delete(source); });
  };
  parts_.background.Run(
      [library = parts_.library, name = name_, source] { library.Add(name, source); },
      [finish, show = lifeline_.Bind([this, done] { Copied(*done); })](const std::exception_ptr& failure) {
        finish(failure);
        show();
      });
}

void GreetingCreator::Copied(bool done) {
  const auto trap = ErrorTrap::Silent();
  saving_ = false;
  trap([&] {
    if (done) return view_.Close();
    view_.ShowState("The greeting could not be saved; the system log says why");
    ShowButtons();
  });
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
