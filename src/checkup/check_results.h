// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "base/words.h"
#include "platform/wave.h"

namespace orven {

/// The links of the chain from a call to its message, in the order in which they are shown.
enum class CheckLink : std::uint8_t {
  Machine,       ///< the program runs
  Line,          ///< a line is chosen and open
  Port,          ///< its address for calls, or its modem
  Registration,  ///< its server accepts its accounts
  Greeting,      ///< can be played
  Beep,          ///< can be played
  Room,          ///< on the disk, for messages
  Records,       ///< and the folders of records and messages can be written
  Sound,         ///< the sound card
  Mail,          ///< the mail server, if mail is on
  Clock,         ///< plausible
};
inline constexpr std::size_t kCheckLinks = 11;

/// What was found about one link, in whole sentences; if it is bad, with the remedy.
struct CheckResult {
  enum class State : std::uint8_t {
    Checking,
    Good,
    Note,  ///< nothing is wrong, but the user should know it: not checked, or not in use
    Bad,
  };
  State state = State::Checking;
  Words found{};
};

/// All links, by their numbers.
struct CheckResults : std::array<CheckResult, kCheckLinks> {
  CheckResult& At(CheckLink link) { return at(static_cast<std::size_t>(link)); }
  const CheckResult& At(CheckLink link) const { return at(static_cast<std::size_t>(link)); }

  bool Finished() const;
  bool AnyBad() const;

  /// One line of English for each link: "ok", "note" or "FAILED", its name, and what was found.
  std::string Text() const;
};

Words NameOf(CheckLink link);

// What the results of single checks mean, wherever they were made.

inline CheckResult Good(Words found) {
  return {CheckResult::State::Good, std::move(found)};
}
inline CheckResult Note(Words found) {
  return {CheckResult::State::Note, std::move(found)};
}
inline CheckResult Bad(Words found) {
  return {CheckResult::State::Bad, std::move(found)};
}

/// `room` bytes for messages that are stored as mu-law if `compressed`, else as 16-bit samples.
CheckResult RoomResult(std::uint64_t room, bool compressed);

/// The greeting `name` looks like this.
CheckResult GreetingResult(const std::string& name, const Waveform& sound);
CheckResult BeepResult(const Waveform& sound);

}  // namespace orven
