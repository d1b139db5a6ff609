// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainBars.h"

#include <QEvent>
#include <QLabel>
#include <algorithm>

#include "core/settings.h"
#include "widgets/controls.h"
#include "widgets/growing_page.h"

namespace orven {
namespace {

/// The box does not grow with long greeting names.
constexpr int kGreetingCharacters = 12;
constexpr int kLeastGreetingWidth = 70;  // pixels; the rest of the toolbar needs its room first
constexpr int kButtonIcon = 16;

constexpr int kLongestName = 160;  // pixels, of a line in the status bar
constexpr int kPanelMargin = 4;

QLabel* Label(const QString& text, QWidget* parent) {
  auto* label = MakeChild<QLabel>(text, parent);
  constexpr int kGap = 4;
  label->setContentsMargins(kGap, 0, kGap, 0);
  return label;
}

/// The clock changes every second; a label of fixed size repaints only itself.
void SetFixedText(QLabel& label, const QString& text) {
  if (label.text() == text) return;
  label.setText(text);
  const auto needed = label.sizeHint();
  if (needed.width() > label.minimumWidth() || needed.height() != label.minimumHeight()) {
    label.setFixedSize(std::max(needed.width(), label.minimumWidth()), needed.height());
  }
}

}  // namespace

QuickOptionBar::QuickOptionBar(QWidget* parent)
    : ButtonBar(QStringLiteral("TBQuickOption"), tr("Quick options"), parent) {
  setIconSize({kButtonIcon, kButtonIcon});
  AddGreetings();
  addSeparator();
  AddRings();
  addSeparator();
  record_ = MakeNamed<QCheckBox>("chkRecMessage", tr("Record messages"), this);
  record_->setToolTip(tr("Record a message after the greeting"));
  connect(record_, &QCheckBox::clicked, this, &QuickOptionBar::RecordMessageChosen);
  addWidget(record_);
}

QComboBox* QuickOptionBar::AddBox(const char* name, const QString& label, const QString& purpose) {
  auto* text = Label(label, this);
  auto* box = MakeNamed<QComboBox>(name, this);
  box->setAccessibleName(purpose);
  box->setToolTip(purpose);
  IgnoreStrayWheel(*box);
  text->setBuddy(box);
  addWidget(text);
  addWidget(box);
  return box;
}

void QuickOptionBar::AddGreetings() {
  greetings_ = AddBox("cmbDefGreet", tr("Greeting:"), tr("The greeting that callers hear"));
  greetings_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  greetings_->setMinimumContentsLength(kGreetingCharacters);
  greetings_->setMinimumWidth(kLeastGreetingWidth);
  connect(greetings_, &QComboBox::activated, this,
          [this] { emit GreetingChosen(greetings_->currentText()); });
  AddButton({"Play", tr("Play"), tr("Play the greeting"), "media-playback-start"});
  AddButton({"Stop", tr("Stop"), tr("Stop playing"), "media-playback-stop"});
  AddButton({"Add", tr("Add"), tr("Make a new greeting"), "list-add"});
  AddButton({"Delete", tr("Delete"), tr("Delete the greeting"), "edit-delete"});
}

void QuickOptionBar::AddRings() {
  rings_ = AddBox("cmbRings", tr("Answer after"), tr("Number of rings before a call is answered"));
  for (const char* count : RowOf("NumOfRing").items) rings_->addItem(QString::fromLatin1(count));
  connect(rings_, &QComboBox::activated, this, [this] { emit RingsChosen(rings_->currentText()); });
  addWidget(Label(tr("rings"), this));
}

void QuickOptionBar::ShowRings(std::int16_t count) noexcept {
  rings_->setCurrentIndex(rings_->findText(QString::number(count)));
}

void QuickOptionBar::FillGreetings(const std::vector<std::string>& names,
                                   const std::string& selected) noexcept {
  FillList(*greetings_, names);
  if (names.empty()) return;
  const auto place = std::find(names.begin(), names.end(), selected);
  greetings_->setCurrentIndex(place == names.end() ? 0 : static_cast<int>(place - names.begin()));
}

MainStatusBar::MainStatusBar(QWidget* parent)
    : QStatusBar(parent), status_(MakeChild<WholeText>("StatusBar1.Panel1", this, 0)) {
  setObjectName(QStringLiteral("StatusBar1"));
  status_->setAccessibleName(tr("Line status"));
  // A long device name must not push the clock out of sight, or the list.
  constexpr int kMostLines = 2;
  status_->setMaximumHeight(kMostLines * fontMetrics().lineSpacing());
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  status_->setContentsMargins(kPanelMargin, 0, kPanelMargin, 0);
  addWidget(status_, 1);
  AddOffer();

  mail_ = MakeChild<QToolButton>(this);
  mail_->setObjectName(QStringLiteral("cmdMail"));
  mail_->setAutoRaise(true);
  mail_->setFocusPolicy(Qt::TabFocus);
  mail_->hide();
  addPermanentWidget(mail_);

  check_ = MakeNamed<QCheckBox>("Check1", tr("Grid lines"), this);
  check_->setToolTip(tr("Grid lines and whole-row selection in the calls list"));
  check_->setChecked(true);
  addPermanentWidget(check_);

  time_ = AddPanel(2);
  time_->setAccessibleName(tr("Time"));
  date_ = AddPanel(3);
  date_->setAccessibleName(tr("Date"));
  addPermanentWidget(time_);
  addPermanentWidget(date_);
}

void MainStatusBar::AddOffer() {
  offer_ = MakeNamed<QLabel>("lblChosenLine", this);
  offer_->setTextFormat(Qt::PlainText);
  cmdUseLine_ = MakeNamed<QPushButton>("cmdUseLine", tr("Use it now"), this);
  addPermanentWidget(offer_);
  addPermanentWidget(cmdUseLine_);
  OfferLine({}, false);
}

void MainStatusBar::OfferLine(const QString& name, bool waits) {
  offer_->setVisible(!name.isEmpty());
  cmdUseLine_->setVisible(!name.isEmpty() && !waits);
  const auto shown = fontMetrics().elidedText(name, Qt::ElideRight, kLongestName);
  offer_->setText(waits ? tr("%1 is used after the call.").arg(shown) : tr("%1 is chosen.").arg(shown));
  offer_->setToolTip(name.toHtmlEscaped());
  cmdUseLine_->setToolTip(tr("Use %1 now, in place of the line that is open").arg(name).toHtmlEscaped());
  cmdUseLine_->setAccessibleDescription(tr("Use %1 now, in place of the line that is open").arg(name));
}

QLabel* MainStatusBar::AddPanel(int number) {
  auto* panel = MakeChild<QLabel>(this);
  panel->setObjectName(QStringLiteral("StatusBar1.Panel%1").arg(number));
  panel->setTextFormat(Qt::PlainText);  // a device's name is never markup
  panel->setContentsMargins(kPanelMargin, 0, kPanelMargin, 0);
  return panel;
}

void MainStatusBar::ShowStatus(const QString& text) {
  status_->setText(text);
  status_->setToolTip(text.toHtmlEscaped());
  status_->setAccessibleDescription(text);
}

void MainStatusBar::ShowMail(const QString& text) {
  constexpr int kWidth = 220;  // pixels; the line's status needs the rest
  const QString shown = mail_->fontMetrics().elidedText(text, Qt::ElideRight, kWidth);
  mail_->setText(QString(shown).replace('&', QStringLiteral("&&")));
  mail_->setToolTip(text.toHtmlEscaped());
  mail_->setAccessibleName(text);
  mail_->setVisible(!text.isEmpty());
}

void MainStatusBar::ShowClock(const QString& time, const QString& date) {
  SetFixedText(*time_, time);
  SetFixedText(*date_, date);
}

}  // namespace orven
