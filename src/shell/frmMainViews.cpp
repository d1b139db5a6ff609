// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine shows on the main window.
#include <QApplication>
#include <QScreen>

#include "shell/frmMain.h"
#include "widgets/icons.h"
#include "widgets/translation.h"
#include "widgets/window_placement.h"

namespace orven {
MainWindowViews frmMain::Views(CallerViewWindow& caller_view) {
  return {*this, *this, *TBQuickOption_, *this, *ListView1_, *player_, caller_view};
}

void frmMain::ShowStatus(const Words& text) {
  StatusBar1_->ShowStatus(Shown(text));
}

void frmMain::OfferChosen(const std::string& name, bool waits) {
  StatusBar1_->OfferLine(QString::fromStdString(name), waits);
}

void frmMain::ShowLine(bool on, bool trying) {
  line_on_ = on;
  auto& action = *Toolbar1_->Find("OnOff")->defaultAction();
  action.setChecked(on);
  action.setText(on ? tr("On") : tr("Off"));
  action.setIcon(ThemeIcon(on ? "call-start" : "call-stop"));
  menus_->ShowLine(on, trying);
}

void frmMain::ShowMail(const Words& text) noexcept {
  StatusBar1_->ShowMail(Shown(text));
}

WindowGeometry frmMain::Geometry() const {
  // The frame's place and the size inside it: exactly what move() and resize() take.
  WindowGeometry geometry;
  geometry.left = x() * kTwipsPerPixel;
  geometry.top = y() * kTwipsPerPixel;
  geometry.width = width() * kTwipsPerPixel;
  geometry.height = height() * kTwipsPerPixel;
  if (isMinimized())
    geometry.state = 1;
  else if (isMaximized())
    geometry.state = 2;
  return geometry;
}

void frmMain::Place(const WindowGeometry& geometry) {
  QList<QRect> screens;
  for (const auto* screen : QGuiApplication::screens()) {
    screens << screen->availableGeometry().adjusted(0, 0, -kWindowFrame.width(), -kWindowFrame.height());
  }
  const auto place = FitOnScreens(geometry, minimumSize(), screens);
  move(place.topLeft());
  resize(place.size());
  if (geometry.state == 1) setWindowState(Qt::WindowMinimized);
  if (geometry.state == 2) setWindowState(Qt::WindowMaximized);
}

ButtonBar& frmMain::Bar(Toolbar toolbar) const {
  switch (toolbar) {
    case Toolbar::Toolbar1: return *Toolbar1_;
    case Toolbar::ToolBarPlayer: return player_->ToolBarPlayer();
    case Toolbar::TBQuickOption: break;
  }
  return *TBQuickOption_;
}

std::uint32_t frmMain::ToolbarStyle(Toolbar toolbar) const noexcept {
  return Bar(toolbar).Style();
}

void frmMain::SetToolbarStyle(Toolbar toolbar, std::uint32_t style) noexcept {
  Bar(toolbar).SetStyle(style);
}

void frmMain::ShowSetupOffers(const SetupOffers& offers) noexcept {
  ListView1_->ShowSetupOffers(offers);
}

void frmMain::ShowQuickToolbar(bool on) noexcept {
  TBQuickOption_->setVisible(on);
}

bool frmMain::GridLines() const noexcept {
  return StatusBar1_->Check1().isChecked();
}

void frmMain::SetGridLines(bool on) noexcept {
  StatusBar1_->Check1().setChecked(on);
}

void frmMain::SetListStyle(std::uint32_t mask, std::uint32_t style) noexcept {
  ListView1_->SetStyleBits(mask, style);
}

std::uintptr_t frmMain::Handle() const noexcept {
  return winId();
}

void frmMain::Show() noexcept {
  show();
}

void frmMain::Hide() noexcept {
  hide();
}

void frmMain::Minimise() noexcept {
  showMinimized();
}

void frmMain::Restore() noexcept {
  minimised_ = false;  // the program restores it, not the user
  showNormal();
  raise();
  activateWindow();
}

void frmMain::PopUpTrayMenu() noexcept {
  menus_->Systry().popup(QCursor::pos());
}

void frmMain::CloseOtherWindows() noexcept {
  const auto windows = QApplication::topLevelWidgets();
  for (auto* window : windows) {
    if (window->objectName() == u"frmMSG" || window->objectName() == u"frmLog") window->close();
  }
}

void frmMain::ShowClock(const std::string& time, const std::string& date) noexcept {
  StatusBar1_->ShowClock(QString::fromStdString(time), QString::fromStdString(date));
}

}  // namespace orven
