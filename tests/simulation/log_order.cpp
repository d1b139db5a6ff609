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
constexpr std::string_view kAnswerAccepted = "LineAnswer[LineIndex:0]->Proc Num: ";
constexpr std::string_view kConnected = "Connected[";
constexpr std::string_view kBeep = "Play Beep ";
constexpr std::string_view kStart = "Start Record Message[";
constexpr std::string_view kIdle = "Idle[";

constexpr std::array kSteps{Step{"Ring[", kOffer, false},
                            Step{"DoNothing[", kOffer, false},
                            Step{"CallerID[", kOffer, false},
                            Step{kConnected, kAnswer, true},
                            Step{"Disconnected[", kAnswer, true},
                            Step{kBeep, kConnected, true},
                            Step{"MonitorDigit[", kConnected, false},
                            Step{"Remote Control ", "MonitorDigit[", false},
                            Step{kStart, kBeep, false},
                            Step{"Cap Error Rec Message[", kBeep, true},
                            Step{"Record Message ", kStart, true},
                            Step{kIdle, kOffer, true}};

/// Fault lines are found by their labels; only these have a cause in the simulation.
bool IsUnexplainedFault(const std::string& line, bool records_lost) {
  // Nobody but the disk and the records throw these.
  const bool of_disk = line.find(" 61 Disk full") != std::string::npos ||
                       line.find(": the database is not open") != std::string::npos;
  const bool of_row = records_lost && line.find(" 9 Subscript out of range") != std::string::npos;
  const bool of_take = line.starts_with("Error Start RecMessage[") || line.starts_with("ErrStopRecGreet ");
  return line.starts_with("Err") && !line.starts_with("Error Playing Remote Control") &&
         !line.starts_with("ErrPlayForAdmin 9 ") && !line.starts_with("Error Send To APP ->53 ") &&
         !line.starts_with("Error Sending To Mail To ") && !of_disk && !of_row && !of_take;
}

/// What has been logged of the present call.
struct CallSoFar {
  std::set<std::string_view> steps;
  std::string answer;  ///< number of the accepted request to answer
  bool recording = false;
  bool owner = false;
  bool hung_up = false;
};

/// A step that the present call must not take any more.
std::string Misstep(const std::string& line, const CallSoFar& call) {
  if (line.starts_with(kStart) && (call.owner || call.hung_up)) return "the owner, or nobody, is recorded";
  if (line.starts_with("Remote Control ") && call.recording) return "digits are heard while recording";
  if (line.starts_with(kAnswerAccepted) && line[kAnswerAccepted.size()] != '-' && !call.answer.empty()) {
    return "a call is answered twice";
  }
  return {};
}

void Remember(const std::string& line, CallSoFar& call) {
  if (line.starts_with(kOffer)) call = {{kOffer}, "", false, false, false};
  if (line.starts_with(kAnswer)) call.steps.insert(kAnswer);
  if (line.starts_with(kAnswerAccepted) && line[kAnswerAccepted.size()] != '-') {
    call.answer = line.substr(kAnswerAccepted.size());
  }
  if (line.starts_with("Proc[LineIndex:0]->" + call.answer + " -")) call.answer.clear();
  if (line.starts_with(kStart)) call.recording = line.ends_with("->OK");
  if (line.starts_with("Record Message ")) call.recording = false;
  if (line.starts_with("Remote Control ")) call.owner = true;
  if (line == "LineDrop[LineIndex:0]->Proc Num: Success") call.hung_up = true;
}

}  // namespace

std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines, bool records_lost) {
  std::vector<std::string> faults;
  CallSoFar call;
  for (const auto& line : lines) {
    if (IsUnexplainedFault(line, records_lost)) faults.push_back("log: " + line);
    if (const auto misstep = Misstep(line, call); !misstep.empty())
      faults.push_back("log: " + misstep + ": " + line);
    Remember(line, call);
    for (const auto& step : kSteps) {
      if (!line.starts_with(step.begins)) continue;
      if (!call.steps.contains(step.needs))
        faults.push_back("log: " + line + " without " + std::string(step.needs));
      if (step.once && call.steps.contains(step.begins)) faults.push_back("log: a second " + line);
      call.steps.insert(step.begins);
    }
  }
  return faults;
}

}  // namespace orven::test
