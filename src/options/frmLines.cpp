// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmLines.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <array>
#include <chrono>
#include <utility>

#include "options/frmLineEdit.h"
#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"
#include "widgets/window_placement.h"

namespace orven {
namespace {

// Room for most results, so that nothing moves.
constexpr int kResultWidth = 300;  // pixels
constexpr int kResultLines = 3;

constexpr std::chrono::milliseconds kRefresh{500};
constexpr QSize kLeastList(400, 120), kUsualSize(860, 300);
constexpr std::array kColumnWidths{140, 120, 250};

}  // namespace

frmLineTest::frmLineTest(LinesDialog& engine, std::function<std::optional<TelephoneLine>()> line,
                         QWidget* parent)
    : QWidget(parent),
      engine_(engine),
      line_(std::move(line)),
      cmdTest_(MakeNamed<QPushButton>("cmdTest", this)),
      icon_(MakeChild<QLabel>(this)),
      lblTestResult_(MakeChild<WholeText>("lblTestResult", this, kResultWidth, kResultLines)) {
  cmdTest_->setToolTip(tr("Register at the server, or query the modem, and report any problem"));
  lblTestResult_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  lblTestResult_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  auto* row = MakeFlat<QHBoxLayout>(this);
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
  if (!text.isEmpty()) Announce(*lblTestResult_);
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
    Show(Shown(result.text), result.passed);
    emit Tested(result);
  });
}

frmLines::frmLines(LinesDialog& engine, QWidget* parent) : QDialog(parent), engine_(engine) {
  SetUpDialog(*this, "frmLines", tr("Telephone Lines"));
  auto* column = MakeChild<QVBoxLayout>(this);
  if (!engine_.Complaints().empty()) column->addWidget(MakeComplaints());
  column->addWidget(MakeListRow(), 1);
  test_ = MakeChild<frmLineTest>(
      engine_,
      [this]() -> std::optional<TelephoneLine> {
        const auto index = Selected();
        return index ? std::optional(engine_.At(*index)) : std::nullopt;
      },
      this);
  test_->SetAutoDefault(false);
  column->addWidget(test_);
  column->addLayout(MakeButtons());
  connect(lvwLines_, &QTreeWidget::itemSelectionChanged, this, &frmLines::SelectionChanged);
  connect(lvwLines_, &QTreeWidget::itemActivated, this, [this] { Edit(Selected()); });
  connect(&refresh_, &QTimer::timeout, this, &frmLines::ShowRows);
  resize(kUsualSize.boundedTo(screen()->availableGeometry().size() - kWindowFrame));
  ShowRows();
  Select(0);
  SelectionChanged();
  refresh_.start(kRefresh);
}

QWidget* frmLines::MakeComplaints() {
  QStringList texts;
  for (const auto& complaint : engine_.Complaints()) texts << QString::fromStdString(complaint);
  auto* label = MakeText("lblComplaints", this, texts.join(u'\n'));
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

QPushButton* frmLines::Button(const char* name, const QString& caption, const QString& tip, QWidget* parent) {
  auto* button = MakeButton(name, caption, tip, parent);
  button->setAutoDefault(false);
  return button;
}

QWidget* frmLines::MakeListRow() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeFlat<QHBoxLayout>(row);
  lvwLines_ = MakeNamed<QTreeWidget>("lvwLines", row);
  lvwLines_->setAccessibleName(tr("Telephone lines"));
  lvwLines_->setRootIsDecorated(false);
  lvwLines_->setMinimumSize(kLeastList);
  lvwLines_->setHeaderLabels({tr("Name"), tr("Kind"), tr("Account or address"), tr("State")});
  for (int i = 0; i < static_cast<int>(kColumnWidths.size()); ++i) {
    lvwLines_->setColumnWidth(i, kColumnWidths.at(static_cast<std::size_t>(i)));
  }
  auto* column = MakeChild<QVBoxLayout>();
  auto* add = Button("cmdAdd", tr("&Add…"), tr("Add a SIP account or a modem"), row);
  cmdEdit_ = Button("cmdEdit", tr("&Edit…"), tr("Change the selected line"), row);
  cmdRemove_ = Button("cmdRemove", tr("&Remove"), tr("Remove the selected line"), row);
  for (auto* button : {add, cmdEdit_, cmdRemove_}) column->addWidget(button);
  column->addStretch();
  layout->addWidget(lvwLines_, 1);
  layout->addLayout(column);
  connect(add, &QPushButton::clicked, this, [this] { Edit(std::nullopt); });
  connect(cmdEdit_, &QPushButton::clicked, this, [this] { Edit(Selected()); });
  connect(cmdRemove_, &QPushButton::clicked, this, &frmLines::Remove);
  return row;
}

QLayout* frmLines::MakeButtons() {
  const auto buttons = MakeClosingButtons(*this);
  buttons.cmdOK->setDefault(false);
  for (auto* button : {buttons.cmdOK, buttons.cmdCancel}) button->setAutoDefault(false);
  buttons.cmdOK->setToolTip(tr("Store the lines and use them"));
  buttons.cmdCancel->setToolTip(tr("Leave the lines as they were"));
  connect(buttons.cmdOK, &QPushButton::clicked, this, &frmLines::Ok);
  return buttons.row;
}

/// After Enter in the list has opened a line, the key also arrives here: it must press only a button with
/// focus.
void frmLines::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) return QDialog::keyPressEvent(event);
  if (auto* button = qobject_cast<QPushButton*>(focusWidget())) button->click();
}

void frmLines::ShowRows() {
  const auto count = static_cast<int>(engine_.Count());
  while (lvwLines_->topLevelItemCount() > count) delete lvwLines_->takeTopLevelItem(count);
  for (int i = 0; i < count; ++i) {
    if (i == lvwLines_->topLevelItemCount()) MakeChild<QTreeWidgetItem>(lvwLines_);
    auto* item = lvwLines_->topLevelItem(i);
    const auto row = engine_.RowAt(static_cast<std::size_t>(i));
    int column = 0;
    for (const auto& text : {Words(row.name), row.kind, Words(row.address), row.state}) {
      const auto shown = Shown(text);
      if (item->text(column) != shown) {
        item->setText(column, shown);
        item->setToolTip(column, shown);
      }
      ++column;
    }
  }
}

void frmLines::Select(std::size_t index) {
  lvwLines_->setCurrentItem(lvwLines_->topLevelItem(static_cast<int>(index)));
}

std::optional<std::size_t> frmLines::Selected() const {
  const auto items = lvwLines_->selectedItems();
  if (items.isEmpty()) return std::nullopt;
  return static_cast<std::size_t>(lvwLines_->indexOfTopLevelItem(items.first()));
}

void frmLines::SelectionChanged() {
  test_->Clear();
  const bool any = Selected().has_value();
  cmdEdit_->setEnabled(any);
  cmdRemove_->setEnabled(any);
  test_->SetUsable(any);
}

void frmLines::Edit(std::optional<std::size_t> index) {
  test_->Clear();
  if (frmLineEdit(engine_, index, this).exec() != QDialog::Accepted) return;
  ShowRows();
  Select(index.value_or(engine_.Count() - 1));
}

void frmLines::Remove() {
  const auto index = Selected();
  test_->Clear();
  if (!index || !engine_.Remove(*index)) return;
  ShowRows();
  if (engine_.Count() > 0) Select(std::min(*index, engine_.Count() - 1));
  SelectionChanged();
}

void frmLines::Ok() {
  if (engine_.Ok()) accept();
}

}  // namespace orven
