// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application.h"

#include <sys/resource.h>

#include <algorithm>

namespace orven {
namespace {

constexpr const char* kPlatformVariable = "QT_QPA_PLATFORM";

bool IsSet(const char* variable) {
  return !qEnvironmentVariableIsEmpty(variable);
}

}  // namespace

std::string ChoosePlatform(const DisplayVariables& variables) {
  if (variables.platform) return {};
  std::string platforms;
  if (variables.x11) platforms += "xcb;";
  if (variables.wayland) platforms += "wayland;";
  return platforms + "offscreen";
}

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv) {
  const std::string platform =
      ChoosePlatform({IsSet(kPlatformVariable), IsSet("DISPLAY"), IsSet("WAYLAND_DISPLAY")});
  if (!platform.empty()) qputenv(kPlatformVariable, platform.c_str());
  auto application = std::make_unique<QApplication>(argc, argv);
  if (!platform.empty()) qunsetenv(kPlatformVariable);
  QApplication::setApplicationName(QStringLiteral("ORVEN"));
  QApplication::setQuitOnLastWindowClosed(false);
  return application;
}

namespace {

/// Enough for every connection that the line allows, many times over; programs that walk over all
/// possible descriptors are slow with the system's own highest limit.
constexpr rlim_t kWanted = 4096;

}  // namespace

void RaiseFileLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, kWanted);
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace orven
