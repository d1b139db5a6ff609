// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/message_link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <utility>

#include "base/unicode.h"
#include "platform/data_exchange.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kLengthBytes = 4;

std::size_t LengthIn(std::string_view bytes) {
  std::size_t length = 0;
  for (const char byte : bytes.substr(0, kLengthBytes))
    length = length << 8U | static_cast<unsigned char>(byte);
  return length;
}

/// How long an ended link waits for the other end to read what was sent.
constexpr auto kEndsWithin = 10s;

}  // namespace

bool IsMessage(std::string_view text) {
  return text.size() <= DataExchange::kLongestMessage && IsUtf8(text);
}

std::string Framed(std::string_view message) {
  std::string bytes;
  bytes.reserve(kLengthBytes + message.size());
  for (std::size_t shift = 8 * kLengthBytes; shift > 0; shift -= 8) {
    bytes += static_cast<char>(message.size() >> (shift - 8) & 0xFFU);
  }
  return bytes.append(message);
}

void MessageReader::Add(std::string_view bytes) {
  if (broken_) return;
  bytes_.erase(0, read_);
  read_ = 0;
  bytes_.append(bytes);
}

std::optional<std::string> MessageReader::Next() {
  const std::string_view rest = std::string_view(bytes_).substr(read_);
  if (broken_ || rest.size() < kLengthBytes) return std::nullopt;
  const std::size_t length = LengthIn(rest);
  if (length > DataExchange::kLongestMessage) return Break();
  if (rest.size() < kLengthBytes + length) return std::nullopt;
  std::string message(rest.substr(kLengthBytes, length));
  if (!IsMessage(message)) return Break();
  read_ += kLengthBytes + length;
  return message;
}

std::optional<std::string> MessageReader::Break() {
  broken_ = true;
  bytes_.clear();
  read_ = 0;
  return std::nullopt;
}

MessageLink::MessageLink(std::unique_ptr<QLocalSocket> socket, Handlers handlers)
    : socket_(std::move(socket)), handlers_(std::move(handlers)) {
  patience_.setSingleShot(true);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] { socket_->abort(); });
  QObject::connect(socket_.get(), &QLocalSocket::readyRead, &patience_, [this] { Read(); });
  QObject::connect(socket_.get(), &QLocalSocket::bytesWritten, &patience_, [this] { FinishSending(); });
  QObject::connect(socket_.get(), &QLocalSocket::disconnected, &patience_, [this] {
    Read();
    Lost();
  });
  // Handles messages that arrived before the signals were connected.
  QTimer::singleShot(0, &patience_, [this] {
    Read();
    if (Gone()) Lost();
  });
}

MessageLink::~MessageLink() {
  socket_->disconnect();
}

bool MessageLink::Send(std::string_view text) {
  if (!up_ || !IsMessage(text)) return false;
  const std::string bytes = Framed(text);
  const auto size = static_cast<qint64>(bytes.size());
  if (socket_->bytesToWrite() + size > kMostUnsent || socket_->write(bytes.data(), size) != size) {
    Break();
    return false;
  }
  socket_->flush();
  return up_;
}

void MessageLink::End() {
  if (std::exchange(ending_, true)) return;
  up_ = false;
  handlers_ = {};
  patience_.start(kEndsWithin);
  FinishSending();
}

void MessageLink::Flush(std::chrono::milliseconds limit) {
  const QDeadlineTimer deadline(limit);
  while (!Gone() && socket_->bytesToWrite() > 0 && !deadline.hasExpired()) {
    if (!socket_->waitForBytesWritten(static_cast<int>(deadline.remainingTime()))) break;
  }
}

void MessageLink::Read() {
  // Qt prints a warning when a closed socket is read.
  const QByteArray bytes = socket_->bytesAvailable() > 0 ? socket_->readAll() : QByteArray();
  if (!up_) return;
  reader_.Add({bytes.constData(), static_cast<std::size_t>(bytes.size())});
  while (up_) {
    auto message = reader_.Next();
    if (!message) break;
    handlers_.message(std::move(*message));
  }
  if (reader_.Broken()) Break();
}

void MessageLink::Break() {
  if (!up_) return;
  socket_->abort();
  Lost();
}

void MessageLink::Lost() {
  if (std::exchange(up_, false)) handlers_.lost();
}

/// Shuts only the sending half: after a close with unread data the other end would lose what it has not read
/// yet as soon as it writes.
void MessageLink::FinishSending() {
  if (!ending_ || Gone() || socket_->bytesToWrite() > 0) return;
  ::shutdown(static_cast<int>(socket_->socketDescriptor()), SHUT_WR);
}

bool IsSameUser(const QLocalSocket& socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  const int result =
      ::getsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size);
  return result == 0 && peer.uid == ::geteuid();
}

}  // namespace orven
