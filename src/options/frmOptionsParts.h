// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QSlider>
#include <QWidget>
#include <optional>
#include <string>

#include "options/options_dialog.h"
#include "widgets/button_bar.h"

namespace orven {

/// The greeting player of the options dialog: the list `CmbGreetsMessages` and the toolbar
/// `tlbrGreetingPlayer`. User-interface thread.
class frmOptionsGreetings : public QWidget {
  Q_OBJECT

 public:
  /// The list is empty at first.
  frmOptionsGreetings(GreetingPlayer& engine, QWidget* parent);

  /// Shows the library as it is now; `selected` is selected when it is there, else the first greeting is.
  void Fill(const std::string& selected);

  /// The greeting that is selected; empty when there is none.
  std::string Selected() const;

 private:
  void Press(const QString& key);
  void Show(const GreetingList& list);
  GreetingList List() const;

  GreetingPlayer& engine_;
  QComboBox* CmbGreetsMessages_;
  ButtonBar* tlbrGreetingPlayer_;
};

/// How loud the call is whose message is being recorded, below a slider that says up to where a level is
/// silence: both have one scale, so that a person sees on which side of the slider's handle the level is.
/// Grey is silence, green is heard.
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
