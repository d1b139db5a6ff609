// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/sip_account.h"
#include "base/words.h"

namespace orven {

/// The time limits of a SIP line. They are not settings for users; tests shorten them.
struct SipLineTimers {
  /// Time without audio after which an answered call that is not on hold has lost its peer.
  std::chrono::milliseconds lost_media{30'000};
  /// The same for a call on hold, where silence is normal.
  std::chrono::milliseconds lost_held{300'000};
  /// The answer must be acknowledged within 64 x T1 (RFC 3261, section 13.3.1.4), and so must a 180 that the
  /// caller requires to be reliable (RFC 3262, section 3). A longer value has no effect on the answer: the
  /// SIP library gives up then.
  std::chrono::milliseconds no_ack{32'000};
  /// The shortest interval of a session timer: nobody need accept a shorter one (RFC 4028, section 4).
  std::chrono::seconds shortest_session{90};
  /// A call ends when the peer's computer has refused our packets (ICMP port unreachable) and sent none for
  /// this time. One refusal is not enough: a peer may open its port a moment late.
  std::chrono::milliseconds unreachable{2'000};
  /// What the caller said last may be under way when the call ends: for at most this time.
  std::chrono::milliseconds last_audio{200};
  /// The first pause after a refused registration; it doubles with each failure up to the second value.
  std::chrono::milliseconds registration_retry_first{5'000};
  std::chrono::milliseconds registration_retry_longest{300'000};
  /// The same for a server that is silent or out of reach, and may be back at any moment: with the random
  /// delay a minute at most.
  std::chrono::milliseconds silent_retry_first{1'000};
  std::chrono::milliseconds silent_retry_longest{48'000};
  /// Retries that only other routes or a path that breaks again and again cause are at least this far apart.
  std::chrono::milliseconds registration_rest{5'000};
  /// How long one server is waited for while others could be asked; after that time the last one counts as
  /// silent. Five requests by UDP, after 0, 0.5, 1.5, 3.5 and 7.5 s (RFC 3261, section 17.1.2.2).
  std::chrono::milliseconds server_patience{8'000};
  /// The lifetime of a registration that we ask for; it is refreshed well before it ends.
  std::chrono::seconds registration_life{300};
  /// Between two keep-alive datagrams to the account's server: routers forget a UDP flow after 30 s at the
  /// earliest (RFC 5626, section 4.4.1).
  std::chrono::milliseconds keep_alive{25'000};
};

/// The state of an account's registration.
struct RegistrationNews {
  enum class State { Trying, Registered, Failed };
  State state = State::Trying;
  std::string account{};               ///< its address
  int status = 0;                      ///< of the server's answer (RFC 3261, section 21); 0 without one
  int error = 0;                       ///< errno value of a failed connection or request; else 0
  std::string reason{};                ///< why it failed, in a few words for the user
  Words trouble{};                     ///< the same with a remedy; while trying: the server is silent
  std::chrono::milliseconds pause{0};  ///< before the next request, at the earliest; 0 while trying
};

/// Whether a line's audio is encrypted (SRTP, RFC 3711).
enum class SrtpUse : std::uint8_t {
  kNever,      ///< plain audio only; refuses calls that demand encryption
  kIfOffered,  ///< as the other side offers; encrypted if it offers both
  kRequired    ///< encrypted audio only; refuses plain calls
};

/// One SIP telephone line.
struct SipLineSettings {
  std::string listen = "127.0.0.1:5060";  ///< address and port for UDP and TCP; 0.0.0.0 is every address
  std::vector<SipAccount> accounts;       ///< at which it registers; all calls ring the same line
  std::string installation;          ///< tells this program's lines from those of others on the same computer
  std::optional<SrtpUse> srtp;       ///< absent: required if all accounts are over TLS, else if offered
  std::vector<Codec> codecs;         ///< that calls may use, the best first; empty: all, G.711 first
  std::string tls_trust;             ///< PEM file of certificates trusted for the server; empty: the system's
  std::string tls_listen;            ///< address and port for calls over TLS, or empty
  std::string tls_certificate;       ///< PEM file with certificate and private key for tls_listen, or empty:
  std::string tls_made_certificate;  ///< another such file, which is made if missing
  int ring_seconds = 6;              ///< 1 or more; seconds between Ring events
  /// Gets a sentence for the log when the registration fails and when it works again. SIP thread; must not
  /// block.
  std::function<void(const std::string&)> report = [](const std::string&) {};
  /// Gets each change of the registration's state. SIP thread; must not block.
  std::function<void(const RegistrationNews&)> registration_news = [](const RegistrationNews&) {};
  /// Only asks the server what is registered (RFC 3261, section 10.2.3): needs the same password but changes
  /// nothing. For a test of a line that is registered.
  bool register_nothing = false;
  SipLineTimers timers;

  /// What `srtp` means. Keys in a plain description protect nothing: by default only a line over TLS demands
  /// encryption.
  SrtpUse Srtp() const {
    const bool over_tls = !accounts.empty() && std::ranges::all_of(accounts, [](const auto& one) {
      return one.transport == "tls";
    });
    return srtp.value_or(over_tls ? SrtpUse::kRequired : SrtpUse::kIfOffered);
  }
};

}  // namespace orven
