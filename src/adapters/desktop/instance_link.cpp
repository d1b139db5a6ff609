// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/instance_link.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QPointer>
#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

#include "adapters/channel/message_link.h"

namespace orven {
namespace {

constexpr const char* kName = "/.link";

/// Longer requests are not ours.
constexpr qint64 kLongestRequest = 4096;

}  // namespace

/// A folder that is open. The socket's address in it is short, however long the folder's path is: an address
/// has room for 107 characters.
class LinkFolder {
 public:
  explicit LinkFolder(const std::string& path)
      : file_(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}
  ~LinkFolder() {
    if (file_ >= 0) close(file_);
  }
  LinkFolder(const LinkFolder&) = delete;
  LinkFolder& operator=(const LinkFolder&) = delete;

  std::string Socket() const { return "/proc/self/fd/" + std::to_string(file_) + kName; }

 private:
  const int file_;
};

namespace {

/// A new socket at `path` that only this user can connect to, or -1 (errno).
int Listen(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::ranges::copy(path, address.sun_path);
  const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (file < 0) return -1;
  unlink(path.c_str());
  // Nobody can connect before it listens.
  const bool done = bind(file, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                    chmod(path.c_str(), S_IRUSR | S_IWUSR) == 0 && listen(file, SOMAXCONN) == 0;
  if (done) return file;
  const int error = errno;
  close(file);
  errno = error;
  return -1;
}

}  // namespace

InstanceLink::InstanceLink(std::string application_folder) : path_(std::move(application_folder)) {}

InstanceLink::~InstanceLink() = default;

std::string InstanceLink::Open() {
  folder_ = std::make_unique<LinkFolder>(path_);
  const int file = Listen(folder_->Socket());
  if (file < 0) {
    return "Cannot open \"" + path_ + kName + "\": " + std::generic_category().message(errno);
  }
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { Accept(); });
  server_.listen(file);
  return {};
}

void InstanceLink::Accept() {
  while (auto* socket = server_.nextPendingConnection()) {
    if (!IsSameUser(*socket)) {
      delete socket;
      continue;
    }
    QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] { Read(*socket); });
    Read(*socket);  // what has come before
  }
}

void InstanceLink::Read(QLocalSocket& socket) {
  if (!socket.canReadLine()) {
    if (socket.bytesAvailable() > kLongestRequest) socket.abort();
    return;
  }
  const auto line = socket.readLine().trimmed().toStdString();
  QObject::disconnect(&socket, &QLocalSocket::readyRead, nullptr, nullptr);
  const auto end = std::min(line.find(' '), line.size());
  const auto handler = handlers_.find(line.substr(0, end));
  if (handler == handlers_.end()) return socket.abort();
  handler->second(
      line.substr(std::min(end + 1, line.size())), [asking = QPointer(&socket)](const LinkAnswer& answer) {
        if (asking.isNull()) return;
        asking->write(QByteArray::fromStdString(std::to_string(answer.code) + '\n' + answer.text));
        asking->disconnectFromServer();  // when all is written
      });
}

std::optional<LinkAnswer> AskRunningProgram(const std::string& application_folder, const std::string& request,
                                            std::chrono::milliseconds limit) {
  const QDeadlineTimer deadline(limit);
  const LinkFolder folder(application_folder);
  const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
  QLocalSocket socket;
  socket.connectToServer(QString::fromStdString(folder.Socket()));
  if (!socket.waitForConnected(left()) || !IsSameUser(socket)) return std::nullopt;
  socket.write(QByteArray::fromStdString(request + '\n'));
  QByteArray answer;
  while (socket.waitForReadyRead(left())) answer += socket.readAll();
  const auto end = answer.indexOf('\n');
  if (end < 0 || socket.state() == QLocalSocket::ConnectedState) return std::nullopt;
  return LinkAnswer{answer.left(end).toInt(), answer.mid(end + 1).toStdString()};
}

}  // namespace orven
