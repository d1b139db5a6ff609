// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application.h"

#include <sys/resource.h>

#include <algorithm>

namespace orven {
namespace {

/// Sets an environment variable while it exists, unless the user has set it.
class Choice {
 public:
  Choice(const char* name, const QByteArray& value) : name_(name), mine_(qEnvironmentVariableIsEmpty(name)) {
    if (mine_) qputenv(name_, value);
  }
  ~Choice() {
    if (mine_) qunsetenv(name_);
  }
  Choice(const Choice&) = delete;
  Choice& operator=(const Choice&) = delete;

 private:
  const char* const name_;
  const bool mine_;
};

/// The Qt platforms to try.
QByteArray Platforms() {
  QByteArray platforms;
  if (!qEnvironmentVariableIsEmpty("DISPLAY")) platforms += "xcb;";
  if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) platforms += "wayland;";
  return platforms + "offscreen";
}

}  // namespace

std::unique_ptr<QApplication> MakeApplication(int& argc, char** argv) {
  const Choice platform("QT_QPA_PLATFORM", Platforms());
  // With memory that it shares with the display, Qt waits for an answer before it paints a place again: two
  // more wake-ups for each second of the clock. A window of this size is sent in a millisecond.
  const Choice no_shared_memory("QT_XCB_NO_MITSHM", "1");
  auto application = std::make_unique<QApplication>(argc, argv);
  QApplication::setApplicationName(QStringLiteral("ORVEN"));
  QApplication::setQuitOnLastWindowClosed(false);
  return application;
}

bool OnWayland() {
  return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

void UseActivationToken(const QString& token) {
  // Qt takes it from the environment when it activates a window, and removes it there.
  if (!token.isEmpty() && OnWayland()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
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
