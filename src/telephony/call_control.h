// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/open_calls.h"
#include "telephony/line_manager.h"
#include "telephony/telephony_control.h"

namespace orven {

/// Shared by the classes that handle the call: the call, the settings, the line and its two controls, the
/// open calls. Owned by the main window; none of them outlives it.
struct CallParts {
  TelephonyControl& Tapi1;
  WaveControl& Wave1;
  SystemLog& log;
  const Settings& settings;
  const ApplicationFolder& home;
  Call& call;
  LineManager& line;
  OpenCalls& open_calls;
};

/// The current call with everything that belongs to it: moves it from state to state, answers it and hangs it
/// up. User-interface thread.
class CallControl : public CallParts {
 public:
  explicit CallControl(const CallParts& parts) : CallParts(parts) {}

  /// Index of the line that carries calls.
  std::int32_t Line() const { return line.CurrentIndex(); }

  /// The call is answered and our side has not hung up yet.
  bool Connected() const { return Tapi1.IsCallConnected(Line()); }

  /// Moves the call to `next`; an impossible transition is made all the same, and logged under `label`.
  void Enter(CallState next, const char* label);

  /// Answers if `force`, or if the ring count has reached the setting and no answer is in progress. Does
  /// nothing while a call is connected.
  void AnswerToCall(std::int32_t index, std::int32_t ring_count, bool force);

  /// A request failed. If it was the current answer, the call rings again and can be answered; a late failure
  /// belongs to an earlier call.
  void RequestFailed(std::int32_t request);

  /// Hangs up the current call and ends what plays on the line.
  void DropCall();

  /// Rejects the offered call, by answering it and hanging up at once; a connected one is only hung
  /// up. What plays on the line ends. The main window's drop command.
  void DropInComeCall();

 private:
  /// Requests the answer and records that it is in progress.
  std::int32_t RequestAnswer();
  /// Ends what plays on the line, and the call.
  void HangUp() const;

  std::int32_t answer_request_ = 0;
};

/// "[LineIndex:" + index + "]", as in the lines of the log.
inline std::string LineTag(std::int32_t index) {
  return "[LineIndex:" + std::to_string(index) + "]";
}

}  // namespace orven
