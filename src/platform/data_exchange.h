// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// What arrives over the link to the speech helper.
class DataExchangeEvents {
 public:
  virtual ~DataExchangeEvents() = default;

  /// One whole message from the helper.
  virtual void DataArrival(const std::string& text) = 0;

  /// The link went down: the helper ended, crashed or violated the protocol.
  virtual void LinkLost() = 0;
};

/// The data-exchange control `uDat`: one link to the speech helper, which carries whole messages in both
/// directions, in order. A message is UTF-8 text of up to kLongestMessage bytes. User-interface thread;
/// events arrive there, never inside an operation other than OpenCheck.
class DataExchange {
 public:
  /// The longest message, in bytes.
  static constexpr std::size_t kLongestMessage = std::size_t{1024} * 1024;

  virtual ~DataExchange() = default;

  /// The receiver of the events; it outlives the control's last event. nullptr: no receiver.
  virtual void SetEvents(DataExchangeEvents* events) = 0;

  /// True when the link is up. If a helper was started less than `seconds` ago and has not connected
  /// yet, this waits until it connects or those seconds have passed, and runs the event loop meanwhile: the
  /// caller must expect any other event. A call during such a wait, or without a helper to wait for, returns
  /// at once.
  virtual bool OpenCheck(std::int32_t seconds) = 0;

  /// Sends one message. False, and nothing is sent, when the link is down or `text` is too long or not
  /// UTF-8.
  virtual bool Send(const std::string& text) = 0;

  /// Closes the link and ends a wait for a helper, which then returns false. No event follows. Messages
  /// already sent still reach the helper. Without a link it does nothing.
  virtual void Close() = 0;
};

}  // namespace orven
