// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/windowless_view.h"

namespace orven {
namespace {

constexpr std::int16_t kMinimised = 1;

}  // namespace

WindowGeometry WindowlessView::Geometry() const {
  WindowGeometry geometry;
  geometry.state = kMinimised;
  return geometry;
}

void WindowlessView::Write(const std::string& text) {
  if (log_ != nullptr) log_->WriteSystem(text);
}

void WindowlessView::StartBlinking() {
  Write("No window: tray icon would blink");
}

void WindowlessView::ViewCallViewer(bool /*animate*/, std::int16_t /*speed*/, bool /*auto_close*/,
                                    std::int16_t /*seconds*/) {
  // What the log tells is the texts that the view would show from now on.
  caller_view_open_ = true;
}

void WindowlessView::ShowMessage(const std::string& text) {
  Write("No window: caller view would show " + text);
}

void WindowlessView::PlayWave(const std::string& path) {
  Write("No window: sound would play " + path);
}

void WindowlessView::DoActions(const std::string& kind, Call& /*call*/) {
  Write("No window: action would run " + kind);
}

}  // namespace orven
