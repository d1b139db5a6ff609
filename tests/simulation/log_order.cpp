// SPDX-License-Identifier: GPL-3.0-or-later
#include <algorithm>
#include <set>

#include "simulation/promises.h"

namespace orven::test {
namespace {

struct LogStep {
  std::string_view begins;  ///< the beginning of its log line
  std::string_view needs;   ///< the step that must come before it in the same call; empty for none
  bool once;
};

constexpr std::string_view kOffer = "InCommingCall[";
constexpr std::string_view kAccepted = "LineAnswer[LineIndex:0]->Proc Num: ";
constexpr std::string_view kStart = "Start Record Message[";

constexpr LogStep kSteps[] = {{kOffer, "", true},
                              {"Ring[", kOffer, false},
                              {"DoNothing[", kOffer, false},
                              {"CallerID[", kOffer, false},
                              {"LineAnswer[", "", false},
                              {"Connected[", "LineAnswer[", true},
                              {"Disconnected[", "LineAnswer[", true},
                              {"Play Beep ", "Connected[", true},
                              {"MonitorDigit[", "Connected[", false},
                              {"Remote Control ", "MonitorDigit[", false},
                              {kStart, "Play Beep ", false},
                              {"Cap Error Rec Message[", "Play Beep ", true},
                              {"Record Message ", kStart, true},
                              {"Idle[", kOffer, true}};

/// Parts of the error lines ("Err…") that the faults of a story can cause.
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

}  // namespace

std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines, bool records_lost) {
  std::vector<std::string> faults;
  std::set<std::string_view> steps{""};  // steps of the current call
  std::string answer;                    // number of the accepted answer request
  bool recording = false, owner = false, hung_up = false;
  for (const auto& line : lines) {
    const auto is = [&](std::string_view begin) { return line.starts_with(begin); };
    const auto fault = [&](bool found, const std::string& what) {
      if (found) faults.push_back("log: " + what + ": " + line);
    };
    const bool accepted = is(kAccepted) && line[kAccepted.size()] != '-';
    fault(IsUnexplainedFault(line, records_lost), "an unexplained error");
    fault(is(kStart) && (owner || hung_up), "a recording of the owner or after the hang-up");
    fault(is("Remote Control ") && recording, "digits are detected while recording");
    fault(accepted && !answer.empty(), "a call is answered twice");
    if (is(kOffer)) {
      steps = {""};
      answer.clear();
      recording = owner = hung_up = false;
    }
    if (accepted) answer = line.substr(kAccepted.size());
    if (is("Proc[LineIndex:0]->" + answer + " -")) answer.clear();
    if (is(kStart)) recording = line.ends_with("->OK");
    if (is("Record Message ")) recording = false;
    owner = owner || is("Remote Control ");
    hung_up = hung_up || line == "LineDrop[LineIndex:0]->Proc Num: Success";
    for (const auto& step : kSteps) {
      if (!is(step.begins)) continue;
      fault(!steps.contains(step.needs), "a step without " + std::string(step.needs));
      fault(!steps.insert(step.begins).second && step.once, "a step appears twice");
    }
  }
  return faults;
}

}  // namespace orven::test
