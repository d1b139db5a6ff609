// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>
#include <QTabWidget>

#include "notify/events_dialog.h"
#include "widgets/settings_form.h"
#include "widgets/sound_box.h"

namespace orven {

/// The events dialog: sounds, and when the caller view opens. The engine decides; the controls are made of
/// the settings' rows. User-interface thread.
class frmEvents : public QDialog {
  Q_OBJECT

 public:
  /// Opens on the tab with this 0-based index: General, In Coming Call, Disconnect Call.
  frmEvents(EventsDialog& engine, int tab, QWidget* parent);

 private:
  void AddGeneral();
  SoundBox* AddSounds(int page, const QString& tab, const QString& title, const char* play, const char* list,
                      const char* bar);
  QWidget* MakeSpeed();
  QWidget* MakeClosing();
  void Connect(SoundBox& box, SoundBox& other);
  Choices Taken() const;

  EventsDialog& engine_;
  SettingsForm form_;
  QTabWidget* tabs_;
  SoundBox* when_call_ = nullptr;
  SoundBox* when_message_ = nullptr;
};

}  // namespace orven
