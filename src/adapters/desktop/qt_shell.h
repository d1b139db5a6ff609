// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QIcon>
#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>
#include <string>

#include "adapters/desktop/command_line.h"
#include "platform/shell.h"

namespace orven {

/// Whether the session's message bus has a host for tray icons (org.kde.StatusNotifierWatcher, the
/// StatusNotifierItem protocol). Asks without waiting, because a panel that hangs must not block the program.
/// Needs a QCoreApplication; user-interface thread.
class TrayHost {
 public:
  enum class Answer {
    Pending,  ///< none yet: the host has just been asked, hangs or is restarting
    Present,
    Absent,  ///< also without a message bus
  };

  /// `on_change` is called by the event loop when the answer has changed, never by this constructor.
  explicit TrayHost(std::function<void()> on_change);

  Answer Current() const { return answer_; }

 private:
  void Ask();
  void Take(const QDBusPendingCall& call);
  void Become(Answer answer);

  std::function<void()> on_change_;
  Answer answer_ = Answer::Absent;
  QDBusServiceWatcher owner_;
  std::unique_ptr<QDBusPendingCallWatcher> question_;
};

/// How to start a helper program.
struct HelperStart {
  std::string path;         ///< the executable file
  Environment environment;  ///< variables in addition to ours
};

/// The pictures of NotifyIconPicture; the blank one is made here.
struct TrayPictures {
  QIcon main_window{};
  QIcon line_off{};
  QIcon line_trouble{};
};

/// The desktop's tray (StatusNotifierItem over D-Bus if the desktop has a host for it, else the XEmbed tray
/// of X11) and its programs for documents. Needs a QApplication; user-interface thread.
///
/// An icon that is added while there is no tray, or while the tray's host hangs or restarts, appears with the
/// host. The first answer about a host on the bus decides between the two kinds of tray; Qt cannot change
/// later.
class QtShell final : public Shell {
 public:
  /// Receives a mouse message as the X coordinate of a mouse move in twips: 514 or 517 times
  /// `twips_per_pixel`.
  using MouseHandler = std::function<void(double x, double twips_per_pixel)>;

  explicit QtShell(TrayPictures pictures, Translation shown = &Words::English);

  /// `on_mouse` receives the icon's clicks: WM_LBUTTONUP (514) for the one that activates it, WM_RBUTTONUP
  /// (517) for the one that opens its menu, nothing else.
  void SetMouseHandler(MouseHandler on_mouse) { on_mouse_ = std::move(on_mouse); }

  /// The icon's menu, or nullptr; the caller owns it. A desktop that shows the menu itself sends no mouse
  /// message; in an XEmbed tray it is open already when the message 517 comes.
  void SetMenu(QMenu* menu);

  /// Without a display the data is kept, and nothing is shown.
  bool NotifyIcon(NotifyRequest request, const NotifyIconData& data) override;

  /// False while a host on the bus has not answered, and on platforms without a display (offscreen, minimal).
  bool HasNotificationArea() const override;

  /// Opens an existing file, given by its absolute path, or an http or https address with a host; refuses
  /// anything else. No command shell is involved. True when a program was started.
  bool Open(const std::string& target) override;

  /// A helper that commands call `file_name`, in any folder, but that is another file here: if Run is given a
  /// program of that name that does not exist, it starts what `start` returns. `start` is called each time
  /// and may throw as Run does. An error names the file that `start` returned.
  void SetHelper(std::string file_name, std::function<HelperStart()> start);

  void Run(const std::string& command, std::int32_t window_style, const Environment& added) override;

  /// The icon in the tray; nullptr until the kind of tray is decided.
  QSystemTrayIcon* Icon() { return icon_.get(); }

 private:
  void HearOfHost();
  void MakeIcon();
  void ShowPicture();
  const QIcon& Picture() const;
  void Activated(QSystemTrayIcon::ActivationReason reason) const;

  bool IsHelper(const std::string& program) const;

  std::string helper_name_;
  std::function<HelperStart()> start_helper_;
  const TrayPictures pictures_;
  const Translation shown_;
  QIcon nothing_;
  MouseHandler on_mouse_;
  QPointer<QMenu> menu_;
  bool added_ = false;
  NotifyIconPicture picture_ = NotifyIconPicture::MainWindow;
  QString tip_;
  bool on_bus_ = false;                    ///< the kind of tray; valid once there is an icon
  std::unique_ptr<QSystemTrayIcon> icon_;  ///< made when the kind of tray is known
  std::unique_ptr<TrayHost> host_;         ///< only with a display
};

}  // namespace orven
