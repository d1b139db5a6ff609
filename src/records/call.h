// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "base/words.h"

namespace orven {

/// "Type" of a call that left no message.
inline constexpr const char* kNoMessageType = "-1";

/// Caller name and number when the network has not sent them.
inline constexpr const char* kUnknownCaller = Tr("UNKNOWN");

/// A caller's name or number, to be shown.
inline Words CallerWords(const std::string& text) {
  return text == kUnknownCaller ? Words(kUnknownCaller) : Words(text);
}

/// `Call::record` of a call that gets no record.
inline constexpr std::int64_t kNoRecord = -1;

/// Where the line's one call is.
enum class CallState : std::uint8_t {
  Idle,       ///< monitoring, no call
  Offered,    ///< ringing
  Answering,  ///< a request to answer was accepted
  Greeting,
  Beep,  ///< also during the short wait between the beep and the recording
  Recording,
  Recorded,       ///< the message has reached its longest length, the caller is still there
  Administrator,  ///< the caller keyed the password
  Disconnected,   ///< the caller hung up
};

const char* NameOf(CallState state);

/// Whether a call can go from one state to the other.
bool IsLegal(CallState from, CallState to);

/// Everything known about the current call. One call at a time; a new one replaces it whole.
struct Call {
  /// A call that is about to be offered. `serial` is different for every call of this process.
  static Call Offered(std::uint32_t serial, std::string date, std::string time,
                      std::string message_file_name);

  /// Offered and not idle yet.
  bool InProgress() const { return state != CallState::Idle; }

  /// A request to answer was accepted, now or earlier.
  bool Answering() const { return InProgress() && state != CallState::Offered; }

  std::uint32_t serial = 0;

  CallState state = CallState::Idle;  ///< decides what each event does
  bool admin_mode = false;            ///< the caller keyed the password
  bool message_left = false;          ///< a recording was made, even if it could not be stored
  bool remote_playback = false;       ///< messages are being played to the caller
  bool sent_to_application = false;
  bool dropped = false;  ///< by the user at the desk

  std::string caller_name = kUnknownCaller;
  std::string caller_number = kUnknownCaller;
  std::string date;  ///< as shown and filed, taken once when the call was offered
  std::string time;
  std::string ring_count_text;    ///< ring at which the call was answered
  std::string message_file_name;  ///< without folder; prepared even when no message is left
  std::string message_path;       ///< where the message was stored; empty when none was
  std::string type_text = kNoMessageType;
  std::string digit_buffer;

  std::int32_t record_seconds = 0;
  std::int32_t silence_milliseconds = 0;

  // What the next start needs if the program is killed before the call is finished.
  std::int64_t key = 0;          ///< its number among the open calls; 0: it is not one
  std::int64_t record = 0;       ///< identity of its record; 0: none yet
  std::string recording_folder;  ///< where its recording was started; empty: it was not
  std::string recording;         ///< what its recording is known by there, or the file's own name
  std::string place;             ///< the path chosen for its message, which was free then
  bool mail_due = false;         ///< the call asked for a mail that is not handed over yet
  std::int64_t step = 0;         ///< how often it was kept: the newer of two states counts
};

/// Name of the message file of a call with these date and time texts: "12-31-2003_14-05-07.wav".
std::string MessageFileName(const std::string& date, const std::string& time);

/// Stored names of a call record's fields, spelt as the records have them.
inline constexpr const char* kCallName = "Call_Name";
inline constexpr const char* kCallNumber = "Call_Number";
inline constexpr const char* kCallTime = "Call_Time";
inline constexpr const char* kCallDate = "Call_Date";
inline constexpr const char* kCallMassageName = "Call_Massage_Name";
inline constexpr const char* kType = "Type";
inline constexpr const char* kRead = "Read";

/// All fields, in the order in which they are stored.
inline constexpr std::array kCallFields{kCallName,        kCallNumber, kCallTime, kCallDate,
                                        kCallMassageName, kType,       kRead};

/// Names of what is kept of an open call, in this order.
inline constexpr std::array kOpenCallFields{kCallName, kCallNumber, kCallTime,   kCallDate, kCallMassageName,
                                            "Ring",    "Folder",    "Recording", "Place",   "Path",
                                            "Left",    "Mail",      "Step",      "Home"};

/// Query for all records with all fields.
inline constexpr const char* kGetAll = "Get *";

}  // namespace orven
