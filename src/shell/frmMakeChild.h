// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <utility>

namespace orven {

/// Makes an object that belongs to the parent among the arguments, or to the layout that it is given
/// to, and is deleted with it, as everything in a window is.
template <class Object, class... Arguments>
Object* MakeChild(Arguments&&... arguments) {
  return new Object(std::forward<Arguments>(arguments)...);  // NOLINT(cppcoreguidelines-owning-memory)
}

}  // namespace orven
