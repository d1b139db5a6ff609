// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QLabel>
#include <string>
#include <utility>
#include <vector>

namespace orven {

/// Makes an object that will be deleted by its parent (one of the arguments) or by the layout to which it is
/// added.
template <class Object, class... Arguments>
Object* MakeChild(Arguments&&... arguments) {
  return new Object(std::forward<Arguments>(arguments)...);  // NOLINT(cppcoreguidelines-owning-memory)
}

/// A layout without margins.
template <class Layout>
Layout* MakeFlat(QWidget* parent) {
  auto* layout = MakeChild<Layout>(parent);
  layout->setContentsMargins(0, 0, 0, 0);
  return layout;
}

/// A child that is found by its object name.
template <class Object, class... Arguments>
Object* MakeNamed(const char* name, Arguments&&... arguments) {
  auto* object = MakeChild<Object>(std::forward<Arguments>(arguments)...);
  object->setObjectName(QString::fromLatin1(name));
  return object;
}

/// A label that wraps, for a text that is never markup.
QLabel* MakeText(const char* name, QWidget* parent, const QString& text = {});

/// A label beside `buddy`, to which its mnemonic gives the focus.
QLabel* MakeCaption(const QString& text, QWidget* buddy);

/// Lets a screen reader say the text that the label has got.
void Announce(QLabel& label);

/// Keeps the mouse wheel from changing a list or a slider that does not have the focus, so that scrolling
/// over it changes no setting.
void IgnoreStrayWheel(QWidget& control);

/// Makes `items` the entries of a list.
void FillList(QComboBox& list, const std::vector<std::string>& items);

/// A label for one line of text of any length. Text that does not fit is shrunk, then elided; the whole text
/// is shown as a tool tip. text() is always the whole text.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  ElidedLabel(Qt::TextElideMode mode, QWidget* parent);

  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont FittingFont() const;

  Qt::TextElideMode mode_;
};

}  // namespace orven
