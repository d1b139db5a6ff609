// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkup/own_call.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/error_trap.h"
#include "greetings/greeting_library.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr auto kLook = 100ms;

/// Between two rings there is a minute at most.
constexpr milliseconds kLongestRing = 60s;

/// For a step that needs no time of its own.
constexpr milliseconds kPatience = 10s;

constexpr milliseconds kLongestGreeting = 5min;

/// Among so many of the latest calls ours is looked for.
constexpr std::int32_t kLatest = 20;

/// What each step is for.
constexpr std::array kWaiting{
    Tr("The line rings and is answered"), Tr("The caller hears the greeting"),
    Tr("The caller hears the beep"),      Tr("The caller says a sentence"),
    Tr("The sentence is recorded"),       Tr("The call is in the list"),
    Tr("The message is played"),
};
static_assert(kWaiting.size() == kOwnCallSteps);

constexpr const char* kNotRecording =
    Tr("Messages are not recorded: switch on \"Record Message\" in the toolbar.");

std::size_t At(OwnCallStep step) {
  return static_cast<std::size_t>(step);
}

}  // namespace

OwnCall::OwnCall(Parts parts, std::function<void()> changed)
    : parts_(parts), changed_(std::move(changed)), tmrLook_(parts.loop.MakeTimer([this] { Look(); })) {
  for (std::size_t i = 0; i < kOwnCallSteps; ++i) steps_[i] = {State::Waiting, kWaiting[i]};
}

Words OwnCall::Obstacle() const {
  if (!parts_.line.LineOn()) return Tr("The line is off: switch it on first.");
  if (parts_.Tapi1.HasCall()) return Tr("The line has a call: try again when it is over.");
  return parts_.caller.Obstacle(parts_.line.CurrentIndex());
}

void OwnCall::Start() {
  if (running_ || !Obstacle().Empty()) return;
  for (std::size_t i = 0; i < kOwnCallSteps; ++i) steps_[i] = {State::Waiting, kWaiting[i]};
  running_ = true;
  serial_ = 0;
  tmrLook_->Start(kLook);
  Begin(OwnCallStep::Ring);
  parts_.caller.Call(parts_.line.CurrentIndex(), GreetingPath(parts_.home, parts_.settings.Greeting),
                     parts_.home.Path("\\beep.wav"), [this](const OwnCallerNews& news) { Take(news); });
}

void OwnCall::Cancel() {
  if (running_) Fail(Tr("It was cancelled."));
}

bool OwnCall::Passed() const {
  return std::ranges::all_of(steps_, [](const auto& step) { return step.state == State::Done; });
}

void OwnCall::Take(const OwnCallerNews& news) {
  using Kind = OwnCallerNews::Kind;
  if (!running_) return;
  switch (news.kind) {
    case Kind::Rings: return;
    case Kind::Answered: return Answered();
    case Kind::Greeting:
      return Finish(OwnCallStep::Greeting,
                    Words("The caller heard the greeting \"%1\".").Arg(parts_.settings.Greeting), news.fault);
    case Kind::Beep: return Finish(OwnCallStep::Beep, Tr("The caller heard the beep."), news.fault);
    case Kind::Spoken: return Finish(OwnCallStep::Spoken, Tr("The caller said a sentence."), news.fault);
    case Kind::Over:
      if (!news.fault.Empty()) Fail(step_ == OwnCallStep::Spoken && !Records() ? kNotRecording : news.fault);
      return;
  }
}

/// The call that the line has now is ours: it has only one, and has answered.
void OwnCall::Answered() {
  serial_ = parts_.call.serial;
  const auto due = std::to_string(std::max<int>(1, parts_.settings.NumOfRing));
  const auto& ring = parts_.call.ring_count_text;
  Finish(OwnCallStep::Ring, Words("Answered at ring %1.").Arg(ring),
         ring == due ? Words()
                     : Words("It was answered at ring %1, not at ring %2: somebody answered by hand.")
                           .Arg(ring)
                           .Arg(due));
}

