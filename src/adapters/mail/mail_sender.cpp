// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/mail_sender.h"

#include <exception>
#include <utility>

namespace orven {

void MailSender::Send(QueuedMail mail, const MailAccount& account, bool last) {
  const std::string source = Outbox::SourceOf(mail.envelope.attachment, mail.file);
  const MailOutcome outcome =
      SendMail(mail.envelope, source, account, limits_, cancellation_, reports_.progress);
  if (outcome.state == MailOutcome::State::Cancelled) return;
  // The disk before the report: a mail that was reported must not be sent again.
  if (outcome.state == MailOutcome::State::Failed) {
    return reports_.tried(Refused(std::move(mail), outcome.failure, last));
  }
  Accepted(mail);
  reports_.tried({});
}

void MailSender::Accepted(const QueuedMail& mail) {
  if (mail.file.empty()) return;
  OnDisk("a finished mail stays in the outbox", [&] { Outbox::Remove(mail.file); });
}

TriedMail MailSender::Refused(QueuedMail mail, const MailFailure& failure, bool last) {
  mail.envelope.problem = failure.what.English();
  const bool waits = failure.passing && !last;
  TriedMail tried{waits ? TriedMail::State::Waits : TriedMail::State::Failed, std::move(mail.envelope),
                  failure.what, mail.file};
  if (!mail.file.empty()) {
    OnDisk("the outbox does not show that a mail has failed", [&] {
      Outbox::Update(mail.file, tried.envelope);
      if (!waits) tried.file = Outbox::Fail(mail.file);
    });
  }
  if (failure.passing && last) {
    tried.problem = tried.file.empty()
                        ? Words("%1; after three days it is not tried again").Arg(failure.what)
                        : Words("%1; after three days it is not tried again but kept as %2")
                              .Arg(failure.what)
                              .Arg(tried.file);
  }
  return tried;
}

void MailSender::Acknowledge(const std::vector<std::string>& files) {
  for (const auto& file : files) {
    OnDisk("a failed mail cannot be renamed", [&] { Outbox::Acknowledge(file); });
  }
}

void MailSender::OnDisk(const char* what, const std::function<void()>& work) {
  try {
    work();
  } catch (const std::exception& failure) {
    reports_.warn(std::string(what) + ": " + failure.what());
  }
}

}  // namespace orven
