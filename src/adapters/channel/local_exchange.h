// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEventLoop>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "adapters/channel/message_link.h"
#include "platform/data_exchange.h"
#include "platform/event_loop.h"

namespace orven {

class PrivateSocket;

/// The program's end of the link `uDat`, over a local socket that only this user's processes can reach. Needs
/// a QCoreApplication; user-interface thread. In addition to the port's contract, a helper that leaves
/// MessageLink::kMostUnsent unread counts as lost.
class LocalExchange final : public DataExchange {
 public:
  /// `loop` outlives this object; it raises the events.
  explicit LocalExchange(EventLoop& loop);

  /// Ends the link as Close does; waits at most a second until everything is sent.
  ~LocalExchange() override;
  LocalExchange(const LocalExchange&) = delete;
  LocalExchange& operator=(const LocalExchange&) = delete;

  /// To be called just before a helper is started: closes the link and opens a socket for one new helper,
  /// whose time to connect counts from now. Returns the socket's path, a new one each time, for the helper's
  /// ExchangeClient. Throws RuntimeError 75 when no socket can be opened.
  std::string Listen();

  void SetEvents(DataExchangeEvents* events) override { events_ = events; }
  bool OpenCheck(std::int32_t seconds) override;
  bool Send(const std::string& text) override;
  void Close() override;

 private:
  using Time = std::chrono::steady_clock;

  void Accept(std::unique_ptr<QLocalSocket> socket);
  void Tell(std::function<void(DataExchangeEvents&)> event);
  void WaitUntil(Time::time_point limit);
  void EndWait();

  EventLoop& loop_;
  DataExchangeEvents* events_ = nullptr;
  std::unique_ptr<PrivateSocket> socket_;  ///< for a helper that was started
  Time::time_point started_;
  std::unique_ptr<MessageLink> link_;
  std::vector<std::unique_ptr<MessageLink>> ending_;  ///< earlier links
  QEventLoop* waiting_ = nullptr;                     ///< the loop of the waiting OpenCheck
  /// Belong to the present opening: tasks posted for an earlier one never run, and a wait for it ends.
  std::unique_ptr<Lifeline> lifeline_;
  std::shared_ptr<int> opening_;
};

}  // namespace orven
