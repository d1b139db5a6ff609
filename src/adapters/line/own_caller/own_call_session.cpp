// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/own_caller/own_call_session.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "adapters/line/sip/listen_address.h"
#include "adapters/line/sip/session_description.h"
#include "base/runtime_error.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using Kind = OwnCallerNews::Kind;

/// A line on this computer rings at once.
constexpr auto kRingLimit = 5s;

/// The greeting begins when the line has been answered, the beep after the greeting.
constexpr std::size_t kPatience = std::size_t{3} * kSampleRate;

/// The machine records a third of a second after the beep.
constexpr auto kBeforeSentence = 800ms;
constexpr auto kAfterSentence = 500ms;

/// How long the line's confirmation of the end is waited for.
constexpr auto kLeave = 1s;

OwnCallSession& Self(void* session) {
  return *static_cast<OwnCallSession*>(session);
}

bool IsSilent(const std::vector<std::int16_t>& heard) {
  return std::ranges::all_of(heard, [](int sample) { return std::abs(sample) < 100; });
}

}  // namespace

OwnCallSession::OwnCallSession(OwnCallPlan plan, Events events)
    : plan_(std::move(plan)),
      events_(std::move(events)),
      next_([this] { Next(); }),
      leave_([this] { Gone(); }) {
  audio_.OnStart([this] { stream_->AudioBegun(); });
}

OwnCallSession::~OwnCallSession() {
  phase_ = Phase::Over;
  audio_.StopPlay();
  audio_.StopRecord();
}

void OwnCallSession::Begin() try {
  if (auto fault = Call(); !fault.Empty()) End(std::move(fault));
} catch (const std::exception& error) {
  End(Words("The test call failed: %1.").Arg(ReasonOf(error)));
}

Words OwnCallSession::Call() {
  sentence_ = ReadSound(plan_.sentence);
  if (sentence_.empty()) return Words("%1 cannot be read: install the program again.").Arg(plan_.sentence);
  const auto listen = ParseListen(plan_.line.listen);
  const bool named = listen && listen->hosts == ListenAddress::Hosts::kName;
  const auto addresses =
      listen ? PresentAddresses(*listen, named ? LookUpSoon(*listen) : std::vector<sa>{}) : std::vector<sa>{};
  if (addresses.empty())
    return Words("The line's address %1 is not one of this computer at the moment.").Arg(plan_.line.listen);
  const int error = Connect(addresses.front());
  if (error == 0) return {};
  return Words("The line cannot be called at %1: %2.").Arg(plan_.line.listen).Arg(ErrorText(error));
}

int OwnCallSession::Connect(const sa& line) {
  const sa local = LocalAddressTowards(line);
  names_ = Made(dnsc_alloc, nullptr, nullptr, 0U);
  endpoint_ = std::make_unique<SipEndpoint>(
      *names_, SipEndpoint::Events{.heard = {}, .within = {}, .invite = {}, .closed = [this] { Gone(); }});
  int error = endpoint_->Begin();
  if (error == 0) error = endpoint_->Listen(local);
  stream_ = RtpStream::Bind(local, audio_, plan_.line.timers,
                            {.heard = [] {},
                             .digit = [](DigitSource, char, auto) {},
                             .held = [](DigitSource, auto) {},
                             .over = [this] { End(Tr("The caller hears nothing more from the line.")); }});
  if (error != 0 || stream_ == nullptr) return error != 0 ? error : EADDRINUSE;
  sa sound = local;
  sa_set_port(&sound, stream_->Port());
  const bool encrypted = plan_.line.Srtp() == SrtpUse::kRequired;
  negotiation_.emplace(sound, encrypted ? SrtpUse::kRequired : SrtpUse::kNever, plan_.line.codecs);
  const LibrePtr<mbuf> offer = negotiation_->Write(true);
  const auto here = AddressText(local);
  const auto from = "sip:" + std::string(OwnCaller::kNumber) + "@" + here.substr(0, here.rfind(':'));
  const auto to = "sip:" + AddressText(line);
  sipsess* session = nullptr;
  error = sipsess_connect(
      &session, &endpoint_->Sessions(), to.c_str(), OwnCaller::kName, from.c_str(), OwnCaller::kName, nullptr,
      0, "application/sdp", offer.get(), nullptr, nullptr, false, nullptr,
      [](const sip_msg* answer, void* self) { return Self(self).TakeAnswer(*answer); },
      [](const sip_msg*, void* self) { Self(self).Rings(); }, nullptr, nullptr, nullptr,
      [](int failure, const sip_msg* answer, void* self) { Self(self).Closed(failure, answer); }, this,
      nullptr);
  session_.reset(error == 0 ? session : nullptr);
  next_.StartOnce(kRingLimit);
  return error;
}

