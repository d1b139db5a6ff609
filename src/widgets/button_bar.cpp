// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/button_bar.h"

#include <QAction>

#include "widgets/icons.h"

namespace orven {
namespace {

constexpr std::uint32_t kFlat = 0x800;  // TBSTYLE_FLAT

}  // namespace

ButtonBar::ButtonBar(const QString& name, const QString& title, QWidget* parent) : QToolBar(title, parent) {
  setObjectName(name);
  setMovable(false);
  setFloatable(false);
  setContextMenuPolicy(Qt::PreventContextMenu);
  setAccessibleName(title);
}

QToolButton* ButtonBar::AddButton(const Button& button) {
  auto* action = addAction(ThemeIcon(button.icon), button.caption);
  action->setToolTip(button.tip);
  const auto key = QString::fromLatin1(button.key);
  connect(action, &QAction::triggered, this, [this, key](bool down) { emit ButtonClick(key, down); });

  auto* widget = qobject_cast<QToolButton*>(widgetForAction(action));
  widget->setObjectName(objectName() + u'.' + key);
  widget->setAccessibleName(button.caption.trimmed());
  widget->setAccessibleDescription(button.tip);
  widget->setFocusPolicy(Qt::TabFocus);  // by default toolbar buttons cannot be reached by Tab
  widget->setAutoRaise((style_ & kFlat) != 0);
  return widget;
}

QToolButton* ButtonBar::Find(const char* key) const {
  return findChild<QToolButton*>(objectName() + u'.' + QString::fromLatin1(key), Qt::FindDirectChildrenOnly);
}

void ButtonBar::SetStyle(std::uint32_t style) {
  style_ = style;
  const auto buttons = findChildren<QToolButton*>(Qt::FindDirectChildrenOnly);
  for (auto* button : buttons) button->setAutoRaise((style & kFlat) != 0);
}

}  // namespace orven
