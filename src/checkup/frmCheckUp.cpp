// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkup/frmCheckUp.h"

#include <QStyle>
#include <QVBoxLayout>
#include <optional>
#include <utility>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr int kWidth = 640;     // pixels; most sentences take one or two rows
constexpr int kRowMargin = 11;  // pixels, around the text of a row

/// The picture of a link's state.
std::optional<QStyle::StandardPixmap> PictureOf(CheckResult::State state) {
  using enum CheckResult::State;
  switch (state) {
    case Good: return QStyle::SP_DialogApplyButton;
    case Note: return QStyle::SP_MessageBoxInformation;
    case Bad: return QStyle::SP_MessageBoxWarning;
    default: return std::nullopt;
  }
}

/// The picture of a step; a waiting one has none.
std::optional<QStyle::StandardPixmap> PictureOf(OwnCallProgress::State state) {
  using enum OwnCallProgress::State;
  switch (state) {
    case Running: return QStyle::SP_ArrowRight;
    case Done: return QStyle::SP_DialogApplyButton;
    case Failed: return QStyle::SP_MessageBoxWarning;
    default: return std::nullopt;
  }
}

void ShowRow(QListWidgetItem& row, const QString& text, std::optional<QStyle::StandardPixmap> picture) {
  row.setText(text);
  row.setIcon(picture ? row.listWidget()->style()->standardIcon(*picture) : QIcon());
}

}  // namespace

frmCheckUp::frmCheckUp(CheckUp::Parts check_up, OwnCall::Parts own_call, QWidget* parent)
    : QDialog(parent),
      lstLinks_(MakeList("lstLinks", tr("What was checked"), kCheckLinks)),
      lblResult_(MakeText("lblResult", this)),
      cmdCall_(MakeButton("cmdCall", tr("Call &me now"),
                          tr("ORVEN calls its own line, says a sentence and plays the message"), this,
                          "call-start")),
      lblCall_(MakeText("lblCall", this)),
      lstSteps_(MakeList("lstSteps", tr("Steps of the call"), kOwnCallSteps)),
      cmdAgain_(MakeButton("cmdAgain", tr("Check &again"), {}, this)),
      check_up_(std::move(check_up), [this] { ShowLinks(); }),
      own_call_(own_call, [this] { ShowCall(); }) {
  SetUpDialog(*this, "frmCheckUp", tr("Check-up"));
  lstSteps_->hide();
  auto* cmdClose = MakeButton("cmdClose", tr("Close"), {}, this);
  auto* call = MakeChild<QHBoxLayout>();
  call->addWidget(cmdCall_);
  call->addWidget(lblCall_, 1);
  auto* buttons = MakeChild<QHBoxLayout>();
  buttons->addWidget(cmdAgain_);
  buttons->addStretch();
  buttons->addWidget(cmdClose);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(lblResult_);
  column->addWidget(lstLinks_, 1);
  column->addLayout(call);
  column->addWidget(lstSteps_);
  column->addLayout(buttons);
  resize(kWidth, sizeHint().height());
  connect(cmdCall_, &QPushButton::clicked, this,
          [this] { own_call_.Running() ? own_call_.Cancel() : own_call_.Start(); });
  connect(cmdAgain_, &QPushButton::clicked, this, [this] { check_up_.Start(); });
  connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
  check_up_.Start();
  ShowCall();
}

QListWidget* frmCheckUp::MakeList(const char* name, const QString& spoken, std::size_t rows) {
  auto* list = MakeNamed<QListWidget>(name, this);
  list->setAccessibleName(spoken);
  list->setWordWrap(true);
  list->setMinimumHeight(static_cast<int>(rows) * (fontMetrics().height() + kRowMargin));
  for (std::size_t i = 0; i < rows; ++i) list->addItem(QString());
  return list;
}

void frmCheckUp::ShowLinks() {
  const auto& results = check_up_.Results();
  for (std::size_t i = 0; i < kCheckLinks; ++i) {
    const auto name = Shown(NameOf(static_cast<CheckLink>(i)));
    const auto& [state, found] = results[i];
    const auto text = state == CheckResult::State::Checking ? tr("being checked…") : Shown(found);
    ShowRow(*lstLinks_->item(static_cast<int>(i)), tr("%1: %2").arg(name, text), PictureOf(state));
  }
  lstLinks_->doItemsLayout();  // the texts have other heights now
  lblResult_->setText(!results.Finished() ? tr("The machine is being checked…")
                      : results.AnyBad()  ? tr("Something needs your attention.")
                                          : tr("Everything that was checked is in order."));
  cmdAgain_->setEnabled(results.Finished());
  if (!own_call_.Running()) ShowCall();
}

void frmCheckUp::ShowCall() {
  const bool running = own_call_.Running();
  const auto obstacle = running ? Words() : own_call_.Obstacle();
  // A disabled button would lose the focus: a running call keeps it.
  cmdCall_->setEnabled(obstacle.Empty());
  cmdCall_->setText(running ? tr("&Hang up") : tr("Call &me now"));
  if (running) lstSteps_->show();
  lblCall_->setText(!obstacle.Empty() ? Shown(obstacle)
                    : running         ? tr("ORVEN is calling itself…")
                    : lstSteps_->isHidden()
                        ? tr("A test call proves the whole chain. It stays in the list until you delete it.")
                    : own_call_.Passed()
                        ? tr("The test call went through from the first ring to the played message.")
                        : tr("The test call has found a fault."));
  int row = 0;
  for (const auto& [state, words] : own_call_.Progress())
    ShowRow(*lstSteps_->item(row++), Shown(words), PictureOf(state));
  lstSteps_->doItemsLayout();
}

}  // namespace orven
