// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/mail_queue.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::minutes kFirstPause = 1min;
constexpr std::chrono::minutes kLongestPause = 4h;
/// After this many doublings a pause is longer than the longest.
constexpr std::int64_t kDoublings = 8;

constexpr auto kGivenUpAfter = std::chrono::hours(3 * 24);
constexpr std::int64_t kFewestTries = 10;

/// Also after the clock was set back.
bool IsOver(std::chrono::minutes pause, Clock::WallTime since, Clock::WallTime now) {
  return now < since || now - since >= pause;
}

}  // namespace

std::chrono::minutes MailQueue::PauseAfter(std::int64_t tries) {
  return std::min(kFirstPause * (1 << std::clamp<std::int64_t>(tries - 1, 0, kDoublings)), kLongestPause);
}

bool MailQueue::IsGivenUp(const Envelope& envelope, WallTime now) {
  const WallTime first{std::chrono::seconds(envelope.first_try)};
  return envelope.tries + 1 >= kFewestTries && now - first >= kGivenUpAfter;
}

bool MailQueue::HasOlder(const std::string& text) const {
  return std::ranges::any_of(mails_,
                             [&](const auto& mail) { return mail.older && mail.envelope.text == text; });
}

void MailQueue::Redirect(const std::string& server) {
  for (auto& mail : mails_) mail.envelope.server = server;
}

QueuedMail* MailQueue::Due(WallTime now) {
  std::set<std::string_view> waiting;
  for (auto& mail : mails_) {
    if (waiting.contains(mail.envelope.server)) continue;
    if (IsOver(PauseAfter(mail.envelope.tries), mail.tried, now)) return &mail;
    waiting.insert(mail.envelope.server);
  }
  return nullptr;
}

void MailQueue::Hurry(WallTime now, std::chrono::minutes least) {
  for (auto& mail : mails_) {
    if (IsOver(least, mail.tried, now)) mail.tried = {};
  }
}

void MailQueue::Remove(const QueuedMail& mail) {
  std::erase_if(mails_, [&](const QueuedMail& each) { return &each == &mail; });
}

QueuedMail* MailQueue::Unkept() {
  const auto found = std::ranges::find(mails_, "", &QueuedMail::file);
  return found != mails_.end() ? &*found : nullptr;
}

std::size_t MailQueue::Waiting() const {
  std::map<std::string_view, bool> failed;
  for (const auto& mail : mails_) failed.try_emplace(mail.envelope.server, mail.envelope.tries > 0);
  return static_cast<std::size_t>(
      std::ranges::count_if(mails_, [&](const auto& mail) { return failed.at(mail.envelope.server); }));
}

}  // namespace orven
