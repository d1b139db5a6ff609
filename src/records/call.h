// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace orven {

/// "Type" of a call that left no message.
inline constexpr const char* kNoMessageType = "-1";

/// Caller name and number when the network has not sent them.
inline constexpr const char* kUnknownCaller = "UNKNOWN";

/// `Call::record` of a call that gets no record.
inline constexpr std::int64_t kNoRecord = -1;

/// Everything known about the current call. One call at a time; a new one replaces it whole.
struct Call {
  /// A call that was just offered. `serial` is different for every call of this process.
  static Call Offered(std::uint32_t serial, std::string date, std::string time,
                      std::string message_file_name);

  std::uint32_t serial = 0;

  bool in_progress = false;   ///< offered and not idle yet
  bool answering = false;     ///< a request to answer was accepted
  bool admin_mode = false;    ///< the caller keyed the password
  bool message_left = false;  ///< a recording was made, even if it could not be stored
  bool do_nothing = false;    ///< a person chose to let it ring on; it is still answered
  bool greeting_playing = false;
  bool beep_playing = false;
  bool remote_playback = false;  ///< messages are being played to the caller
  bool sent_to_application = false;

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
                                            "Left",    "Mail",      "Step"};

/// Query for all records with all fields.
inline constexpr const char* kGetAll = "Get *";

}  // namespace orven
