// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

namespace orven {

/// What comes over the link to the speech helper.
class DataExchangeEvents {
 public:
  virtual ~DataExchangeEvents() = default;

  /// One whole message of the helper's.
  virtual void DataArrival(const std::string& text) = 0;

  /// A link that was up is down: the helper ended or died, or broke the rules of the link.
  virtual void LinkLost() = 0;
};

/// The data-exchange control `uDat`: one link to the speech helper, over which whole messages go both ways,
/// in order. A message is UTF-8 text of up to kLongestMessage bytes. User-interface thread; events arrive
/// there, never inside an operation other than OpenCheck.
class DataExchange {
 public:
  /// The longest message, in bytes.
  static constexpr std::size_t kLongestMessage = std::size_t{1024} * 1024;

  virtual ~DataExchange() = default;

  /// Who is told; the owner outlives the control's last event. nullptr tells nobody.
  virtual void SetEvents(DataExchangeEvents* events) = 0;

  /// True when the link is up. While a helper that was started less than `seconds` ago has not come yet,
  /// this waits for it, until those seconds have passed, and runs the event loop meanwhile: whoever calls
  /// must expect any other event inside. A call inside such a wait, and one without a helper to wait for,
  /// answers at once.
  virtual bool OpenCheck(std::int32_t seconds) = 0;

  /// Sends one message. Nothing happens while the link is down. False when it is down, or when `text` is
  /// too long or no UTF-8: then nothing of it is sent.
  virtual bool Send(const std::string& text) = 0;

  /// Ends the link, and the wait for a helper, which returns false: no event comes any more. What has been
  /// sent still reaches the helper. Nothing happens without a link.
  virtual void Close() = 0;
};

}  // namespace orven
