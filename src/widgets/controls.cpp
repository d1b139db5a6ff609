// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/controls.h"

#include <QAccessible>
#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace orven {
namespace {

class StrayWheel : public QObject {
 public:
  explicit StrayWheel(QWidget& control) : QObject(&control), control_(control) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool stray = event->type() == QEvent::Wheel && !control_.hasFocus();
    if (stray) event->ignore();  // the page around it may scroll
    return stray || QObject::eventFilter(watched, event);
  }

 private:
  QWidget& control_;
};

}  // namespace

QLabel* MakeText(const char* name, QWidget* parent, const QString& text) {
  auto* label = MakeNamed<QLabel>(name, text, parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

QLabel* MakeCaption(const QString& text, QWidget* buddy) {
  auto* label = MakeChild<QLabel>(text, buddy->parentWidget());
  label->setBuddy(buddy);
  return label;
}

void Announce(QLabel& label) {
  QAccessibleEvent told(&label, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void IgnoreStrayWheel(QWidget& control) {
  // By default the wheel would give it the focus.
  control.setFocusPolicy(Qt::StrongFocus);
  control.installEventFilter(MakeChild<StrayWheel>(control));
}

void FillList(QComboBox& list, const std::vector<std::string>& items) {
  list.clear();
  for (const auto& item : items) list.addItem(QString::fromStdString(item), QString::fromStdString(item));
}

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget* parent) : QLabel(parent), mode_(mode) {
  setTextFormat(Qt::PlainText);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidedLabel::minimumSizeHint() const {
  return {0, QLabel::minimumSizeHint().height()};
}

QFont ElidedLabel::FittingFont() const {
  QFont fitting = font();
  const int least = fitting.pixelSize() * 2 / 3;
  while (fitting.pixelSize() > least &&
         QFontMetrics(fitting).horizontalAdvance(text()) > contentsRect().width()) {
    fitting.setPixelSize(fitting.pixelSize() - 1);
  }
  return fitting;
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QLabel::event(event);
  const bool whole = QFontMetrics(FittingFont()).horizontalAdvance(text()) <= contentsRect().width();
  const auto position = static_cast<QHelpEvent*>(event)->globalPos();
  QToolTip::showText(position, whole ? QString() : text().toHtmlEscaped(), this);
  return true;
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setFont(FittingFont());
  painter.setPen(palette().color(foregroundRole()));
  painter.drawText(contentsRect(), static_cast<int>(alignment() | Qt::TextSingleLine),
                   painter.fontMetrics().elidedText(text(), mode_, contentsRect().width()));
}

}  // namespace orven
