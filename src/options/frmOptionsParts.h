// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSlider>
#include <QWidget>
#include <optional>
#include <string>

#include "options/options_dialog.h"
#include "widgets/sound_box.h"

namespace orven {

/// The greeting player of the options dialog: the list `CmbGreetsMessages` and the toolbar
/// `tlbrGreetingPlayer`. User-interface thread.
class frmOptionsGreetings : public QWidget {
  Q_OBJECT

 public:
  /// The list is empty at first.
  frmOptionsGreetings(GreetingPlayer& engine, QWidget* parent);

  /// Shows the library as it is now and selects `selected`, or the first greeting when it is missing.
  void Fill(const std::string& selected);

  /// The greeting that is selected; empty when there is none.
  std::string Selected() const;

 private:
  GreetingPlayer& engine_;
  SoundBox* sounds_;
};

/// Level meter of the current call, below the slider that sets the silence level. Both have the same scale,
/// so that the user sees on which side of the handle the level is: grey is silence, green is sound.
class SilenceMeter : public QWidget {
  Q_OBJECT

 public:
  /// `slider` outlives the meter; its whole range is full scale.
  SilenceMeter(const QSlider& slider, QWidget* parent);

  /// In thousandths of full scale; nothing while no message is recorded.
  void ShowLevel(std::optional<int> level);

  /// What is shown, in thousandths of full scale.
  std::optional<int> Level() const { return level_; }

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double PlaceOf(double part) const;

  const QSlider& slider_;
  std::optional<int> level_;
};

}  // namespace orven
