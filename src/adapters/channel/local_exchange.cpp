// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/local_exchange.h"

#include <sys/un.h>

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "adapters/channel/message_link.h"
#include "base/runtime_error.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// Qt first binds the socket in a temporary folder, with a name of six letters, inside ours.
constexpr qsizetype kRoomForQt = 16;
constexpr qsizetype kLongestPath = sizeof(sockaddr_un::sun_path) - 1;

/// Folders to try, best first.
QStringList Parents() {
  QStringList parents;
  if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR")) {
    parents << QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  }
  parents << QDir::tempPath() << QStringLiteral("/tmp");
  parents.removeAll(QString());
  return parents;
}

std::unique_ptr<QTemporaryDir> MakeFolder(QString& problem) {
  for (const QString& parent : Parents()) {
    auto folder = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/orven-XXXXXX"));
    if (!folder->isValid()) {
      problem = parent + QStringLiteral(" (") + folder->errorString() + QStringLiteral(")");
    } else if (QFile::encodeName(folder->path()).size() + kRoomForQt > kLongestPath) {
      problem = parent + QStringLiteral(" (the path is too long for a socket)");
    } else {
      return folder;
    }
  }
  throw RuntimeError(ErrorNumber::PathAccessError, problem.toStdString());
}

/// How long the program's exit waits for a helper that does not read.
constexpr auto kFlushLimit = 1s;

}  // namespace

/// A socket that accepts one process, in a new folder; both are accessible to this user only. They are
/// removed from the disk as soon as the process has connected, or with this object.
class PrivateSocket {
 public:
  using Accepted = std::function<void(std::unique_ptr<QLocalSocket>)>;

  /// Opens the socket in the session's runtime folder, or in the folder for temporary files when there is
  /// none. Throws RuntimeError 75 when that fails. `accepted` is called once, by the event loop.
  explicit PrivateSocket(Accepted accepted);
  ~PrivateSocket();
  PrivateSocket(const PrivateSocket&) = delete;
  PrivateSocket& operator=(const PrivateSocket&) = delete;

  /// Whether the socket still waits for its process.
  bool Open() const { return server_.isListening(); }

  std::string Path() const { return server_.fullServerName().toStdString(); }

 private:
  void Accept();

  Accepted accepted_;
  std::unique_ptr<QTemporaryDir> folder_;
  QLocalServer server_;
};

PrivateSocket::PrivateSocket(Accepted accepted) : accepted_(std::move(accepted)) {
  QString problem;
  folder_ = MakeFolder(problem);
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { Accept(); });
  const QString path = folder_->filePath(QStringLiteral("uDat"));
  if (server_.listen(path)) return;
  throw RuntimeError(ErrorNumber::PathAccessError,
                     path.toStdString() + " (" + server_.errorString().toStdString() + ")");
}

PrivateSocket::~PrivateSocket() = default;

void PrivateSocket::Accept() {
  while (server_.hasPendingConnections()) {
    std::unique_ptr<QLocalSocket> socket(server_.nextPendingConnection());
    socket->setParent(nullptr);
    if (!IsSameUser(*socket)) continue;
    server_.close();
    folder_.reset();
    return accepted_(std::move(socket));
  }
}

LocalExchange::LocalExchange(EventLoop& loop) : loop_(loop) {}

LocalExchange::~LocalExchange() {
  Close();
  const auto limit = Time::now() + kFlushLimit;
  for (const auto& link : ending_) {
    link->Flush(std::max(0ms, std::chrono::duration_cast<std::chrono::milliseconds>(limit - Time::now())));
  }
}

std::string LocalExchange::Listen() {
  Close();
  lifeline_ = std::make_unique<Lifeline>();
  opening_ = std::make_shared<int>();
  socket_ = std::make_unique<PrivateSocket>(
      [this](std::unique_ptr<QLocalSocket> socket) { Accept(std::move(socket)); });
  started_ = Time::now();
  return socket_->Path();
}

bool LocalExchange::OpenCheck(std::int32_t seconds) {
  const auto limit = started_ + std::chrono::seconds(seconds);
  if (!waiting_ && socket_ && socket_->Open() && Time::now() < limit) {
    const std::weak_ptr<int> opening = opening_;
    WaitUntil(limit);
    // Closed, reopened or destroyed meanwhile.
    if (opening.expired()) return false;
  }
  return link_ && link_->Up();
}

/// This object may be destroyed before it returns.
void LocalExchange::WaitUntil(Time::time_point limit) {
  const std::weak_ptr<int> opening = opening_;
  QEventLoop wait;
  waiting_ = &wait;
  const auto remaining = std::chrono::ceil<std::chrono::milliseconds>(limit - Time::now());
  QTimer::singleShot(remaining, &wait, &QEventLoop::quit);
  wait.exec();
  if (!opening.expired()) waiting_ = nullptr;
}

void LocalExchange::EndWait() {
  if (waiting_) waiting_->quit();
  waiting_ = nullptr;
}

bool LocalExchange::Send(const std::string& text) {
  return link_ && link_->Send(text);
}

void LocalExchange::Close() {
  EndWait();
  opening_.reset();
  lifeline_.reset();
  socket_.reset();
  std::erase_if(ending_, [](const auto& link) { return link->Gone(); });
  if (!link_) return;
  link_->End();
  ending_.push_back(std::move(link_));
}

void LocalExchange::Accept(std::unique_ptr<QLocalSocket> socket) {
  link_ = std::make_unique<MessageLink>(
      std::move(socket),
      MessageLink::Handlers{[this](std::string message) {
                              Tell([message = std::move(message)](DataExchangeEvents& events) {
                                events.DataArrival(message);
                              });
                            },
                            [this] { Tell([](DataExchangeEvents& events) { events.LinkLost(); }); }});
  EndWait();
}

void LocalExchange::Tell(std::function<void(DataExchangeEvents&)> event) {
  loop_.Post(lifeline_->Bind([this, event = std::move(event)] {
    if (events_) event(*events_);
  }));
}

}  // namespace orven
