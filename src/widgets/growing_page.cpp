// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/growing_page.h"

#include <QEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

#include "widgets/window_placement.h"

namespace orven {

WholeText::WholeText(const char* name, QWidget* parent, int least_width, int least_lines)
    : QLabel(parent), least_lines_(least_lines) {
  setObjectName(QString::fromLatin1(name));
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setMinimumWidth(least_width);
}

QSize WholeText::minimumSizeHint() const {
  const int width = std::max(minimumWidth(), this->width());
  return {minimumWidth(), std::max(heightForWidth(width), least_lines_ * fontMetrics().lineSpacing())};
}

void WholeText::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  updateGeometry();
}

void WholeText::paintEvent(QPaintEvent* event) {
  if (heightForWidth(width()) <= height()) return QLabel::paintEvent(event);
  QPainter(this).drawText(contentsRect(), Qt::AlignTop | Qt::AlignLeft | Qt::TextWordWrap, text());
}

GrowingPage::GrowingPage(QWidget* content, QWidget* parent) : QScrollArea(parent) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  viewport()->setAutoFillBackground(false);
  setWidget(content);
  content->setAutoFillBackground(false);
}

QSize GrowingPage::sizeHint() const {
  return widget()->sizeHint().expandedTo(widget()->minimumSizeHint());
}

QSize GrowingPage::minimumSizeHint() const {
  constexpr int kLeastLines = 8;
  const int scroll_bar = verticalScrollBar()->sizeHint().width();
  return {widget()->minimumSizeHint().width() + scroll_bar, kLeastLines * fontMetrics().lineSpacing()};
}

bool GrowingPage::eventFilter(QObject* watched, QEvent* event) {
  const bool taken = QScrollArea::eventFilter(watched, event);
  if (watched == widget() && event->type() == QEvent::LayoutRequest) {
    updateGeometry();
    Grow();
  }
  return taken;
}

void GrowingPage::showEvent(QShowEvent* event) {
  QScrollArea::showEvent(event);
  Grow();
}

void GrowingPage::Grow() {
  const int missing = sizeHint().height() - viewport()->height();
  if (!isVisible() || missing <= 0) return;
  auto& top = *window();
  const int room = top.screen()->availableGeometry().height() - kWindowFrame.height() - top.height();
  if (room > 0) top.resize(top.width(), top.height() + std::min(missing, room));
}

void GrowingPage::Fit() {
  auto& top = *window();
  top.resize(top.width(), top.minimumSizeHint().height());
  Grow();
}

void GrowingPage::Reveal(QWidget& part) {
  const auto reveal = [this, &part] { ensureWidgetVisible(&part); };
  QMetaObject::invokeMethod(&part, reveal, Qt::QueuedConnection);
}

}  // namespace orven
