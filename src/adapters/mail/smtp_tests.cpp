// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_tests.h"

#include <ctime>
#include <memory>
#include <utility>

#include "adapters/mail/mail_text.h"
#include "adapters/mail/outbox.h"
#include "adapters/mail/smtp_transfer.h"
#include "base/worker.h"

namespace orven {
namespace {

/// One test, on its own thread. The window does not wait for it: a thread that hangs in a name server is
/// left.
class RunningTest {
 public:
  using Work = std::function<MailTestResult(Cancellation&)>;

  RunningTest(EventLoop& loop, Work work, MailTests::Done done)
      : cancellation_(std::make_shared<Cancellation>()),
        worker_(Worker::AtStop::Drop, std::chrono::milliseconds(0)) {
    const auto tell = [this, &loop, done = std::move(done)](const MailTestResult& result) {
      loop.Post(lifeline_.Bind([done, result] { done(result); }));
    };
    const bool started = worker_.Post(
        [cancellation = cancellation_, work = std::move(work), report = worker_.Reports(), tell] {
          const MailTestResult result = work(*cancellation);
          report([&] { tell(result); });
        });
    if (!started) tell({false, Words("The test cannot run: no thread can be started.")});
  }
  ~RunningTest() {
    cancellation_->Cancel();
    worker_.Stop();
  }
  RunningTest(const RunningTest&) = delete;
  RunningTest& operator=(const RunningTest&) = delete;

 private:
  std::shared_ptr<Cancellation> cancellation_;
  Lifeline lifeline_;
  Worker worker_;
};

MailTestResult Failed(const MailFailure& failure) {
  if (failure.remedy.Empty()) return {false, Words("That does not work: %1.").Arg(failure.what)};
  return {false, Words("That does not work: %1. %2").Arg(failure.what).Arg(failure.remedy)};
}

std::string NameForPeople(const std::string& server) {
  const auto parsed = ParseMailServer(server);
  return parsed ? parsed->name : server;
}

}  // namespace

MailTests::Test SmtpTests::SendTestMail(const MailAccount& account, const std::string& sender,
                                        const std::string& recipient, Done done) {
  Envelope envelope;
  envelope.message_id = NewMessageId(sender);
  envelope.date = MailDate(std::time(nullptr));
  envelope.server = account.server;
  envelope.sender = sender;
  envelope.sender_name = "ORVEN";
  envelope.recipient = recipient;
  envelope.subject = translation_(Words("Test mail from ORVEN"));
  envelope.text = translation_(Words("The mail settings work: calls can be mailed to this address.")) + "\n";
  auto work = [envelope = std::move(envelope), account, limits = limits_](Cancellation& cancellation) {
    const auto outcome = SendMail(envelope, {}, account, limits, cancellation);
    if (outcome.state != MailOutcome::State::Accepted) return Failed(outcome.failure);
    return MailTestResult{true, Words("%1 has accepted the mail to %2. If it does not arrive within some "
                                      "minutes, look among the unwanted mails.")
                                    .Arg(NameForPeople(account.server))
                                    .Arg(envelope.recipient)};
  };
  return std::make_shared<RunningTest>(loop_, std::move(work), std::move(done));
}

MailTests::Test SmtpTests::TryServer(const MailAccount& account, Done done) {
  auto work = [account, limits = limits_](Cancellation& cancellation) {
    const auto outcome = TryMailServer(account, limits, cancellation);
    if (outcome.state != MailOutcome::State::Accepted) return Failed(outcome.failure);
    const std::string name = NameForPeople(account.server);
    if (account.user.empty()) return MailTestResult{true, Words("%1 answers.").Arg(name)};
    return MailTestResult{true, Words("%1 answers and accepts the login.").Arg(name)};
  };
  return std::make_shared<RunningTest>(loop_, std::move(work), std::move(done));
}

}  // namespace orven
