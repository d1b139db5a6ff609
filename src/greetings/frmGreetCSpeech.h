// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSlider>
#include <string>
#include <vector>

#include "greetings/greeting_creator.h"

namespace orven {

/// `VoiceCB`: a searchable list of voices. Typed text finds the voices whose descriptions contain it;
/// afterwards the box shows the selected voice again.
class VoiceBox : public QComboBox {
  Q_OBJECT

 public:
  explicit VoiceBox(QWidget* parent);

  /// Appends voices and selects the first of the list.
  void AddVoices(const std::vector<std::string>& descriptions);

  /// Selects the first voice that matches the typed text.
  void Settle();

 signals:
  void ClickedInto();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

/// `Frame2` of the greeting creator: a text, and the voice and rate that speak it.
class SpeechFrame : public QWidget {
  Q_OBJECT

 public:
  explicit SpeechFrame(QWidget* parent);

  void ShowButtons(const CreatorButtons& buttons);
  void AddVoices(const std::vector<std::string>& descriptions) { VoiceCB_->AddVoices(descriptions); }
  SpeechLink::Manner Manner() const { return {VoiceCB_->currentIndex(), RateSldr_->value()}; }
  QString Text() const { return txtTTS_->toPlainText(); }
  void ClearText() { txtTTS_->clear(); }

 signals:
  void Speak();
  void StopSpeaking();
  void CreateGreeting();

 private:
  void SetUpText();
  void SetUpVoice();
  QLayout* MakeVoice();
  QLayout* MakeButtons();
  void Connect();

  QPlainTextEdit* txtTTS_;
  VoiceBox* VoiceCB_;
  QSlider* RateSldr_;
  QPushButton* SpeakBtn_;
  QPushButton* StopBtn_;
  QPushButton* cmdCreateGreeting_;
};

}  // namespace orven
