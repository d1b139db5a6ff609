// SPDX-License-Identifier: GPL-3.0-or-later
// The commands that every modem has (ITU-T V.250).
#include <algorithm>

#include "modem_emulator/interpreter.h"
#include "modem_emulator/value_ranges.h"

namespace orven::emulator {
namespace {

/// The letter's number when it is 0 or 1; nothing behind the letter is 0.
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
  if (!VoiceClass()) return Result::NoCarrier;  // nobody here speaks with data modems
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

}  // namespace orven::emulator
