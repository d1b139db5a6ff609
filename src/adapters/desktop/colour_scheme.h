// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusMessage>
#include <QObject>

namespace orven {

/// Makes the windows dark while the desktop prefers that (org.freedesktop.appearance color-scheme of the
/// settings portal), on desktops whose colours Qt does not follow itself: not on KDE, and not where the user
/// has chosen a platform theme. Asks without waiting. Needs a QApplication; user-interface thread.
class ColourScheme final : public QObject {
  Q_OBJECT

 public:
  /// Without a `display` it does nothing.
  explicit ColourScheme(bool display);

 private slots:
  void Hear(const QDBusMessage& signal);

 private:
  void Use(uint scheme);

  bool dark_ = false;  ///< the dark palette is ours
};

}  // namespace orven
