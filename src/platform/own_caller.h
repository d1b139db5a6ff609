// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/words.h"

namespace orven {

/// One thing that the caller of an own call has experienced. The kinds come in this order, each once at most.
struct OwnCallerNews {
  enum class Kind : std::uint8_t {
    Rings,
    Answered,
    Greeting,  ///< what was played first has been compared with the greeting
    Beep,      ///< the same with the beep
    Spoken,    ///< the sentence has been said
    Over,      ///< the call has ended; always the last one
  };
  Kind kind;
  Words fault{};  ///< a sentence for the user; empty: it went well
};

/// A caller inside the program who calls a telephone line of its own over the network stack, listens, says a
/// sentence and hangs up. One call at a time. User-interface thread; returns at once.
class OwnCaller {
 public:
  using News = std::function<void(const OwnCallerNews&)>;

  /// The name and the number that the caller tells.
  static constexpr const char* kName = "ORVEN";
  static constexpr const char* kNumber = "Check-up";

  virtual ~OwnCaller() = default;

  /// Why the line with this index cannot be called by the program, as a sentence; empty when it can.
  virtual Words Obstacle(std::int32_t line) const = 0;

  /// Calls the open line `line`, without an obstacle. `greeting` and `beep` are the sound files that it
  /// should play. `news` is called on the user-interface thread, never inside Call, and not after HangUp.
  /// What does not happen is reported as a fault: a line that does not ring within seconds, a greeting that
  /// is another sound, a beep that does not come.
  virtual void Call(std::int32_t line, const std::string& greeting, const std::string& beep, News news) = 0;

  /// Ends the call, if there is one.
  virtual void HangUp() = 0;

  /// Whether the sound file at `path` holds the sentence that the caller says. Reads the whole file: any
  /// thread but the user-interface thread.
  virtual bool Holds(const std::string& path) const = 0;
};

}  // namespace orven
