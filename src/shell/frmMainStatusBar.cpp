// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/frmMainStatusBar.h"

#include "widgets/controls.h"

namespace orven {
namespace {

/// The clock changes once a second: a label of fixed size repaints itself and nothing around it.
void SetFixedText(QLabel& label, const QString& text) {
  if (label.text() == text) return;
  label.setText(text);
  const auto needed = label.sizeHint();
  if (needed.width() > label.minimumWidth() || needed.height() != label.minimumHeight()) {
    label.setFixedSize(std::max(needed.width(), label.minimumWidth()), needed.height());
  }
}

}  // namespace

MainStatusBar::MainStatusBar(QWidget* parent) : QStatusBar(parent), status_(AddPanel(1)) {
  setObjectName(QStringLiteral("StatusBar1"));
  status_->setAccessibleName(tr("Line status"));
  // However long a device's name is, the clock stays in sight.
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  addWidget(status_, 1);

  check_ = MakeChild<QCheckBox>(tr("Grid lines"), this);
  check_->setObjectName(QStringLiteral("Check1"));
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

QLabel* MainStatusBar::AddPanel(int number) {
  auto* panel = MakeChild<QLabel>(this);
  panel->setObjectName(QStringLiteral("StatusBar1.Panel%1").arg(number));
  panel->setTextFormat(Qt::PlainText);  // a device's name is never markup
  constexpr int kMargin = 4;
  panel->setContentsMargins(kMargin, 0, kMargin, 0);
  return panel;
}

void MainStatusBar::ShowStatus(const QString& text) {
  status_->setText(text);
  status_->setToolTip(text.toHtmlEscaped());
}

void MainStatusBar::ShowClock(const QString& time, const QString& date) {
  SetFixedText(*time_, time);
  SetFixedText(*date_, date);
}

}  // namespace orven
