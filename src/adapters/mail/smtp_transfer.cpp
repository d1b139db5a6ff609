// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/mail/smtp_transfer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <stdexcept>

#include "adapters/mail/curl_library.h"
#include "adapters/mail/mail_settings.h"
#include "adapters/mail/mail_text.h"
#include "adapters/mail/message.h"
#include "adapters/mail/smtp_dialogue.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

constexpr auto kProgressPause = 100ms;

/// One libcurl transfer. Its callbacks are C functions that get this object.
class Transfer {
 public:
  Transfer(const MailLimits& limits, Cancellation& cancellation, const MailProgress& progress)
      : limits_(limits), cancellation_(cancellation), progress_(progress), dialogue_(limits) {
    if (!curl_) throw std::bad_alloc();
  }

  MailOutcome Send(const Envelope& envelope, const std::string& source, const MailAccount& account,
                   const MailServer& server) {
    if (!envelope.attachment.empty()) attachment_.emplace(envelope.attachment, source);
    const Message message(curl_.get(), envelope, attachment_ ? &*attachment_ : nullptr);
    message.Use(envelope);
    UseServer(server, account);
    UseCallbacks();
    const CURLcode code = Curl().easy_perform(curl_.get());
    long os_error = 0;
    Curl().easy_getinfo(curl_.get(), CURLINFO_OS_ERRNO, &os_error);
    if (dialogue_.Accepted()) return {};
    if (cancellation_.Cancelled()) return {MailOutcome::State::Cancelled, {}};
    if (attachment_ && !attachment_->Failure().empty()) {
      return {MailOutcome::State::Failed, attachment_->Failure()};
    }
    return {MailOutcome::State::Failed,
            DescribeFailure({code, static_cast<int>(os_error), error_.data(), stalled_}, server.name, account,
                            dialogue_)};
  }

 private:
  template <class Value>
  void Set(CURLoption option, Value value) {
    if (const CURLcode code = Curl().easy_setopt(curl_.get(), option, value); code != CURLE_OK) {
      throw std::runtime_error(Curl().easy_strerror(code));
    }
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
    progress_(total, sent);
  }

  const MailLimits& limits_;
  Cancellation& cancellation_;
  const MailProgress& progress_;
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

/// The fault of a mail's addresses; empty when they are valid.
std::string Refusal(const Envelope& envelope) {
  const auto address = [](const char* whose, const std::string& text) {
    if (text.empty()) return std::string("there is no ") + whose + " address";
    return std::string("the ") + whose + " address \"" + OneLine(text) + "\" is not a single mail address";
  };
  if (!IsMailAddress(envelope.recipient)) return address("recipient", envelope.recipient);
  if (!IsMailAddress(envelope.sender)) return address("sender", envelope.sender);
  return {};
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
  const auto failed = [](std::string why) { return MailOutcome{MailOutcome::State::Failed, std::move(why)}; };
  const auto server = ParseMailServer(envelope.server);
  if (!server) {
    return failed("\"" + OneLine(envelope.server) +
                  "\" is not a mail server: name, name:port, smtp://name or smtps://name is expected");
  }
  if (std::string refusal = Refusal(envelope); !refusal.empty()) return failed(std::move(refusal));
  try {
    return Transfer(limits, cancellation, progress).Send(envelope, source, account, *server);
  } catch (const std::exception& failure) {
    return failed(failure.what());
  }
}

}  // namespace orven
