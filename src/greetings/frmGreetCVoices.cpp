// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCVoices.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>

#include "shell/frmStrayWheel.h"

namespace orven {
namespace {

constexpr int kVisible = 12;
constexpr int kCharacters = 24;  // a description may be long; the list does not grow with it

bool IsReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

VoiceBox::VoiceBox(QWidget* parent) : QComboBox(parent) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setMaxVisibleItems(kVisible);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(kCharacters);
  completer()->setCompletionMode(QCompleter::PopupCompletion);
  completer()->setFilterMode(Qt::MatchContains);
  completer()->setCaseSensitivity(Qt::CaseInsensitive);
  completer()->setMaxVisibleItems(kVisible);
  connect(lineEdit(), &QLineEdit::editingFinished, this, &VoiceBox::Settle);
  // Typing replaces what is shown. The click that brings the focus sets the cursor first.
  connect(this, &VoiceBox::ClickedInto, lineEdit(), &QLineEdit::selectAll, Qt::QueuedConnection);
  // A description is recognised by its beginning.
  connect(this, &QComboBox::currentIndexChanged, this, [this] { lineEdit()->setCursorPosition(0); });
  IgnoreStrayWheel(*this);
}

void VoiceBox::AddVoices(const std::vector<std::string>& descriptions) {
  QStringList voices;
  for (const auto& description : descriptions) voices << QString::fromStdString(description);
  addItems(voices);
  if (count() > 0) setCurrentIndex(0);
}

void VoiceBox::Settle() {
  const auto* popup = completer()->popup();
  if (popup->isVisible() && popup->currentIndex().isValid()) return;  // that one is about to be chosen
  const auto typed = lineEdit()->text();
  if (typed == itemText(currentIndex())) return;
  const int found = typed.trimmed().isEmpty() ? -1 : findText(typed.trimmed(), Qt::MatchContains);
  setCurrentIndex(found >= 0 ? found : currentIndex());
  if (currentIndex() < 0) clearEditText();
  lineEdit()->setCursorPosition(0);
}

void VoiceBox::focusInEvent(QFocusEvent* event) {
  QComboBox::focusInEvent(event);
  if (event->reason() == Qt::MouseFocusReason) emit ClickedInto();
}

void VoiceBox::keyPressEvent(QKeyEvent* event) {
  const bool listed = completer()->popup()->isVisible();
  QComboBox::keyPressEvent(event);
  // Return has chosen a voice, and is not for the window's own button; the list of what was found takes
  // it by itself when nobody else does.
  if (IsReturn(*event) && !listed) event->accept();
}

}  // namespace orven
