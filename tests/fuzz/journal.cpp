// SPDX-License-Identifier: GPL-3.0-or-later
// Starts with any journal and recordings that a crash may leave. Each call must be filed once, and no
// recording lost.
#include <string>
#include <vector>

#include "fuzz/fuzz.h"
#include "records/call_journal.h"
#include "support/world.h"

namespace orven::fuzz {
namespace {

using namespace orven::test;

/// Writes a call with any texts to the journal and expects to read them back.
void NoteAndReadBack(Choices choices) {
  World world;
  Call call;
  for (std::string* text : {&call.caller_name, &call.message_path, &call.trail.growing_name})
    *text = choices.Text();
  CallJournal(world.files, world.Machine().log, world.shared).Begin(call);
  const auto unfinished = CallJournal(world.files, world.Machine().log, world.shared).Unfinished();
  Require(unfinished.size() == 1 && unfinished[0].caller_name == call.caller_name);
  Require(unfinished[0].message_path == call.message_path);
  Require(unfinished[0].trail.growing_name == call.trail.growing_name);
}

void StartAfterCrash(const std::string& journal, Choices choices) {
  const std::string home = World::kHome, path = home + "/Call.journal";
  World world;
  std::vector<std::string> recordings;
  while (choices.Any() && recordings.size() < 6) {
    const std::size_t what = choices.Byte(), number = recordings.size();
    // The lengths differ, so that no recording is the beginning of another.
    recordings.push_back(what % 16 < 12
                             ? TimedWave::Sound(std::chrono::milliseconds(1000 * (number + 1) + what))
                             : "not audio " + std::to_string(number));
    std::string name = choices.Text();
    std::replace(name.begin(), name.end(), '/', '-');
    name = what % 8 < 6 ? ".recording-" + name + "-7-" + std::to_string(number) + ".wav.part"
                        : name + std::to_string(number) + ".wav";
    world.files.Put((what % 2 == 0 ? world.messages : home + "/Rescued/") + name, recordings.back());
  }
  if (!journal.empty()) world.files.Put(path, journal);
  world.RunFor(60s);  // after this time no recording can still belong to another running program
  world.Start().RunFor(1s);
  const std::size_t filed = world.database.Records().size();
  const auto lines = static_cast<std::size_t>(std::count(journal.begin(), journal.end(), '\n'));
  Require(filed <= lines + recordings.size() && !world.files.Exists(path));
  Require(!world.files.Exists(path + ".damaged") || world.files.Content(path + ".damaged") == journal);
  std::string there;
  for (const auto& folder : {world.messages, home + "/Rescued/"})
    for (const auto& name : world.files.Names(folder))
      there += "\n" + world.files.Content(folder + name) + "\n";
  for (const auto& recording : recordings) Require(there.find("\n" + recording + "\n") != there.npos);

  world.Crash();
  world.Start().RunFor(1s);
  Require(world.database.Records().size() == filed);
}

}  // namespace

void Journal(Bytes input) {
  auto [journal, choices] = ContentAndChoices(input, std::string_view("\0", 1));
  if (journal.empty()) NoteAndReadBack(choices);
  StartAfterCrash(journal, choices);
}

}  // namespace orven::fuzz
