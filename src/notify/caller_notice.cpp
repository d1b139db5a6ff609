// SPDX-License-Identifier: GPL-3.0-or-later
#include "notify/caller_notice.h"

namespace orven {

void CallerNotice::Load() noexcept {
  name_.clear();
  number_.clear();
  ShowCommands(CallerCommands::All);
}

void CallerNotice::Unload() noexcept {
  if (id_ != 0) desktop_.Withdraw(id_);
  id_ = 0;
}

void CallerNotice::ShowCommands(CallerCommands shown) noexcept {
  commands_ = shown;
  shown == CallerCommands::None ? Unload() : Show();
}

void CallerNotice::ShowCall(const Call& call) noexcept {
  const auto known = [](const std::string& text) { return text == kUnknownCaller ? std::string() : text; };
  name_ = known(call.caller_name);
  number_ = known(call.caller_number);
  if (commands_ != CallerCommands::None) Show();
}

void CallerNotice::Show() {
  Notification notice{name_.empty() ? Words("Incoming call") : Words("Call from %1").Arg(name_), number_};
  notice.urgent = true;  // it stays while the telephone rings
  if (commands_ == CallerCommands::All) {
    notice.buttons.push_back(Command(Tr("Answer Now"), &CallerViewClicks::AnswerNow));
  }
  notice.buttons.push_back(Command(Tr("Drop Call"), &CallerViewClicks::Drop));
  id_ = desktop_.Show(std::move(notice), id_);
}

Notification::Button CallerNotice::Command(const char* caption, void (CallerViewClicks::*click)()) {
  return {caption, [this, click] {
            if (clicks_ != nullptr) (clicks_->*click)();
          }};
}

}  // namespace orven
