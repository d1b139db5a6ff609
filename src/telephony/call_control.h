// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

#include "telephony/call_context.h"

namespace orven {

/// Answers the call and hangs it up. User-interface thread.
class CallControl {
 public:
  explicit CallControl(CallContext& context) : context_(context) {}

  /// Answers if `force`, or if the ring count has reached the setting and no answer is in progress. Does
  /// nothing while a call is connected.
  void AnswerToCall(std::int32_t line, std::int32_t ring_count, bool force);

  /// An answer or a hang-up completed; `result` equals `request` on success.
  void Proc(std::int32_t line, std::int32_t request, std::int32_t result);

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

  CallContext& context_;
  std::int32_t answer_request_ = 0;
};

}  // namespace orven
