// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkup/check_up.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "actions/actions_dialog.h"
#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "greetings/greeting_library.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using State = CheckResult::State;

/// A server is waited for up to 20 s.
constexpr auto kLimit = 30s;

/// A file system may note times that are a moment ahead of the clock.
constexpr auto kAhead = 1h;

/// Makes sure that there is room, too.
constexpr std::size_t kProbeSize = 4096;

void TryToWrite(Files& files, const std::string& folder) {
  const auto path = folder + ".check-up";
  try {
    files.Append(path, std::string(kProbeSize, ' '));
  } catch (const RuntimeError&) {
    ErrorTrap::Silent()([&] { files.Delete(path); });  // a full disk has room for an empty file
    throw;
  }
  files.Delete(path);
}

/// Why `work` fails; nothing when it succeeds.
template <class Work>
std::optional<Words> FailureOf(const Work& work) {
  try {
    work();
    return std::nullopt;
  } catch (const std::exception& error) {
    return ReasonOf(error);
  }
}

}  // namespace

CheckUp::CheckUp(Parts parts, std::function<void()> changed)
    : parts_(std::move(parts)), changed_(std::move(changed)) {}

CheckUp::~CheckUp() {
  parts_.lines.CancelTest();
  parts_.sounds.Cancel();
}

EventLoop::Task CheckUp::Bind(EventLoop::Task task) const {
  return lifeline_.Bind([this, round = round_, task = std::move(task)] {
    if (round == round_) task();
  });
}

void CheckUp::Start() {
  ++round_;
  results_ = {};
  parts_.loop.After(kLimit, Bind([this] { Expire(); }));
  Set(CheckLink::Machine, Good(Tr("The program is running.")));
  CheckLine();
  CheckSounds();
  CheckDisk();
  CheckCard();
  CheckMail();
}

void CheckUp::Set(CheckLink link, CheckResult result) {
  results_.At(link) = std::move(result);
  changed_();
}

void CheckUp::CheckLine() {
  const auto& health = parts_.line.Health();
  if (!health.trouble.Empty()) {
    Set(CheckLink::Line, Bad(Words("%1.").Arg(health.trouble)));
  } else if (health.on) {
    Set(CheckLink::Line, Good(Words("\"%1\" is open.").Arg(parts_.line.CurrentName())));
  } else {
    Set(CheckLink::Line, Bad(health.trying ? Tr("It is not open yet, and is tried again by itself.")
                                           : Tr("It is off, so nobody answers: press On in the toolbar.")));
  }
  TestLine();
}

void CheckUp::TestLine() {
  std::optional<TelephoneLine> line;
  ErrorTrap::Silent()([&] {
    const auto configured = parts_.lines.Read();
    for (const auto& one : configured.lines)
      if (one.name == parts_.line.CurrentName() && !line) line = one;
    // What is wrong in the file is left out, and the line may be another one than its owner wants.
    if (!configured.complaints.empty() && results_.At(CheckLink::Line).state == State::Good)
      Set(CheckLink::Line, Bad(configured.complaints.front()));
  });
  if (!line) {
    Set(CheckLink::Port, Bad(Tr("No telephone line is chosen: choose one in Options, Devices.")));
    return Set(CheckLink::Registration, Note(Tr("There is no line to register.")));
  }
  parts_.lines.Test(*line, [this, line = *line, round = round_](const LineTestResult& result) {
    if (round == round_) TakeLineTest(line, result);
  });
}

void CheckUp::TakeLineTest(const TelephoneLine& line, const LineTestResult& result) {
  const auto outcome = result.passed ? Good(result.text) : Bad(result.text);
  if (line.kind != LineKind::Sip) {
    Set(CheckLink::Port, outcome);
    return Set(CheckLink::Registration, Note(Tr("This kind of line has no server.")));
  }
  if (!result.passed && result.control == "txtListen") {
    Set(CheckLink::Port, outcome);
    return Set(CheckLink::Registration, Note(Tr("It was not checked, because the port comes first.")));
  }
  Set(CheckLink::Port, Good(Words("Calls can come in at %1.").Arg(line.listen)));
  Set(CheckLink::Registration, line.server.empty() && result.passed
                                   ? Note(Tr("The line has no account: it is called at its address."))
                                   : outcome);
}

