// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkup/check_results.h"

#include <algorithm>

namespace orven {
namespace {

using State = CheckResult::State;

constexpr std::array kNames{
    Tr("Machine"), Tr("Line"),    Tr("Port"),       Tr("Registration"), Tr("Greeting"), Tr("Beep"),
    Tr("Room"),    Tr("Records"), Tr("Sound card"), Tr("Mail"),         Tr("Clock"),
};
static_assert(kNames.size() == kCheckLinks);

/// Width of the names in the text.
constexpr std::size_t kColumn = 14;

/// 8000 samples a second.
constexpr std::uint64_t kMuLawRate = 8'000;
constexpr std::uint64_t kPcmRate = 16'000;
constexpr std::uint64_t kMinute = 60;
constexpr std::uint64_t kHour = 60 * kMinute;

/// Less may be used up in a few days.
constexpr std::uint64_t kEnough = kHour;

/// Quieter than this nobody hears it.
constexpr float kHeard = 0.005F;

enum class Sound : std::uint8_t { kFine, kUnreadable, kSilent };

Sound KindOf(const Waveform& sound) {
  if (sound.peaks.empty()) return Sound::kUnreadable;
  return std::ranges::max(sound.peaks) < kHeard ? Sound::kSilent : Sound::kFine;
}

const char* WordOf(State state) {
  switch (state) {
    case State::Good: return "ok      ";
    case State::Note: return "note    ";
    case State::Bad: return "FAILED  ";
    default: return "...     ";
  }
}

}  // namespace

Words NameOf(CheckLink link) {
  return kNames.at(static_cast<std::size_t>(link));
}

bool CheckResults::Finished() const {
  return std::ranges::none_of(*this, [](const auto& one) { return one.state == State::Checking; });
}

bool CheckResults::AnyBad() const {
  return std::ranges::any_of(*this, [](const auto& one) { return one.state == State::Bad; });
}

std::string CheckResults::Text() const {
  std::string text;
  for (std::size_t i = 0; i < size(); ++i) {
    const std::string name = kNames[i];
    text +=
        WordOf(at(i).state) + name + std::string(kColumn - name.size(), ' ') + at(i).found.English() + '\n';
  }
  return text;
}

CheckResult RoomResult(std::uint64_t room, bool compressed) {
  const auto seconds = room / (compressed ? kMuLawRate : kPcmRate);
  if (seconds < kEnough)
    return Bad(
        Words("There is room for only %1 minutes of messages: delete files, or choose another folder for "
              "messages in Options.")
            .Arg(static_cast<std::int64_t>(seconds / kMinute)));
  return Good(
      Words("There is room for %1 hours of messages.").Arg(static_cast<std::int64_t>(seconds / kHour)));
}

CheckResult GreetingResult(const std::string& name, const Waveform& sound) {
  switch (KindOf(sound)) {
    case Sound::kFine: return Good(Words("\"%1\" can be played.").Arg(name));
    case Sound::kSilent:
      return Bad(Words("\"%1\" is silent: record another greeting with Tools, Greeting Creator.").Arg(name));
    default:
      return Bad(
          Words("\"%1\" cannot be played, so callers hear only the beep: choose another greeting in Options, "
                "Answer Mode.")
              .Arg(name));
  }
}

CheckResult BeepResult(const Waveform& sound) {
  switch (KindOf(sound)) {
    case Sound::kFine: return Good(Tr("It can be played."));
    case Sound::kSilent: return Bad(Tr("It is silent: delete beep.wav and start the program again."));
    default:
      return Bad(
          Tr("beep.wav cannot be played, so callers do not know when to speak: start the program again."));
  }
}

}  // namespace orven
