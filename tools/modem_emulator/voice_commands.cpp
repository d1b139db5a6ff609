// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of voice modems (ITU-T V.253).
#include <algorithm>

#include "modem_emulator/interpreter.h"
#include "modem_emulator/tone_list.h"
#include "modem_emulator/value_ranges.h"

namespace orven::emulator {
namespace {

/// States with an odd number connect the modem to the line (ITU-T V.253, +VLS).
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
