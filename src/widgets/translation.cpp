// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/translation.h"

#include <QCoreApplication>
#include <string>
#include <vector>

namespace orven {

QString Shown(const Words& words) {
  if (!words.IsLiteral()) return QString::fromStdString(words.Text());
  std::vector<std::string> arguments;
  for (const auto& argument : words.Arguments()) arguments.push_back(Shown(argument).toStdString());
  // Without a translation it returns what it was given.
  return QString::fromStdString(WithArguments(qtTrId(words.Text().c_str()).toStdString(), arguments));
}

}  // namespace orven
