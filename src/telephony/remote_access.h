// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "notify/status_panel.h"
#include "records/call_list.h"
#include "records/message_files.h"
#include "telephony/call_control.h"
#include "telephony/recorder.h"

namespace orven {

/// Lets the owner hear the messages over the telephone: password and "*", then every message of the
/// call list from its first row to its last. User-interface thread.
class RemoteAccess {
 public:
  RemoteAccess(CallControl& control, Recorder& recorder, CallList& list, const MessageFolders& folders,
               LineView& view)
      : control_(control), recorder_(recorder), ListView1(list), folders_(folders), view_(view) {}

  /// A key was pressed on the telephone. Ignored while a message is recorded.
  void MonitorDigit(std::int32_t line, char digit);

  /// Plays the next message that the owner has not heard, even if the list's rows or its selection have
  /// changed meanwhile. Hangs up after the last one, or when none can be played.
  void PlayForAdmin();

 private:
  void EnterAdministratorMode(std::int32_t line);
  void NameUnfiledMessage(std::int32_t line);
  bool SelectNextMessage();  ///< false when there is none
  bool PlaySelected();       ///< false when it cannot be played

  CallControl& control_;
  Recorder& recorder_;
  CallList& ListView1;
  const MessageFolders& folders_;
  LineView& view_;
  std::int64_t place_ = CallList::kTop;  ///< identity of the call whose message was played last
};

}  // namespace orven
