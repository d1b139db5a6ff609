// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a crash leaves of the calls' journal and beside it: the next start files it once and loses no
// recording.
#include <map>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "records/call_journal.h"
#include "support/world.h"

namespace orven::fuzz {
namespace {

using namespace orven::test;

constexpr std::string Call::*kTexts[] = {&Call::date,
                                         &Call::time,
                                         &Call::caller_name,
                                         &Call::caller_number,
                                         &Call::ring_count_text,
                                         &Call::message_file_name,
                                         &Call::message_path};

/// Calls with any texts come back from the journal as they were noted last.
void NoteAndReadBack(Choices choices) {
  World world;
  std::map<std::uint32_t, Call> open;
  for (int runs = 0; choices.Any() && runs < 4; ++runs) {
    CallJournal journal(world.files, world.Machine().log, world.shared);
    const auto unfinished = journal.Unfinished();
    Require(unfinished.size() == open.size());
    for (const Call& call : unfinished) {
      const Call& noted = open.at(call.trail.entry);
      for (const auto text : kTexts) Require(call.*text == noted.*text);
      for (const auto text : {&CallTrail::growing_folder, &CallTrail::growing_name, &CallTrail::storing_path})
        Require(call.trail.*text == noted.trail.*text);
      Require(call.message_left == noted.message_left);
    }
    for (int steps = choices.Byte() % 8; steps > 0; --steps) {
      const bool known = !open.empty() && choices.Below(2) == 0;
      Call call;
      if (known)
        call = std::next(open.begin(), static_cast<std::ptrdiff_t>(choices.Below(open.size())))->second;
      for (const auto text : kTexts)
        if (choices.Below(3) == 0) call.*text = choices.Text();
      call.trail.storing_path = choices.Text();
      call.trail.growing_folder = choices.Text();
      call.trail.growing_name = choices.Text();
      call.message_left = choices.Below(2) == 0;
      known ? journal.Note(call) : journal.Begin(call);
      open[call.trail.entry] = call;
      if (choices.Below(3) != 0) continue;
      journal.Done(call);
      open.erase(call.trail.entry);
    }
  }
}

/// Puts files where recordings may be. No content is the beginning of another.
std::vector<std::string> LeaveBehind(World& world, Choices& choices) {
  std::vector<std::string> contents;
  while (choices.Any() && contents.size() < 6) {
    const std::size_t what = choices.Byte(), number = contents.size();
    auto name = choices.Text();
    std::replace(name.begin(), name.end(), '/', '-');
    contents.push_back(
        what % 16 < 12 ? TimedWave::Sound(std::chrono::seconds(number + 1) + std::chrono::milliseconds(what))
                       : "not audio " + std::to_string(number));
    name = what % 8 < 6 ? ".recording-" + name + "-7-" + std::to_string(number) + ".wav.part"
                        : name + std::to_string(number) + ".wav";
    world.files.Put((what % 2 == 0 ? world.messages : std::string(World::kHome) + "/Rescued/") + name,
                    contents.back());
  }
  return contents;
}

void StartAfterCrash(const std::string& journal, Choices choices) {
  const std::string path = std::string(World::kHome) + "/Call.journal";
  World world;
  const auto parts = LeaveBehind(world, choices);
  if (!journal.empty()) world.files.Put(path, journal);
  world.RunFor(60s);  // no recording is so young that another program may still write it
  world.Start().RunFor(1s);
  const std::size_t filed = world.database.Records().size();
  Require(filed <= static_cast<std::size_t>(std::count(journal.begin(), journal.end(), '\n')) + parts.size());
  Require(!world.files.Exists(path + ".damaged") || world.files.Content(path + ".damaged") == journal);
  Require(!world.files.Exists(path));
  std::string there;
  for (const auto& folder : {world.messages, std::string(World::kHome) + "/Rescued/"})
    for (const auto& name : world.files.Names(folder))
      there += "\n" + world.files.Content(folder + name) + "\n";
  for (const auto& part : parts) Require(there.find("\n" + part + "\n") != there.npos);

  world.Crash();
  world.Start().RunFor(1s);
  Require(world.database.Records().size() == filed);
  world.CallAndWaitForAnswer();
  world.HangUp();
  world.RunFor(10s);
  Require(world.database.Records().size() == filed + 1 && !world.files.Exists(path));
}

}  // namespace

void Journal(Bytes input) {
  auto [journal, choices] = ContentAndChoices(input, std::string_view("\0", 1));
  if (journal.empty()) NoteAndReadBack(choices);
  StartAfterCrash(journal, choices);
}

}  // namespace orven::fuzz
