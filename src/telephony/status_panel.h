// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "telephony/call_effects.h"

namespace orven {

/// The first panel of the status bar, on which everybody writes. It counts the texts, so that who
/// takes one away after a while can see whether it is still his. User-interface thread.
class StatusPanel : public LineView {
 public:
  explicit StatusPanel(LineView& view) : view_(view) {}

  void ShowStatus(const std::string& text) override {
    ++writings_;
    view_.ShowStatus(text);
  }
  void ShowLine(bool on, bool trying) override { view_.ShowLine(on, trying); }

  std::uint64_t Writings() const { return writings_; }

 private:
  LineView& view_;
  std::uint64_t writings_ = 0;
};

}  // namespace orven
