// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/frmSetupReady.h"

#include <QStyle>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"

namespace orven {
namespace {

/// The picture of a step; that of a waiting one is blank, so that all rows are alike.
QIcon PictureOf(OwnCallProgress::State state, const QStyle& style) {
  using enum OwnCallProgress::State;
  switch (state) {
    case Waiting: break;
    case Running: return style.standardIcon(QStyle::SP_ArrowRight);
    case Done: return style.standardIcon(QStyle::SP_DialogApplyButton);
    case Failed: return style.standardIcon(QStyle::SP_MessageBoxWarning);
  }
  QPixmap blank(style.pixelMetric(QStyle::PM_ListViewIconSize),
                style.pixelMetric(QStyle::PM_ListViewIconSize));
  blank.fill(Qt::transparent);
  return blank;
}

}  // namespace

frmSetupReady::frmSetupReady(QWidget* parent)
    : QWidget(parent),
      lblLine_(MakeText("lblLine", this)),
      lblDial_(MakeText("lblDial", this)),
      cmdCall_(MakeButton("cmdCall", tr("Call &me now"),
                          tr("ORVEN calls its own line, says a sentence and plays the message"), this,
                          "call-start")),
      lblObstacle_(MakeText("lblObstacle", this)),
      lstSteps_(MakeNamed<QListWidget>("lstSteps", this)) {
  auto font = lblLine_->font();
  font.setBold(true);
  lblLine_->setFont(font);
  lstSteps_->setAccessibleName(tr("Steps of the call"));
  lstSteps_->setWordWrap(true);
  lstSteps_->setSelectionMode(QAbstractItemView::NoSelection);
  auto* column = MakeFlat<QVBoxLayout>(this);
  for (auto* label : {lblLine_, lblDial_}) column->addWidget(label);
  column->addWidget(cmdCall_, 0, Qt::AlignLeft);
  column->addWidget(lblObstacle_);
  column->addWidget(lstSteps_, 1);
  connect(cmdCall_, &QPushButton::clicked, this, &frmSetupReady::CallWanted);
}

void frmSetupReady::ShowLine(const Words& state, const Words& dial) {
  lblLine_->setText(Shown(state));
  lblDial_->setText(Shown(dial));
  lblDial_->setVisible(!dial.Empty());
}

void frmSetupReady::ShowOwnCall(const OwnCall& call, const Words& obstacle) {
  const bool possible = obstacle.Empty() || call.Running();
  // A disabled button would lose the focus: a running call keeps it.
  cmdCall_->setEnabled(possible);
  lblObstacle_->setText(Shown(obstacle));
  lblObstacle_->setVisible(!possible);
  int row = 0;
  for (const auto& step : call.Progress()) {
    if (row == lstSteps_->count()) lstSteps_->addItem(QString());
    auto* item = lstSteps_->item(row++);
    item->setText(Shown(step.words));
    item->setIcon(PictureOf(step.state, *style()));
    if (step.state == OwnCallProgress::State::Running) lstSteps_->setCurrentItem(item);
  }
  lstSteps_->doItemsLayout();  // the texts have other heights now
}

}  // namespace orven
