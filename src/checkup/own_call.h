// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/paths.h"
#include "base/words.h"
#include "core/settings.h"
#include "platform/event_loop.h"
#include "platform/own_caller.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_list.h"
#include "records/local_player.h"
#include "telephony/line_manager.h"

namespace orven {

/// What an own call proves, in this order.
enum class OwnCallStep : std::uint8_t {
  Ring,      ///< the line rings and is answered at the ring that the settings name
  Greeting,  ///< the caller hears the greeting
  Beep,      ///< the caller hears the beep
  Spoken,    ///< the caller has said a sentence
  Recorded,  ///< the sentence is in the message
  Filed,     ///< the records have the call with its message
  Played,    ///< the player has played the message
};
inline constexpr std::size_t kOwnCallSteps = 7;

struct OwnCallProgress {
  enum class State : std::uint8_t { Waiting, Running, Done, Failed };
  State state = State::Waiting;
  /// What the step is for; when it is over what was found, and if it failed what to do about it.
  Words words{};
};

/// The machine calls its own open line through the whole telephone stack, as proof that it works: an ordinary
/// call, with all that the settings make of one (sounds, caller view, mail, program). It stays in the list
/// under the program's name, with its message, until the user deletes it. Every step ends, in time limits of
/// its own. Destroying it hangs up. User-interface thread.
class OwnCall {
 public:
  struct Parts {
    EventLoop& loop;
    Background& background;
    OwnCaller& caller;
    const Call& call;  ///< the current call, or the latest
    const LineManager& line;
    const TelephonyControl& Tapi1;
    WaveControl& WavePlay;
    CallList& list;
    LocalPlayer& player;
    const Settings& settings;
    const ApplicationFolder& home;
  };
  using Steps = std::array<OwnCallProgress, kOwnCallSteps>;

  /// `changed` is called after each change of a step, and at the end.
  OwnCall(Parts parts, std::function<void()> changed);
  ~OwnCall() { Cancel(); }
  OwnCall(const OwnCall&) = delete;
  OwnCall& operator=(const OwnCall&) = delete;

  /// Why no own call can be made now, as a sentence: the line is off, has a call, or cannot be called by the
  /// program itself. Empty when one can be made.
  Words Obstacle() const;

  /// Calls, unless there is an obstacle or a call is running.
  void Start();

  /// Hangs up; the running step fails. What the machine has recorded stays in the list.
  void Cancel();

  bool Running() const { return running_; }

  /// Every step of the latest call is done.
  bool Passed() const;

  /// The steps of the running or the latest call, in order.
  const Steps& Progress() const { return steps_; }

 private:
  using State = OwnCallProgress::State;

  bool Records() const { return parts_.settings.RecordMessage != 0; }
  void Take(const OwnCallerNews& news);
  void Answered();
  void Look();
  void LookAtCall();
  void CompareMessage();
  void CheckRecord();
  std::int32_t FindRow() const;
  void Play(std::int32_t row);
  void LookAtPlayer();
  void Begin(OwnCallStep step);
  void Finish(OwnCallStep step, const Words& found, const Words& fault);
  void Fail(const Words& fault);
  void End();

  Parts parts_;
  std::function<void()> changed_;
  Steps steps_;
  OwnCallStep step_ = OwnCallStep::Ring;  ///< the running one
  bool running_ = false;
  std::chrono::milliseconds left_{0};    ///< until the running step fails
  std::chrono::milliseconds length_{0};  ///< of the message
  std::chrono::milliseconds played_{0};  ///< how long it has been playing
  Call call_;                            ///< ours, once it is over
  std::uint32_t serial_ = 0;             ///< of our call; 0: not answered yet
  bool comparing_ = false;               ///< the message is being read
  std::unique_ptr<Timer> tmrLook_;
  Lifeline lifeline_;
};

}  // namespace orven
