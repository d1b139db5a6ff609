// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/telephony.h"
#include "platform/wave.h"
#include "records/call.h"
#include "records/call_journal.h"
#include "telephony/call_state.h"
#include "telephony/line_manager.h"

namespace orven {

/// What the classes that carry one call share: the call itself, where it stands, the settings, the
/// line and its two controls, the journal. Owned by the main window; none of them outlives it.
struct CallContext {
  TelephonyControl& Tapi1;
  WaveControl& Wave1;
  SystemLog& log;
  const Settings& settings;
  const SharedOptions& shared;
  Call& call;
  CallProgress& progress;
  LineManager& line;
  CallJournal& journal;

  /// Index of the line that carries calls.
  std::int32_t Line() const { return line.CurrentIndex(); }

  /// The call is answered and our side has not hung up yet.
  bool Connected() const { return Tapi1.IsCallConnected(Line()); }
};

/// "[LineIndex:" + line + "]", as the step lines of the log have it.
inline std::string LineTag(std::int32_t line) {
  return "[LineIndex:" + std::to_string(line) + "]";
}

}  // namespace orven
