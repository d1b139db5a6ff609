// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "core/activity_log.h"
#include "notify/caller_view_window.h"
#include "platform/mail.h"

namespace orven {

/// In place of the caller view's window and of mail, which this version does not have: writes to the
/// system log what they would show and send.
class LoggedEffects : public CallerViewWindow, public MailControl {
 public:
  /// Where to write; nothing is written before. The log outlives this object's use.
  void SetLog(SystemLog* log) { log_ = log; }

  std::int32_t Height() const override { return 0; }
  void MoveTo(std::int32_t /*top*/) override {}
  void Load() override {}
  void Unload() override {}
  void ShowCommands(bool /*on*/) override {}
  void ShowStatus(const std::string& text) override { Write("No caller view: it would show " + text); }
  void ShowRing(const std::string& /*text*/) override {}
  void ShowCaller(const std::string& /*name*/, const std::string& /*number*/) override {}
  void ShowTime(const std::string& /*date*/, const std::string& /*time*/) override {}
  void ShowMessagePath(const std::string& /*path*/) override {}

  void SetEvents(MailEvents* /*events*/) override {}
  void Send(const std::string& /*server*/, const std::string& /*sender*/, const std::string& /*sender_name*/,
            const std::string& recipient, const std::string& subject,
            const std::string& /*attachment*/) override {
    Write("No mail: it would send \"" + subject + "\" to " + recipient);
  }

 private:
  void Write(const std::string& text) {
    if (log_ != nullptr) log_->WriteSystem(text);
  }

  SystemLog* log_ = nullptr;
};

}  // namespace orven
