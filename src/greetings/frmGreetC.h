// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

#include "greetings/frmGreetCSpeaker.h"
#include "greetings/frmGreetCSpeech.h"
#include "greetings/greeting_creator.h"
#include "widgets/controls.h"
#include "widgets/dialog_parts.h"
#include "widgets/waveform_widget.h"

namespace orven {

/// The greeting creator: records or synthesises a greeting, plays it and saves it under a name. The engine
/// decides; each control's object name is its member name. User-interface thread.
class frmGreetC : public QDialog, public GreetingCreatorView {
  Q_OBJECT

 public:
  explicit frmGreetC(QWidget* parent);

  /// Sets the engine; once, before the window is shown. The engine outlives the visible window. Load is
  /// called when the window is first shown, with the tab `first`, and Unload once when it closes.
  void Attach(GreetingCreator& engine, CreatorTab first = CreatorTab::Speaker);

  /// Shows the window until it is closed. On return the engine is unloaded and any running Load has returned.
  int exec() override;
  void done(int result) override;

  void SelectTab(CreatorTab tab) noexcept override;
  void ShowButtons(const CreatorButtons& buttons) noexcept override;
  void ShowRecLabel(bool on) noexcept override;
  void ShowRecProgress(std::int32_t seconds) noexcept override;
  void ShowLevel(std::int32_t level) noexcept override;
  void ShowPlayProgress(std::chrono::milliseconds position,
                        std::chrono::milliseconds length) noexcept override;
  void ShowWaveform(const Waveform& waveform) noexcept override;
  void ShowState(const Words& text) noexcept override;
  void AddVoices(const std::vector<std::string>& descriptions) noexcept override;
  SpeechLink::Manner Manner() const noexcept override { return Frame2_->Manner(); }
  std::string Text() const noexcept override;
  void ClearText() noexcept override;
  std::string GreetingName() const noexcept override;
  void Close() noexcept override;

 signals:
  void FirstShown();

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void SetUpTabs();
  void SetUpTake();
  QLayout* MakeName();
  void SetTabOrder();
  void TabChosen(int index);
  void Unload();

  GreetingCreator* engine_ = nullptr;
  QTabWidget* TabStrip1_;
  SpeakerFrame* Frame1_;
  SpeechFrame* Frame2_;
  WaveformWidget* picture_;
  ElidedLabel* lblState_;
  QLineEdit* txtGreetingName_;
  ClosingButtons closing_;
  int shown_tab_ = 0;  ///< index of the tab that the engine selected last
  bool loaded_ = false;
  bool unloaded_ = false;
};

}  // namespace orven
