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
/// Whether `text` may go over the link: UTF-8 of at most DataExchange::kLongestMessage bytes.
bool IsMessage(std::string_view text);

/// `message` as bytes of a stream: its length in bytes as four bytes, the highest first, then itself.
std::string Framed(std::string_view message);

/// Puts messages together again from a stream that arrives in pieces of any size.
class MessageReader {
 public:
  void Add(std::string_view bytes);

  /// The next message that is whole. Nothing while there is none, and for ever once Broken.
  std::optional<std::string> Next();

  /// The stream breaks the rules: a message that is too long or no UTF-8. What came before it has been
  /// given out.
  bool Broken() const { return broken_; }

 private:
  std::optional<std::string> Break();

  std::string bytes_;
  std::size_t read_ = 0;  ///< bytes at the front that have been given out
  bool broken_ = false;
};

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

/// Whether the process at the other end of `socket` belongs to the user of this one.
bool IsSameUser(const QLocalSocket& socket);

}  // namespace orven
