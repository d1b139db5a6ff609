// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <set>

#include "simulation/promises.h"

namespace orven::test {
namespace {

struct LogStep {
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

constexpr LogStep kSteps[] = {{"Ring[", kOffer, false},
                              {"DoNothing[", kOffer, false},
                              {"CallerID[", kOffer, false},
                              {kConnected, kAnswer, true},
                              {"Disconnected[", kAnswer, true},
                              {kBeep, kConnected, true},
                              {"MonitorDigit[", kConnected, false},
                              {"Remote Control ", "MonitorDigit[", false},
                              {kStart, kBeep, false},
                              {"Cap Error Rec Message[", kBeep, true},
                              {"Record Message ", kStart, true},
                              {"Idle[", kOffer, true}};

/// Parts of the fault lines ("Err…") that have a cause in the simulation.
constexpr std::string_view kExplained[] = {"Error Playing Remote Control",
                                           "ErrPlayForAdmin 9 ",
                                           "Error Send To APP ->53 ",
                                           "Error Sending To Mail To ",
                                           "Error Start RecMessage[",
                                           "ErrStopRecGreet ",
                                           " 61 Disk full",
                                           ": the database is not open"};

bool IsUnexplainedFault(std::string_view line, bool records_lost) {
  const auto has = [line](std::string_view part) { return line.find(part) != line.npos; };
  if (records_lost && has(" 9 Subscript out of range")) return false;
  return line.starts_with("Err") && std::ranges::none_of(kExplained, has);
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
