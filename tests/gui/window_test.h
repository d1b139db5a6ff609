// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMetaProperty>
#include <sstream>
#include <stdexcept>
#include <string>

#include "support/world.h"

namespace orven::test {

/// A test that drives one window by the object names of its controls.
class WindowTest : public testing::Test {
 protected:
  /// Names of controls or settings, each with its value.
  using Values = std::vector<std::pair<std::string, std::string>>;

  /// Shows the window that the following calls are about, with the focus.
  void Show(QWidget& window) {
    window_ = &window;
    window.show();
    QApplication::setActiveWindow(&window);
  }
  template <class Control = QWidget>
  Control& Get(const std::string& name) const {
    auto* control = window_->findChild<Control*>(QString::fromStdString(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const std::string& button) const { Get<QAbstractButton>(button).click(); }
  void Set(const Values& values) const {
    for (const auto& [name, value] : values) {
      auto& control = Get(name);
      EXPECT_TRUE(control.metaObject()->userProperty().write(&control, QString::fromStdString(value)))
          << name;
    }
  }
  /// What a control shows: a text, a number, "true" or "false".
  std::string Shown(const std::string& name) const {
    const auto& control = Get(name);
    const auto value = control.metaObject()->userProperty();
    return (value.isValid() ? value.read(&control) : control.property("text")).toString().toStdString();
  }
  void ExpectShown(const Values& values) const {
    for (const auto& [name, value] : values) EXPECT_EQ(Shown(name), value) << name;
  }
  void ExpectStored(const Values& values) {
    for (const auto& [name, value] : values) EXPECT_EQ(world.registry.Text(name), value) << name;
  }
  /// Clicks on buttons, sets controls and lets time pass: "txtName=Anna cmdRec 2s cmdOK 1ms". Returns what
  /// was logged meanwhile.
  std::vector<std::string> Do(const std::string& script) {
    return world.LoggedBy([&] {
      std::istringstream words(script);
      for (std::string word; words >> word;) {
        const bool time = word[0] >= '0' && word[0] <= '9';
        const auto value = word.find('=');
        if (time) world.RunFor(std::stoi(word) * (word.ends_with("ms") ? 1ms : 1000ms));
        if (!time && value != word.npos) Set({{word.substr(0, value), word.substr(value + 1)}});
        if (!time && value == word.npos) Click(word);
      }
    });
  }
  bool Visible(const std::string& control) const { return Get(control).isVisible(); }
  bool Enabled(const std::string& control) const { return Get(control).isEnabled(); }
  std::string Focused() const {
    return window_->focusWidget() == nullptr ? "" : window_->focusWidget()->objectName().toStdString();
  }

  World world;

 private:
  QWidget* window_ = nullptr;
};

}  // namespace orven::test