void OwnCallSession::Rings() {
  if (std::exchange(rings_, true)) return;
  next_.Stop();
  Tell(Kind::Rings);
}

/// No exception may reach the library.
int OwnCallSession::TakeAnswer(const sip_msg& answer) try {
  if (phase_ != Phase::Ringing) return 0;
  const auto text = DescriptionIn(answer);
  const auto agreement = text ? negotiation_->Read(*text, false, answer.src) : std::nullopt;
  if (!agreement) return EPROTO;
  Rings();
  Tell(Kind::Answered);
  auto greeting = ReadSound(plan_.greeting);
  greeting_length_ = greeting.size();
  search_.emplace(std::move(greeting), 0, kPatience);
  phase_ = Phase::Greeting;
  stream_->Start(agreement);
  (void)audio_.StartRecord(ear_);
  return 0;
} catch (const std::exception&) {
  return ENOMEM;
}

void OwnCallSession::Closed(int error, const sip_msg* answer) {
  if (phase_ != Phase::Ringing) return End(Tr("The machine hung up before the caller had finished."));
  if (answer == nullptr)
    return End(Words("The line does not answer at %1: %2.").Arg(plan_.line.listen).Arg(ErrorText(error)));
  if (answer->scode == 486) return End(Tr("The line is busy: somebody else has called."));
  End(Words("The line refuses the call: %1 %2.").Arg(answer->scode).Arg(std::string(View(answer->reason))));
}

void OwnCallSession::Hear(std::span<const std::int16_t> samples) {
  heard_.insert(heard_.end(), samples.begin(), samples.end());
  Listen();
}

void OwnCallSession::Listen() {
  if (phase_ != Phase::Greeting && phase_ != Phase::Beep) return;
  const auto result = search_->Look(heard_);
  if (result == SoundSearch::Result::Listening) return;
  const bool found = result == SoundSearch::Result::Found;
  if (phase_ == Phase::Greeting) {
    Tell(Kind::Greeting, found                   ? Words()
                         : greeting_length_ == 0 ? Words("The greeting cannot be read: choose another one.")
                         : IsSilent(heard_)      ? Words("The caller hears nothing.")
                                            : Words("The caller hears another sound than the greeting."));
    return AwaitBeep(found);
  }
  Tell(Kind::Beep, found ? Words() : Words("The caller hears no beep: is there a file beep.wav?"));
  phase_ = Phase::Speaking;
  next_.StartOnce(kBeforeSentence);
}

/// Without the greeting the beep may come at any time until its length is over.
void OwnCallSession::AwaitBeep(bool greeted) {
  phase_ = Phase::Beep;
  const auto from = greeted ? search_->End() - std::min<std::size_t>(search_->End(), kSampleRate / 10) : 0;
  search_.emplace(ReadSound(plan_.beep), from, kPatience + (greeted ? 0 : greeting_length_));
  Listen();
}

bool OwnCallSession::Say(std::span<std::int16_t> block) {
  const auto count = std::min(block.size(), sentence_.size() - said_);
  if (count == 0) {
    Tell(Kind::Spoken);
    next_.StartOnce(kAfterSentence);
    return false;
  }
  const auto rest = std::copy_n(&sentence_[said_], count, block.begin());
  std::fill(rest, block.end(), std::int16_t{0});
  said_ += count;
  return true;
}

void OwnCallSession::Next() {
  if (phase_ == Phase::Ringing) return End(Words("The line does not ring at %1.").Arg(plan_.line.listen));
  if (said_ > 0) return End({});
  (void)audio_.StartPlay(mouth_);
}

void OwnCallSession::Tell(Kind kind, Words fault) {
  events_.news({kind, std::move(fault)});
}

void OwnCallSession::End(Words fault) {
  if (phase_ == Phase::Over) return;
  Tell(Kind::Over, std::move(fault));
  Close();
}

void OwnCallSession::Close() {
  if (std::exchange(phase_, Phase::Over) == Phase::Over) return;
  next_.Stop();
  leave_.StartOnce(kLeave);
  if (stream_ != nullptr) stream_->Stop();
  session_.reset();
  if (endpoint_ != nullptr) return endpoint_->Close();
  Gone();
}

void OwnCallSession::Gone() {
  if (!std::exchange(gone_, true)) events_.gone();
}

}  // namespace orven
