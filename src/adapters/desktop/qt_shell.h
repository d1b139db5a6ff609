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
/// StatusNotifierItem protocol). Asks without waiting, because a panel that hangs must not keep the
/// program from its telephone. Needs a QCoreApplication; user-interface thread.
class TrayHost {
 public:
  enum class Answer {
    Pending,  ///< none yet: the host has just been asked, hangs, or is being restarted
    Present,
    Absent,  ///< nor is there one when there is no message bus
  };

  /// `on_change` is called when the answer becomes another one, by the event loop and never by this
  /// constructor.
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

/// How a helper of the program is started.
struct HelperStart {
  std::string path;         ///< the executable file
  Environment environment;  ///< variables that it gets besides ours
};

/// The shell port on the desktop's tray (StatusNotifierItem over D-Bus where the desktop has a host for
/// it, else the XEmbed tray of X11) and on its table of programs for documents. Needs a QApplication;
/// user-interface thread.
///
/// The icon waits for its place: added while there is no tray, or while the tray's host hangs or
/// restarts, it appears with the host. Which of the two kinds of tray is used is decided once, by the
/// first answer about a host on the bus; Qt knows no change of mind.
class QtShell final : public Shell {
 public:
  /// Gets the shell's mouse message, as the X coordinate of a mouse move in twips: 514 or 517 times
  /// `twips_per_pixel`.
  using MouseHandler = std::function<void(double x, double twips_per_pixel)>;

  /// `main_window` is the picture of that name.
  explicit QtShell(QIcon main_window);

  /// Who hears of the icon's clicks: WM_LBUTTONUP (514) for the one that activates it, WM_RBUTTONUP (517)
  /// for the one that asks for its menu. Every other use of the icon is silent.
  void SetMouseHandler(MouseHandler on_mouse) { on_mouse_ = std::move(on_mouse); }

  /// The icon's menu; nullptr for none. The caller keeps it alive, or takes it away before it goes. A
  /// desktop that shows the menu itself does so without a mouse message; an XEmbed tray's click has
  /// already opened it when the message 517 comes.
  void SetMenu(QMenu* menu);

  /// Without a display the record is kept, and nothing is shown.
  bool NotifyIcon(NotifyRequest request, const NotifyIconData& data) override;

  /// False while a host on the bus has not answered, and on the platforms without a display (offscreen,
  /// minimal), whose trays nobody sees.
  bool HasNotificationArea() const override;

  /// Opens an existing file given by its absolute path, or an http or https address with a host;
  /// anything else is refused. The program is started beside this one, never through a command shell,
  /// and true says that it was started, not that it showed something.
  bool Open(const std::string& target) override;

  /// A helper that is called `file_name` in commands, in whatever folder, and is another file here: where
  /// Run is given a program of that name that does not exist, it starts what `start` says, which is asked
  /// each time and may throw as Run does. An error names the file that `start` gave.
  void SetHelper(std::string file_name, std::function<HelperStart()> start);

  void Run(const std::string& command, std::int32_t window_style) override;

  /// The desktop's side of the icon; nullptr until the kind of tray is decided.
  QSystemTrayIcon* Icon() { return icon_.get(); }

 private:
  void HearOfHost();
  void MakeIcon();
  void ShowPicture();
  void Activated(QSystemTrayIcon::ActivationReason reason) const;

  bool IsHelper(const std::string& program) const;

  std::string helper_name_;
  std::function<HelperStart()> start_helper_;
  QIcon main_window_;
  QIcon nothing_;
  MouseHandler on_mouse_;
  QPointer<QMenu> menu_;
  bool added_ = false;
  NotifyIconPicture picture_ = NotifyIconPicture::MainWindow;
  QString tip_;
  bool on_bus_ = false;                    ///< the kind of tray; means something once there is an icon
  std::unique_ptr<QSystemTrayIcon> icon_;  ///< Qt waits for a host on the bus to make one
  std::unique_ptr<TrayHost> host_;         ///< only with a display
};

}  // namespace orven
