// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QSlider>
#include <QTabWidget>

#include "notify/events_dialog.h"
#include "widgets/button_bar.h"

namespace orven {

/// The events dialog: sounds, and when the caller view opens. The engine decides; each control's object name
/// is its member name. User-interface thread.
class frmEvents : public QDialog {
  Q_OBJECT

 public:
  /// Opens on the tab with this 0-based index: General, In Coming Call, Disconnect Call.
  frmEvents(EventsDialog& engine, int tab, QWidget* parent);

 private:
  /// The check box, list and toolbar of one sound.
  struct SoundControls {
    QCheckBox* play;
    QComboBox* list;
    ButtonBar* bar;
  };

  QWidget* MakeGeneral();
  QWidget* MakeInComingCall();
  QWidget* MakeDisconnectCall();
  SoundControls MakeSound(QBoxLayout& column, const char* check, const char* list, const char* bar);
  QWidget* MakeSpeed();
  QWidget* MakeClosing();
  void Connect();
  void ConnectSound(const SoundControls& controls, EventsDialog::Sounds sounds);
  void Show(const EventChoices& choices);
  static void ShowSounds(QComboBox& box, const SoundList& sounds);
  EventChoices Choices() const;
  static SoundList Sounds(const QComboBox& box);

  EventsDialog& engine_;
  QTabWidget* tabs_;
  SoundControls when_call_{};
  SoundControls when_message_{};
  QCheckBox* chkViewDet_ = nullptr;
  QCheckBox* chkOnlyIfGotMessage_ = nullptr;
  QCheckBox* chkMsgInMsg_ = nullptr;
  QCheckBox* chkAnimation_ = nullptr;
  QSlider* sldAnimationFast_ = nullptr;
  QCheckBox* chkCloseCVAfter_ = nullptr;
  QComboBox* cmbCloseCVAfter_ = nullptr;
  std::int32_t stored_seconds_ = 0;  ///< kept while the list has no such entry
};

}  // namespace orven
