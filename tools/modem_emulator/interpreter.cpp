// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/interpreter.h"

#include <string_view>

#include "modem_emulator/command_line.h"

namespace orven::emulator {
namespace {

/// The settings of all profiles, unless their row overrides them.
const std::vector<ModemSetting>& CommonSettings() {
  static const std::vector<ModemSetting> settings = {
      {"+VSD", "(0-255),(0-255)", "128,50"},
      {"+VGR", "(0,121-131)", "128"},
      {"+VGT", "(121-131)", "128"},
      {"+VIT", "(0-255)", "0"},
      {"+VNH", "(0-2)", "0"},
      {"+VRA", "(0-255)", "50"},
      {"+VRN", "(0-255)", "10"},
      {"+VTD", "(1-255)", "10"},
      {"+VSP", "(0,1)", "0"},
      {"+VDR", "(0,1),(0-255)", "0,0", false},
      {"+IFC", "(0-3),(0-2)", "2,2", false},
      {"+IPR", "(0,300-230400)", "0", false},
      {"+ICF", "(0-6),(0-3)", "3,3", false},
      {"+FCR", "(0,1)", "1", false},
  };
  return settings;
}

/// Letters that are accepted without an effect here.
bool Harmless(const std::string& name) {
  if (name.size() == 2) return std::string_view("&\\%").find(name[0]) != std::string_view::npos;
  return name.size() == 1 && std::string_view("BLMNPTWXY").find(name[0]) != std::string_view::npos;
}

}  // namespace

Interpreter::Interpreter(const ModemProfile& profile, Hardware& hardware)
    : profile_(profile), hardware_(hardware) {
  for (const auto& setting : CommonSettings()) known_[setting.name] = setting;
  known_[profile.caller_id] = {profile.caller_id, "(0-2)", "0", false};
  for (const auto& setting : profile.settings) known_[setting.name] = setting;
  Reset();
}

void Interpreter::Reset() {
  for (const auto& [name, setting] : known_) values_[name] = setting.initial;
  registers_ = {{0, 0}};
  class_ = "0";
  format_ = &profile_.formats.front();
  rate_ = 8000;
  echo_ = verbose_ = true;
  quiet_ = false;
}

const std::map<std::string, Interpreter::Handler>& Interpreter::Handlers() {
  static const std::map<std::string, Handler> handlers = {
      {"E", &Interpreter::Echoing},      {"V", &Interpreter::Wording},
      {"Q", &Interpreter::Silent},       {"Z", &Interpreter::Restart},
      {"&F", &Interpreter::Restart},     {"H", &Interpreter::Hook},
      {"A", &Interpreter::Answering},    {"D", &Interpreter::Dial},
      {"I", &Interpreter::Identity},     {"+GMI", &Interpreter::Maker},
      {"+GMI9", &Interpreter::Maker},    {"+FMI", &Interpreter::Maker},
      {"+GMM", &Interpreter::Model},     {"+FMM", &Interpreter::Model},
      {"+GMR", &Interpreter::Revision},  {"+FMR", &Interpreter::Revision},
      {"+FCLASS", &Interpreter::Class},  {"+VSM", &Interpreter::SampleFormat},
      {"+VLS", &Interpreter::LineState}, {"+VTX", &Interpreter::Transmit},
      {"+VRX", &Interpreter::Receive},   {"+VTS", &Interpreter::Tones},
  };
  return handlers;
}

Interpreter::Answer Interpreter::Execute(const std::string& line) {
  lines_.clear();
  const auto requests = SplitCommands(line);
  if (!requests) return {{}, Result::Error};
  auto result = Result::Ok;
  for (const auto& request : *requests) {
    result = One(request);
    if (result != Result::Ok) break;
  }
  return {std::move(lines_), result};
}

Result Interpreter::One(const CommandRequest& request) {
  const auto setting = known_.find(request.name);
  const bool voice = setting != known_.end() ? setting->second.voice_only : request.name.starts_with("+V");
  if (voice && !VoiceClass()) {
    hardware_.Complain(request.name + " outside voice mode");
    return Result::Error;
  }
  if (setting != known_.end()) return Change(request);
  if (request.name.starts_with("S")) return Registers(request);
  if (const auto found = Handlers().find(request.name); found != Handlers().end()) {
    return (this->*found->second)(request);
  }
  return Harmless(request.name) ? Result::Ok : Result::Error;
}

Result Interpreter::Change(const CommandRequest& request) {
  const auto& setting = known_.at(request.name);
  auto& value = values_.at(request.name);
  switch (request.form) {
    case CommandRequest::Form::Test: return Say(setting.range);
    case CommandRequest::Form::Ask: return Say(value);
    case CommandRequest::Form::Act: return Result::Error;
    case CommandRequest::Form::Set: break;
  }
  const auto changed = Changed(setting.range, value, request.value);
  if (!changed) return Result::Error;
  value = *changed;
  return Result::Ok;
}

Result Interpreter::Say(const std::string& line) {
  if (!line.empty()) lines_.push_back(line);
  return Result::Ok;
}

int Interpreter::Register(int number) const {
  const auto found = registers_.find(number);
  return found == registers_.end() ? 0 : found->second;
}

std::string Interpreter::Setting(const std::string& name) const {
  const auto found = values_.find(name);
  return found == values_.end() ? "" : found->second;
}

int Interpreter::Setting(const std::string& name, std::size_t place) const {
  const auto parts = SplitValues(Setting(name));
  return place < parts.size() ? Number(parts[place]).value_or(0) : 0;
}

}  // namespace orven::emulator
