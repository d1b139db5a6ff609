// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QTabWidget>

#include "notify/events_dialog.h"
#include "widgets/button_bar.h"
#include "widgets/settings_form.h"

namespace orven {

/// The events dialog: sounds, and when the caller view opens. The engine decides; each control's object name
/// is its member name. User-interface thread.
class frmEvents : public QDialog {
  Q_OBJECT

 public:
  /// Opens on the tab with this 0-based index: General, In Coming Call, Disconnect Call.
  frmEvents(EventsDialog& engine, int tab, QWidget* parent);

 private:
  /// The list and the toolbar of one sound.
  struct SoundControls {
    QComboBox* list;
    ButtonBar* bar;
  };

  QWidget* MakeGeneral();
  QWidget* MakeInComingCall();
  QWidget* MakeDisconnectCall();
  SoundControls MakeSound(QFormLayout& form, const char* list, const char* bar);
  QWidget* MakeSpeed();
  QWidget* MakeClosing();
  void Connect();
  void ConnectSound(const SoundControls& controls, const SoundControls& other);
  void Show(const Choices& choices);
  static void ShowSounds(QComboBox& box, const SoundList& sounds);
  Choices Taken() const;
  static SoundList Sounds(const QComboBox& box);

  EventsDialog& engine_;
  SettingsForm form_;
  QTabWidget* tabs_;
  SoundControls when_call_{};
  SoundControls when_message_{};
};

}  // namespace orven
