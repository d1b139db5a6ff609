// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/frmGreetCSpeech.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

#include "widgets/controls.h"
#include "widgets/dialog_parts.h"

namespace orven {
namespace {

constexpr int kVisible = 12;
constexpr int kCharacters = 24;  // width of the list; longer descriptions are cut

bool IsReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

constexpr int kFastest = 10;
constexpr int kTickEvery = 5;
constexpr int kLines = 5;  // visible lines of text, at least

}  // namespace

VoiceBox::VoiceBox(QWidget* parent) : QComboBox(parent) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setMaxVisibleItems(kVisible);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(kCharacters);
  completer()->setCompletionMode(QCompleter::PopupCompletion);
  completer()->setFilterMode(Qt::MatchContains);
  completer()->setCaseSensitivity(Qt::CaseInsensitive);
  completer()->setMaxVisibleItems(kVisible);
  connect(lineEdit(), &QLineEdit::editingFinished, this, &VoiceBox::Settle);
  // Typing replaces the shown text. Queued, because the click itself moves the cursor first.
  connect(this, &VoiceBox::ClickedInto, lineEdit(), &QLineEdit::selectAll, Qt::QueuedConnection);
  // Shows the beginning of a long description.
  connect(this, &QComboBox::currentIndexChanged, this, [this] { lineEdit()->setCursorPosition(0); });
  IgnoreStrayWheel(*this);
}

void VoiceBox::AddVoices(const std::vector<std::string>& descriptions) {
  QStringList voices;
  for (const auto& description : descriptions) voices << QString::fromStdString(description);
  addItems(voices);
  if (count() > 0) setCurrentIndex(0);
}

void VoiceBox::Settle() {
  const auto* popup = completer()->popup();
  if (popup->isVisible() && popup->currentIndex().isValid()) return;  // the completer will select that one
  const auto typed = lineEdit()->text();
  if (typed == itemText(currentIndex())) return;
  const int found = typed.trimmed().isEmpty() ? -1 : findText(typed.trimmed(), Qt::MatchContains);
  setCurrentIndex(found >= 0 ? found : currentIndex());
  if (currentIndex() < 0) clearEditText();
  lineEdit()->setCursorPosition(0);
}

void VoiceBox::focusInEvent(QFocusEvent* event) {
  QComboBox::focusInEvent(event);
  if (event->reason() == Qt::MouseFocusReason) emit ClickedInto();
}

void VoiceBox::keyPressEvent(QKeyEvent* event) {
  const bool listed = completer()->popup()->isVisible();
  QComboBox::keyPressEvent(event);
  // Return selects a voice and must not press the window's default button. An open popup handles it itself.
  if (IsReturn(*event) && !listed) event->accept();
}

SpeechFrame::SpeechFrame(QWidget* parent)
    : QWidget(parent),
      txtTTS_(MakeNamed<QPlainTextEdit>("txtTTS", this)),
      VoiceCB_(MakeNamed<VoiceBox>("VoiceCB", this)),
      RateSldr_(MakeNamed<QSlider>("RateSldr", Qt::Horizontal, this)),
      SpeakBtn_(MakeButton("SpeakBtn", tr("Spea&k"), tr("Listen to the text"), this, "media-playback-start")),
      StopBtn_(MakeButton("StopBtn", tr("Stop Speakin&g"), tr("Stop speaking at once"), this,
                          "media-playback-stop")),
      cmdCreateGreeting_(MakeButton("cmdCreateGreeting", tr("&Create Greeting"),
                                    tr("Make a greeting from the text with this voice and rate"), this,
                                    "document-new")) {
  setObjectName(QStringLiteral("Frame2"));
  SetUpText();
  auto* column = MakeChild<QVBoxLayout>(this);
  column->addWidget(MakeCaption(tr("Te&xt:"), txtTTS_));
  column->addWidget(txtTTS_, 1);
  column->addLayout(MakeVoice());
  column->addLayout(MakeButtons());
  Connect();
}

void SpeechFrame::SetUpText() {
  txtTTS_->setAccessibleName(tr("Text of the greeting"));
  txtTTS_->setPlaceholderText(tr("What callers will hear"));
  txtTTS_->setTabChangesFocus(true);
  txtTTS_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
  txtTTS_->setMinimumHeight(kLines * txtTTS_->fontMetrics().lineSpacing() + 2 * txtTTS_->frameWidth() +
                            int(2 * txtTTS_->document()->documentMargin()));
}

QLayout* SpeechFrame::MakeVoice() {
  SetUpVoice();
  auto* grid = MakeChild<QGridLayout>();
  grid->setColumnStretch(2, 1);
  grid->setVerticalSpacing(0);  // keeps the number close to its tick
  grid->setRowMinimumHeight(1, style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
  grid->addWidget(MakeCaption(tr("&Voice:"), VoiceCB_), 0, 0);
  grid->addWidget(VoiceCB_, 0, 1, 1, 3);
  grid->addWidget(MakeCaption(tr("Rat&e:"), RateSldr_), 2, 0);
  grid->addWidget(MakeChild<QLabel>(tr("Slow"), this), 2, 1);
  grid->addWidget(RateSldr_, 2, 2);
  grid->addWidget(MakeChild<QLabel>(QString::number(0), this), 3, 2, Qt::AlignHCenter);
  grid->addWidget(MakeChild<QLabel>(tr("Fast"), this), 2, 3);
  return grid;
}

void SpeechFrame::SetUpVoice() {
  VoiceCB_->setAccessibleName(tr("Voice"));
  VoiceCB_->setToolTip(tr("Type part of a voice's name to find it"));
  RateSldr_->setAccessibleName(tr("Rate"));
  RateSldr_->setToolTip(tr("How fast the text is spoken"));
  RateSldr_->setRange(-kFastest, kFastest);
  RateSldr_->setPageStep(kTickEvery);
  RateSldr_->setTickInterval(kTickEvery);
  RateSldr_->setTickPosition(QSlider::TicksBelow);
  IgnoreStrayWheel(*RateSldr_);
}

QLayout* SpeechFrame::MakeButtons() {
  auto* row = MakeChild<QHBoxLayout>();
  row->addWidget(SpeakBtn_);
  row->addWidget(StopBtn_);
  row->addStretch();
  row->addWidget(cmdCreateGreeting_);
  return row;
}

void SpeechFrame::Connect() {
  // A shortcut presses a button while the voice list keeps the focus.
  for (auto* button : {SpeakBtn_, cmdCreateGreeting_})
    connect(button, &QPushButton::clicked, VoiceCB_, &VoiceBox::Settle);
  connect(SpeakBtn_, &QPushButton::clicked, this, &SpeechFrame::Speak);
  connect(StopBtn_, &QPushButton::clicked, this, &SpeechFrame::StopSpeaking);
  connect(cmdCreateGreeting_, &QPushButton::clicked, this, &SpeechFrame::CreateGreeting);
}

void SpeechFrame::ShowButtons(const CreatorButtons& buttons) {
  cmdCreateGreeting_->setEnabled(buttons.cmdCreateGreeting);
}

}  // namespace orven
