// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCParts.h"

#include "shell/frmMainIcons.h"
#include "shell/frmMakeChild.h"

namespace orven {

QPushButton* MakeButton(const char* name, const QString& caption, const char* icon, QWidget* parent) {
  auto* button = MakeChild<QPushButton>(caption, parent);
  button->setObjectName(QString::fromLatin1(name));
  if (icon != nullptr) button->setIcon(ThemeIcon(icon));
  return button;
}

void EnableButtons(std::initializer_list<std::pair<QPushButton*, bool>> buttons) {
  // First those that the focus may go to.
  for (const bool on : {true, false}) {
    for (const auto& [button, enabled] : buttons) {
      if (enabled == on) button->setEnabled(on);
    }
  }
}

}  // namespace orven
