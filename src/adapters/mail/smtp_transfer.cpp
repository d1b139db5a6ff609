// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_transfer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

#include "adapters/mail/curl_library.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/mail_text.h"
#include "adapters/mail/message.h"
#include "adapters/mail/smtp_dialogue.h"
#include "base/runtime_error.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kProgressPause = 100ms;

/// One libcurl transfer. Its callbacks are C functions that get this object.
class Transfer {
 public:
  Transfer(const MailLimits& limits, Cancellation& cancellation, MailProgress progress)
      : limits_(limits), cancellation_(cancellation), progress_(std::move(progress)), dialogue_(limits) {
    if (!curl_) throw std::bad_alloc();
  }

  MailOutcome Send(const Envelope& envelope, const std::string& source, const MailAccount& account,
                   const MailServer& server) {
    if (!envelope.attachment.empty()) attachment_.emplace(envelope.attachment, source);
    const Message message(curl_.get(), envelope, attachment_ ? &*attachment_ : nullptr);
    message.Use(envelope);
    const CURLcode code = Perform(server, account);
    if (dialogue_.Accepted()) return {};
    if (cancellation_.Cancelled()) return {MailOutcome::State::Cancelled, {}};
    if (attachment_ && !attachment_->Failure().empty()) return Failed(attachment_->Failure());
    return Failed(code, server, account);
  }

  MailOutcome Try(const MailAccount& account, const MailServer& server) {
    Set(CURLOPT_CUSTOMREQUEST, "NOOP");
    const CURLcode code = Perform(server, account);
    if (code == CURLE_OK) return {};
    if (cancellation_.Cancelled()) return {MailOutcome::State::Cancelled, {}};
    return Failed(code, server, account);
  }

  /// What cannot pass.
  static MailOutcome Failed(Words what, Words remedy = {}) {
    return {MailOutcome::State::Failed, {std::move(what), std::move(remedy), false}};
  }

 private:
  template <class Value>
  void Set(CURLoption option, Value value) {
    if (const CURLcode code = Curl().easy_setopt(curl_.get(), option, value); code != CURLE_OK) {
      throw std::runtime_error(Curl().easy_strerror(code));
    }
  }

  CURLcode Perform(const MailServer& server, const MailAccount& account) {
    UseServer(server, account);
    UseCallbacks();
    return Curl().easy_perform(curl_.get());
  }

  MailOutcome Failed(CURLcode code, const MailServer& server, const MailAccount& account) {
    long os_error = 0;
    Curl().easy_getinfo(curl_.get(), CURLINFO_OS_ERRNO, &os_error);
    return {MailOutcome::State::Failed,
            DescribeFailure({code, static_cast<int>(os_error), error_.data(), stalled_}, server.name, account,
                            dialogue_)};
  }

  void UseServer(const MailServer& server, const MailAccount& account) {
    Set(CURLOPT_URL, server.url.c_str());
    Set(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
    Set(CURLOPT_PROXY, "");
    Set(CURLOPT_USE_SSL, static_cast<long>(account.require_encryption ? CURLUSESSL_ALL : CURLUSESSL_TRY));
    if (!limits_.ca_file.empty()) Set(CURLOPT_CAINFO, limits_.ca_file.c_str());
    if (!account.user.empty()) {
      Set(CURLOPT_USERNAME, account.user.c_str());
      Set(CURLOPT_PASSWORD, account.password.c_str());
      // Not the mechanisms that need more than a password (Kerberos).
      Set(CURLOPT_LOGIN_OPTIONS, "AUTH=CRAM-MD5;AUTH=PLAIN;AUTH=LOGIN");
    }
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect.count()));
    Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, static_cast<long>(limits_.inactivity / 1s + 5));
    Set(CURLOPT_NOSIGNAL, 1L);
    // Do not wait for a name server after the transfer.
    Set(CURLOPT_QUICK_EXIT, 1L);
    // QUIT is then part of the transfer, under its time limits, and not of the cleanup.
    Set(CURLOPT_FORBID_REUSE, 1L);
    Set(CURLOPT_ERRORBUFFER, error_.data());
  }

  void UseCallbacks() {
    Set(CURLOPT_HEADERFUNCTION, &Transfer::OnLine);
    Set(CURLOPT_HEADERDATA, this);
    Set(CURLOPT_WRITEFUNCTION, &Transfer::OnBody);
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFOFUNCTION, &Transfer::OnProgress);
    Set(CURLOPT_XFERINFODATA, this);
    Set(CURLOPT_OPENSOCKETFUNCTION, &Transfer::OnOpen);
    Set(CURLOPT_OPENSOCKETDATA, &cancellation_);
    Set(CURLOPT_CLOSESOCKETFUNCTION, &Transfer::OnClose);
    Set(CURLOPT_CLOSESOCKETDATA, &cancellation_);
  }

  static std::size_t OnBody(char* /*data*/, std::size_t size, std::size_t count, void* /*transfer*/) {
    return size * count;
  }

  static std::size_t OnLine(char* data, std::size_t size, std::size_t count, void* transfer) {
    return static_cast<Transfer*>(transfer)->dialogue_.Heard({data, size * count}) ? size * count : 0;
  }

  static int OnProgress(void* transfer, curl_off_t, curl_off_t, curl_off_t total, curl_off_t sent) {
    return static_cast<Transfer*>(transfer)->GoOn(total, sent) ? 0 : 1;
  }

  static curl_socket_t OnOpen(void* cancellation, curlsocktype, curl_sockaddr* address) {
    const int socket =
        static_cast<Cancellation*>(cancellation)->Open(address->family, address->socktype, address->protocol);
    return socket < 0 ? CURL_SOCKET_BAD : socket;
  }

  static int OnClose(void* cancellation, curl_socket_t socket) {
    static_cast<Cancellation*>(cancellation)->Close(socket);
    return 0;
  }

  bool GoOn(std::int64_t total, std::int64_t sent) {
    curl_off_t connected = 0;
    Curl().easy_getinfo(curl_.get(), CURLINFO_CONNECT_TIME_T, &connected);
    if (connected > 0 && !connected_) {
      connected_ = true;
      dialogue_.Connected();
      // libcurl counts the greeting and the login as connecting; we apply the other limit to them.
      Curl().easy_setopt(curl_.get(), CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>((24h / 1ms)));
    }
    dialogue_.Sent(sent);
    Tell(total, std::min(sent, total));  // some versions count the line that ends the mail, too
    stalled_ = dialogue_.Stalled();
    return !stalled_ && !cancellation_.Cancelled();
  }

  void Tell(std::int64_t total, std::int64_t sent) {
    const auto now = SmtpDialogue::Clock::now();
    if (sent == told_ || (sent != total && now - told_at_ < kProgressPause)) return;
    told_ = sent;
    told_at_ = now;
    if (progress_) progress_(total, sent);
  }

  const MailLimits& limits_;
  Cancellation& cancellation_;
  const MailProgress progress_;
  SmtpDialogue dialogue_;
  std::optional<Attachment> attachment_;
  std::array<char, CURL_ERROR_SIZE> error_{};
  bool connected_ = false;
  bool stalled_ = false;
  std::int64_t told_ = 0;
  SmtpDialogue::Clock::time_point told_at_{};
  // The last member: its cleanup calls back.
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl_{Curl().easy_init(), Curl().easy_cleanup};
};

