// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmLineTest.h"

#include <QHBoxLayout>
#include <QStyle>
#include <utility>

#include "widgets/controls.h"

namespace orven {
namespace {

constexpr int kResultLines = 3;  // room for the longest sentences, so that nothing jumps

}  // namespace

frmLineTest::frmLineTest(LinesDialog& engine, std::function<std::optional<TelephoneLine>()> line,
                         QWidget* parent)
    : QWidget(parent),
      engine_(engine),
      line_(std::move(line)),
      cmdTest_(MakeChild<QPushButton>(this)),
      icon_(MakeChild<QLabel>(this)),
      lblTestResult_(MakeChild<QLabel>(this)) {
  cmdTest_->setObjectName(QStringLiteral("cmdTest"));
  cmdTest_->setToolTip(tr("Register at the server, or ask the modem, and tell what is wrong"));
  lblTestResult_->setObjectName(QStringLiteral("lblTestResult"));
  lblTestResult_->setAccessibleName(tr("Result of the test"));
  lblTestResult_->setTextFormat(Qt::PlainText);
  lblTestResult_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblTestResult_->setWordWrap(true);
  lblTestResult_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  lblTestResult_->setMinimumHeight(kResultLines * lblTestResult_->fontMetrics().lineSpacing());
  auto* row = MakeChild<QHBoxLayout>(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(cmdTest_, 0, Qt::AlignTop);
  row->addWidget(icon_, 0, Qt::AlignTop);
  row->addWidget(lblTestResult_, 1);
  connect(cmdTest_, &QPushButton::clicked, this, &frmLineTest::Click);
  SetRunning(false);
}

frmLineTest::~frmLineTest() {
  if (running_) engine_.CancelTest();
}

void frmLineTest::SetRunning(bool running) {
  running_ = running;
  cmdTest_->setText(running ? tr("S&top") : tr("&Test"));
}

void frmLineTest::Clear() {
  if (running_) engine_.CancelTest();
  SetRunning(false);
  Show({}, std::nullopt);
}

void frmLineTest::Show(const QString& text, std::optional<bool> passed) {
  lblTestResult_->setText(text);
  const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
  icon_->setPixmap(
      passed ? style()
                   ->standardIcon(*passed ? QStyle::SP_DialogApplyButton : QStyle::SP_MessageBoxWarning)
                   .pixmap(size)
             : QPixmap());
}

void frmLineTest::Click() {
  const bool stop = running_;
  Clear();
  if (stop) return Show(tr("Stopped."), std::nullopt);
  const auto line = line_();
  if (!line) return;
  SetRunning(true);
  Show(tr("Testing…"), std::nullopt);
  engine_.Test(*line, [this](const LineTestResult& result) {
    SetRunning(false);
    Show(QString::fromStdString(result.text), result.passed);
  });
}

}  // namespace orven
