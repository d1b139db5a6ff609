// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/program/options.h"

#include <QCommandLineParser>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <istream>
#include <map>
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
      {"say", "FILE.wav: the caller says it; \"said\" is printed at the end"},
      {"hangup", "the caller hangs up; the busy tone follows"},
      {"busy", "the same"},
      {"dialtone", "the caller hangs up; the dial tone follows"},
      {"silence", "the caller hangs up; nothing follows"},
      {"event", "X: the modem reports <DLE>X"},
      {"wedge", "the modem hangs"},
      {"wake", "the modem answers again"},
      {"unplug", "the port and its link disappear"},
      {"replug", "a new port appears under the same link"},
      {"quit", "the program ends as soon as the modem is on-hook"},
  };
  return verbs;
}

[[noreturn]] void Refuse(const std::string& sentence) {
  std::cerr << "orven-modem-emulator: " << sentence << "\n";
  std::exit(2);
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

const std::map<std::string, bool ModemFaults::*>& FaultNames() {
  static const std::map<std::string, bool ModemFaults::*> names = {
      {"ignores-silence-detection", &ModemFaults::ignores_silence_detection},
      {"no-hang-up-code", &ModemFaults::no_hang_up_code},
      {"refuses-off-hook-in-ring", &ModemFaults::refuses_off_hook_in_ring},
      {"answer-does-not-take", &ModemFaults::answer_does_not_take},
      {"stale-ok", &ModemFaults::stale_ok},
      {"ring-inside-a-reply", &ModemFaults::ring_inside_a_reply},
      {"tripled-keys", &ModemFaults::tripled_keys},
  };
  return names;
}

std::string FaultList() {
  std::vector<std::string> names;
  for (const auto& [name, member] : FaultNames()) names.push_back(name);
  return Joined(names) + ", three-stops";
}

ModemFaults Faults(const QString& text) {
  ModemFaults faults;
  for (const auto& part : text.split(',', Qt::SkipEmptyParts)) {
    const auto name = part.trimmed().toStdString();
    const auto found = FaultNames().find(name);
    if (name == "three-stops") {
      faults.stops_needed = 3;
    } else if (found != FaultNames().end()) {
      faults.*(found->second) = true;
    } else {
      Refuse("unknown fault \"" + name + "\"; known are " + FaultList());
    }
  }
  return faults;
}

std::vector<Step> Script(const QString& path) {
  if (path.isEmpty()) return {};
  std::ifstream in(path.toStdString());
  if (!in) Refuse("the script " + path.toStdString() + " cannot be read");
  try {
    return ReadScript(in);
  } catch (const std::runtime_error& error) {
    Refuse(path.toStdString() + ": " + error.what());
  }
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
  if (!known) throw std::runtime_error("unknown step \"" + step.verb + "\"");
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

Options ReadOptions(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "A voice modem with a telephone line, on a pseudo-terminal.\n"
      "Reads steps of a script from standard input, without seconds; they take effect at once:\n" +
      QString::fromStdString(ScriptHelp()));
  const auto add = [&parser](const char* name, const std::string& meaning, const char* value,
                             const char* usual = "") {
    parser.addOption({name, QString::fromStdString(meaning), value, usual});
  };
  add("profile", "chip family: " + Joined(ModemProfileNames()), "NAME", "conexant");
  add("faults", "faults, separated by commas: " + FaultList(), "NAMES");
  add("script", "lines of SECONDS STEP", "FILE");
  add("link", "a symbolic link to the pseudo-terminal", "PATH");
  add("captured", "receives what the caller hears in the latest call", "FILE.wav");
  add("spoken", "receives what the caller says in the latest call", "FILE.wav");
  add("sent", "receives the audio bytes that the modem sends in the latest call", "FILE");
  add("seconds", "the program ends by itself after N seconds (300)", "N", "300");
  parser.addOption({"times", "every report ends with \" at SECONDS\"; also reports \"ring\" and \"key\""});
  parser.addHelpOption();
  parser.process(arguments);
  if (!parser.positionalArguments().isEmpty()) Refuse("unexpected argument; see --help");

  const auto text = [&parser](const char* name) { return parser.value(name).toStdString(); };
  Options options;
  options.profile = FindModemProfile(text("profile"));
  if (options.profile == nullptr) {
    Refuse("unknown profile \"" + text("profile") + "\"; known are " + Joined(ModemProfileNames()));
  }
  options.faults = Faults(parser.value("faults"));
  options.script = Script(parser.value("script"));
  options.link = text("link");
  options.captured = text("captured");
  options.spoken = text("spoken");
  options.sent = text("sent");
  options.times = parser.isSet("times");
  bool valid = false;
  options.lifetime = std::chrono::seconds(parser.value("seconds").toInt(&valid));
  if (!valid || options.lifetime <= std::chrono::seconds(0)) Refuse("--seconds takes a number above 0");
  return options;
}

}  // namespace orven::emulator
