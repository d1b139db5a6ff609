// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_mail.h"

#include <ctime>
#include <exception>
#include <filesystem>
#include <limits>
#include <utility>

#include "adapters/mail/mail_text.h"
#include "adapters/mail/message.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// The program's exit waits at most a second.
constexpr auto kPatience = 800ms;

/// How often we look for due mails while mails wait: the computer may have slept through a pause.
constexpr auto kLook = 20s;

/// An occasion (a new mail, a mail that was sent) does not repeat a try that failed just now.
constexpr auto kLeastPause = 1min;

std::string Absolute(const std::string& path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

std::int64_t Seconds(Clock::WallTime time) {
  return std::chrono::duration_cast<std::chrono::seconds>(time.time_since_epoch()).count();
}

}  // namespace

SmtpMail::SmtpMail(EventLoop& loop, const Clock& clock, std::string outbox_folder, Account account,
                   Warning warning, MailLimits limits)
    : loop_(loop),
      clock_(clock),
      account_(account ? std::move(account) : [] { return MailAccount{}; }),
      warning_(warning ? std::move(warning) : [](const std::string&) {}),
      outbox_(std::move(outbox_folder)),
      worker_(Worker::AtStop::Drop, kPatience),
      sender_(std::make_shared<MailSender>(std::move(limits), Reports())) {}

SmtpMail::~SmtpMail() {
  sender_->Cancel();
  worker_.Stop();
}

/// Each report goes to the user-interface thread.
MailSender::Reports SmtpMail::Reports() {
  const auto post = [this, report = worker_.Reports()](EventLoop::Task task) {
    report([&] { loop_.Post(lifeline_.Bind(std::move(task))); });
  };
  return {[this, post](std::int64_t total, std::int64_t sent) {
            post([this, total, sent] { ShowProgress(total, sent); });
          },
          [this, post](const TriedMail& tried) { post([this, tried] { Tried(tried); }); },
          [this, post](const std::string& text) { post([this, text] { warning_(text); }); }};
}

void SmtpMail::Send(const std::string& server, const std::string& sender, const std::string& sender_name,
                    const std::string& recipient, const std::string& subject, const std::string& attachment,
                    const std::string& text) {
  if (queue_.HasOlder(text)) return;
  Envelope envelope;
  envelope.message_id = NewMessageId(sender);
  envelope.date = MailDate(std::time(nullptr));
  envelope.server = server;
  envelope.sender = sender;
  envelope.sender_name = sender_name;
  envelope.recipient = recipient;
  envelope.subject = subject;
  envelope.attachment = IsAttachable(attachment) ? Absolute(attachment) : "";
  envelope.text = text;
  std::string file = Keep(envelope);
  queue_.Hurry(clock_.Now(), kLeastPause);
  queue_.Add({std::move(file), std::move(envelope)});
  SendNext();
  if (queue_.Waiting() > 0) ShowState();
}

std::string SmtpMail::Keep(const Envelope& envelope) {
  try {
    return outbox_.Keep(envelope);
  } catch (const std::exception& failure) {
    warning_(std::string("a mail is not kept for the next start: ") + failure.what());
    return {};
  }
}

/// Mails that could not be kept when they came.
void SmtpMail::KeepOthers() {
  for (auto* mail = queue_.Unkept(); mail != nullptr; mail = queue_.Unkept()) {
    mail->file = Keep(mail->envelope);
    if (mail->file.empty()) return;
  }
}

bool SmtpMail::Start(std::function<void(MailSender&)> task) {
  const bool started = worker_.Post([sender = sender_, task = std::move(task)] { task(*sender); });
  if (!started) warning_("mails wait: no thread can be started");
  return started;
}

void SmtpMail::Resume() {
  try {
    for (const auto& file : outbox_.Waiting()) Load(file);
    failed_ = outbox_.Failed();
    const auto newest = failed_.empty() ? std::nullopt : Outbox::Read(failed_.back());
    if (newest) reason_ = newest->problem;
  } catch (const std::exception& failure) {
    warning_(std::string("the outbox cannot be read: ") + failure.what());
  }
  SendNext();
  ShowState();
}

void SmtpMail::Load(const std::string& file) {
  std::string problem;
  try {
    if (auto envelope = Outbox::Read(file)) {
      if (queue_.Empty()) reason_ = envelope->problem;
      return queue_.Add({file, *std::move(envelope), true});
    }
    problem = "the waiting mail " + file + " is damaged and was set aside as " + Outbox::SetAside(file);
  } catch (const std::exception& failure) {
    problem = failure.what();
  }
  if (events_ != nullptr) events_->Error("", problem);
}

void SmtpMail::SendNext() {
  if (current_ != nullptr) return;
  MailAccount account = account_();
  if (!account.server.empty()) queue_.Redirect(account.server);
  const auto now = clock_.Now();
  QueuedMail* const mail = queue_.Due(now);
  if (mail == nullptr) return LookAgain();
  const bool last = MailQueue::IsGivenUp(mail->envelope, now);
  QueuedMail counted = *mail;
  if (++counted.envelope.tries == 1) counted.envelope.first_try = Seconds(now);
  const bool started = Start([mail = std::move(counted), account = std::move(account),
                              last](MailSender& sender) { sender.Send(mail, account, last); });
  if (started) current_ = mail;
  LookAgain();
}

/// Lets the timer run while mails wait for their time.
void SmtpMail::LookAgain() {
  const bool wait = current_ == nullptr && !queue_.Empty();
  if (wait && !look_) look_ = loop_.MakeTimer([this] { SendNext(); });
  if (look_ && wait != look_->Enabled()) wait ? look_->Start(kLook) : look_->Stop();
}

void SmtpMail::ShowProgress(std::int64_t total, std::int64_t sent) {
  while (total > std::numeric_limits<std::int32_t>::max()) {
    total /= 2;
    sent /= 2;
  }
  if (events_ != nullptr)
    events_->Progress(static_cast<std::int32_t>(total), static_cast<std::int32_t>(sent));
}

void SmtpMail::Tried(const TriedMail& tried) {
  QueuedMail& mail = *std::exchange(current_, nullptr);
  const std::string recipient = mail.envelope.recipient;
  const auto now = clock_.Now();
  if (tried.state == TriedMail::State::Waits) {
    mail.envelope = tried.envelope;
    mail.tried = now;
    KeepOthers();
  } else {
    queue_.Remove(mail);
  }
  if (tried.state == TriedMail::State::Sent) {
    queue_.Hurry(now, kLeastPause);
    if (events_ != nullptr) events_->Done(recipient);
  } else {
    reason_ = tried.problem;
    if (tried.state == TriedMail::State::Failed) failed_.push_back(tried.file);
    if (events_ != nullptr) events_->Error(recipient, tried.problem);
  }
  SendNext();
  ShowState();
}

MailState SmtpMail::State() const {
  MailState state{queue_.Waiting(), failed_.size(), current_ != nullptr};
  if (state.waiting + state.failed > 0) state.reason = reason_;
  return state;
}

void SmtpMail::TryNow() {
  queue_.Hurry(clock_.Now(), 0min);
  SendNext();
}

void SmtpMail::Acknowledge() {
  std::vector<std::string> files = std::exchange(failed_, {});
  std::erase(files, "");
  if (!files.empty()) Start([files = std::move(files)](MailSender& sender) { sender.Acknowledge(files); });
  ShowState();
}

void SmtpMail::ShowState() {
  if (events_ != nullptr) events_->StateChanged();
}

}  // namespace orven
