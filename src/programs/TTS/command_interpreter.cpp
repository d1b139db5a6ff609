// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/command_interpreter.h"

#include <charconv>
#include <exception>
#include <limits>
#include <optional>
#include <utility>

#include "platform/wave.h"
#include "programs/TTS/speech_engine.h"
#include "programs/TTS/speech_file.h"
#include "programs/TTS/speech_jobs.h"

namespace orven {
namespace {

constexpr std::size_t kCommandLetters = 4;

/// A decimal number, clamped to the range of int.
std::optional<int> Number(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end != text.data() + text.size() || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc()) return number;
  return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

}  // namespace

CommandInterpreter::CommandInterpreter(Parts parts, std::vector<Voice> voices, Answers answers)
    : parts_(parts), voices_(std::move(voices)), answers_(std::move(answers)) {}

void CommandInterpreter::Obey(std::string_view message) {
  struct Command {
    std::string_view name;
    void (CommandInterpreter::*action)(std::string_view argument);
  };
  static constexpr Command kCommands[] = {
      {"GVC:", &CommandInterpreter::TellVoices}, {"SVC:", &CommandInterpreter::SetVoice},
      {"SRT:", &CommandInterpreter::SetRate},    {"Say:", &CommandInterpreter::Say},
      {"Stp:", &CommandInterpreter::Stop},       {"SFS:", &CommandInterpreter::SetFile},
      {"STW:", &CommandInterpreter::Write},      {"ULD:", &CommandInterpreter::Unload},
  };
  if (unloading_ || message.size() < kCommandLetters) return;
  for (const auto& [name, action] : kCommands) {
    if (message.starts_with(name)) (this->*action)(message.substr(kCommandLetters));
  }
}

void CommandInterpreter::TellVoices(std::string_view /*nothing*/) {
  answers_.reply("GVCS:" + JoinedDescriptions(voices_));
}

void CommandInterpreter::SetVoice(std::string_view index) {
  const auto number = Number(index);
  if (number && *number >= 0 && static_cast<std::size_t>(*number) < voices_.size()) {
    voice_ = static_cast<std::size_t>(*number);
  }
}

void CommandInterpreter::SetRate(std::string_view rate) {
  rate_ = Number(rate).value_or(rate_);
}

void CommandInterpreter::Say(std::string_view text) {
  const auto [ticket, start] = parts_.audio.Announce();
  if (start) {
    const auto result = parts_.card.StartPlay(parts_.audio);
    if (result != kWaveOk) {
      parts_.audio.CutOff();
      return Report("the sound card does not play (" + std::to_string(result) + ")");
    }
  }
  parts_.jobs.Say(MakeUtterance(text), ticket);
}

void CommandInterpreter::Stop(std::string_view /*nothing*/) {
  parts_.card.StopPlay();
  parts_.audio.CutOff();
}

void CommandInterpreter::SetFile(std::string_view path) {
  path_ = path;
  if (path_.empty()) return;
  parts_.jobs.AbandonFile(path_);
  try {
    RemoveSpeechFile(path_);
  } catch (const std::exception& failure) {
    Report(failure.what());
  }
}

/// Stops speaking, so that the engine is free for the file at once.
void CommandInterpreter::Write(std::string_view text) {
  if (path_.empty()) return Report("no sound file was named for the text");
  Stop({});
  parts_.jobs.Write(MakeUtterance(text), path_);
}

void CommandInterpreter::Unload(std::string_view /*nothing*/) {
  unloading_ = true;
  Stop({});
  parts_.jobs.WhenFilesAreMade(answers_.unloaded);
}

Utterance CommandInterpreter::MakeUtterance(std::string_view text) const {
  return {std::string(text), voices_[voice_].identifier, WordsPerMinute(rate_)};
}

}  // namespace orven
