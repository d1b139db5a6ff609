// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "adapters/line/sip/libre.h"

namespace orven {

/// Keeps open the path that an account's calls take from its server to us, through any routers between, and
/// notices when it fails. SIP thread.
class ServerPath {
 public:
  struct Limits {
    std::chrono::milliseconds keep_alive;  ///< between two datagrams
    std::chrono::milliseconds patience;    ///< with a server that has answered questions before
  };

  /// `user` is the URI under which the server knows us. `broken`: calls do not come through any more, or the
  /// server has forgotten us; watching has ended.
  ServerPath(std::string user, Limits limits, std::function<void()> broken);
  ServerPath(const ServerPath&) = delete;
  ServerPath& operator=(const ServerPath&) = delete;
  ~ServerPath() { Leave(); }

  /// Watches the path from `server` over which `stack` got `response`, the answer to a registration.
  void Keep(sip& stack, const sa& server, const sip_msg& response);

  void Leave();

  /// Closes the connection; `broken` follows soon. False when there is none to close.
  bool Drop();

 private:
  bool StartProbes(sip& stack, const sip_msg& response);
  void SendDatagram();
  void Ask();
  void Answered(int status);
  void Failed();

  const std::string user_;
  const Limits limits_;
  const std::function<void()> broken_;
  sip_keepalive* kept_ = nullptr;  ///< the library clears it when the path fails
  int connection_ = -1;            ///< its descriptor, while `kept_`
  sip* stack_ = nullptr;           ///< of the datagrams
  sa server_{};
  struct sip_request* question_ = nullptr;  ///< pending; the library clears it when answered
  std::optional<bool> answers_;             ///< whether `server_` answers questions; nothing: not known yet
  bool about_us_ = true;   ///< it is asked about `user_`; else, because it did not answer, about itself
  bool knows_us_ = false;  ///< since the latest registration it has said so
  bool probes_datagrams_ = true;  ///< until a server does not answer the first probe
  std::chrono::steady_clock::time_point since_;
  MonotonicTimer timer_;
  MonotonicTimer patience_;
};

}  // namespace orven
