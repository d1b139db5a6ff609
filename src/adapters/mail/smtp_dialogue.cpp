// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_dialogue.h"

#include <algorithm>
#include <string_view>

#include "adapters/mail/mail_text.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A mail takes about ten replies; the longest of them, EHLO's, about twenty lines.
constexpr int kMostLines = 500;
constexpr std::size_t kLongestReply = 500;
/// Limit for the reply to QUIT after the mail is accepted.
constexpr std::chrono::milliseconds kFarewell = 1s;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

bool SmtpDialogue::Heard(std::string_view line) {
  if (++lines_ > kMostLines) return false;
  // Anything else is not a reply, and not progress either.
  if (line.size() < 3 || !std::all_of(line.begin(), line.begin() + 3, IsDigit)) return true;
  active_ = Clock::now();
  // The reply to QUIT is not about the mail.
  if (line.starts_with("221")) return true;
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  const std::string text = OneLine(line);
  const bool continues = more_;
  more_ = line.size() > 3 && line[3] == '-';
  code_ = (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
  if (!continues) {
    reply_ = text;
  } else if (text.size() > 4) {
    reply_ += " " + text.substr(4);
  }
  if (reply_.size() > kLongestReply) reply_ = OneLine(reply_.substr(0, kLongestReply));
  if (more_) return true;
  if (data_ && code_ / 100 == 2) accepted_ = true;
  data_ = code_ == 354;
  return true;
}

void SmtpDialogue::Sent(std::int64_t sent) {
  if (sent != sent_) active_ = Clock::now();
  sent_ = sent;
}

void SmtpDialogue::Connected() {
  if (connected_) return;
  connected_ = true;
  active_ = Clock::now();
}

bool SmtpDialogue::Stalled(Clock::time_point now) const {
  return connected_ &&
         now - active_ > (accepted_ ? std::min(kFarewell, limits_.inactivity) : limits_.inactivity);
}

}  // namespace orven
