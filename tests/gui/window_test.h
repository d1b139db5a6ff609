// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <stdexcept>
#include <string>

namespace orven::test {

/// A test that drives one window by the object names of its controls.
class WindowTest : public testing::Test {
 protected:
  /// Shows the window that the following calls are about, with the focus.
  void Show(QWidget& window) {
    window_ = &window;
    window.show();
    QApplication::setActiveWindow(&window);
  }
  template <class Control = QWidget>
  Control& Get(const char* name) const {
    auto* control = window_->findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const char* button) const { Get<QAbstractButton>(button).click(); }
  bool Shows(const char* control) const { return Get(control).isVisible(); }
  std::string Focused() const {
    return window_->focusWidget() == nullptr ? "" : window_->focusWidget()->objectName().toStdString();
  }

 private:
  QWidget* window_ = nullptr;
};

}  // namespace orven::test
