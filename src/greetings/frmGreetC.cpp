// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetC.h"

#include <QLabel>
#include <QSignalBlocker>
#include <utility>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/icons.h"
#include "widgets/translation.h"

namespace orven {
namespace {

constexpr QSize kFirstSize{480, 0};  // pixels; the layout gives the height
constexpr int kTabIcon = 16;

/// Replaces pasted line breaks and control characters by blanks.
QString OneLine(QString text) {
  for (auto& letter : text) {
    const bool breaks = letter == QChar::LineSeparator || letter == QChar::ParagraphSeparator;
    if (breaks || letter.category() == QChar::Other_Control) letter = u' ';
  }
  return text;
}

}  // namespace

frmGreetC::frmGreetC(QWidget* parent)
    : QDialog(parent),
      TabStrip1_(MakeNamed<QTabWidget>("TabStrip1", this)),
      Frame1_(MakeChild<SpeakerFrame>(TabStrip1_)),
      Frame2_(MakeChild<SpeechFrame>(TabStrip1_)),
      picture_(MakeChild<WaveformWidget>(this)),
      lblState_(MakeNamed<ElidedLabel>("lblState", Qt::ElideRight, this)),
      txtGreetingName_(MakeNamed<QLineEdit>("txtGreetingName", this)),
      closing_(MakeClosingButtons(*this)) {
  SetUpDialog(*this, "frmGreetC", tr("Greeting Creator"));
  SetUpTabs();
  SetUpTake();
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(TabStrip1_, 1);
  column->addWidget(picture_);
  column->addWidget(lblState_);
  column->addLayout(MakeName());
  closing_.cmdOK->setToolTip(tr("Save the greeting; callers will hear it from now on"));
  column->addLayout(closing_.row);
  SetTabOrder();
  ShowButtons({});
  resize(kFirstSize.expandedTo(sizeHint()));
}

void frmGreetC::SetUpTabs() {
  TabStrip1_->setIconSize({kTabIcon, kTabIcon});
  TabStrip1_->addTab(Frame1_, ThemeIcon("audio-input-microphone"), tr("&Speaker"));
  TabStrip1_->addTab(Frame2_, ThemeIcon("text-speak"), tr("&Text To Speech"));
}

void frmGreetC::SetUpTake() {
  picture_->setAccessibleName(tr("Waveform of the recording"));
  picture_->setAttribute(Qt::WA_TransparentForMouseEvents);  // the position cannot be changed here
}

QLayout* frmGreetC::MakeName() {
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(MakeCaption(tr("Greeting &Name"), txtGreetingName_));
  row->addWidget(txtGreetingName_, 1);
  return row;
}

void frmGreetC::SetTabOrder() {
  QList<QWidget*> order{TabStrip1_};
  for (const char* name : {"cmdRec", "cmdStopRec", "cmdPlay", "cmdStopPlay", "txtTTS", "VoiceCB", "RateSldr",
                           "SpeakBtn", "StopBtn", "cmdCreateGreeting"}) {
    order << findChild<QWidget*>(QString::fromLatin1(name));
  }
  order << txtGreetingName_ << closing_.cmdOK << closing_.cmdCancel;
  for (qsizetype i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
  order[1]->setFocus();
}

void frmGreetC::Attach(GreetingCreator& engine, CreatorTab first) {
  engine_ = &engine;
  const auto load = [this, first] {
    if (!unloaded_) engine_->Load(first);
  };
  connect(this, &frmGreetC::FirstShown, this, load, Qt::QueuedConnection);
  connect(TabStrip1_, &QTabWidget::currentChanged, this, &frmGreetC::TabChosen);
  connect(Frame1_, &SpeakerFrame::Record, this, [this] { engine_->Record(); });
  connect(Frame1_, &SpeakerFrame::StopRecord, this, [this] { engine_->StopRecord(); });
  connect(Frame1_, &SpeakerFrame::Play, this, [this] { engine_->Play(); });
  connect(Frame1_, &SpeakerFrame::StopPlay, this, [this] { engine_->StopPlay(); });
  connect(Frame2_, &SpeechFrame::Speak, this, [this] { engine_->Speak(); });
  connect(Frame2_, &SpeechFrame::StopSpeaking, this, [this] { engine_->StopSpeaking(); });
  connect(Frame2_, &SpeechFrame::CreateGreeting, this, [this] { engine_->CreateGreeting(); });
  connect(closing_.cmdOK, &QPushButton::clicked, this, [this] { engine_->Save(); });
}

void frmGreetC::TabChosen(int index) {
  // The engine may refuse the tab, so the old one stays until it answers.
  SelectTab(static_cast<CreatorTab>(shown_tab_ + 1));
  engine_->TabClick(static_cast<CreatorTab>(index + 1));
}

int frmGreetC::exec() {
  const int result = QDialog::exec();
  Unload();  // when the program ends, the window is not closed
  return result;
}

void frmGreetC::done(int result) {
  Unload();
  QDialog::done(result);
}

void frmGreetC::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (engine_ != nullptr && !std::exchange(loaded_, true)) emit FirstShown();
}

void frmGreetC::hideEvent(QHideEvent* event) {
  QDialog::hideEvent(event);
  if (!event->spontaneous()) Unload();  // minimising hides the window, too
}

void frmGreetC::Unload() {
  if (engine_ == nullptr || !loaded_ || std::exchange(unloaded_, true)) return;
  engine_->Unload();
}

void frmGreetC::SelectTab(CreatorTab tab) noexcept {
  const QSignalBlocker quiet(TabStrip1_);
  shown_tab_ = static_cast<int>(tab) - 1;
  TabStrip1_->setCurrentIndex(shown_tab_);
}

void frmGreetC::ShowButtons(const CreatorButtons& buttons) noexcept {
  Frame1_->ShowButtons(buttons);
  Frame2_->ShowButtons(buttons);
  // The focus must not move to Cancel, where Return would lose a take that could not be saved.
  if (!buttons.cmdOK && focusWidget() == closing_.cmdOK) txtGreetingName_->setFocus();
  closing_.cmdOK->setEnabled(buttons.cmdOK);
}

void frmGreetC::ShowRecLabel(bool on) noexcept {
  Frame1_->ShowRecLabel(on);
}

void frmGreetC::ShowRecProgress(std::int32_t seconds) noexcept {
  Frame1_->ShowRecProgress(seconds);
}

void frmGreetC::ShowLevel(std::int32_t level) noexcept {
  Frame1_->ShowLevel(level);
}

void frmGreetC::ShowPlayProgress(std::chrono::milliseconds position,
                                 std::chrono::milliseconds length) noexcept {
  Frame1_->ShowPlayProgress(position, length);
  picture_->ShowProgress(position, length);
}

void frmGreetC::ShowWaveform(const Waveform& waveform) noexcept {
  picture_->ShowWaveform(waveform);
  Frame1_->ShowLength(waveform.length);
}

void frmGreetC::ShowState(const Words& text) noexcept {
  lblState_->setText(Shown(text));
}

void frmGreetC::AddVoices(const std::vector<std::string>& descriptions) noexcept {
  Frame2_->AddVoices(descriptions);
}

std::string frmGreetC::Text() const noexcept {
  return Frame2_->Text().toStdString();
}

void frmGreetC::ClearText() noexcept {
  Frame2_->ClearText();
}

std::string frmGreetC::GreetingName() const noexcept {
  return OneLine(txtGreetingName_->text()).toStdString();
}

void frmGreetC::Close() noexcept {
  accept();
}

}  // namespace orven