void OwnCall::Look() {
  if (step_ == OwnCallStep::Recorded && !comparing_) LookAtCall();
  if (running_ && step_ == OwnCallStep::Played) LookAtPlayer();
  left_ -= kLook;
  if (running_ && left_ <= 0ms) Fail(Tr("It took too long."));
}

void OwnCall::LookAtCall() {
  if (parts_.call.serial == serial_ && parts_.call.InProgress()) return;
  if (parts_.call.serial != serial_) return Fail(Tr("Another call came in: try again when it is over."));
  call_ = parts_.call;
  if (call_.message_left && !call_.message_path.empty()) return CompareMessage();
  if (!Records()) return Fail(kNotRecording);
  Fail(call_.message_left ? Words("The message could not be stored: see the system log for the reason.")
                          : Words("No message was recorded: see the system log for the reason."));
}

void OwnCall::CompareMessage() {
  comparing_ = true;
  const auto holds = std::make_shared<bool>(false);
  const auto compare = [holds, &caller = parts_.caller, path = call_.message_path] {
    *holds = caller.Holds(path);
  };
  const auto compared = lifeline_.Bind([this, holds, serial = serial_] {
    if (!comparing_ || serial != serial_) return;
    Finish(
        OwnCallStep::Recorded, Words("The message %1 holds the sentence.").Arg(call_.message_file_name),
        *holds ? Words() : Words("The message %1 does not hold the sentence.").Arg(call_.message_file_name));
    CheckRecord();
  });
  parts_.background.Run(compare, [compared](const std::exception_ptr&) { compared(); });
}

void OwnCall::CheckRecord() {
  const auto row = FindRow();
  if (row == 0)
    return Fail(
        Tr("The records cannot be written now; the call is filed later. See the system log for the reason."));
  Finish(OwnCallStep::Filed, Words("The call is in the list, from %1.").Arg(call_.caller_name), {});
  Play(row);
}

/// The row of our call, 0 when there is none. Other calls may have come since.
std::int32_t OwnCall::FindRow() const {
  std::int32_t found = 0;
  const auto& list = parts_.list;
  ErrorTrap::Silent()([&] {
    for (std::int32_t row = std::min(list.Count(), kLatest); row > 0; --row)
      if (list.Row(row).key == call_.message_file_name) found = row;
  });
  return found;
}

void OwnCall::Play(std::int32_t row) {
  ErrorTrap::Silent()([&] { parts_.list.Select(row); });
  length_ = milliseconds(std::llround(1000 * parts_.WavePlay.FileLength(call_.message_path)));
  left_ += length_;
  played_ = 0ms;
  parts_.player.Play();
  if (!parts_.player.Playing())
    Fail(Tr("The message cannot be played: choose another sound card in Options."));
}

/// A sound card that is unplugged ends it early, and so does a person.
void OwnCall::LookAtPlayer() {
  played_ += kLook;
  if (parts_.player.Playing()) return;
  Finish(OwnCallStep::Played, Tr("The message was played."),
         2 * played_ >= length_ ? Words()
                                : Words("The message stopped before its end: if nobody stopped it, choose "
                                        "another sound card in Options."));
}

void OwnCall::Begin(OwnCallStep step) {
  step_ = step;
  comparing_ = false;
  left_ = kPatience;
  if (step == OwnCallStep::Ring) left_ += std::max<int>(1, parts_.settings.NumOfRing) * kLongestRing;
  if (step == OwnCallStep::Greeting) left_ += kLongestGreeting;
  steps_[At(step)].state = State::Running;
  changed_();
}

/// The steps go on after a fault, for there may be several.
void OwnCall::Finish(OwnCallStep step, const Words& found, const Words& fault) {
  steps_[At(step)] = {fault.Empty() ? State::Done : State::Failed, fault.Empty() ? found : fault};
  if (step == OwnCallStep::Played) return End();
  Begin(static_cast<OwnCallStep>(At(step) + 1));
}

void OwnCall::Fail(const Words& fault) {
  steps_[At(step_)] = {State::Failed, fault};
  End();
}

void OwnCall::End() {
  running_ = false;
  tmrLook_->Stop();
  parts_.caller.HangUp();
  changed_();
}

}  // namespace orven
