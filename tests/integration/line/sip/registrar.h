// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "integration/line/sip/network.h"
#include "integration/line/sip/sip_caller.h"

namespace orven::test {

/// A server for one account: "100" with the password "secret", asked for by digest (RFC 2617) with a
/// new question for every answer it does not know. Runs on a thread of its own.
class Registrar {
 public:
  enum class Mood { kServing, kRefusing, kSilent };

  explicit Registrar(SipCaller::Over over);
  ~Registrar();

  std::uint16_t Port() const { return port_; }
  void SetMood(Mood mood) { mood_ = mood; }
  void SetLife(int seconds) { life_ = seconds; }
  /// Breaks the connection (TCP), and takes new ones.
  void Disconnect() { disconnect_ = true; }

  /// The Contact of the next successful registration, "" when none comes in time.
  std::string NextRegistration(milliseconds limit = milliseconds(8000));
  int Requests() const { return requests_; }
  int WrongAnswers() const { return wrong_answers_; }

 private:
  void Run();
  void Handle(const std::string& text, std::uint16_t port);
  void Reply(const SipMessage& request, std::uint16_t port, const std::string& status,
             const std::string& headers);
  bool Proven(const SipMessage& request);

  SipCaller::Over over_;
  Socket socket_;
  std::optional<Socket> connection_;
  std::uint16_t port_;
  std::string nonce_;
  int nonces_ = 0;
  std::atomic<Mood> mood_{Mood::kServing};
  std::atomic<int> life_{300};
  std::atomic<int> requests_{0};
  std::atomic<int> wrong_answers_{0};
  std::atomic<bool> disconnect_{false};
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::condition_variable registered_;
  std::deque<std::string> contacts_;  ///< guarded by mutex_
  std::thread thread_;
};

}  // namespace orven::test
