// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <string>
#include <vector>

namespace orven {

/// `VoiceCB`: a long list of voices. What a person types into it finds those whose descriptions have it in
/// them; whatever was typed, it goes back to showing the voice that is selected.
class VoiceBox : public QComboBox {
  Q_OBJECT

 public:
  explicit VoiceBox(QWidget* parent);

  /// Adds voices at the end and selects the first one of all.
  void AddVoices(const std::vector<std::string>& descriptions);

  /// Selects the first voice that what was typed finds.
  void Settle();

 signals:
  void ClickedInto();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace orven
