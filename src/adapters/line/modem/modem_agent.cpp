// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_agent.h"

#include <algorithm>
#include <utility>

#include "adapters/line/modem/modem_preparation.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// Interval at which we check whether a modem was plugged in, or released by another program.
constexpr milliseconds kLookForPort{2'000};
/// A silent modem must be switched off and on, or was plugged in a moment ago.
constexpr milliseconds kLookForAnswer{10'000};
/// Another kind of device at a port must not be disturbed all the time.
constexpr milliseconds kLookForOther{60'000};

/// How soon we notice that an idle modem has stopped working.
constexpr milliseconds kHealthInterval{60'000};
constexpr int kHealthTries = 2;

/// Hanging up properly takes less. After this time the hang-up command is sent blindly.
constexpr milliseconds kLongestGoodbye{1'200};
constexpr milliseconds kLastWord{100};

LineTrouble TroubleOf(PreparedModem::State state, const std::string& port) {
  switch (state) {
    case PreparedModem::State::Silent:
      return {Words("The modem does not answer: switch it off and on, or unplug it and plug it in again"),
              "The modem at " + port +
                  " does not answer: switch it off and on, or unplug it and plug it in again"};
    case PreparedModem::State::NoModem:
      return {Words("There is no modem at the line's port: choose the modem's port in Options, Devices"),
              "The device at " + port + " is not a modem"};
    case PreparedModem::State::NoVoice:
      return {Words("The modem is not a voice modem: ORVEN needs one that can play and record"),
              "The modem at " + port + " is not a voice modem"};
    case PreparedModem::State::NoFormat:
      return {Words("The modem's audio format is not supported: use another modem"),
              "The voice modem at " + port + " offers no supported audio format"};
    case PreparedModem::State::Ready: break;
  }
  return {};
}

std::string Joined(const std::vector<std::string>& ports) {
  std::string text;
  for (const auto& port : ports) text += (text.empty() ? "" : ", ") + port;
  return text;
}

LineTrouble TroubleOf(const LinkProblem& problem) {
  switch (problem.kind) {
    case LinkProblem::Kind::Absent:
      return {Words("The modem is not plugged in: plug it in, and ORVEN uses it"), problem.text};
    case LinkProblem::Kind::Taken:
      return {Words("Another program uses the modem: end that program, and ORVEN uses the modem"),
              problem.text};
    case LinkProblem::Kind::Forbidden:
      return {Words("You may not use the modem's port: join the group \"dialout\" and log in again"),
              problem.text};
    case LinkProblem::Kind::Failed: break;
  }
  return {Words("The modem's port cannot be used: unplug the modem and plug it in again"), problem.text};
}

LineTrouble NoModem() {
  return {Words("No modem is plugged in: plug one in, and ORVEN uses it"), "No modem is plugged in"};
}

milliseconds RetryAfter(PreparedModem::State state) {
  return state == PreparedModem::State::Silent ? kLookForAnswer : kLookForOther;
}

}  // namespace

ModemAgent::ModemAgent(ModemLineSettings settings, Ports ports)
    : settings_(std::move(settings)),
      ports_(std::move(ports)),
      channel_(ports_.link, ports_.loop, *this),
      health_(ports_.loop.MakeTimer([this] {
        if (state_ == State::Ready && !call_) CheckHealth(kHealthTries);
      })) {}

ModemAgent::~ModemAgent() {
  ports_.link.Close();
}

std::optional<LineTrouble> ModemAgent::Start() {
  state_ = State::Away;
  health_->Start(kHealthInterval);
  retry_ = kLookForOther;
  if (settings_.port != kAnyPort) {
    candidates_ = {settings_.port};
    const auto problem = OpenNextPort();
    if (problem && problem->kind == LinkProblem::Kind::Forbidden) {
      state_ = State::Closed;
      return TroubleOf(*problem);
    }
    if (problem) LetGo(TroubleOf(*problem), kLookForPort);
  } else {
    LookForModem();
  }
  return std::nullopt;
}

void ModemAgent::LookForModem() {
  if (state_ != State::Away) return;
  const bool any = settings_.port == kAnyPort;
  const auto ports = any ? settings_.find_ports() : std::vector{settings_.port};
  if (ports.empty()) return LetGo(NoModem(), kLookForPort);
  if (any && ports == asked_ && Now() < ask_again_) return LetGo(trouble_, kLookForPort);
  if (ports != asked_) asked_since_ = Now();
  candidates_ = asked_ = ports;
  retry_ = kLookForOther;
  Try();
}

/// Opens the next candidate that can be opened; when none is left, tries again later.
void ModemAgent::Try() {
  while (!candidates_.empty()) {
    const auto problem = OpenNextPort();
    if (!problem) return;
    failure_ = TroubleOf(*problem);
    retry_ = std::min(retry_, kLookForPort);
    // It was already reported that the modem has been unplugged.
    if (problem->kind == LinkProblem::Kind::Absent && gone_) failure_ = trouble_;
  }
  if (asked_.size() > 1)
    failure_ = {Words("No voice modem is found: plug one in, or choose another line in Options, Devices"),
                "No voice modem answers at " + Joined(asked_)};
  // A device that has been silent for a minute is perhaps not a modem.
  if (retry_ == kLookForAnswer && settings_.port == kAnyPort && Now() - asked_since_ > kLookForOther)
    retry_ = kLookForOther;
  ask_again_ = Now() + retry_;
  LetGo(failure_, std::min(retry_, settings_.port == kAnyPort ? kLookForPort : kLookForAnswer));
}

std::optional<LinkProblem> ModemAgent::OpenNextPort() {
  port_ = candidates_.front();
  candidates_.erase(candidates_.begin());
  auto problem = ports_.link.Open(port_, kUsualRate, *this);
  if (!problem) Prepare();
  return problem;
}

void ModemAgent::Prepare() {
  state_ = State::Preparing;
  if (trouble_.log.empty()) settings_.state_news("Asking the modem");
  preparation_ =
      std::make_unique<ModemPreparation>(channel_, ports_.link, ports_.loop, [this](const auto& modem) {
        // Posted, because Prepared destroys the preparation that is calling this.
        ports_.loop.Post(lifeline_.Bind([this, modem] { Prepared(modem); }));
      });
  preparation_->Start();
}

void ModemAgent::Prepared(const PreparedModem& modem) {
  if (state_ != State::Preparing) return;
  preparation_.reset();
  if (modem.state != PreparedModem::State::Ready) {
    ports_.link.Close();
    state_ = State::Away;
    failure_ = TroubleOf(modem.state, port_);
    retry_ = std::min(retry_, RetryAfter(modem.state));
    return Try();
  }
  if (modem.identity != modem_.identity) {
    settings_.report("The modem at " + port_ + " is: " + modem.identity);
    if (const auto advice = FirmwareAdvice(modem.identity); !advice.empty()) settings_.report(advice);
  }
  modem_ = modem;
  asked_.clear();
  state_ = State::Ready;
  gone_ = false;
  Trouble({});
}

void ModemAgent::LetGo(const LineTrouble& trouble, milliseconds retry) {
  channel_.Forget();
  ports_.link.Close();
  preparation_.reset();
  state_ = State::Away;
  Trouble(trouble);
  ports_.loop.After(retry, lifeline_.Bind([this, look = ++look_] {
    if (look == look_) LookForModem();
  }));
}

void ModemAgent::Trouble(const LineTrouble& trouble) {
  settings_.state_news(trouble.log.empty() ? kModemReady : trouble.log);
  if (trouble.log == trouble_.log) return;
  trouble_ = trouble;
  settings_.report(trouble.log.empty() ? "The modem at " + port_ + " works again" : trouble.log);
  ports_.events({.kind = LineEvent::Kind::Trouble, .trouble = trouble.owner});
}

void ModemAgent::CheckHealth(int tries_left) {
  channel_.Ask("AT", [this, tries_left](const ModemReply& reply) {
    if (state_ != State::Ready || call_) return;
    if (reply.kind == ModemReply::Kind::Nothing)
      return tries_left > 1 ? CheckHealth(tries_left - 1) : ModemFailed();
    if (reply.echoed && !modem_.always_echoes)
      Prepare();  // it was switched off and on, and lost its settings
  });
}

void ModemAgent::ModemFailed() {
  if (state_ == State::Ready) Prepare();
}

void ModemAgent::Lost() {
  if (state_ == State::Closed) return;
  channel_.Forget();
  if (call_) call_->Lost();
  gone_ = true;
  LetGo({Words("The modem was unplugged: plug it in again, and ORVEN uses it"),
         "The modem at " + port_ + " was unplugged; it is used again when it is plugged in"},
        kLookForPort);
}

ModemCall& ModemAgent::CallInProgress() {
  if (!call_) {
    call_ = std::make_unique<ModemCall>(
        calls_ + 1, modem_, channel_, ports_,
        ModemCall::Listener{[this] { ports_.loop.Post(lifeline_.Bind([this] { CallOver(); })); },
                            [this] { ports_.loop.Post(lifeline_.Bind([this] { ModemFailed(); })); },
                            settings_.report});
  }
  return *call_;
}

void ModemAgent::CallOver() {
  if (call_ && call_->Offered()) ++calls_;
  channel_.Forget();
  call_.reset();
  if (!closed_) return;
  ports_.link.Close();
  std::exchange(closed_, nullptr)();
}

void ModemAgent::Shutdown(std::function<void()> done) {
  const bool off_hook = call_ && call_->OffHook();
  state_ = State::Closed;
  health_->Stop();
  ++look_;
  if (preparation_) channel_.Forget();
  preparation_.reset();
  closed_ = std::move(done);
  if (!call_) return CallOver();
  if (!off_hook) return call_->Lost();
  call_->Drop(0);
  ports_.loop.After(kLongestGoodbye, lifeline_.Bind([this] {
    if (!call_) return;
    channel_.Forget();
    channel_.Ask("ATH");
    ports_.loop.After(kLastWord, lifeline_.Bind([this] {
      if (call_) call_->Lost();
    }));
  }));
}

ModemCall* ModemAgent::Find(CallNumber call) const {
  return call_ && call_->Number() == call ? call_.get() : nullptr;
}

void ModemAgent::Answer(CallNumber call, std::int32_t request) {
  if (auto* found = Find(call)) return found->Answer(request);
  ports_.events({.kind = LineEvent::Kind::Proc, .number = request, .result = kTelephonyNoCall});
}

void ModemAgent::Drop(CallNumber call, std::int32_t request) {
  if (auto* found = Find(call)) return found->Drop(request);
  ports_.events({.kind = LineEvent::Kind::Proc, .number = request});
}

void ModemAgent::MonitorDigits(CallNumber call, bool on) {
  if (auto* found = Find(call)) found->MonitorDigits(on);
}

void ModemAgent::Line(const std::string& text) {
  if (text == "NO CARRIER" || text == "BUSY") {
    if (call_) call_->NoCarrier();
    return;
  }
  if (state_ != State::Ready) return;
  // Some modems report distinctive rings: "RING A".
  if (text == "RING" || text.starts_with("RING ")) return CallInProgress().Ring();
  if (call_) return call_->CallerIdLine(text);
  // Other unsolicited lines do not start a call.
  if (CallerIdLines().Take(text)) CallInProgress().CallerIdLine(text);
}

void ModemAgent::Event(char code) {
  if (state_ != State::Ready && !(call_ && closed_)) return;
  if (code == 'R') return CallInProgress().Ring();
  if (call_) call_->Event(code);
}

void ModemAgent::Packet(const std::string& text) {
  if (state_ == State::Ready) CallInProgress().CallerIdPacket(text);
}

void ModemAgent::Audio(std::span<const std::uint8_t> bytes) {
  if (call_) call_->Audio(bytes);
}

void ModemAgent::AudioEnded() {
  if (call_) call_->AudioEnded();
}

}  // namespace orven
