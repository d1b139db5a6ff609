// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/desktop_system.h"

#include <QSysInfo>
#include <QVersionNumber>

namespace orven {
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

}  // namespace orven
