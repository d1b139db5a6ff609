// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalSocket>
#include <QTimer>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orven {
/// Whether `text` may be sent over the link: UTF-8 of at most DataExchange::kLongestMessage bytes.
bool IsMessage(std::string_view text);

/// `message` framed for a stream: its length as four bytes, big-endian, then the message.
std::string Framed(std::string_view message);

/// Reassembles messages from a stream that arrives in pieces of any size.
class MessageReader {
 public:
  void Add(std::string_view bytes);

  /// The next complete message. Nothing if none is complete yet, or if the stream is Broken.
  std::optional<std::string> Next();

  /// The stream violated the protocol with a message that is too long or not UTF-8. Next has returned the
  /// messages before it.
  bool Broken() const { return broken_; }

 private:
  std::optional<std::string> Break();

  std::string bytes_;
  std::size_t read_ = 0;  ///< bytes at the front that Next has returned
  bool broken_ = false;
};

/// One end of a connected link: whole messages over a local socket. Needs Qt's event loop; one thread.
class MessageLink {
 public:
  /// Limit for messages that the other end has not read. Beyond it the other end counts as hanging, and the
  /// link is closed.
  static constexpr qint64 kMostUnsent = 8LL * 1024 * 1024;

  /// Both may be called by any function of the socket, even inside Send; they must not destroy the link.
  struct Handlers {
    std::function<void(std::string message)> message;
    std::function<void()> lost;  ///< once, after the last message, when the link is lost
  };

  /// `socket` is connected.
  MessageLink(std::unique_ptr<QLocalSocket> socket, Handlers handlers);

  /// Closes at once; unsent messages are lost.
  ~MessageLink();
  MessageLink(const MessageLink&) = delete;
  MessageLink& operator=(const MessageLink&) = delete;

  bool Up() const { return up_; }

  /// Queues a message; never blocks. False when the link is down or goes down during the call, and when
  /// `text` is not a message (IsMessage).
  bool Send(std::string_view text);

  /// Ends the link without calling the handlers. Queued messages are still sent, then the other end sees the
  /// end of the stream; after a time limit the link is closed in any case.
  void End();

  /// Whether the socket is closed.
  bool Gone() const { return socket_->state() == QLocalSocket::UnconnectedState; }

  /// Waits until everything is sent, for at most `limit`.
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
  QTimer patience_;  ///< limits the end of the link
};

/// Whether the process at the other end of `socket` belongs to the user of this one.
bool IsSameUser(const QLocalSocket& socket);

}  // namespace orven
