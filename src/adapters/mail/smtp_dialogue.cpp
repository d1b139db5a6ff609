// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_dialogue.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "adapters/mail/curl_library.h"
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

void Hide(std::string& text, const std::string& secret) {
  if (secret.empty()) return;
  constexpr std::string_view kMask = "***";
  // Continue after the mask: it may contain the secret.
  for (std::size_t at = text.find(secret); at != text.npos; at = text.find(secret, at + kMask.size())) {
    text.replace(at, secret.size(), kMask);
  }
}

/// Masks the password, both as plain text and as the login encodes it.
std::string WithoutPassword(std::string text, const MailAccount& account) {
  if (account.password.empty()) return text;
  using namespace std::string_literals;
  Hide(text, Base64("\0"s + account.user + "\0"s + account.password));
  Hide(text, Base64(account.password));
  Hide(text, account.password);
  return text;
}

std::string Unconnected(const CurlFailure& failure, const std::string& server) {
  if (failure.os_error == ECONNREFUSED) return server + " refuses connections";
  if (failure.os_error == 0) return server + " cannot be reached";
  return server + " cannot be reached: " + std::generic_category().message(failure.os_error);
}

std::string Described(const CurlFailure& failure, const std::string& server, const SmtpDialogue& dialogue) {
  const std::string said = dialogue.Reply().empty() ? "" : ": " + dialogue.Reply();
  const std::string words =
      OneLine(*failure.text != '\0' ? failure.text : Curl().easy_strerror(failure.code));
  if (failure.stalled) return server + " stopped answering (timed out)";
  switch (failure.code) {
    case CURLE_COULDNT_RESOLVE_HOST: return "the server's name " + server + " is not known";
    case CURLE_COULDNT_CONNECT: return Unconnected(failure, server);
    case CURLE_OPERATION_TIMEDOUT: return "connecting to " + server + " timed out";
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE: return "the certificate of " + server + " is not trusted: " + words;
    case CURLE_SSL_CONNECT_ERROR: return "no encrypted connection to " + server + ": " + words;
    case CURLE_USE_SSL_FAILED: return server + " offers no encryption" + said;
    case CURLE_LOGIN_DENIED:
      if (dialogue.ReplyCode() < 400) return server + " offers no login with a password";
      return server + " refused the login" + said;
    default: break;
  }
  if (dialogue.ReplyCode() >= 400) return server + " refused the mail" + said + " (" + words + ")";
  if (failure.code == CURLE_WEIRD_SERVER_REPLY) return server + " does not answer as a mail server" + said;
  if (failure.code == CURLE_WRITE_ERROR) return server + " does not answer as a mail server";
  return "the connection to " + server + " was lost: " + words;
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

std::string DescribeFailure(const CurlFailure& failure, const std::string& server, const MailAccount& account,
                            const SmtpDialogue& dialogue) {
  return WithoutPassword(Described(failure, server, dialogue), account);
}

}  // namespace orven
