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

/// flock, once more when a signal came in between.
int LockNow(int file) {
  int result = 0;
  do {
    result = flock(file, LOCK_EX | LOCK_NB);
  } while (result != 0 && errno == EINTR);
  return result;
}

}  // namespace

InstanceLock::InstanceLock(std::string folder) : path_(std::move(folder) + "/.lock") {}

InstanceLock::~InstanceLock() {
  // The file is not removed: another process may just have opened it, and would then lock a file
  // that nobody else can find.
  if (file_ >= 0) close(file_);
}

InstanceLock::Result InstanceLock::Take() {
  problem_.clear();
  if (file_ >= 0) return Result::Taken;
  const int file = open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (file < 0) return Fail("open", errno);
  if (LockNow(file) != 0) {
    const int error = errno;
    close(file);
    return error == EWOULDBLOCK ? Result::HeldByOther : Fail("lock", error);
  }
  file_ = file;
  return Result::Taken;
}

InstanceLock::Result InstanceLock::Fail(const char* doing, int error) {
  problem_ = std::string("Cannot ") + doing + " \"" + path_ + "\": " + std::generic_category().message(error);
  return Result::Failed;
}

namespace {

#ifdef Q_OS_WIN
constexpr auto kPlatform = SystemVersion::Platform::WindowsNt;  // Qt 6 runs on no other Windows
#else
constexpr auto kPlatform = SystemVersion::Platform::Other;
#endif

}  // namespace

DesktopSystem::DesktopSystem(const std::string& application_folder) : lock_(application_folder) {}

SystemVersion DesktopSystem::Version() const {
  const QVersionNumber kernel = QVersionNumber::fromString(QSysInfo::kernelVersion());
  return SystemVersion{kPlatform, kernel.majorVersion(), kernel.minorVersion()};
}

bool DesktopSystem::InitCommonControls(std::uint32_t /*record_size*/, std::uint32_t /*classes*/) {
  return false;  // Qt draws every control itself
}

bool DesktopSystem::ClaimInstance() {
  return lock_.Take() != InstanceLock::Result::HeldByOther;
}

bool QtMouse::IsDown(MouseKey button) const {
  return QGuiApplication::mouseButtons().testFlag(button == kLeftButton ? Qt::LeftButton : Qt::RightButton);
}

}  // namespace orven
