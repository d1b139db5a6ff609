// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSysInfo>
#include <QVersionNumber>
#include <cerrno>
#include <system_error>

namespace orven {
namespace {

#ifdef Q_OS_WIN
constexpr auto kPlatform = SystemVersion::Platform::WindowsNt;  // Qt 6 runs on no other Windows
#else
constexpr auto kPlatform = SystemVersion::Platform::Other;
#endif

/// flock, repeated after a signal.
int LockNow(int file) {
  int result = 0;
  do {
    result = flock(file, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  return result;
}

}  // namespace

DesktopSystem::~DesktopSystem() {
  // The file is not removed: a process that has just opened it would lock a deleted file.
  if (file_ >= 0) close(file_);
}

SystemVersion DesktopSystem::Version() const {
  const QVersionNumber kernel = QVersionNumber::fromString(QSysInfo::kernelVersion());
  return SystemVersion{kPlatform, kernel.majorVersion(), kernel.minorVersion()};
}

bool DesktopSystem::InitCommonControls(std::uint32_t /*record_size*/, std::uint32_t /*classes*/) {
  return false;  // Qt draws every control itself
}

bool DesktopSystem::ClaimInstance() {
  problem_.clear();
  if (file_ >= 0) return true;
  const int file = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) return ClaimWithoutLock("open", errno);
  if (LockNow(file) != 0) {
    const int error = errno;
    close(file);
    return error != EWOULDBLOCK && ClaimWithoutLock("lock", error);
  }
  file_ = file;
  return true;
}

bool DesktopSystem::ClaimWithoutLock(const char* doing, int error) {
  problem_ = std::string("Cannot ") + doing + " \"" + path_ + "\": " + std::generic_category().message(error);
  return true;
}

bool QtMouse::IsDown(MouseKey button) const {
  return QGuiApplication::mouseButtons().testFlag(button == kLeftButton ? Qt::LeftButton : Qt::RightButton);
}

}  // namespace orven
