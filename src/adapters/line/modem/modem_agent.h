// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/line/driver/line_trouble.h"
#include "adapters/line/modem/at_channel.h"
#include "adapters/line/modem/modem_call.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/modem/modem_preparation.h"

namespace orven {

/// A line at a voice modem: finds the modem, keeps it ready and handles its calls. A modem that is missing,
/// disappears or stops answering is looked for until it works. One thread, that of `loop`.
class ModemAgent : private ModemLinkEvents, private ModemOutput {
 public:
  using Ports = ModemPorts;

  ModemAgent(ModemLineSettings settings, Ports ports);
  ~ModemAgent() override;

  /// Starts. Returns the fault when the user has no permission for the port, so that waiting is useless.
  std::optional<LineTrouble> Start();

  /// Hangs up, releases the modem and calls `done`, within 1.5 seconds. Nothing else may be called
  /// afterwards.
  void Shutdown(std::function<void()> done);

  void Answer(CallNumber call, std::int32_t request);
  void Drop(CallNumber call, std::int32_t request);
  void MonitorDigits(CallNumber call, bool on);

 private:
  enum class State : std::uint8_t { Away, Preparing, Ready, Closed };

  void LookForModem();
  void Try();
  std::optional<LinkProblem> OpenNextPort();
  void Prepare();
  void Prepared(const PreparedModem& modem);
  void LetGo(const LineTrouble& trouble, std::chrono::milliseconds retry);
  void CheckHealth(int tries_left);
  void ModemFailed();
  void Trouble(const LineTrouble& trouble);
  std::chrono::milliseconds Now() const { return ports_.clock.Uptime(); }

  ModemCall& CallInProgress();
  void CallOver();
  ModemCall* Find(CallNumber call) const;

  void Received(std::span<const std::uint8_t> bytes) override { channel_.Received(bytes); }
  void Lost() override;

  void Line(const std::string& text) override;
  void Event(char code) override;
  void Packet(const std::string& text) override;
  void Audio(std::span<const std::uint8_t> bytes) override;
  void AudioEnded() override;

  const ModemLineSettings settings_;
  const Ports ports_;
  AtChannel channel_;
  State state_ = State::Closed;
  std::vector<std::string> candidates_;  ///< ports still to be tried
  std::vector<std::string> asked_;       ///< the ports tried in this round, or the last one
  std::chrono::milliseconds asked_since_{0};
  std::chrono::milliseconds ask_again_{0};
  std::chrono::milliseconds retry_{0};  ///< the delay before the next round, from the ports tried so far
  LineTrouble failure_;                 ///< of the port that was tried last
  bool gone_ = false;                   ///< the modem was there and has been unplugged
  std::string port_;                    ///< the port that is open or was tried last
  PreparedModem modem_;
  std::unique_ptr<ModemPreparation> preparation_;
  std::unique_ptr<ModemCall> call_;
  CallNumber calls_ = 0;
  LineTrouble trouble_;
  std::function<void()> closed_;
  std::unique_ptr<Timer> health_;
  std::uint64_t look_ = 0;  ///< number of the latest plan to look for the modem
  Lifeline lifeline_;
};

}  // namespace orven
