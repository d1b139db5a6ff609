// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <QAccessible>
#include <QTest>
#include <QtWidgets>
#include <sstream>
#include <stdexcept>
#include <string>

#include "support/world.h"

namespace orven::test {

/// Checks the visible controls of a window: none overlaps another or is cut off, and each one that takes the
/// focus has a name for screen readers. The inner parts of Qt's own controls, which have no layout, are not
/// checked.
inline void ExpectTidy(const QWidget& window) {
  EXPECT_FALSE(window.windowTitle().isEmpty() || window.windowIcon().isNull());
  EXPECT_EQ(window.windowModality() == Qt::WindowModal, window.inherits("QDialog"));
  QApplication::processEvents();
  for (auto* control : window.findChildren<QWidget*>()) {
    const auto* parent = control->parentWidget();
    if (!control->isVisible() || control->isWindow() || parent->layout() == nullptr) continue;
    SCOPED_TRACE(control->metaObject()->className() + (" " + control->objectName().toStdString()));
    const QWidgetItem item(control);
    const auto place = control->geometry();
    EXPECT_TRUE(parent->rect().contains(place) && place.height() >= item.heightForWidth(place.width()));
    EXPECT_EQ(place.size(), place.size().expandedTo(item.minimumSize()));
    for (const auto* other : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
      EXPECT_FALSE(other != control && other->isVisible() && other->geometry().intersects(place));
    auto* told = QAccessible::queryAccessibleInterface(control);
    EXPECT_TRUE((control->focusPolicy() & Qt::TabFocus) == 0 || control->focusProxy() != nullptr ||
                (told != nullptr && !told->text(QAccessible::Name).isEmpty()));
    const auto value = control->metaObject()->userProperty();
    const auto before = value.read(control);
    for (const int angle : {120, -120}) {
      QWheelEvent turn({5, 5}, {5, 5}, {}, {0, angle}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                       false);
      if (!control->hasFocus() && !control->inherits("QScrollBar")) QApplication::sendEvent(control, &turn);
      EXPECT_EQ(value.read(control), before) << "the wheel turns over it by chance";
    }
  }
}

/// Base of the tests that drive a window by the object names of its controls.
class WindowTest : public testing::Test {
 protected:
  /// Names of controls or settings with their values.
  using Values = std::vector<std::pair<std::string, std::string>>;

  /// Shows and activates the window that the following calls use, and checks its controls.
  void Show(QWidget& window) {
    window_ = &window;
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    ExpectTidy(window);
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
  /// Returns what a control shows: a text, a number, "true" or "false".
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
  /// Runs a script that clicks buttons, sets controls, lets time pass, and checks texts and the focus:
  /// "txtName=Anna cmdRec 2s lblTime:0:02 @cmdOK cmdOK". Returns the lines that it logged.
  std::vector<std::string> Do(const std::string& script) {
    return world.LoggedBy([&] {
      std::istringstream words(script);
      for (std::string word; words >> word;) {
        const bool time = word[0] >= '0' && word[0] <= '9';
        const auto name = word.substr(0, word.find_first_of("=:")), rest = word.substr(name.size());
        if (time) world.RunFor(std::stoi(word) * (word.ends_with("ms") ? 1ms : 1000ms));
        if (rest.starts_with('=')) Set({{name, rest.substr(1)}});
        if (rest.starts_with(':')) ExpectShown({{name, rest.substr(1)}});
        EXPECT_TRUE(word[0] != '@' || word.substr(1) == Focused()) << word;
        if (!time && rest.empty() && word[0] != '@') Click(word);
      }
    });
  }
  std::vector<std::string> Items(const std::string& list) const {
    std::vector<std::string> items;
    const auto& box = Get<QComboBox>(list);
    for (int i = 0; i < box.count(); ++i) items.push_back(box.itemText(i).toStdString());
    return items;
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
