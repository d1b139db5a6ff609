// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/frmMSGParts.h"

#include <QHBoxLayout>
#include <QHelpEvent>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "shell/frmMainIcons.h"
#include "shell/frmMakeChild.h"

namespace orven {
namespace {

constexpr int kIcon = 22;
constexpr int kMargin = 6;
constexpr double kRadius = 5;

}  // namespace

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

CommandTile::CommandTile(const Look& look, QWidget* parent)
    : QFrame(parent), framed_(look.label != nullptr && look.picture != nullptr) {
  setAttribute(Qt::WA_Hover);
  setCursor(Qt::PointingHandCursor);
  setAccessibleName(look.caption);
  setToolTip(look.label == nullptr ? look.caption : QString());
  auto* row = MakeChild<QHBoxLayout>(this);
  const int margin = framed_ ? kMargin : 0;
  row->setContentsMargins(margin, margin, margin, margin);
  row->setSpacing(kMargin);
  if (framed_) row->addStretch();
  if (look.picture != nullptr) {
    icon_ = ThemeIcon(look.icon);
    picture_ = MakeChild<QLabel>(this);
    picture_->setObjectName(QString::fromLatin1(look.picture));
    ShowPicture();
    row->addWidget(picture_);
  }
  if (look.label != nullptr) {
    auto* label = MakeChild<QLabel>(look.caption, this);
    label->setObjectName(QString::fromLatin1(look.label));
    label->setTextFormat(Qt::PlainText);
    row->addWidget(label);
  }
  if (framed_) row->addStretch();
}

/// A label keeps the pixels of its picture, not the picture.
void CommandTile::ShowPicture() {
  if (picture_ != nullptr) picture_->setPixmap(icon_.pixmap(kIcon));
}

void CommandTile::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) ShowPicture();
  QFrame::changeEvent(event);
}

bool CommandTile::event(QEvent* event) {
  if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) update();
  return QFrame::event(event);
}

void CommandTile::mousePressEvent(QMouseEvent* event) {
  pressed_ = event->button() == Qt::LeftButton;
  update();
}

void CommandTile::mouseReleaseEvent(QMouseEvent* event) {
  const bool clicked = pressed_ && event->button() == Qt::LeftButton && rect().contains(event->pos());
  pressed_ = false;
  update();
  if (clicked) emit Clicked();
}

void CommandTile::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  if (!framed_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(palette().color(underMouse() ? QPalette::Highlight : QPalette::Mid));
  painter.setBrush(palette().brush(pressed_ ? QPalette::Mid : QPalette::Button));
  constexpr double kHalfPixel = 0.5;
  painter.drawRoundedRect(QRectF(rect()).adjusted(kHalfPixel, kHalfPixel, -kHalfPixel, -kHalfPixel), kRadius,
                          kRadius);
}

}  // namespace orven
