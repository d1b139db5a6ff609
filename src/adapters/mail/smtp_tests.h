// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/mail/mail_settings.h"
#include "platform/event_loop.h"
#include "platform/mail.h"

namespace orven {

/// Tests of a mail server over SMTP; each runs on a thread of its own.
class SmtpTests final : public MailTests {
 public:
  /// `loop` outlives this object and all tests. The test mail's texts are written through `translation`.
  SmtpTests(EventLoop& loop, Translation translation, MailLimits limits = {})
      : loop_(loop), translation_(std::move(translation)), limits_(std::move(limits)) {}

  Test SendTestMail(const MailAccount& account, const std::string& sender, const std::string& recipient,
                    Done done) override;
  Test TryServer(const MailAccount& account, Done done) override;

 private:
  EventLoop& loop_;
  Translation translation_;
  MailLimits limits_;
};

}  // namespace orven
