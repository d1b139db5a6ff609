// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/mouse.h"

namespace orven {

/// The mouse port on Qt: the buttons as of the last event that this program got. The window systems
/// that Qt runs on swap the buttons before a program sees them.
class QtMouse final : public Mouse {
 public:
  bool ButtonsSwapped() const override { return false; }
  bool IsDown(MouseKey button) const override;
};

}  // namespace orven
