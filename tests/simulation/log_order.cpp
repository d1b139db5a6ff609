// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/log_order.h"

#include <array>
#include <set>

namespace orven::test {
namespace {

struct Step {
  std::string_view begins;  ///< how its line begins
  std::string_view needs;   ///< the step that must stand before it in the same call
  bool once;
};

constexpr std::string_view kOffer = "InCommingCall[";
constexpr std::string_view kAnswer = "LineAnswer[";
constexpr std::string_view kConnected = "Connected[";
constexpr std::string_view kBeep = "Play Beep ";
constexpr std::string_view kStart = "Start Record Message[";
constexpr std::string_view kIdle = "Idle[";

constexpr std::array kSteps{Step{"Ring[", kOffer, false},
                            Step{"CallerID[", kOffer, false},
                            Step{kConnected, kAnswer, true},
                            Step{"Disconnected[", kConnected, true},
                            Step{kBeep, kConnected, true},
                            Step{"MonitorDigit[", kConnected, false},
                            Step{"Remote Control ", "MonitorDigit[", false},
                            Step{kStart, kBeep, false},
                            Step{"Cap Error Rec Message[", kBeep, true},
                            Step{"Record Message ", kStart, true},
                            Step{kIdle, kOffer, true}};

/// Fault lines are found by their labels; only these have a cause in the simulation.
bool IsUnexplainedFault(const std::string& line) {
  return line.starts_with("Err") && !line.starts_with("Error Playing Remote Control") &&
         !line.starts_with("ErrPlayForAdmin 9 ");
}

}  // namespace

std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines) {
  std::vector<std::string> faults;
  std::set<std::string_view> seen;  // steps of the present call
  for (const auto& line : lines) {
    if (IsUnexplainedFault(line)) faults.push_back("log: " + line);
    if (line.starts_with(kOffer)) seen = {kOffer};
    if (line.starts_with(kAnswer)) seen.insert(kAnswer);
    for (const auto& step : kSteps) {
      if (!line.starts_with(step.begins)) continue;
      if (!seen.contains(step.needs)) faults.push_back("log: " + line + " without " + std::string(step.needs));
      if (step.once && seen.contains(step.begins)) faults.push_back("log: a second " + line);
      seen.insert(step.begins);
    }
  }
  return faults;
}

}  // namespace orven::test
