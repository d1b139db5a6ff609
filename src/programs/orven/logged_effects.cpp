// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/logged_effects.h"

namespace orven {

void LoggedEffects::ViewCallViewer(bool /*animate*/, std::int16_t /*speed*/, bool /*auto_close*/,
                                   std::int16_t /*seconds*/) {
  // What the log tells is the texts that the view would show from now on.
  open_ = true;
}

void LoggedEffects::ShowMessage(const std::string& text) {
  Write("No caller view: it would show " + text);
}

void LoggedEffects::DoActions(const std::string& kind, Call& /*call*/) {
  Write("No actions: this would run " + kind);
}

void LoggedEffects::Write(const std::string& text) {
  if (log_ != nullptr) log_->WriteSystem(text);
}

}  // namespace orven