void CheckUp::CheckSounds() {
  const auto& name = parts_.settings.Greeting;
  const auto take_beep = [this, round = round_](const Waveform& sound) {
    if (round == round_) Set(CheckLink::Beep, BeepResult(sound));
  };
  parts_.sounds.Request(GreetingPath(parts_.home, name),
                        [this, name, take_beep, round = round_](const Waveform& sound) {
                          if (round != round_) return;
                          Set(CheckLink::Greeting, GreetingResult(name, sound));
                          parts_.sounds.Request(parts_.home.Path("\\beep.wav"), take_beep);
                        });
}

/// A disk may hang, so all but the records themselves is done in the background.
void CheckUp::CheckDisk() {
  struct Found {
    std::uint64_t room = 0;
    std::optional<Words> no_room, failure;
    Clock::WallTime written{};
  };
  const auto found = std::make_shared<Found>();
  const auto locked = FailureOf([this] {
    (void)parts_.DataBase1.RecordCount();
    parts_.DataBase1.Close(0);  // no call has this key, but the records must be writable
  });
  const auto look = [found, &files = parts_.files, messages = parts_.folders.Serving(),
                     home = parts_.home.Path("\\")] {
    ErrorTrap::Silent()([&] { found->written = files.LastModified(home + "Calls"); });
    found->no_room = FailureOf([&] { found->room = files.Room(messages); });
    found->failure = FailureOf([&] {
      TryToWrite(files, home);
      TryToWrite(files, messages);
    });
  };
  const auto tell = Bind([this, found, locked] {
    Set(CheckLink::Room, found->no_room
                             ? Bad(Words("The messages folder cannot be reached: %1.").Arg(*found->no_room))
                             : RoomResult(found->room, parts_.settings.CompressMessages != 0));
    const auto& failure = locked ? locked : found->failure;
    Set(CheckLink::Records,
        failure ? Bad(Words("Calls and messages cannot be stored: %1. Make room or change the permissions.")
                          .Arg(*failure))
                : Good(Tr("Calls and messages can be stored.")));
    CheckClock(found->written);
  });
  parts_.background.Run(look, [tell](const std::exception_ptr&) { tell(); });
}

void CheckUp::CheckCard() {
  const auto names = parts_.cards.Names();
  const auto number = static_cast<std::size_t>(std::max<int>(0, parts_.settings.Sound));
  if (names.size() <= 1 && number == 0)
    return Set(CheckLink::Sound,
               Note(Tr("No sound card is found: messages can be heard by telephone only.")));
  if (number >= names.size() || names[number].empty())
    return Set(CheckLink::Sound,
               Bad(Tr("The chosen sound card is not there: connect it, or choose another one in "
                      "Options, Devices.")));
  const auto name = number == 0 ? Words("Default output") : Words(names[number]);
  Set(CheckLink::Sound, Good(Words("Messages are played on \"%1\".").Arg(name)));
}

void CheckUp::CheckMail() {
  if (parts_.settings.pMailTo == 0) return Set(CheckLink::Mail, Note(Tr("Mail is switched off.")));
  const auto account = StoredAccount(parts_.store);
  mail_test_ = parts_.mail.TryServer(account, [this, round = round_](const MailTestResult& result) {
    if (round != round_) return;
    if (!result.passed) return Set(CheckLink::Mail, Bad(result.text));
    const Words kept = DescribeMails(parts_.Mail1.State());
    if (kept.Empty()) return Set(CheckLink::Mail, Good(result.text));
    Set(CheckLink::Mail, Bad(Words("%1 %2.").Arg(result.text).Arg(kept)));
  });
}

/// The records were written at `written`.
void CheckUp::CheckClock(Clock::WallTime written) {
  const auto now = parts_.clock.Now();
  const auto date = parts_.clock.DateText(now), time = parts_.clock.TimeText(now);
  Set(CheckLink::Clock,
      written > now + kAhead
          ? Bad(Words("It shows %1 %2, but the latest call was later: set the date and the time.")
                    .Arg(date)
                    .Arg(time))
          : Good(Words("It shows %1 %2.").Arg(date).Arg(time)));
}

void CheckUp::Expire() {
  for (auto& result : results_)
    if (result.state == State::Checking)
      result = Bad(Words("There was no answer within %1 s: a disk or a server hangs.").Arg(kLimit / 1s));
  changed_();
}

}  // namespace orven
