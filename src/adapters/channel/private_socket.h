// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalServer>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>

namespace orven {

/// A socket in a fresh folder of its own, both for this user alone, through which one process comes in.
/// Both are gone from the disk as soon as it has come, and with this object.
class PrivateSocket {
 public:
  using Accepted = std::function<void(std::unique_ptr<QLocalSocket>)>;

  /// Opens the socket in the session's runtime folder, or in the folder for temporary files when there is
  /// none. Throws RuntimeError 75 when that cannot be done. `accepted` is called once, by the event loop.
  explicit PrivateSocket(Accepted accepted);
  ~PrivateSocket();
  PrivateSocket(const PrivateSocket&) = delete;
  PrivateSocket& operator=(const PrivateSocket&) = delete;

  /// Nobody has come in yet.
  bool Open() const { return server_.isListening(); }

  std::string Path() const { return server_.fullServerName().toStdString(); }

 private:
  void Accept();

  Accepted accepted_;
  std::unique_ptr<QTemporaryDir> folder_;
  QLocalServer server_;
};

}  // namespace orven
