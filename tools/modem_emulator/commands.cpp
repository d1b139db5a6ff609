// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that every modem has (ITU-T V.250).
// The commands of voice modems (ITU-T V.253).

#include <algorithm>

#include "modem_emulator/command_line.h"
#include "modem_emulator/interpreter.h"
#include "modem_emulator/line_tones.h"

namespace orven::emulator {
namespace {

/// The number after the letter, if it is 0 or 1; 0 if it is omitted.
std::optional<bool> Switch(const CommandRequest& request) {
  if (request.value.empty()) return false;
  const auto number = Number(request.value);
  if (!number || *number > 1) return std::nullopt;
  return *number == 1;
}

Result Switched(bool& value, const CommandRequest& request) {
  const auto wanted = Switch(request);
  if (wanted) value = *wanted;
  return wanted ? Result::Ok : Result::Error;
}

/// Odd states connect the modem to the line (ITU-T V.253, +VLS).
bool ConnectsLine(int state) {
  return state % 2 == 1;
}

bool HasState(const ModemProfile& profile, int state) {
  const auto& lines = profile.line_states;
  if (lines.front().starts_with("(")) return InGroup(lines.front(), state);
  return std::any_of(lines.begin(), lines.end(), [state](const std::string& line) {
    return line.starts_with(std::to_string(state) + ",");
  });
}

}  // namespace

Result Interpreter::Echoing(const CommandRequest& request) {
  return Switched(echo_, request);
}
Result Interpreter::Wording(const CommandRequest& request) {
  return Switched(verbose_, request);
}
Result Interpreter::Silent(const CommandRequest& request) {
  return Switched(quiet_, request);
}

Result Interpreter::Restart(const CommandRequest& request) {
  if (request.name == "Z") hardware_.GoOnHook();
  Reset();
  return Result::Ok;
}

Result Interpreter::Hook(const CommandRequest& request) {
  const auto wanted = Switch(request);
  if (!wanted) return Result::Error;
  if (*wanted) return hardware_.GoOffHook() ? Result::Ok : Result::Error;
  hardware_.GoOnHook();
  return Result::Ok;
}

Result Interpreter::Answering(const CommandRequest&) {
  if (!VoiceClass()) return Result::NoCarrier;  // data calls are not emulated
  return hardware_.GoOffHook() ? Result::Voice : Result::Error;
}

Result Interpreter::Dial(const CommandRequest&) {
  return Result::NoCarrier;
}

Result Interpreter::Identity(const CommandRequest& request) {
  const auto number = request.value.empty() ? 0 : Number(request.value);
  if (!number || *number >= static_cast<int>(profile_.identity.size())) return Result::Error;
  return Say(profile_.identity[static_cast<std::size_t>(*number)]);
}

Result Interpreter::Registers(const CommandRequest& request) {
  const auto number = Number(request.name.substr(1));
  if (!number) return Result::Error;
  if (request.form == CommandRequest::Form::Ask) {
    const auto digits = std::to_string(Register(*number));
    return Say(std::string(3 - std::min<std::size_t>(3, digits.size()), '0') + digits);
  }
  const auto value = request.value.empty() ? 0 : Number(request.value);
  if (!value || *value > 255) return Result::Error;
  registers_[*number] = *value;
  return Result::Ok;
}

Result Interpreter::Maker(const CommandRequest&) {
  return Say(profile_.maker);
}
Result Interpreter::Model(const CommandRequest&) {
  return Say(profile_.model);
}
Result Interpreter::Revision(const CommandRequest&) {
  return Say(profile_.revision);
}

Result Interpreter::Class(const CommandRequest& request) {
  if (request.form == CommandRequest::Form::Test) return Say(profile_.classes);
  if (request.form == CommandRequest::Form::Ask) return Say(class_);
  std::string choices = profile_.classes;
  std::erase_if(choices, [](char letter) { return letter == '(' || letter == ')'; });
  const auto known = SplitValues(choices);
  if (std::find(known.begin(), known.end(), request.value) == known.end()) return Result::Error;
  if (VoiceClass() && request.value != "8") hardware_.GoOnHook();
  class_ = request.value;
  return Result::Ok;
}

Result Interpreter::SampleFormat(const CommandRequest& request) {
  if (request.form == CommandRequest::Form::Test) {
    for (const auto& format : profile_.formats) Say(format.line);
    return Result::Ok;
  }
  if (request.form == CommandRequest::Form::Ask) {
    return Say(std::to_string(format_->code) + "," + std::to_string(rate_) + ",0,0");
  }
  const auto parts = SplitValues(request.value);
  const auto code = Number(parts[0]);
  const auto rate = parts.size() > 1 ? Number(parts[1]) : 8000;
  const auto found = std::find_if(profile_.formats.begin(), profile_.formats.end(),
                                  [code](const ModemFormat& format) { return format.code == code; });
  if (!code || !rate || parts.size() > 4 || found == profile_.formats.end()) return Result::Error;
  if (std::find(found->rates.begin(), found->rates.end(), *rate) == found->rates.end()) return Result::Error;
  if (found->coding == ModemCoding::Other) {
    hardware_.Complain("+VSM=" + request.value + " is a format that is offered and not emulated");
    return Result::Error;
  }
  format_ = &*found;
  rate_ = *rate;
  return Result::Ok;
}

Result Interpreter::LineState(const CommandRequest& request) {
  if (request.form == CommandRequest::Form::Test) {
    for (const auto& line : profile_.line_states) Say(line);
    return Result::Ok;
  }
  if (request.form == CommandRequest::Form::Ask) return Say(hardware_.OffHook() ? "1" : "0");
  const auto state = Number(request.value);
  if (!state || !HasState(profile_, *state)) return Result::Error;
  if (ConnectsLine(*state)) return hardware_.GoOffHook() ? Result::Ok : Result::Error;
  hardware_.GoOnHook();
  return Result::Ok;
}

Result Interpreter::Transmit(const CommandRequest& request) {
  const bool possible = request.form == CommandRequest::Form::Act && hardware_.OffHook();
  return possible ? Result::Transmit : Result::Error;
}

Result Interpreter::Receive(const CommandRequest& request) {
  const bool possible = request.form == CommandRequest::Form::Act && hardware_.OffHook();
  return possible ? Result::Receive : Result::Error;
}

Result Interpreter::Tones(const CommandRequest& request) {
  if (request.form == CommandRequest::Form::Test) return Say("(0-3300),(0-3300),(0-255)");
  const auto usual = std::chrono::milliseconds(Setting("+VTD", 0) * 10);
  auto steps = ToneList(request.value, usual);
  if (request.form != CommandRequest::Form::Set || !steps || !hardware_.OffHook()) return Result::Error;
  hardware_.PlayTones(std::move(*steps));
  return Result::Later;
}

}  // namespace orven::emulator
