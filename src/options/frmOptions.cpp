// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/frmOptions.h"

#include <QVBoxLayout>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr std::uint32_t kFlat = 0x800;  // toolbar style TBSTYLE_FLAT
constexpr int kThousandthsPerPercent = 10;

}  // namespace

frmOptions::frmOptions(Parts parts, int tab, QWidget* parent)
    : QDialog(parent),
      parts_(std::move(parts)),
      form_(*this, RowsOf(Group::Options)),
      TabStrip1_(MakeNamed<QTabWidget>("TabStrip1", this)) {
  SetUpDialog(*this, "frmOptions", tr("Options"));
  AddPage("Frame1", tr("General"), &frmOptions::FillGeneral);
  AddPage("Frame2", tr("Devices"), &frmOptions::FillDevices);
  AddPage("Frame3", tr("Answer Mode"), &frmOptions::FillAnswerMode);
  AddPage("Frame4", tr("Advanced"), &frmOptions::FillAdvanced);
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(TabStrip1_);
  const auto buttons = MakeClosingButtons(*this);
  cmdOK_ = buttons.cmdOK;
  cmdCancel_ = buttons.cmdCancel;
  column->addLayout(buttons.row);
  for (auto* bar : findChildren<ButtonBar*>()) bar->SetStyle(bar->Style() | kFlat);
  Connect();
  Fill();
  Show();
  TabStrip1_->setCurrentIndex(tab);
  ShowLevel(std::nullopt);
  parts_.engine.Watch(this);
}

frmOptions::~frmOptions() {
  parts_.engine.Watch(nullptr);
}

void frmOptions::Connect() {
  connect(cmdOK_, &QPushButton::clicked, this, &frmOptions::Ok);
  connect(cmdBrowsMessagesPath_, &QPushButton::clicked, this, [this] { parts_.engine.BrowsMessagesPath(); });
  connect(cmbModemDev_, &QComboBox::editTextChanged, this, &frmOptions::ShowCapabilities);
  connect(sldSilence_, &QSlider::valueChanged, this, [this](int value) {
    silence_->setText(tr("%1 %").arg(value));
    ShowLevel(meter_->Level());
  });
}

void frmOptions::Fill() {
  const auto lists = parts_.engine.Lists();
  FillList(*cmbModemDev_, lists.devices);
  ShowSoundCards(lists.cards);
}

void frmOptions::Show() {
  const auto choices = parts_.engine.Load();
  chkRenOnStart_->setChecked(parts_.engine.Autostarts());
  form_.Show(choices);
  silence_->setText(tr("%1 %").arg(sldSilence_->value()));
  ShowMessagesPath(parts_.engine.MessagesPath(), std::nullopt);
  greetings_->Fill(choices.Text("Greeting"));
  ShowCapabilities();
}

Choices frmOptions::Taken() const {
  auto choices = form_.Taken();
  const auto greeting = greetings_->Selected();
  if (!greeting.empty()) choices["Greeting"] = greeting;
  return choices;
}

void frmOptions::ShowCapabilities() {
  const auto values = parts_.engine.Capabilities(cmbModemDev_->currentText().toStdString());
  bool there = false;
  for (std::size_t i = 0; i < capabilities_.size(); ++i) {
    capabilities_[i]->setText(Shown(values[i].second));
    there = there || !values[i].second.Empty();
  }
  const auto device = cmbModemDev_->currentText();
  const bool waits = there && parts_.engine.AnotherLineIsOpen(device.toStdString());
  no_device_->setText(waits              ? tr("After OK, \"Use it now\" in the status bar changes to it.")
                      : there            ? QString()
                      : device.isEmpty() ? tr("No device is chosen.")
                                         : tr("There is no device of this name now."));
}

void frmOptions::OpenLines() {
  const auto before = parts_.engine.StoredDevice();
  const auto added = parts_.open_lines();
  // Who adds a line wants to use it. A chosen line that was renamed stays chosen, under its new name.
  auto chosen = added.empty() ? cmbModemDev_->currentText().toStdString() : added;
  if (chosen == before) chosen = parts_.engine.StoredDevice();
  FillList(*cmbModemDev_, parts_.engine.Devices());
  form_.Show({{{"ModemName", chosen}}});
  ShowCapabilities();
}

void frmOptions::ShowLevel(std::optional<std::int32_t> level) noexcept {
  meter_->ShowLevel(level);
  if (!level)
    return meter_text_->setText(tr("While a caller is greeted or speaks, the level is shown here."));
  const auto percent = QString::number(*level / kThousandthsPerPercent);
  meter_text_->setText(*level > sldSilence_->value() * kThousandthsPerPercent
                           ? tr("The caller's level now: %1 % (heard)").arg(percent)
                           : tr("The caller's level now: %1 % (silent)").arg(percent));
}

void frmOptions::ShowSoundCards(const std::vector<Words>& names) noexcept {
  auto& list = form_.Get<QComboBox>("Sound");
  for (int i = 0; i < int(names.size()); ++i) {
    const auto name = Shown(names[std::size_t(i)]);
    if (i == list.count()) list.addItem(name);
    if (list.itemText(i) != name) list.setItemText(i, name);
  }
}

void frmOptions::ShowMessagesPath(const std::string& path,
                                  const std::optional<RelocationProgress>& moving) noexcept {
  const auto shown = QString::fromStdString(path);
  if (txtMassagesPath_->text() != shown) txtMassagesPath_->setText(shown);
  for (auto* button : {cmdBrowsMessagesPath_, cmdOK_, cmdCancel_}) button->setEnabled(!moving);
  moving_->setText(moving ? tr("Moving the messages: %1 of %2").arg(moving->done).arg(moving->total)
                          : QString());
}

void frmOptions::reject() {
  if (cmdCancel_->isEnabled()) QDialog::reject();
}

void frmOptions::Ok() {
  parts_.engine.Save(Taken(), chkRenOnStart_->isChecked());
  accept();
}

}  // namespace orven
