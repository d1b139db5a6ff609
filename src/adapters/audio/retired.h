// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

namespace orven {

/// Keeps objects whose own thread is still busy with a last file operation, so that nobody has to wait
/// for it. T has `bool Finished() const`; destroying a finished T does not wait. User-interface thread.
template <class T>
class Retired {
 public:
  /// Takes over `object` and lets go of those that have finished meanwhile. nullptr is ignored.
  void Add(std::unique_ptr<T> object) {
    std::erase_if(objects_, [](const std::unique_ptr<T>& old) { return old->Finished(); });
    if (object) objects_.push_back(std::move(object));
  }

 private:
  std::vector<std::unique_ptr<T>> objects_;
};

}  // namespace orven
