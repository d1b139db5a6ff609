// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/exchange_client.h"

#include <QDeadlineTimer>
#include <QThread>

#include "adapters/channel/message_link.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr unsigned long kRetryMilliseconds = 20;

}  // namespace

std::optional<std::string> ExchangeClient::Connect(const std::string& path, std::chrono::milliseconds limit) {
  const QDeadlineTimer deadline(limit);
  auto socket = std::make_unique<QLocalSocket>();
  for (;;) {
    socket->connectToServer(QString::fromStdString(path));
    if (socket->waitForConnected(static_cast<int>(deadline.remainingTime()))) break;
    if (deadline.hasExpired()) return path + ": " + socket->errorString().toStdString();
    QThread::msleep(kRetryMilliseconds);
  }
  if (!IsSameUser(*socket)) return path + ": the socket belongs to another user";
  link_ = std::make_unique<MessageLink>(std::move(socket), handlers_);
  return std::nullopt;
}

}  // namespace orven
