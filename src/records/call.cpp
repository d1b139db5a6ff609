// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/call.h"

#include "base/paths.h"

namespace orven {

const char* NameOf(CallState state) {
  switch (state) {
    case CallState::Idle: return "idle";
    case CallState::Offered: return "offered";
    case CallState::Answering: return "answering";
    case CallState::Greeting: return "greeting";
    case CallState::Beep: return "beep";
    case CallState::Recording: return "recording";
    case CallState::Recorded: return "recorded";
    case CallState::Administrator: return "administrator";
    case CallState::Disconnected: return "disconnected";
  }
  return "?";
}

bool IsLegal(CallState from, CallState to) {
  if (to == CallState::Idle) return true;
  switch (from) {
    case CallState::Idle: return to == CallState::Offered;
    // The user may drop an offered call; a line may connect a call that the program did not answer.
    case CallState::Offered: return to == CallState::Answering || to == CallState::Greeting;
    // A request that failed leaves the call ringing.
    case CallState::Answering:
      // The caller may hang up before the connection is established.
      return to == CallState::Offered || to == CallState::Greeting || to == CallState::Disconnected;
    case CallState::Greeting:
      return to == CallState::Beep || to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Beep:
      return to == CallState::Recording || to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Recording:
      return to == CallState::Recorded || to == CallState::Disconnected || to == CallState::Administrator;
    case CallState::Recorded:
    // A password keyed again starts the messages again.
    case CallState::Administrator: return to == CallState::Administrator || to == CallState::Disconnected;
    case CallState::Disconnected: return false;
  }
  return false;
}

Call Call::Offered(std::uint32_t serial, std::string date, std::string time, std::string message_file_name) {
  Call call;
  call.serial = serial;
  call.date = std::move(date);
  call.time = std::move(time);
  call.message_file_name = std::move(message_file_name);
  return call;
}

std::string MessageFileName(const std::string& date, const std::string& time) {
  return FileStamp(date, time) + ".wav";
}

}  // namespace orven