/// The fault of a mail's addresses; nothing when they are valid.
std::optional<MailOutcome> Refusal(const Envelope& envelope) {
  const auto remedy = [] { return Words("Enter one address, like anna@example.org."); };
  if (envelope.recipient.empty()) return Transfer::Failed(Words("there is no recipient address"), remedy());
  if (envelope.sender.empty()) return Transfer::Failed(Words("there is no sender address"), remedy());
  if (!IsMailAddress(envelope.recipient)) {
    return Transfer::Failed(
        Words("the recipient address \"%1\" is not a single mail address").Arg(OneLine(envelope.recipient)),
        remedy());
  }
  if (!IsMailAddress(envelope.sender)) {
    return Transfer::Failed(
        Words("the sender address \"%1\" is not a single mail address").Arg(OneLine(envelope.sender)),
        remedy());
  }
  return {};
}

/// Runs `work` with the parsed address of a server.
template <class Work>
MailOutcome WithServer(const std::string& text, const Work& work) try {
  if (text.empty()) return Transfer::Failed(Words("there is no mail server"));
  if (const auto server = ParseMailServer(text)) return work(*server);
  return Transfer::Failed(
      Words("\"%1\" is not a mail server: name, name:port, smtp://name or smtps://name is expected")
          .Arg(OneLine(text)));
} catch (const std::exception& failure) {
  return Transfer::Failed(ReasonOf(failure));
}

}  // namespace

void Cancellation::Cancel() {
  const std::lock_guard lock(mutex_);
  cancelled_ = true;
  for (const int socket : sockets_) ::shutdown(socket, SHUT_RDWR);
}

bool Cancellation::Cancelled() const {
  const std::lock_guard lock(mutex_);
  return cancelled_;
}

int Cancellation::Open(int family, int type, int protocol) {
  const std::lock_guard lock(mutex_);
  if (cancelled_) return -1;
  const int socket = ::socket(family, type | SOCK_CLOEXEC, protocol);
  if (socket >= 0) sockets_.insert(socket);
  return socket;
}

void Cancellation::Close(int socket) {
  const std::lock_guard lock(mutex_);
  sockets_.erase(socket);
  ::close(socket);
}

MailOutcome SendMail(const Envelope& envelope, const std::string& source, const MailAccount& account,
                     const MailLimits& limits, Cancellation& cancellation, const MailProgress& progress) {
  return WithServer(envelope.server, [&](const MailServer& server) {
    if (auto refusal = Refusal(envelope)) return *std::move(refusal);
    return Transfer(limits, cancellation, progress).Send(envelope, source, account, server);
  });
}

MailOutcome TryMailServer(const MailAccount& account, const MailLimits& limits, Cancellation& cancellation) {
  return WithServer(account.server, [&](const MailServer& server) {
    return Transfer(limits, cancellation, {}).Try(account, server);
  });
}

}  // namespace orven
