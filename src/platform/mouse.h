// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orven {

/// Virtual keys of the mouse's physical buttons.
enum MouseKey : std::int32_t {
  kLeftButton = 1,   ///< VK_LBUTTON
  kRightButton = 2,  ///< VK_RBUTTON
};

/// The mouse as it is at this moment. User-interface thread.
class Mouse {
 public:
  virtual ~Mouse() = default;

  /// The user has swapped the buttons, and the system leaves it to programs to honour that.
  virtual bool ButtonsSwapped() const = 0;

  virtual bool IsDown(MouseKey button) const = 0;
};

}  // namespace orven
