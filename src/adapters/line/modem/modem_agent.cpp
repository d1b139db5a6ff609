// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_agent.h"

#include <utility>

#include "adapters/line/modem/modem_firmware.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// How often it is looked whether a modem was plugged in, and whether another program has let go of it.
constexpr milliseconds kLookForPort{2'000};
/// A modem that answers nothing needs a hand; one that is no voice modem another modem.
constexpr milliseconds kLookForAnswer{10'000};

/// What is at a port may be something else than a modem, and is not to be bothered all the time.
constexpr milliseconds kAskSamePorts{60'000};

/// A modem that stops working while no call comes is noticed so soon.
constexpr milliseconds kHealthInterval{60'000};
constexpr int kHealthTries = 2;

constexpr milliseconds kLongestGoodbye{1'300};

std::string TroubleOf(PreparedModem::State state, const std::string& port) {
  switch (state) {
    case PreparedModem::State::Silent:
      return "The modem at " + port +
             " does not answer: switch it off and on, or unplug it and plug it in again";
    case PreparedModem::State::NoModem: return "What is at " + port + " is no modem";
    case PreparedModem::State::NoVoice: return "The modem at " + port + " is no voice modem";
    case PreparedModem::State::NoFormat:
      return "The voice modem at " + port + " offers no sound format that can be used";
    case PreparedModem::State::Ready: break;
  }
  return "";
}

}  // namespace

ModemAgent::ModemAgent(ModemLineSettings settings, Ports ports)
    : settings_(std::move(settings)),
      ports_(ports),
      talk_(ports.link, ports.loop, *this),
      health_(ports.loop.MakeTimer([this] {
        if (state_ == State::Ready && !call_) CheckHealth(kHealthTries);
      })) {}

ModemAgent::~ModemAgent() {
  ports_.link.Close();
}

std::optional<std::string> ModemAgent::Start() {
  state_ = State::Away;
  health_->Start(kHealthInterval);
  candidates_ = {settings_.port};
  if (settings_.port == kAnyPort) {
    LookForModem();
    return std::nullopt;
  }
  port_ = settings_.port;
  const auto problem = ports_.link.Open(port_, kUsualRate, *this);
  if (!problem) {
    Prepare();
  } else if (problem->kind == LinkProblem::Kind::Forbidden) {
    state_ = State::Closed;
    return problem->text;
  } else {
    LetGo(problem->text, kLookForPort);
  }
  return std::nullopt;
}

void ModemAgent::LookForModem() {
  if (state_ != State::Away) return;
  if (settings_.port != kAnyPort) {
    candidates_ = {settings_.port};
    return OpenNextPort();
  }
  const auto found = settings_.find_ports();
  if (found.empty()) return LetGo("No modem is plugged in", kLookForPort);
  if (found == tried_ && ports_.clock.Uptime() < try_again_) return LetGo(trouble_, kLookForPort);
  candidates_ = tried_ = found;
  try_again_ = ports_.clock.Uptime() + kAskSamePorts;
  OpenNextPort();
}

void ModemAgent::OpenNextPort() {
  std::string problem_text;
  while (!candidates_.empty()) {
    port_ = candidates_.front();
    candidates_.erase(candidates_.begin());
    const auto problem = ports_.link.Open(port_, kUsualRate, *this);
    if (!problem) return Prepare();
    // Of a modem that is gone has been told already that it is not there.
    if (problem->kind != LinkProblem::Kind::Absent || trouble_.empty()) problem_text = problem->text;
  }
  LetGo(problem_text.empty() ? trouble_ : problem_text, kLookForPort);
}

void ModemAgent::Prepare() {
  state_ = State::Preparing;
  if (trouble_.empty()) settings_.state_news("Asking the modem");
  preparation_ =
      std::make_unique<ModemPreparation>(talk_, ports_.link, ports_.loop, [this](const auto& modem) {
        // Not within the preparation, which goes now.
        ports_.loop.Post(lifeline_.Bind([this, modem] { Prepared(modem); }));
      });
  preparation_->Start();
}

void ModemAgent::Prepared(const PreparedModem& modem) {
  if (state_ != State::Preparing) return;
  preparation_.reset();
  if (modem.state != PreparedModem::State::Ready) {
    if (candidates_.empty()) return LetGo(TroubleOf(modem.state, port_), kLookForAnswer);
    ports_.link.Close();
    state_ = State::Away;
    return OpenNextPort();
  }
  if (modem.identity != modem_.identity) {
    settings_.report("The modem at " + port_ + " is: " + modem.identity);
    if (const auto advice = FirmwareAdvice(modem.identity); !advice.empty()) settings_.report(advice);
  }
  modem_ = modem;
  tried_.clear();
  state_ = State::Ready;
  Trouble("");
}

void ModemAgent::LetGo(const std::string& trouble, milliseconds retry) {
  talk_.Forget();
  ports_.link.Close();
  preparation_.reset();
  state_ = State::Away;
  Trouble(trouble);
  ports_.loop.After(retry, lifeline_.Bind([this, look = ++look_] {
    if (look == look_) LookForModem();
  }));
}

void ModemAgent::Trouble(const std::string& text) {
  settings_.state_news(text.empty() ? kModemReady : text);
  if (text == trouble_) return;
  trouble_ = text;
  settings_.report(text.empty() ? "The modem at " + port_ + " works again" : text);
  ports_.events.Trouble(text);
}

void ModemAgent::CheckHealth(int tries_left) {
  talk_.Ask("AT", [this, tries_left](const ModemReply& reply) {
    if (state_ != State::Ready || call_) return;
    if (reply.kind == ModemReply::Kind::Nothing)
      return tries_left > 1 ? CheckHealth(tries_left - 1) : ModemFailed();
    if (reply.echoed) Prepare();  // it was switched off and on, and has forgotten what it was told
  });
}

void ModemAgent::ModemFailed() {
  if (state_ == State::Ready) Prepare();
}

void ModemAgent::Lost(const std::string& reason) {
  if (state_ == State::Closed) return;
  talk_.Forget();
  if (call_) call_->Lost();
  LetGo("The modem at " + port_ + " is gone" + (reason.empty() ? "" : ": " + reason) +
            "; it is used again as soon as it is back",
        kLookForPort);
}

ModemCall& ModemAgent::CallInProgress() {
  if (!call_) {
    call_ = std::make_unique<ModemCall>(
        calls_ + 1, modem_,
        ModemCallPorts{talk_, ports_.link, ports_.loop, ports_.clock, ports_.audio, ports_.events},
        ModemCall::Listener{[this] { ports_.loop.Post(lifeline_.Bind([this] { CallOver(); })); },
                            [this] { ports_.loop.Post(lifeline_.Bind([this] { ModemFailed(); })); },
                            settings_.report});
  }
  return *call_;
}

void ModemAgent::CallOver() {
  if (call_ && call_->Offered()) ++calls_;
  call_.reset();
  if (!closed_) return;
  ports_.link.Close();
  std::exchange(closed_, nullptr)();
}

void ModemAgent::Shutdown(std::function<void()> done) {
  const bool answered = call_ && call_->Answered();
  state_ = State::Closed;
  health_->Stop();
  ++look_;
  preparation_.reset();
  closed_ = std::move(done);
  if (!call_) return CallOver();
  if (!answered) return call_->Lost();
  call_->Drop(0);
  ports_.loop.After(kLongestGoodbye, lifeline_.Bind([this] {
    if (call_) call_->Lost();
  }));
}

ModemCall* ModemAgent::Find(CallNumber call) const {
  return call_ && call_->Number() == call ? call_.get() : nullptr;
}

void ModemAgent::Answer(CallNumber call, std::int32_t request) {
  if (auto* found = Find(call)) return found->Answer(request);
  ports_.events.RequestDone(request, kTelephonyNoCall);
}

void ModemAgent::Drop(CallNumber call, std::int32_t request) {
  if (auto* found = Find(call)) return found->Drop(request);
  ports_.events.RequestDone(request, kTelephonyOk);
}

void ModemAgent::MonitorDigits(CallNumber call, bool on) {
  if (auto* found = Find(call)) found->MonitorDigits(on);
}

void ModemAgent::Line(const std::string& text) {
  if (state_ != State::Ready) return;
  if (text == "RING") return CallInProgress().Ring();
  if (text == "NO CARRIER" || text == "BUSY") {
    if (call_) call_->NoCarrier();
    return;
  }
  if (call_) return call_->CallerIdLine(text);
  // Whatever else a modem says of itself begins no call.
  if (CallerIdLines().Take(text)) CallInProgress().CallerIdLine(text);
}

void ModemAgent::Sign(char code) {
  if (state_ != State::Ready && !(call_ && closed_)) return;
  if (code == 'R') return CallInProgress().Ring();
  if (call_) call_->Sign(code);
}

void ModemAgent::Packet(const std::string& text) {
  if (state_ == State::Ready) CallInProgress().CallerIdPacket(text);
}

void ModemAgent::Sound(std::span<const std::uint8_t> bytes) {
  if (call_) call_->Sound(bytes);
}

void ModemAgent::SoundEnded() {
  if (call_) call_->SoundEnded();
}

}  // namespace orven
