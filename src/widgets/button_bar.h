// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolBar>
#include <QToolButton>
#include <cstdint>

namespace orven {

/// A toolbar whose buttons have keys. A menu item that does the same presses the button, so that one
/// handler serves both. Each QToolButton is named "<toolbar>.<key>".
class ButtonBar : public QToolBar {
  Q_OBJECT

 public:
  /// One button; `icon` is a Freedesktop icon name. Texts are translated already.
  struct Button {
    const char* key;
    QString caption;
    QString tip;
    const char* icon;
  };

  /// `name` is the object name, `title` the name shown to the user.
  ButtonBar(const QString& name, const QString& title, QWidget* parent);

  QToolButton* AddButton(const Button& button);

  /// The button with this key; there must be one.
  QToolButton* Find(const char* key) const;

  /// Window style bits of the toolbar. Only TBSTYLE_FLAT (0x800) has an effect: flat buttons have no frame
  /// until the mouse is over them.
  std::uint32_t Style() const { return style_; }
  void SetStyle(std::uint32_t style);

 signals:
  /// A button was pressed; `down` is the state of a two-state button after it.
  void ButtonClick(const QString& key, bool down);

 private:
  std::uint32_t style_ = 0;
};

}  // namespace orven
