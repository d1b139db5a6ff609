// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_shell.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QObject>
#include <QPixmap>
#include <QUrl>
#include <utility>

#include "adapters/desktop/qt_dialogs.h"

namespace orven {
namespace {

constexpr double kTwipsPerPixel = 15;  // 1440 twips an inch at the 96 pixels that toolkits reckon with
constexpr int kLeftButtonUp = 514;     // WM_LBUTTONUP
constexpr int kRightButtonUp = 517;    // WM_RBUTTONUP

/// A picture that leaves its place blank, at every size that trays ask for: without the right size a
/// desktop would keep the old picture or give the place away.
QIcon BlankPicture() {
  QIcon blank;
  for (const int size : {16, 22, 24, 32, 48, 64, 128}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    blank.addPixmap(pixmap);
  }
  return blank;
}

/// The tip's text without what fills the field up.
QString TipText(const std::string& field) {
  return QString::fromStdString(field.substr(0, field.find('\0')));
}

/// What may be opened, as an address; an empty one for everything else.
QUrl Openable(const QString& target) {
  const QFileInfo file(target);
  if (file.isAbsolute()) return file.isFile() ? QUrl::fromLocalFile(target) : QUrl();
  const QUrl address(target, QUrl::StrictMode);
  const bool is_web = address.scheme() == QLatin1String("http") || address.scheme() == QLatin1String("https");
  return is_web && address.isValid() && !address.host().isEmpty() ? address : QUrl();
}

}  // namespace

QtShell::QtShell(QIcon main_window) : main_window_(std::move(main_window)), nothing_(BlankPicture()) {
  QObject::connect(&icon_, &QSystemTrayIcon::activated, &icon_,
                   [this](QSystemTrayIcon::ActivationReason reason) { Activated(reason); });
}

bool QtShell::NotifyIcon(NotifyRequest request, const NotifyIconData& data) {
  if ((request == NotifyRequest::Modify) != added_) return false;
  Show(data);
  added_ = true;
  return true;
}

void QtShell::Show(const NotifyIconData& data) {
  // A desktop hears of every change by a message of its own: only of those that are one.
  if (!added_ || data.icon != picture_)
    icon_.setIcon(data.icon == NotifyIconPicture::MainWindow ? main_window_ : nothing_);
  picture_ = data.icon;
  if (const QString tip = TipText(data.tip); tip != icon_.toolTip()) icon_.setToolTip(tip);
  if (HasDisplay()) icon_.show();  // Qt complains of trays that the others lack
}

bool QtShell::HasNotificationArea() const {
  return HasDisplay() && QSystemTrayIcon::isSystemTrayAvailable();
}

bool QtShell::Open(const std::string& target) {
  const QUrl address = Openable(QString::fromStdString(target));
  return !address.isEmpty() && QDesktopServices::openUrl(address);
}

void QtShell::Activated(QSystemTrayIcon::ActivationReason reason) const {
  if (!on_mouse_) return;
  if (reason == QSystemTrayIcon::Trigger) on_mouse_(kLeftButtonUp * kTwipsPerPixel, kTwipsPerPixel);
  if (reason == QSystemTrayIcon::Context) on_mouse_(kRightButtonUp * kTwipsPerPixel, kTwipsPerPixel);
}

}  // namespace orven
