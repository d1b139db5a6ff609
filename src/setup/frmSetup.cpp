// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/frmSetup.h"

#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include "options/frmLineEdit.h"
#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"
#include "widgets/window_placement.h"

namespace orven {
namespace {

constexpr QSize kFirstSize(560, 470);  // pixels
constexpr int kFoundLines = 3;         // room for the longest result, so that nothing moves
constexpr double kTitleSize = 1.4;     // of the text's

}  // namespace

frmSetup::frmSetup(QWidget* parent) : QDialog(parent), lblPage_(MakeText("lblPage", this)) {
  SetUpDialog(*this, "frmSetup", tr("Set-up Assistant"));
  auto font = lblPage_->font();
  font.setPointSizeF(font.pointSizeF() * kTitleSize);
  font.setBold(true);
  lblPage_->setFont(font);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(lblPage_);
  column->addWidget(MakePages(), 1);
  column->addWidget(MakeFound());
  column->addLayout(MakeButtons());
  auto size = kFirstSize.expandedTo(sizeHint());
  if (const auto* shown_on = screen()) size = size.boundedTo(shown_on->availableSize() - kWindowFrame);
  resize(size);
}

/// A small screen shows a page in parts.
QWidget* frmSetup::MakePages() {
  auto* area = MakeNamed<QScrollArea>("scrPages", this);
  area->setWidgetResizable(true);
  area->setFrameShape(QFrame::NoFrame);
  area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  pages_ = MakeNamed<QStackedWidget>("pages", area);
  telephone_ = MakeChild<frmSetupTelephone>(pages_);
  greeting_ = MakeChild<frmSetupGreeting>(pages_);
  away_ = MakeChild<frmSetupAway>(pages_);
  ready_ = MakeChild<frmSetupReady>(pages_);
  for (auto* page : std::initializer_list<QWidget*>{telephone_, greeting_, away_, ready_})
    pages_->addWidget(page);
  area->setWidget(pages_);
  return area;
}

QWidget* frmSetup::MakeFound() {
  auto* row = MakeChild<QWidget>(this);
  icon_ = MakeChild<QLabel>(row);
  lblFound_ = MakeText("lblFound", row);
  lblFound_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblFound_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  lblFound_->setMinimumHeight(kFoundLines * lblFound_->fontMetrics().lineSpacing());
  cmdUseAnyway_ = MakeButton("cmdUseAnyway", tr("Use it any&way"),
                             tr("Store the line; ORVEN keeps trying to open it"), row);
  cmdUseAnyway_->setAutoDefault(false);
  auto* layout = MakeFlat<QHBoxLayout>(row);
  layout->addWidget(icon_, 0, Qt::AlignTop);
  layout->addWidget(lblFound_, 1);
  layout->addWidget(cmdUseAnyway_, 0, Qt::AlignTop);
  return row;
}

QLayout* frmSetup::MakeButtons() {
  cmdBack_ = MakeButton("cmdBack", tr("&Back"), tr("The page before this one"), this);
  cmdSkip_ = MakeButton("cmdSkip", tr("S&kip"), tr("Leave this page as it is"), this);
  cmdNext_ = MakeButton("cmdNext", tr("&Next"), {}, this);
  cmdClose_ =
      MakeButton("cmdClose", tr("&Close"), tr("Tools, Set-up Assistant opens this window again"), this);
  for (auto* button : {cmdBack_, cmdSkip_, cmdClose_}) button->setAutoDefault(false);
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(cmdBack_);
  row->addStretch();
  for (auto* button : {cmdSkip_, cmdNext_, cmdClose_}) row->addWidget(button);
  return row;
}

void frmSetup::Attach(SetupAssistant& engine) {
  engine_ = &engine;
  connect(cmdNext_, &QPushButton::clicked, this, [this] { engine_->Next(); });
  connect(cmdSkip_, &QPushButton::clicked, this, [this] { engine_->Skip(); });
  connect(cmdBack_, &QPushButton::clicked, this, [this] { engine_->Back(); });
  connect(cmdClose_, &QPushButton::clicked, this, &QDialog::reject);
  connect(cmdUseAnyway_, &QPushButton::clicked, this, [this] { engine_->UseAnyway(); });
  connect(telephone_, &frmSetupTelephone::Chosen, this,
          [this](TelephoneKind kind) { engine_->Choose(kind); });
  connect(telephone_, &frmSetupTelephone::Edited, this, [this] { engine_->Typed(); });
  connect(telephone_, &frmSetupTelephone::MoreWanted, this, &frmSetup::More);
  connect(greeting_, &frmSetupGreeting::PlayWanted, this, [this] { engine_->PlayGreeting(); });
  connect(greeting_, &frmSetupGreeting::MakeWanted, this,
          [this](CreatorTab tab) { engine_->MakeGreeting(tab); });
  connect(away_, &frmSetupAway::TestWanted, this, [this] { engine_->TestMail(); });
  connect(ready_, &frmSetupReady::CallWanted, this, [this] { engine_->CallMeNow(); });
}

void frmSetup::More() {
  auto& lines = engine_->More();
  frmLineEdit(lines, engine_->LineIndex(), this).exec();
  engine_->MoreClosed();
}

void frmSetup::ShowPage(SetupPage page) noexcept {
  const auto index = static_cast<int>(page);
  const bool last = page == SetupPage::Ready;
  const QString titles[] = {tr("1 of 4: Your telephone"), tr("2 of 4: Your greeting"),
                            tr("3 of 4: When you are away"), tr("4 of 4: Ready")};
  lblPage_->setText(titles[index]);
  pages_->setCurrentIndex(index);
  cmdBack_->setEnabled(index > 0);
  cmdSkip_->setVisible(!last);
  cmdNext_->setVisible(!last);
  (last ? ready_->CallButton() : cmdNext_)->setDefault(true);
  QWidget* const first[] = {telephone_->FirstControl(), cmdNext_, away_->FirstControl(),
                            ready_->CallButton()};
  first[index]->setFocus();
}

void frmSetup::ShowTelephone(TelephoneKind kind, const TelephoneLine& line, const Words& note) noexcept {
  telephone_->Show(kind, line, note);
}

TelephoneLine frmSetup::Typed(TelephoneLine line) const noexcept {
  return telephone_->Typed(std::move(line));
}

void frmSetup::ShowTesting(bool testing) noexcept {
  // A disabled button would lose the focus to the one that closes the window.
  if (testing && cmdNext_->hasFocus()) cmdSkip_->setFocus();
  cmdNext_->setEnabled(!testing);
  if (!testing && cmdSkip_->hasFocus()) cmdNext_->setFocus();
  if (testing) lblFound_->setText(tr("Testing…"));
}

void frmSetup::ShowFound(const LineTestResult& found, bool usable) noexcept {
  const auto text = Shown(found.text);
  const bool failed = !found.passed && !text.isEmpty();
  lblFound_->setText(text);
  const auto picture = failed ? QStyle::SP_MessageBoxWarning : QStyle::SP_DialogApplyButton;
  const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
  icon_->setPixmap(text.isEmpty() ? QPixmap() : style()->standardIcon(picture).pixmap(size));
  cmdUseAnyway_->setVisible(usable);
  if (text.isEmpty()) return;
  const auto name = QString::fromUtf8(found.control.data(), int(found.control.size()));
  auto* field = name.isEmpty() ? nullptr : telephone_->findChild<QWidget*>(name);
  if (failed && field != nullptr && field->isVisible()) field->setFocus();
  Announce(*lblFound_);
}

void frmSetup::ShowGreeting(const std::string& name) noexcept {
  greeting_->Show(name);
}

void frmSetup::ShowAway(const Choices& choices) noexcept {
  away_->Show(choices);
}

Choices frmSetup::Away() const noexcept {
  return away_->Taken();
}

void frmSetup::ShowWrong(const SettingRow& row) noexcept {
  away_->ShowWrong(row);
}

void frmSetup::ShowLine(const Words& state, const Words& dial) noexcept {
  ready_->ShowLine(state, dial);
}

void frmSetup::ShowOwnCall(const OwnCall& call, const Words& obstacle) noexcept {
  ready_->ShowOwnCall(call, obstacle);
}

}  // namespace orven
