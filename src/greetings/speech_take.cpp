// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/speech_take.h"

#include <utility>

#include "core/error_trap.h"

namespace orven {
namespace {

using std::chrono_literals::operator""ms;
using std::chrono_literals::operator""s;

constexpr auto kLookEvery = 200ms;

/// A helper speaks a thousand characters, a minute of speech, in far less than a second.
constexpr std::chrono::milliseconds kLimit = 10s;
constexpr std::chrono::milliseconds kLimitPerKilobyte = 1s;

}  // namespace

SpeechTake::SpeechTake(Parts parts) : parts_(parts), TimerSpeech(parts.loop.MakeTimer([this] { Look(); })) {}

bool SpeechTake::Make(const std::string& text, SpeechLink::Manner manner, Done done) {
  Forget();
  // An older take must not pass for this one; the helper removes what comes in between.
  const auto trap = ErrorTrap::Silent();
  trap([&] { parts_.files.Delete(Path()); });
  if (!parts_.link.MakeFile(Path(), text, manner)) return false;
  done_ = std::move(done);
  constexpr std::size_t kKilobyte = 1024;
  deadline_ = parts_.clock.Uptime() + kLimit + kLimitPerKilobyte * (text.size() / kKilobyte);
  TimerSpeech->Start(kLookEvery);
  return true;
}

void SpeechTake::Look() {
  if (parts_.files.Exists(Path())) return End(true);
  if (parts_.clock.Uptime() >= deadline_) GiveUp();
}

void SpeechTake::GiveUp() {
  if (!Pending()) return;
  if (parts_.files.Exists(Path())) return End(true);
  parts_.log.WriteSystem("TTS: the speech helper made no greeting of the text: there is no " + Path());
  End(false);
}

bool SpeechTake::Unchanged() const {
  Clock::WallTime written;
  const auto trap = ErrorTrap::Silent();
  // One that is gone is for the copy to find.
  return !trap([&] { written = parts_.files.LastModified(Path()); }) || written == written_;
}

void SpeechTake::End(bool there) {
  Forget();
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (there) written_ = parts_.files.LastModified(Path());
  });
  std::exchange(done_, nullptr)(there);
}

}  // namespace orven
