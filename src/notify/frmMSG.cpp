// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/frmMSG.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <cmath>

#include "widgets/controls.h"
#include "widgets/icons.h"
#include "widgets/translation.h"
#include "widgets/window_placement.h"

namespace orven {
namespace {

constexpr int kIcon = 22;
constexpr int kTileMargin = 6;
constexpr double kRadius = 5;

constexpr QSize kDesignSize{420, 190};  // pixels

// Font sizes in pixels, because the window's size is fixed.
constexpr int kSmall = 12;
constexpr int kPlain = 14;
constexpr int kStatus = 16;
constexpr int kCaller = 24;
constexpr int kNumber = 20;

QFont Letters(int pixels, bool bold = false) {
  QFont font(QStringLiteral("Arial"));
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

QLabel* Label(const char* name, const QString& text, const QFont& font, QWidget& parent) {
  auto* label = MakeNamed<QLabel>(name, text, &parent);
  label->setTextFormat(Qt::PlainText);
  label->setFont(font);
  return label;
}

QLabel* Caption(const char* name, const QString& text, QWidget& parent) {
  return Label(name, text, Letters(kSmall), parent);
}

/// Rounded, halves to even.
int Pixels(std::int32_t twips) {
  return static_cast<int>(std::nearbyint(static_cast<double>(twips) / kTwipsPerPixel));
}

}  // namespace

CommandTile::CommandTile(const Look& look, QWidget* parent)
    : QFrame(parent), framed_(look.label != nullptr && look.picture != nullptr) {
  setAttribute(Qt::WA_Hover);
  setCursor(Qt::PointingHandCursor);
  setAccessibleName(look.caption);
  setToolTip(look.label == nullptr ? look.caption : QString());
  auto* row = MakeChild<QHBoxLayout>(this);
  const int margin = framed_ ? kTileMargin : 0;
  row->setContentsMargins(margin, margin, margin, margin);
  row->setSpacing(kTileMargin);
  if (framed_) row->addStretch();
  if (look.picture != nullptr) {
    icon_ = ThemeIcon(look.icon);
    picture_ = MakeNamed<QLabel>(look.picture, this);
    ShowPicture();
    row->addWidget(picture_);
  }
  if (look.label != nullptr) {
    auto* label = MakeNamed<QLabel>(look.label, look.caption, this);
    label->setTextFormat(Qt::PlainText);
    row->addWidget(label);
  }
  if (framed_) row->addStretch();
}

/// The label stores pixels, so a new palette needs a new picture.
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

frmMSG::frmMSG(const QWidget& main_window)
    : QWidget(nullptr,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
      main_window_(main_window) {
  setObjectName(QStringLiteral("frmMSG"));
  setWindowTitle(tr("ORVEN"));
  setWindowIcon(ProgramIcon());
  UseIconTheme(palette());
  setAttribute(Qt::WA_ShowWithoutActivating);
  setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
  setAttribute(Qt::WA_AlwaysShowToolTips);
  setAttribute(Qt::WA_QuitOnClose, false);
  setFont(Letters(kPlain));
  setFixedSize(kDesignSize);
  auto* column = MakeChild<QVBoxLayout>(this);
  constexpr int kMargin = 10;
  column->setContentsMargins(kMargin, kMargin / 2, kMargin, kMargin);
  column->setSpacing(kMargin / 2);
  column->addWidget(MakeHeading());
  column->addWidget(MakeDetails(), 1);
  column->addWidget(MakeCommands());
  // A window that comes to the front must not cover the caller view.
  connect(qApp, &QGuiApplication::focusWindowChanged, this, [this] { KeepOnTop(); });
}

QWidget* frmMSG::MakeHeading() {
  auto* heading = MakeChild<QWidget>(this);
  auto* row = MakeFlat<QHBoxLayout>(heading);
  auto* from =
      MakeChild<CommandTile>(CommandTile::Look{"lblMsgFrom", tr("ORVEN"), nullptr, nullptr}, heading);
  from->setFont(Letters(kPlain, true));
  from->setAccessibleDescription(tr("Close"));
  status_ = Label("lblStatus", {}, Letters(kStatus, true), *heading);
  ring_ = Label("lblMsgRingNum", {}, Letters(kStatus), *heading);
  auto* close =
      MakeChild<CommandTile>(CommandTile::Look{nullptr, tr("Close"), "Image2", "window-close"}, heading);
  row->addWidget(from);
  row->addStretch();
  row->addWidget(status_);
  row->addWidget(ring_);
  row->addStretch();
  row->addWidget(close);
  for (auto* tile : {from, close}) {
    connect(tile, &CommandTile::Clicked, this, [this] { Tell(&CallerViewClicks::Close); });
  }
  return heading;
}

QWidget* frmMSG::MakeDetails() {
  auto* details = MakeChild<QWidget>(this);
  auto* grid = MakeFlat<QGridLayout>(details);
  grid->setVerticalSpacing(2);
  grid->setColumnStretch(1, 1);
  caller_ = MakeDetail("lblCallerName", Letters(kCaller, true), Qt::ElideRight, *details);
  number_ = MakeDetail("lblCallerNumber", Letters(kNumber), Qt::ElideRight, *details);
  message_ = MakeDetail("lblMessagePath", Letters(kSmall), Qt::ElideMiddle, *details);
  date_ = Label("lblCallDate", {}, Letters(kSmall), *details);
  time_ = Label("lblTime", {}, Letters(kSmall), *details);
  grid->addWidget(Caption("Label5", tr("Cllaer Name : "), *details), 0, 0);
  grid->addWidget(caller_, 0, 1);
  grid->addWidget(Caption("Label4", tr("Cllaer Number :"), *details), 1, 0);
  grid->addWidget(number_, 1, 1);
  auto* when = MakeChild<QHBoxLayout>();
  when->addWidget(date_);
  when->addSpacing(kPlain);
  when->addWidget(Caption("Label2", tr("Time : "), *details));
  when->addWidget(time_);
  when->addStretch();
  grid->addWidget(Caption("Label3", tr("Date : "), *details), 2, 0);
  grid->addLayout(when, 2, 1);
  grid->addWidget(message_, 3, 0, 1, 2);
  return details;
}

ElidedLabel* frmMSG::MakeDetail(const char* name, const QFont& font, Qt::TextElideMode mode,
                                QWidget& parent) {
  auto* label = MakeNamed<ElidedLabel>(name, mode, &parent);
  label->setFont(font);
  return label;
}

QWidget* frmMSG::MakeCommands() {
  auto* commands = MakeChild<QWidget>(this);
  auto* row = MakeFlat<QHBoxLayout>(commands);
  AddCommand(*row, {"lblAmswerMode", tr("Answer Now"), "Picture3", "call-start"},
             &CallerViewClicks::AnswerNow);
  AddCommand(*row, {"lblDrop", tr("Drop Call"), "Picture4", "call-stop"}, &CallerViewClicks::Drop);
  AddCommand(*row, {"lblDoNothing", tr("Do Nothing"), "Picture2", "notifications-disabled"},
             &CallerViewClicks::DoNothing);
  return commands;
}

void frmMSG::AddCommand(QLayout& row, const CommandTile::Look& look, void (CallerViewClicks::*click)()) {
  auto* tile = MakeChild<CommandTile>(look, row.parentWidget());
  tile->setFont(Letters(kPlain, true));
  auto keep = tile->sizePolicy();
  keep.setRetainSizeWhenHidden(true);  // keeps the caller's name in place
  keep.setHorizontalPolicy(QSizePolicy::Expanding);
  tile->setSizePolicy(keep);
  row.addWidget(tile);
  commands_ << tile;
  connect(tile, &CommandTile::Clicked, this, [this, click] { Tell(click); });
}

void frmMSG::Tell(void (CallerViewClicks::*click)()) {
  if (clicks_ != nullptr) (clicks_->*click)();
}

std::int32_t frmMSG::Height() const noexcept {
  return kDesignSize.height() * kTwipsPerPixel;
}

void frmMSG::MoveTo(std::int32_t top) noexcept {
  top_ = top;
  Place();
}

/// The screen does not change while the window is shown, even if the main window moves.
void frmMSG::Place() {
  if (!isVisible() || screen_.isNull()) screen_ = main_window_.screen();
  if (screen_.isNull()) screen_ = QGuiApplication::primaryScreen();
  if (screen_.isNull()) return;
  const auto area = screen_->geometry();
  move(area.left() + (area.width() - kDesignSize.width()) / 2, area.top() + Pixels(top_));
}

void frmMSG::KeepOnTop() {
  if (!isVisible()) return;
  Place();
  raise();
}

void frmMSG::Load() noexcept {
  for (auto* label : {status_, ring_, date_, time_}) label->clear();
  for (auto* label : {caller_, number_, message_}) label->clear();
  ShowCommands(CallerCommands::All);
  Place();
  show();
  raise();
}

void frmMSG::Unload() noexcept {
  hide();
}

void frmMSG::ShowCommands(CallerCommands shown) noexcept {
  for (auto* tile : commands_) tile->setVisible(shown != CallerCommands::None);
  if (shown == CallerCommands::WithoutAnswer) commands_.first()->hide();
}

void frmMSG::ShowStatus(const Words& text) noexcept {
  status_->setText(Shown(text));
}

void frmMSG::ShowRing(const Words& text) noexcept {
  ring_->setText(Shown(text));
}

void frmMSG::ShowCall(const Call& call) noexcept {
  caller_->setText(Shown(CallerWords(call.caller_name)));
  number_->setText(Shown(CallerWords(call.caller_number)));
  date_->setText(QString::fromStdString(call.date));
  time_->setText(QString::fromStdString(call.time));
  message_->setText(QString::fromStdString(call.message_path));
}

/// The desktop asks the window to close: the view slides out as after a click.
void frmMSG::closeEvent(QCloseEvent* event) {
  if (!event->spontaneous() || clicks_ == nullptr) return QWidget::closeEvent(event);
  event->ignore();
  Tell(&CallerViewClicks::Close);
}

bool frmMSG::event(QEvent* event) {
  if (event->type() == QEvent::WindowActivate) KeepOnTop();
  return QWidget::event(event);
}

void frmMSG::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::Shadow));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  // A bar at the lower edge, which appears first.
  constexpr int kBar = 4;
  painter.fillRect(1, height() - 1 - kBar, width() - 2, kBar, palette().brush(QPalette::Highlight));
}

}  // namespace orven
