// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulation/random_call.h"

#include "base/runtime_error.h"
#include "simulation/desk.h"
#include "simulation/dice.h"
#include "simulation/faults.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;

void Set(Story& story, const std::string& name, const std::string& value) {
  story.Add(kBeforeStart, "set " + name + " = \"" + value + "\"",
            [name, value](World& world) { world.registry.Set(name, value); });
}

void WriteSettings(Dice& dice, Story& story) {
  Set(story, "NumOfRing", std::to_string(1 + dice.Below(4)));
  Set(story, "RecordMessage", dice.OneIn(6) ? "0" : "1");
  Set(story, "ListMessageOnly", dice.OneIn(4) ? "1" : "0");
  Set(story, "cDropSilence", dice.OneIn(4) ? "0" : "1");
  Set(story, "SecSilence", dice.OneOf("0", "1", "2", "5"));
  Set(story, "MaxRec", dice.OneIn(8) ? "0" : "1");
  Set(story, "CompressMessages", dice.OneIn(3) ? "1" : "0");
  Set(story, "PreScreen", dice.OneIn(3) ? "1" : "0");
  Set(story, "Pass", dice.OneOf("12", "", "4711", "0"));
  Set(story, "AppTo", dice.OneOf("program <NAME> <MESSAGE_PATH>", "program", ""));
  for (const char* choice :
       {"ViewDetails", "WhenMsgViewMsg", "cAnimation", "cCloseCallerView", "cPlayInIdle",
        "ActionsMailAllCalls", "ActionsAppAllCalls", "pMailTo", "WornDelete", "pAppTo"}) {
    Set(story, choice, dice.OneOf("0", "1"));
  }
}

/// What becomes of each mail: it is told in steps, during later calls among others.
void WriteMailServer(Dice& dice, Story& story) {
  const milliseconds after(dice.Below(12000));
  const bool taken = !dice.OneIn(3);
  story.Add(kBeforeStart,
            std::string("the mail server ") + (taken ? "takes" : "refuses") + " a mail after " +
                std::to_string(after.count()) + " ms",
            [after, taken](World& world) {
              world.Mail1.on_send = [&world, after, taken](const ScriptedMail::Mail& mail) {
                const auto tell = [&world](const std::function<void(MailEvents&)>& what) {
                  return [&world, what] {
                    if (world.Mail1.events != nullptr) what(*world.Mail1.events);
                  };
                };
                world.time.After(after / 2, tell([](MailEvents& events) { events.Progress(100, 50); }));
                world.time.After(after, tell([taken, to = mail.recipient](MailEvents& events) {
                                   taken ? events.Done(to) : events.Error(to, "refused");
                                 }));
              };
            });
}

void WriteCircumstances(Dice& dice, Story& story) {
  WriteSettings(dice, story);
  WriteMailServer(dice, story);
  if (dice.OneIn(5)) {
    story.Add(kBeforeStart, "no program to start", [](World& world) {
      world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound); };
    });
  }
  if (dice.OneIn(2)) {
    story.Add(kBeforeStart, "every question is answered with yes",
              [](World& world) { world.dialogs.yes = true; });
  }
  if (dice.OneIn(10)) {
    story.Add(kBeforeStart, "no greeting file",
              [](World& world) { world.files.Delete(std::string(World::kHome) + "/Greets/Hello.wav"); });
  }
  if (dice.OneIn(10)) {
    story.Add(kBeforeStart, "no beep file",
              [](World& world) { world.files.Delete(std::string(World::kHome) + "/beep.wav"); });
  }
  const int older = dice.Below(5);
  for (int number = 0; number < older; ++number) {
    if (number != 2) {
      const auto name = std::to_string(number) + ".wav";
      story.Add(kBeforeStart, "an older message " + name,
                [name, number](World& world) { world.AddMessage(name, number == 3 ? 0ms : 1500ms); });
    } else {
      story.Add(kBeforeStart, "an older call", [](World& world) { world.AddCallWithoutMessage(); });
    }
  }
}

void WriteRings(Dice& dice, Story& story, milliseconds begin) {
  auto at = begin;
  for (int ring = 1 + dice.Below(6); ring > 0; --ring) {
    story.Add(at, "ring", [](World& world) { world.line->Ring(); });
    at += milliseconds(dice.OneIn(3) ? 1 : dice.Below(2000));  // double rings among them
  }
}

void WriteCallerIds(Dice& dice, Story& story, milliseconds begin) {
  for (int ids = dice.Below(3); ids > 0; --ids) {
    const auto name = dice.OneOf("Anna", "Ben", "");
    story.Add(Moment(dice, begin), "callerid " + name,
              [name](World& world) { world.line->CallerId(name, "555"); });
  }
}

void WriteDigits(Dice& dice, Story& story, milliseconds begin) {
  if (dice.OneIn(2)) return;
  const auto keys = dice.OneOf("12*", "4711*", "*", "0*", "12*12*", "999", "1", "#*12*");
  auto at = Moment(dice, begin);
  for (const char key : keys) {
    story.Add(at, std::string("press ") + key, [key](World& world) { world.line->Press(key); });
    at += milliseconds(dice.Below(400));
  }
}

void WriteVoice(Dice& dice, Story& story, milliseconds begin) {
  for (int changes = dice.Below(5); changes > 0; --changes) {
    const int level = dice.Below(2) * 500;
    story.Add(Moment(dice, begin), "level " + std::to_string(level),
              [level](World& world) { world.loud = level; });
  }
}

/// One call; gives the moment by which it has been hung up.
milliseconds WriteCall(Dice& dice, Story& story, milliseconds begin) {
  WriteFaults(dice, story, begin);
  story.Add(begin, "offer", [](World& world) { world.line->Offer(); });
  WriteRings(dice, story, begin);
  WriteCallerIds(dice, story, begin);
  WriteDigits(dice, story, begin);
  WriteVoice(dice, story, begin);
  WriteDesk(dice, story, begin);
  if (dice.OneIn(10)) {
    story.Add(Moment(dice, begin), "another call", [](World& world) { world.line->Offer(); });
  }
  auto end = Moment(dice, begin);
  if (dice.OneIn(5)) end += milliseconds(dice.OneIn(3) ? 250000 : 70000);  // beyond the longest message
  story.Add(end, "hangup", [](World& world) { world.line->HangUp(); });
  return end;
}

}  // namespace

Story RandomStory(std::uint64_t seed) {
  Dice dice(seed);
  Story story;
  WriteCircumstances(dice, story);
  const int calls = 1 + dice.Below(3);
  for (int call = 0; call < calls; ++call) {
    story.end = WriteCall(dice, story, story.end) + milliseconds(dice.Below(700));
  }
  story.Close();
  return story;
}

}  // namespace orven::test
