// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_shell.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDesktopServices>
#include <QFileInfo>
#include <QObject>
#include <QPixmap>
#include <QUrl>
#include <limits>
#include <utility>

#include "adapters/desktop/qt_dialogs.h"

namespace orven {
namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";

/// No timeout: if the host exits, the bus replies with an error.
constexpr int kNoTimeout = std::numeric_limits<int>::max();  // milliseconds; DBUS_TIMEOUT_INFINITE

QDBusMessage Question() {
  auto message = QDBusMessage::createMethodCall(kWatcher, "/StatusNotifierWatcher",
                                                "org.freedesktop.DBus.Properties", "Get");
  message << QString(kWatcher) << QStringLiteral("IsStatusNotifierHostRegistered");
  message.setAutoStartService(false);
  return message;
}

}  // namespace

TrayHost::TrayHost(std::function<void()> on_change) : on_change_(std::move(on_change)) {
  const auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  owner_.setConnection(bus);
  owner_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  owner_.addWatchedService(kWatcher);
  QObject::connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, &owner_,
                   [this](const QString&, const QString&, const QString& owner) {
                     // If a host exits without an answer, waits for a new one: panels are restarted after a
                     // crash.
                     if (!owner.isEmpty() || answer_ != Answer::Pending) Ask();
                   });
  answer_ = Answer::Pending;
  Ask();
}

void TrayHost::Ask() {
  question_ = std::make_unique<QDBusPendingCallWatcher>(
      QDBusConnection::sessionBus().asyncCall(Question(), kNoTimeout));
  QObject::connect(question_.get(), &QDBusPendingCallWatcher::finished, question_.get(),
                   [this](QDBusPendingCallWatcher* call) { Take(*call); });
}

void TrayHost::Take(const QDBusPendingCall& call) {
  const QDBusReply<QDBusVariant> reply = call;
  if (reply.error().type() == QDBusError::NoReply) return;  // the host has exited
  Become(reply.isValid() && reply.value().variant().toBool() ? Answer::Present : Answer::Absent);
}

void TrayHost::Become(Answer answer) {
  if (std::exchange(answer_, answer) != answer) on_change_();
}

namespace {

constexpr double kTwipsPerPixel = 15;  // 1440 twips and 96 pixels per inch
constexpr int kLeftButtonUp = 514;     // WM_LBUTTONUP
constexpr int kRightButtonUp = 517;    // WM_RBUTTONUP

/// A transparent picture in every size that trays use: without the right size a desktop would keep the old
/// picture or remove the icon.
QIcon BlankPicture() {
  QIcon blank;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    blank.addPixmap(pixmap);
  }
  return blank;
}

/// The tip without the padding of its field.
QString TipText(const std::string& field) {
  return QString::fromStdString(field.substr(0, field.find('\0')));
}

/// `target` as an address if it may be opened, else an empty one.
QUrl Openable(const QString& target) {
  const QFileInfo file(target);
  if (file.isAbsolute()) return file.isFile() ? QUrl::fromLocalFile(target) : QUrl();
  const QUrl address(target, QUrl::StrictMode);
  const bool is_web = address.scheme() == QLatin1String("http") || address.scheme() == QLatin1String("https");
  return is_web && address.isValid() && !address.host().isEmpty() ? address : QUrl();
}

}  // namespace

QtShell::QtShell(TrayPictures pictures, Translation shown)
    : pictures_(std::move(pictures)), shown_(std::move(shown)), nothing_(BlankPicture()) {
  if (!HasDisplay()) {
    MakeIcon();
    return;
  }
  host_ = std::make_unique<TrayHost>([this] { HearOfHost(); });
  HearOfHost();
}

void QtShell::HearOfHost() {
  if (icon_ || host_->Current() == TrayHost::Answer::Pending) return;
  on_bus_ = host_->Current() == TrayHost::Answer::Present;
  MakeIcon();
}

void QtShell::MakeIcon() {
  icon_ = std::make_unique<QSystemTrayIcon>();
  QObject::connect(icon_.get(), &QSystemTrayIcon::activated, icon_.get(),
                   [this](QSystemTrayIcon::ActivationReason reason) { Activated(reason); });
  icon_->setContextMenu(menu_);
  if (!added_) return;
  ShowPicture();
  icon_->setToolTip(tip_);
}

void QtShell::SetMenu(QMenu* menu) {
  menu_ = menu;
  if (icon_) icon_->setContextMenu(menu);
}

bool QtShell::NotifyIcon(NotifyRequest request, const NotifyIconData& data) {
  if ((request == NotifyRequest::Modify) != added_) return false;
  // Every call sends the desktop a message, so only real changes are passed on.
  const bool new_picture = !std::exchange(added_, true) || data.icon != picture_;
  picture_ = data.icon;
  const QString tip = data.text.Empty() ? TipText(data.tip) : QString::fromStdString(shown_(data.text));
  const bool new_tip = tip != std::exchange(tip_, tip);
  if (icon_ && new_picture) ShowPicture();
  if (icon_ && new_tip) icon_->setToolTip(tip_);
  return true;
}

void QtShell::ShowPicture() {
  icon_->setIcon(Picture());
  if (HasDisplay()) icon_->show();  // Qt warns about platforms without a tray
}

const QIcon& QtShell::Picture() const {
  switch (picture_) {
    case NotifyIconPicture::MainWindow: return pictures_.main_window;
    case NotifyIconPicture::LineOff: return pictures_.line_off;
    case NotifyIconPicture::LineTrouble: return pictures_.line_trouble;
    default: return nothing_;
  }
}

bool QtShell::HasNotificationArea() const {
  if (!host_) return true;  // there is no display
  if (!icon_) return false;
  return on_bus_ ? host_->Current() == TrayHost::Answer::Present : QSystemTrayIcon::isSystemTrayAvailable();
}

bool QtShell::Open(const std::string& target) {
  const QUrl address = Openable(QString::fromStdString(target));
  if (address.isEmpty()) return false;
  KeepFilesFromPrograms();
  return QDesktopServices::openUrl(address);
}

void QtShell::Activated(QSystemTrayIcon::ActivationReason reason) const {
  if (!on_mouse_) return;
  if (reason == QSystemTrayIcon::Trigger) on_mouse_(kLeftButtonUp * kTwipsPerPixel, kTwipsPerPixel);
  if (reason == QSystemTrayIcon::Context) on_mouse_(kRightButtonUp * kTwipsPerPixel, kTwipsPerPixel);
}

void QtShell::Run(const std::string& command, std::int32_t /*window_style*/, const Environment& added) {
  auto parts = SplitCommandLine(command);
  if (parts.empty() || !IsHelper(parts.front())) return StartProgram(parts, added);
  const HelperStart start = start_helper_();
  parts.front() = start.path;
  StartProgram(parts, start.environment);
}

void QtShell::SetHelper(std::string file_name, std::function<HelperStart()> start) {
  helper_name_ = std::move(file_name);
  start_helper_ = std::move(start);
}

bool QtShell::IsHelper(const std::string& program) const {
  const QFileInfo file(QString::fromStdString(program));
  return start_helper_ && file.fileName().toStdString() == helper_name_ && !file.exists();
}

}  // namespace orven
