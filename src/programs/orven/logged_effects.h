// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "platform/mail.h"

namespace orven {

/// In place of mail, which this version does not have: writes to the system log what it would send.
class LoggedEffects : public MailControl {
 public:
  /// Where to write; nothing is written before. The log outlives this object's use.
  void SetLog(SystemLog* log) { log_ = log; }

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
