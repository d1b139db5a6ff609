// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_streams.h"

#include <QAudioDevice>
#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "adapters/sound/card_stream.h"
#include "adapters/sound/sound_server.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// How long a server may take to answer; when the call starts it, that takes about a second.
constexpr auto kAnswerLimit = 3s;

/// Why a server in this state cannot be used, as a sentence; empty when it is ready.
std::string Refusal(SoundServer::State state) {
  switch (state) {
    case SoundServer::State::None: return "There is no sound server.";
    case SoundServer::State::Silent: return "The sound server does not answer.";
    default: return {};
  }
}

}  // namespace

SoundStreams::SoundStreams(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report)
    : cards_(std::move(cards)), report_(std::move(report)) {
  tick_.setTimerType(Qt::PreciseTimer);
  tick_.setInterval(20ms);
  QObject::connect(&tick_, &QTimer::timeout, [this] { Tick(); });
  bury_.setSingleShot(true);
  QObject::connect(&bury_, &QTimer::timeout, [this] { std::exchange(dismissed_, {}).clear(); });
}

SoundStreams::~SoundStreams() {
  tick_.stop();
  bury_.stop();
}

SoundServer SoundStreams::Look() {
  SoundServer server = AskSoundServer(kAnswerLimit);
  if (server.state != SoundServer::State::Silent) cards_->SetRecords(!MicrophoneOf(server, "").empty());
  if (server.state != SoundServer::State::Ready) return server;
  if (!devices_) devices_.emplace();
  std::vector<CardList::Output> outputs;
  for (const QAudioDevice& device : QMediaDevices::audioOutputs())
    outputs.push_back({device.id().toStdString(), device.description().toStdString()});
  cards_->Update(outputs);
  return server;
}

void SoundStreams::Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play) {
  if (!play->Active()) return;
  const SoundServer server = Look();
  std::string problem = Refusal(server.state);
  QAudioDevice output;
  if (problem.empty()) {
    output = OutputOf(number == 0 ? server.default_output : cards_->IdOf(number).value_or(""));
    if (output.isNull())
      problem = number == 0 ? "There is no sound output to play on."
                            : "There is no sound output number " + std::to_string(number) + " now.";
  }
  if (problem.empty()) return Run(std::make_unique<CardPlayer>(output, play));
  if (play->Fail()) report_(problem);
}

void SoundStreams::Begin(std::int32_t number, const std::shared_ptr<CardTake>& take) {
  if (!take->Active()) return;
  const SoundServer server = Look();
  std::string problem = Refusal(server.state);
  QAudioDevice input;
  if (problem.empty()) {
    input = InputOf(MicrophoneOf(server, cards_->IdOf(number).value_or("")));
    if (input.isNull()) problem = "There is no microphone to record from.";
  }
  if (problem.empty()) return Run(std::make_unique<CardRecorder>(input, take));
  if (take->Fail()) report_(problem);
}

void SoundStreams::Run(std::unique_ptr<CardStream> stream) {
  streams_.push_back(std::move(stream));
  tick_.start();
  Tick();
}

void SoundStreams::Tick() {
  const auto goes = [this](const auto& stream) { return Goes(*stream); };
  const auto done = std::stable_partition(streams_.begin(), streams_.end(), goes);
  std::for_each(done, streams_.end(), [](const auto& stream) { stream->Close(); });
  std::move(done, streams_.end(), std::back_inserter(dismissed_));
  streams_.erase(done, streams_.end());
  if (!dismissed_.empty()) bury_.start(0ms);
  if (streams_.empty()) tick_.stop();
}

/// False when the stream is done or has failed.
bool SoundStreams::Goes(CardStream& stream) const {
  if (stream.Tick()) return true;
  if (!stream.Problem().empty() && stream.Fail()) report_(stream.Problem());
  return false;
}

}  // namespace orven
