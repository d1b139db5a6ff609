// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/program/call_script.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace orven::emulator {
namespace {

const std::vector<std::pair<std::string, std::string>>& Verbs() {
  static const std::vector<std::pair<std::string, std::string>> verbs = {
      {"ring", "the bell rings for two seconds"},
      {"callerid", "LINE: a line of the caller id, such as NMBR = 5551234"},
      {"press", "KEYS: the caller presses these keys"},
      {"say", "FILE.wav: the caller says it; \"said\" is printed at its end"},
      {"hangup", "the caller hangs up; the busy tone follows"},
      {"busy", "the same"},
      {"dialtone", "the caller hangs up; the dial tone follows"},
      {"silence", "the caller hangs up; nothing follows"},
      {"sign", "X: the modem tells <DLE>X"},
      {"wedge", "the modem answers nothing any more"},
      {"wake", "it answers again"},
      {"unplug", "the port goes away, and the link with it"},
      {"replug", "a new port comes, under the same link"},
      {"quit", "the program ends as soon as the modem is on-hook"},
  };
  return verbs;
}

}  // namespace

Step ReadStep(const std::string& text) {
  std::istringstream in(text);
  Step step;
  in >> step.verb >> std::ws;
  std::getline(in, step.rest);
  while (!step.rest.empty() && std::isspace(static_cast<unsigned char>(step.rest.back())) != 0) {
    step.rest.pop_back();
  }
  const auto known = std::any_of(Verbs().begin(), Verbs().end(),
                                 [&step](const auto& verb) { return verb.first == step.verb; });
  if (!known) throw std::runtime_error("there is no step \"" + step.verb + "\"");
  return step;
}

std::vector<Step> ReadScript(std::istream& in) {
  std::vector<Step> steps;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    std::istringstream words(line);
    double seconds = 0;
    if ((words >> std::ws).eof() || words.peek() == '#') continue;
    std::string rest;
    if (!(words >> seconds) || seconds < 0 || !std::getline(words, rest)) {
      throw std::runtime_error("line " + std::to_string(number) + " is not \"SECONDS STEP\": " + line);
    }
    try {
      steps.push_back(ReadStep(rest));
    } catch (const std::runtime_error& error) {
      throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
    }
    steps.back().at = std::chrono::milliseconds(std::lround(seconds * 1000));
  }
  return steps;
}

std::string ScriptHelp() {
  std::ostringstream text;
  for (const auto& [verb, meaning] : Verbs()) {
    text << "  " << std::left << std::setw(9) << verb << meaning << "\n";
  }
  return text.str();
}

}  // namespace orven::emulator
