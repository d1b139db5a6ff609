// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalSocket>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/channel/message_framing.h"

namespace orven {

/// One end of a connected link: whole messages over a local socket. Needs Qt's event loop; one thread.
class MessageLink {
 public:
  /// What is sent waits here while the other end does not read. Beyond this much the other end counts as
  /// hanging, and the link is closed.
  static constexpr qint64 kMostUnsent = 8LL * 1024 * 1024;

  /// Both may be called by any function of the socket, also inside Send; they must not destroy the link.
  struct Handlers {
    std::function<void(std::string message)> message;
    std::function<void()> lost;  ///< once, after the last message, when the link goes down by itself
  };

  /// `socket` is connected.
  MessageLink(std::unique_ptr<QLocalSocket> socket, Handlers handlers);

  /// Closes at once; what waits to be sent is lost.
  ~MessageLink();
  MessageLink(const MessageLink&) = delete;
  MessageLink& operator=(const MessageLink&) = delete;

  bool Up() const { return up_; }

  /// Takes a message to be sent; never waits. False when the link is down, goes down by this, or `text`
  /// is no message (IsMessage).
  bool Send(std::string_view text);

  /// Ends the link without telling the handlers. What waits still goes out, then the other end sees the
  /// end of the stream; after a while without that the link is closed.
  void End();

  /// Nothing is left to do.
  bool Gone() const { return socket_->state() == QLocalSocket::UnconnectedState; }

  /// Waits until everything has gone out, for at most `limit`.
  void Flush(std::chrono::milliseconds limit);

 private:
  void Read();
  void Break();
  void Lost();
  void FinishSending();

  std::unique_ptr<QLocalSocket> socket_;
  Handlers handlers_;
  MessageReader reader_;
  bool up_ = true;
  bool ending_ = false;
  QTimer patience_;  ///< runs while the link ends
};

}  // namespace orven
