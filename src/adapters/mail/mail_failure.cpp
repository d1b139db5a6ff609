// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/mail_failure.h"

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "adapters/mail/curl_library.h"
#include "adapters/mail/mail_text.h"

namespace orven {
namespace {

constexpr int kFirstErrorReply = 400;
constexpr int kFirstFinalReply = 500;

/// To MAIL: a login is wanted first (RFC 4954, section 6), or encryption (RFC 3207, section 4).
constexpr int kLoginWanted = 530;

constexpr const char* kOnline = Tr("Check the server's name, and whether this computer is online.");
constexpr const char* kPort = Tr(
    "Check the server's name and port. Many networks block port 25: providers take mail at port 587, or at "
    "port 465 with smtps:// before the name.");
constexpr const char* kEncryption =
    Tr("Check the port: port 465 needs smtps:// before the server's name, ports 587 and 25 do not.");

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

MailFailure Passing(Words what, Words remedy) {
  return {std::move(what), std::move(remedy), true};
}

MailFailure Unconnected(int os_error, const std::string& server) {
  if (os_error == ECONNREFUSED) return Passing(Words("%1 refuses connections").Arg(server), kPort);
  if (os_error == 0) return Passing(Words("%1 cannot be reached").Arg(server), kOnline);
  return Passing(Words("%1 cannot be reached: %2").Arg(server).Arg(std::generic_category().message(os_error)),
                 kOnline);
}

MailFailure LoginFailed(const std::string& server, const std::string& reply, int code) {
  if (code < kFirstErrorReply) {
    return Passing(Words("%1 offers no login with a password").Arg(server),
                   Words("Check the port, or leave user and password empty if the server needs no login."));
  }
  return Passing(
      Words("%1 refused the login: %2").Arg(server).Arg(reply),
      Words("Check user and password. Some providers want a password of its own for each program."));
}

Words RemedyOfRefusal(int code, std::string_view words) {
  if (code < kFirstFinalReply) return Words("The server may accept it later.");
  if (words.starts_with("RCPT")) {
    return Words(
        "Check the recipient's address. Many servers pass mails on only after a login with user and "
        "password.");
  }
  if (words.starts_with("MAIL")) {
    return Words(
        "Check the sender's address, which often has to be the account's own, and user and password.");
  }
  return Words("The server's provider can explain its reply.");
}

MailFailure Unlike(const std::string& server, const std::string& reply) {
  if (reply.empty()) return Passing(Words("%1 does not answer as a mail server").Arg(server), kPort);
  return Passing(Words("%1 does not answer as a mail server: %2").Arg(server).Arg(reply), kPort);
}

MailFailure Unencrypted(const std::string& server, const std::string& reply) {
  constexpr const char* kRemedy =
      Tr("Try smtps:// before the server's name. If the server is in your own home, the login can be allowed "
         "without encryption.");
  if (reply.empty()) return Passing(Words("%1 offers no encryption").Arg(server), kRemedy);
  return Passing(Words("%1 offers no encryption: %2").Arg(server).Arg(reply), kRemedy);
}

}  // namespace

MailFailure DescribeFailure(const CurlFailure& failure, const std::string& server, const MailAccount& account,
                            const SmtpDialogue& dialogue) {
  const std::string reply = WithoutPassword(dialogue.Reply(), account);
  const std::string words = WithoutPassword(
      OneLine(*failure.text != '\0' ? failure.text : Curl().easy_strerror(failure.code)), account);
  const int code = dialogue.ReplyCode();
  if (failure.stalled) return Passing(Words("%1 stopped answering (timed out)").Arg(server), kEncryption);
  switch (failure.code) {
    case CURLE_COULDNT_RESOLVE_HOST:
      return Passing(Words("the server's name %1 is not known").Arg(server), kOnline);
    case CURLE_COULDNT_CONNECT: return Unconnected(failure.os_error, server);
    case CURLE_OPERATION_TIMEDOUT: return Passing(Words("connecting to %1 timed out").Arg(server), kPort);
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
      return Passing(Words("the certificate of %1 is not trusted: %2").Arg(server).Arg(words),
                     Words("Write the server's name as its provider does, and check this computer's clock."));
    case CURLE_SSL_CONNECT_ERROR:
      return Passing(Words("no encrypted connection to %1: %2").Arg(server).Arg(words), kEncryption);
    case CURLE_USE_SSL_FAILED: return Unencrypted(server, reply);
    case CURLE_LOGIN_DENIED: return LoginFailed(server, reply, code);
    default: break;
  }
  if (code == kLoginWanted) return LoginFailed(server, reply, code);
  if (code >= kFirstErrorReply) {
    return {Words("%1 refused the mail: %2 (%3)").Arg(server).Arg(reply).Arg(words),
            RemedyOfRefusal(code, words), code < kFirstFinalReply};
  }
  if (failure.code == CURLE_WEIRD_SERVER_REPLY) return Unlike(server, reply);
  if (failure.code == CURLE_WRITE_ERROR) return Unlike(server, {});
  return Passing(Words("the connection to %1 was lost: %2").Arg(server).Arg(words), kEncryption);
}

}  // namespace orven
