// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCParts.h"

#include <algorithm>
#include <iterator>

#include "widgets/controls.h"
#include "widgets/icons.h"

namespace orven {

QPushButton* MakeButton(const char* name, const QString& caption, const char* icon, QWidget* parent) {
  auto* button = MakeChild<QPushButton>(caption, parent);
  button->setObjectName(QString::fromLatin1(name));
  if (icon != nullptr) button->setIcon(ThemeIcon(icon));
  return button;
}

void EnableButtons(const std::vector<std::pair<QPushButton*, bool>>& buttons) {
  for (const auto& [button, on] : buttons) {
    if (on) button->setEnabled(true);
  }
  const auto loses_focus = [](const auto& entry) {
    return !entry.second && entry.first->window()->focusWidget() == entry.first;
  };
  const auto enabled = [](const auto& entry) { return entry.second; };
  const auto lost = std::ranges::find_if(buttons, loses_focus);
  if (lost != buttons.end()) {
    const auto after = std::find_if(lost, buttons.end(), enabled);
    const auto before = std::find_if(std::make_reverse_iterator(lost), buttons.rend(), enabled);
    if (after != buttons.end()) {
      after->first->setFocus();
    } else if (before != buttons.rend()) {
      before->first->setFocus();
    }
  }
  for (const auto& [button, on] : buttons) {
    if (!on) button->setEnabled(false);
  }
}

}  // namespace orven
