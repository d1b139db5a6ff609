// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QWidget>

#include "core/sound_list.h"
#include "widgets/button_bar.h"

namespace orven {

/// A list of sounds and the toolbar beside it, which plays, adds and deletes them. User-interface thread.
class SoundBox : public QWidget {
  Q_OBJECT

 public:
  /// Object names, and texts that are translated already.
  struct Texts {
    const char* list;
    const char* bar;
    QString purpose;            ///< of the list
    QString title;              ///< of the toolbar
    QString play, add, remove;  ///< tool tips
  };

  SoundBox(const Texts& texts, QWidget* parent);

  void Show(const SoundList& sounds);
  SoundList Sounds() const;
  QComboBox& List() const { return *list_; }

 signals:
  /// A button of the toolbar: "Play", "Stop", "Add", "Delete".
  void ButtonClick(const QString& key);

 private:
  QComboBox* list_;
  ButtonBar* bar_;
};

}  // namespace orven
