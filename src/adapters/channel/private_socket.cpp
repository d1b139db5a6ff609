// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/channel/private_socket.h"

#include <sys/un.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QStringList>
#include <utility>

#include "adapters/channel/same_user.h"
#include "base/runtime_error.h"

namespace orven {
namespace {

/// Qt binds the socket in a folder of six letters inside ours before it gives it its name.
constexpr qsizetype kRoomForQt = 16;
constexpr qsizetype kLongestPath = sizeof(sockaddr_un::sun_path) - 1;

/// Folders to try, the best first.
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

}  // namespace

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

}  // namespace orven
