// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sim/sim_script.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <system_error>
#include <utility>

namespace orven {
namespace {

using Kind = SimStep::Kind;

constexpr std::array<std::pair<const char*, Kind>, 5> kWords{{{"offer", Kind::Offer},
                                                              {"ring", Kind::Ring},
                                                              {"callerid", Kind::CallerId},
                                                              {"press", Kind::Press},
                                                              {"hangup", Kind::HangUp}}};

/// One day: a longer script is a mistake.
constexpr double kLastSecond = 86400;

std::optional<SimStep> ReadStep(const std::string& line) {
  std::istringstream words(line);
  words.imbue(std::locale::classic());
  double seconds = 0;
  std::string word;
  if (!(words >> seconds >> word) || !(seconds >= 0 && seconds <= kLastSecond)) return std::nullopt;
  const auto* known =
      std::find_if(kWords.begin(), kWords.end(), [&](const auto& entry) { return word == entry.first; });
  if (known == kWords.end()) return std::nullopt;
  SimStep step;
  step.at = std::chrono::milliseconds(std::llround(seconds * 1000));
  step.kind = known->second;
  if (step.kind == Kind::Press || step.kind == Kind::CallerId) words >> step.number;
  if (step.kind == Kind::Press && step.number.empty()) return std::nullopt;
  std::getline(words >> std::ws, step.name);
  if (step.kind != Kind::CallerId && !step.name.empty()) return std::nullopt;
  return step;
}

}  // namespace

SimScript ReadSimScript(const std::string& path, std::vector<std::string>& complaints) {
  const auto file_name = std::filesystem::path(path).filename().string();
  SimScript script;
  std::error_code error;
  std::ifstream file;
  if (std::filesystem::is_regular_file(path, error)) file.open(path);  // a pipe would block
  if (!file.is_open()) complaints.push_back(path + ": the script of the simulated line cannot be read");
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.ends_with('\r')) line.pop_back();
    const auto first = line.find_first_not_of(" \t");
    if (first == std::string::npos || line[first] == ';' || line[first] == '#') continue;
    if (auto step = ReadStep(line)) {
      script.push_back(std::move(*step));
    } else {
      std::ostringstream complaint;
      complaint << file_name << ':' << number << ": \"" << line
                << "\": expected seconds and offer, ring, callerid NUMBER NAME, press KEYS or hangup";
      complaints.push_back(complaint.str());
    }
  }
  return script;
}

}  // namespace orven
