// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <vector>

#include "modem_emulator/command_line.h"
#include "modem_emulator/line_tones.h"
#include "modem_emulator/modem_profile.h"

namespace orven::emulator {

/// The parts of the modem that commands act on.
class Hardware {
 public:
  virtual ~Hardware() = default;
  virtual bool OffHook() const = 0;
  /// False when it is refused.
  virtual bool GoOffHook() = 0;
  virtual void GoOnHook() = 0;
  virtual void PlayTones(std::vector<ToneStep> steps) = 0;
  virtual void Complain(const std::string& sentence) = 0;
};

/// The result of a command line. Transmit and Receive: CONNECT. Later: OK, when the action is complete.
enum class Result { Ok, Error, NoCarrier, Voice, Transmit, Receive, Later };

/// The commands of one modem and its settings.
class Interpreter {
 public:
  Interpreter(const ModemProfile& profile, Hardware& hardware);

  struct Answer {
    std::vector<std::string> lines;
    Result result = Result::Ok;
  };
  /// Executes a command line, given without its "AT": the commands run one after another until one fails.
  Answer Execute(const std::string& line);

  /// Resets everything, as after a power failure.
  void Reset();

  bool Echo() const { return echo_; }
  bool Verbose() const { return verbose_; }
  bool Quiet() const { return quiet_; }
  /// Whether it is in class 8.
  bool VoiceClass() const { return class_ == "8"; }
  bool CallerId() const { return Setting(profile_.caller_id) != "0"; }
  const ModemFormat& Format() const { return *format_; }
  int Rate() const { return rate_; }
  int Register(int number) const;
  /// The current value, such as "128,50"; empty for an unknown setting.
  std::string Setting(const std::string& name) const;
  /// One number of that value.
  int Setting(const std::string& name, std::size_t place) const;

 private:
  using Handler = Result (Interpreter::*)(const CommandRequest&);
  static const std::map<std::string, Handler>& Handlers();

  Result One(const CommandRequest& request);
  Result Change(const CommandRequest& request);
  Result Say(const std::string& line);

  Result Echoing(const CommandRequest& request);
  Result Wording(const CommandRequest& request);
  Result Silent(const CommandRequest& request);
  Result Restart(const CommandRequest& request);
  Result Hook(const CommandRequest& request);
  Result Answering(const CommandRequest& request);
  Result Dial(const CommandRequest& request);
  Result Identity(const CommandRequest& request);
  Result Registers(const CommandRequest& request);
  Result Maker(const CommandRequest& request);
  Result Model(const CommandRequest& request);
  Result Revision(const CommandRequest& request);
  Result Class(const CommandRequest& request);
  Result SampleFormat(const CommandRequest& request);
  Result LineState(const CommandRequest& request);
  Result Transmit(const CommandRequest& request);
  Result Receive(const CommandRequest& request);
  Result Tones(const CommandRequest& request);

  const ModemProfile& profile_;
  Hardware& hardware_;
  std::map<std::string, ModemSetting> known_;
  std::map<std::string, std::string> values_;
  std::map<int, int> registers_;
  std::vector<std::string> lines_;
  std::string class_;
  const ModemFormat* format_ = nullptr;
  int rate_ = 0;
  bool echo_ = true;
  bool verbose_ = true;
  bool quiet_ = false;
};

}  // namespace orven::emulator
