// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/runtime_error.h"
#include "simulation/story.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;

void Set(Writer& writer, const std::string& name, const std::string& value) {
  writer.Before("set " + name + " = \"" + value + "\"",
                [name, value](World& world) { world.registry.Set(name, value); });
}

void WriteSettings(Writer& writer) {
  Set(writer, "NumOfRing", std::to_string(1 + writer.Below(4)));
  Set(writer, "RecordMessage", writer.OneIn(6) ? "0" : "1");
  Set(writer, "ListMessageOnly", writer.OneIn(4) ? "1" : "0");
  Set(writer, "cDropSilence", writer.OneIn(4) ? "0" : "1");
  Set(writer, "SecSilence", writer.OneOf("0", "1", "2", "5"));
  Set(writer, "MaxRec", writer.OneIn(8) ? "0" : "1");
  Set(writer, "CompressMessages", writer.OneIn(3) ? "1" : "0");
  Set(writer, "PreScreen", writer.OneIn(3) ? "1" : "0");
  Set(writer, "Pass", writer.OneOf("12", "", "4711", "0"));
  Set(writer, "AppTo", writer.OneOf("program <NAME> <MESSAGE_PATH>", "program", ""));
  for (const char* choice :
       {"ViewDetails", "WhenMsgViewMsg", "cAnimation", "cCloseCallerView", "cPlayInIdle",
        "ActionsMailAllCalls", "ActionsAppAllCalls", "pMailTo", "WornDelete", "pAppTo"}) {
    Set(writer, choice, writer.OneOf("0", "1"));
  }
}

/// What becomes of each mail: it is told in steps, during later calls among others.
void WriteMailServer(Writer& writer) {
  const milliseconds after(writer.Below(12000));
  const bool taken = !writer.OneIn(3);
  writer.Before(std::string("the mail server ") + (taken ? "takes" : "refuses") + " a mail after " +
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

void WriteCircumstances(Writer& writer) {
  WriteSettings(writer);
  WriteMailServer(writer);
  if (writer.OneIn(5)) {
    writer.Before("no program to start", [](World& world) {
      world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound); };
    });
  }
  if (writer.OneIn(2)) {
    writer.Before("every question is answered with yes", [](World& world) { world.dialogs.yes = true; });
  }
  if (writer.OneIn(10)) {
    writer.Before("no greeting file",
                  [](World& world) { world.files.Delete(std::string(World::kHome) + "/Greets/Hello.wav"); });
  }
  if (writer.OneIn(10)) {
    writer.Before("no beep file",
                  [](World& world) { world.files.Delete(std::string(World::kHome) + "/beep.wav"); });
  }
  const int older = writer.Below(5);
  for (int number = 0; number < older; ++number) {
    if (number != 2) {
      const auto name = std::to_string(number) + ".wav";
      writer.Before("an older message " + name,
                    [name, number](World& world) { world.AddMessage(name, number == 3 ? 0ms : 1500ms); });
    } else {
      writer.Before("an older call", [](World& world) { world.AddCallWithoutMessage(); });
    }
  }
}

void WriteRings(Writer& writer) {
  auto at = writer.begin;
  for (int ring = 1 + writer.Below(6); ring > 0; --ring) {
    writer.story.Add(at, "ring", [](World& world) { world.line->Ring(); });
    at += milliseconds(writer.OneIn(3) ? 1 : writer.Below(2000));  // double rings among them
  }
}

void WriteCallerIds(Writer& writer) {
  for (int ids = writer.Below(3); ids > 0; --ids) {
    const auto name = writer.OneOf("Anna", "Ben", "");
    writer.Sometime("callerid " + name, [name](World& world) { world.line->CallerId(name, "555"); });
  }
}

void WriteDigits(Writer& writer) {
  if (writer.OneIn(2)) return;
  const auto keys = writer.OneOf("12*", "4711*", "*", "0*", "12*12*", "999", "1", "#*12*");
  auto at = writer.Moment();
  for (const char key : keys) {
    writer.story.Add(at, std::string("press ") + key, [key](World& world) { world.line->Press(key); });
    at += milliseconds(writer.Below(400));
  }
}

void WriteVoice(Writer& writer) {
  for (int changes = writer.Below(5); changes > 0; --changes) {
    const int level = writer.Below(2) * 500;
    writer.Sometime("level " + std::to_string(level), [level](World& world) { world.loud = level; });
  }
}

/// One call, at whose end it has been hung up.
void WriteCall(Writer& writer) {
  WriteFaults(writer);
  writer.story.Add(writer.begin, "offer", [](World& world) { world.line->Offer(); });
  WriteRings(writer);
  WriteCallerIds(writer);
  WriteDigits(writer);
  WriteVoice(writer);
  WriteDesk(writer);
  writer.SometimeOneIn(10, "another call", [](World& world) { world.line->Offer(); });
  auto end = writer.Moment();
  if (writer.OneIn(5)) end += milliseconds(writer.OneIn(3) ? 250000 : 70000);  // beyond the longest message
  writer.story.Add(end, "hangup", [](World& world) { world.line->HangUp(); });
  writer.begin = end + milliseconds(writer.Below(700));
}

}  // namespace

Story RandomStory(std::uint64_t seed) {
  Writer writer(seed);
  WriteCircumstances(writer);
  for (int calls = 1 + writer.Below(3); calls > 0; --calls) WriteCall(writer);
  writer.story.end = writer.begin;
  writer.story.Close();
  return std::move(writer.story);
}

}  // namespace orven::test
