// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a crash leaves of the journal of calls and beside it: the next start files it once, and goes on
// as ever.
// Links: orven_test_support
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "records/call_journal.h"
#include "support/world.h"

namespace {

using namespace orven;
using namespace orven::fuzz;
using namespace orven::test;

constexpr const char* kJournal = "/home/orven/Call.journal";

constexpr std::string Call::*kTold[] = {&Call::date,
                                        &Call::time,
                                        &Call::caller_name,
                                        &Call::caller_number,
                                        &Call::ring_count_text,
                                        &Call::message_file_name,
                                        &Call::message_path};

class SilentLog : public SystemLog {
 public:
  void WriteSystem(const std::string& /*text*/) override {}
};

void RequireSame(const Call& one, const Call& other) {
  for (const auto text : kTold) Require(one.*text == other.*text);
  Require(one.trail.entry == other.trail.entry && one.trail.growing_folder == other.trail.growing_folder);
  Require(one.trail.growing_name == other.trail.growing_name && one.trail.record == other.trail.record);
  Require(one.trail.storing_path == other.trail.storing_path && one.message_left == other.message_left);
  Require(one.trail.filed_after == other.trail.filed_after);
}

/// Calls with any texts come back from the journal as they were noted last.
void NoteAndReadBack(Choices choices) {
  VirtualTime time{Clock::WallTime{}};
  MemoryFiles files(time);
  SilentLog log;
  SharedOptions shared;
  shared.application_folder = World::kHome;
  std::map<std::uint32_t, Call> open;
  for (int runs = 0; choices.Any() && runs < 4; ++runs) {
    CallJournal journal(files, log, shared);
    const auto unfinished = journal.Unfinished();
    Require(unfinished.size() == open.size());
    for (const Call& call : unfinished) RequireSame(call, open.at(call.trail.entry));
    for (int steps = choices.Byte() % 8; steps > 0; --steps) {
      Call call;
      const bool known = !open.empty() && choices.Below(2) == 0;
      if (known)
        call = std::next(open.begin(), static_cast<std::ptrdiff_t>(choices.Below(open.size())))->second;
      for (const auto text : kTold) {
        if (choices.Below(3) == 0) call.*text = TextOf(choices.Piece());
      }
      call.trail.storing_path = TextOf(choices.Piece());
      call.trail.growing_folder = TextOf(choices.Piece());
      call.trail.growing_name = TextOf(choices.Piece());
      call.message_left = choices.Below(2) == 0;
      if (choices.Below(2) == 0) call.trail.record = choices.Byte();
      if (!known) journal.SetNewestRecord(choices.Byte());
      known ? journal.Note(call) : journal.Begin(call);
      Require(call.trail.entry != 0);
      open[call.trail.entry] = call;
      if (choices.Below(3) != 0) continue;
      journal.Done(call);
      open.erase(call.trail.entry);
    }
    Require(files.Exists(kJournal) == !open.empty() || open.empty());
  }
}

/// Puts a file where recordings may be; what is in it. None is the beginning of another.
std::string LeaveBehind(World& world, int number, Choices& choices) {
  const std::size_t what = choices.Byte();
  auto name = TextOf(choices.Piece());
  std::replace(name.begin(), name.end(), '/', '-');
  auto content = "no sound " + std::to_string(number);
  if (what % 16 < 12) {
    content = TimedWave::Sound(std::chrono::milliseconds(1000 * (number + 1) + static_cast<int>(what)));
  }
  const std::string folder = what % 2 == 0 ? world.messages : std::string(World::kHome) + "/Rescued/";
  world.files.Put(folder + (what % 8 < 6 ? ".recording-" + name + "-7-" + std::to_string(number) + ".wav.part"
                                         : name + std::to_string(number) + ".wav"),
                  content);
  return content;
}

/// Nothing that was recorded is gone.
void RequireKept(const World& world, const std::vector<std::string>& parts) {
  std::set<std::string> there;
  for (const auto& folder : {world.messages, std::string(World::kHome) + "/Rescued/"}) {
    for (const auto& name : world.files.Names(folder)) there.insert(world.files.Content(folder + name));
  }
  for (const auto& part : parts) Require(there.contains(part));
}

void StartAfterCrash(const std::string& journal, Choices choices) {
  World world;
  std::vector<std::string> parts;
  while (choices.Any() && parts.size() < 6)
    parts.push_back(LeaveBehind(world, static_cast<int>(parts.size()), choices));
  if (!journal.empty()) world.files.Put(kJournal, journal);
  world.RunFor(60s);  // no part is young enough to belong to somebody else
  world.Start();
  world.RunFor(1s);
  const std::size_t filed = world.database.Records().size();
  const auto lines = static_cast<std::size_t>(std::count(journal.begin(), journal.end(), '\n'));
  Require(filed <= lines + parts.size());
  Require(!world.files.Exists(std::string(kJournal) + ".damaged") ||
          world.files.Content(std::string(kJournal) + ".damaged") == journal);
  RequireKept(world, parts);
  Require(!world.files.Exists(kJournal));  // nothing hinders the filing here

  world.Crash();
  world.Start();
  world.RunFor(1s);
  Require(world.database.Records().size() == filed);
  world.CallAndWaitForAnswer();
  world.HangUp();
  world.RunFor(10s);
  Require(world.database.Records().size() == filed + 1 && !world.files.Exists(kJournal));
}

}  // namespace

/// The journal; behind a zero byte: files that lie about. Without a journal: calls that one is kept of.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto [journal, choices] = ContentAndChoices(Bytes(data, size), std::string_view("\0", 1));
  if (journal.empty()) NoteAndReadBack(choices);
  StartAfterCrash(journal, choices);
  return 0;
}
