// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "base/words.h"

namespace orven {

/// What the telephone line shows on the main window.
class LineView {
 public:
  virtual ~LineView() = default;
  /// First panel of the status bar.
  virtual void ShowStatus(const Words& text) = 0;
  /// Shows the on/off button, and enables `mnuOn` or `mnuOff` to match. `trying`: the line is off and is
  /// opened as soon as possible; both are enabled then.
  virtual void ShowLine(bool on, bool trying) = 0;
  /// Offers to use the line `name`, which is chosen while another one is open; empty: offers nothing.
  /// `waits`: it is used when the call is over.
  virtual void OfferChosen(const std::string& name, bool waits) = 0;
};

/// The first panel of the status bar. It counts the texts, so that a writer can check that its text is still
/// shown before clearing it. User-interface thread.
class StatusPanel : public LineView {
 public:
  explicit StatusPanel(LineView& view) : view_(view) {}

  void ShowStatus(const Words& text) override {
    ++writings_;
    view_.ShowStatus(text);
  }
  void ShowLine(bool on, bool trying) override { view_.ShowLine(on, trying); }
  void OfferChosen(const std::string& name, bool waits) override { view_.OfferChosen(name, waits); }

  std::uint64_t Writings() const { return writings_; }

 private:
  LineView& view_;
  std::uint64_t writings_ = 0;
};

}  // namespace orven
