// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmGuideKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace orven {
namespace {

/// A window's page of the guide, while the part with this object name is visible; "" stands for the rest.
struct Page {
  const char* window;
  const char* part;
  const char* page;
};

constexpr Page kPages[] = {
    {"frmOptions", "Frame1", "first_steps"},
    {"frmOptions", "Frame2", "sip"},
    {"frmOptions", "Frame3", "greetings"},
    {"frmOptions", "Frame4", "remote_access"},
    {"frmLines", "", "sip"},
    {"frmLineEdit", "cmbPort", "modem"},
    {"frmLineEdit", "", "sip"},
    {"frmEvents", "", "sounds"},
    {"frmActions", "", "actions"},
    {"frmGreetC", "", "greetings"},
    {"frmLog", "", "troubleshooting"},
    {"frmLogProp", "", "troubleshooting"},
    {"frmSetup", "", "setup"},
    {"frmCheckUp", "", "check_up"},
};

bool IsAbout(const Page& page, const QWidget& window) {
  if (window.objectName() != QLatin1String(page.window)) return false;
  const QLatin1String part(page.part);
  const auto* shown = part.isEmpty() ? &window : window.findChild<QWidget*>(part);
  return shown != nullptr && shown->isVisible();
}

const char* PageFor(const QWidget* widget) {
  while (widget != nullptr) {
    const auto* window = widget->window();
    for (const auto& page : kPages) {
      if (IsAbout(page, *window)) return page.page;
    }
    widget = window->parentWidget();
  }
  return kStartPage;
}

}  // namespace

GuideKey::GuideKey(MainCommands& commands, QObject* parent) : QObject(parent), commands_(commands) {
  QApplication::instance()->installEventFilter(this);
}

bool GuideKey::eventFilter(QObject* watched, QEvent* event) {
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (widget == nullptr || event->type() != QEvent::KeyPress) return false;
  const auto* key = static_cast<QKeyEvent*>(event);
  if (!key->matches(QKeySequence::HelpContents) || key->isAutoRepeat()) return false;
  commands_.ShowPage(PageFor(widget));
  return true;
}

}  // namespace orven
