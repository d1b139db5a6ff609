// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFormLayout>
#include <QWidget>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/row.h"

namespace orven {

/// The controls of a window's rows: makes them, shows values and takes them. The window may lay out some of
/// them itself, and finds those it has more to do with by their names. Kinds None and ByHand have no control
/// here. User-interface thread.
class SettingsForm {
 public:
  /// `rows` are pointers to rows, which outlive the form. The controls become children of `window`.
  template <class Rows>
  SettingsForm(QWidget& window, const Rows& rows) : window_(window), rows_(rows.begin(), rows.end()) {}

  /// Makes the control of a row, with the unit after it, for the window to lay out. Controls take the focus
  /// in the order in which they are made.
  QWidget* Make(std::string_view name);

  /// Makes a row's control and appends it to `layout`, after its label. Returns what Make returns.
  QWidget* Add(QFormLayout& layout, std::string_view name);

  /// Appends the rows of a page whose controls have not been made yet.
  void AddRest(QFormLayout& layout, int page);

  /// The control of a row; it has been made.
  template <class Control = QWidget>
  Control& Get(std::string_view name) const {
    return *static_cast<Control*>(Find(name));
  }

  /// Shows these values; other controls keep theirs. A list that does not offer its value shows nothing.
  void Show(const Choices& choices);

  /// The values of all controls. A list of texts that shows nothing keeps the value that it was given; a
  /// Choice without an entry has no value.
  Choices Taken() const;

 private:
  QWidget* MakeControl(const Row& row);
  QWidget* MakeText(const Row& row);
  QWidget* MakeSlider(const Row& row);
  QWidget* MakeList(const Row& row);
  QWidget* WithUnit(QWidget* control, const char* unit);
  QWidget* Find(std::string_view name) const;

  QWidget& window_;
  std::vector<const Row*> rows_;
  std::vector<std::pair<const Row*, QWidget*>> made_;
};

}  // namespace orven
