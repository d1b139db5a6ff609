// SPDX-License-Identifier: GPL-3.0-or-later
#include "log/frmLog.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSplitter>
#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr QSize kSize(860, 520);  // pixels; shows eighty characters a line and a month of files

}  // namespace

frmLog::frmLog(LogViewer::Parts parts, std::function<void(LogViewer&, QWidget&)> open_properties,
               QWidget* parent)
    : QDialog(parent),
      engine_(std::move(parts), *this),
      widths_(font()),
      open_properties_(std::move(open_properties)) {
  SetUpDialog(*this, "frmLog", tr("Log"));
  auto* splitter = MakeChild<QSplitter>(this);
  splitter->setChildrenCollapsible(false);
  splitter->addWidget(MakeFiles());
  splitter->addWidget(MakeDetails());
  splitter->setStretchFactor(1, 1);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(splitter, 1);
  column->addWidget(MakeButtons());
  resize(kSize);
  Connect();
  EnableButtons();
  engine_.Open();
}

QWidget* frmLog::MakeFiles() {
  auto* page = MakeChild<QWidget>(this);
  cmbWhatToShow_ = MakeNamed<QComboBox>("cmbWhatToShow", page);
  cmbWhatToShow_->setAccessibleName(tr("Logs to show"));
  // The engine's names, which are not translated.
  cmbWhatToShow_->addItem(tr("All"), QStringLiteral("All"));
  cmbWhatToShow_->addItem(tr("Calls"), QStringLiteral("Calls"));
  cmbWhatToShow_->addItem(tr("System"), QStringLiteral("System"));
  IgnoreStrayWheel(*cmbWhatToShow_);
  List1_ = MakeNamed<QListWidget>("List1", page);
  List1_->setAccessibleName(tr("Log files"));
  auto* column = MakeFlat<QVBoxLayout>(page);
  column->addWidget(cmbWhatToShow_);
  column->addWidget(List1_, 1);
  return page;
}

QWidget* frmLog::MakeDetails() {
  auto* page = MakeChild<QWidget>(this);
  List2_ = MakeNamed<LogLineList>("List2", page);
  List2_->setAccessibleName(tr("Lines of the log"));
  lines_ = MakeChild<LogLineModel>(engine_.Lines(), List2_);
  List2_->setModel(lines_);
  lblState_ = MakeText("lblState", page);
  auto* column = MakeFlat<QVBoxLayout>(page);
  column->addWidget(MakeCaption(tr("Details:"), List2_));
  column->addWidget(List2_, 1);
  column->addWidget(lblState_);
  return page;
}

QWidget* frmLog::MakeButtons() {
  auto* row = MakeChild<QWidget>(this);
  auto* layout = MakeFlat<QHBoxLayout>(row);
  layout->addWidget(cmdDelete_ = MakeButton("cmdDelete", tr("Delete"), tr("Delete the selected log"), row));
  layout->addWidget(cmdSaveAs_ =
                        MakeButton("cmdSaveAs", tr("Save As"), tr("Save a copy of the selected log"), row));
  layout->addStretch();
  layout->addWidget(cmdProp_ = MakeButton("cmdProp", tr("Properties"),
                                          tr("Which logs are written and how long they are kept"), row));
  for (auto* button : {cmdDelete_, cmdSaveAs_, cmdProp_}) button->setAutoDefault(false);
  return row;
}

void frmLog::Connect() {
  connect(cmbWhatToShow_, &QComboBox::currentIndexChanged, this, [this] {
    engine_.ChangeFilter(cmbWhatToShow_->currentData().toString().toStdString());
    EnableButtons();
  });
  connect(List1_, &QListWidget::currentItemChanged, this, &frmLog::SelectCurrent);
  // A click on the shown file reads it again.
  connect(List1_, &QListWidget::itemClicked, this, [this](const QListWidgetItem* item) {
    if (item->text().toStdString() == engine_.Selected()) SelectCurrent();
  });
  connect(cmdDelete_, &QPushButton::clicked, this, [this] { engine_.Delete(); });
  connect(cmdSaveAs_, &QPushButton::clicked, this, [this] { engine_.SaveAs(); });
  connect(cmdProp_, &QPushButton::clicked, this, [this] { open_properties_(engine_, *this); });
}

void frmLog::SelectCurrent() {
  const auto* item = List1_->currentItem();
  engine_.Select(item == nullptr ? "" : item->text().toStdString());
  EnableButtons();
}

void frmLog::EnableButtons() {
  cmdDelete_->setEnabled(!engine_.Selected().empty());
  cmdSaveAs_->setEnabled(!engine_.Selected().empty());
}

void frmLog::ShowFiles(const std::vector<std::string>& names, const std::string& selected) noexcept {
  const QSignalBlocker silent(List1_);
  List1_->clear();
  for (const auto& name : names) {
    List1_->addItem(QString::fromStdString(name));
    if (name == selected) List1_->setCurrentRow(List1_->count() - 1);
  }
}

void frmLog::ShowLineCount(std::size_t count) noexcept {
  lines_->ShowCount(count);
  EnableButtons();
}

std::int32_t frmLog::Widest(std::string_view line, std::int32_t widest) noexcept {
  return widths_.Widest(line, widest);
}

void frmLog::ShowExtent(std::int32_t pixels) noexcept {
  List2_->ShowExtent(pixels);
}

void frmLog::ShowState(const Words& text) noexcept {
  lblState_->setText(Shown(text));
}

frmLogProp::frmLogProp(LogProperties& engine, QWidget* parent)
    : QDialog(parent), engine_(engine), form_(*this, RowsOf(Group::Log)) {
  SetUpDialog(*this, "frmLogProp", tr("Log Properties"));
  // Leaves room for the title and its window buttons.
  setMinimumWidth(fontMetrics().horizontalAdvance(windowTitle()) * 3);
  auto* form = MakeChild<QFormLayout>();
  form_.AddRest(*form, 0);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addLayout(form);
  column->addStretch();
  const auto closing = MakeClosingButtons(*this);
  connect(closing.cmdOK, &QPushButton::clicked, this, [this] {
    engine_.Ok(form_.Taken());
    accept();
  });
  column->addLayout(closing.row);
  form_.Show(engine_.Load());
}

}  // namespace orven
