// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application.h"

#include <sys/resource.h>

#include <algorithm>

namespace orven {
namespace {

constexpr const char* kPlatformVariable = "QT_QPA_PLATFORM";

/// The Qt platforms to try, in the notation of kPlatformVariable; empty if the user has chosen.
QByteArray ChoosePlatform() {
  if (!qEnvironmentVariableIsEmpty(kPlatformVariable)) return {};
  QByteArray platforms;
  if (!qEnvironmentVariableIsEmpty("DISPLAY")) platforms += "xcb;";
  if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) platforms += "wayland;";
  return platforms + "offscreen";
}

}  // namespace

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv) {
  const QByteArray platform = ChoosePlatform();
  if (!platform.isEmpty()) qputenv(kPlatformVariable, platform);
  auto application = std::make_unique<QApplication>(argc, argv);
  if (!platform.isEmpty()) qunsetenv(kPlatformVariable);
  QApplication::setApplicationName(QStringLiteral("ORVEN"));
  QApplication::setQuitOnLastWindowClosed(false);
  return application;
}

namespace {

/// Several times the connections that the line allows. Not more, because some programs loop over all possible
/// descriptors.
constexpr rlim_t kWanted = 4096;

}  // namespace

void RaiseFileLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, kWanted);
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace orven
