// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_outputs.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace orven {
namespace {

using namespace std::chrono_literals;

/// How long a server may take to answer; where the first call starts it, that takes about a second.
constexpr auto kAnswerLimit = 3s;

/// The output with this id, or a null one when it is not there.
QAudioDevice OutputOf(const std::string& id) {
  for (const QAudioDevice& output : QMediaDevices::audioOutputs())
    if (output.id().toStdString() == id) return output;
  return {};
}

std::string Quoted(const QAudioDevice& device) {
  return "\"" + device.description().toStdString() + "\"";
}

}  // namespace

SoundOutputs::SoundOutputs(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report)
    : cards_(std::move(cards)), report_(std::move(report)) {
  tick_.setTimerType(Qt::PreciseTimer);
  tick_.setInterval(20ms);
  QObject::connect(&tick_, &QTimer::timeout, [this] { Tick(); });
  bury_.setSingleShot(true);
  QObject::connect(&bury_, &QTimer::timeout, [this] { std::exchange(dismissed_, {}).clear(); });
}

SoundOutputs::~SoundOutputs() {
  tick_.stop();
  bury_.stop();
}

SoundServer SoundOutputs::Look() {
  SoundServer server = AskSoundServer(kAnswerLimit);
  if (server.state != SoundServer::State::Ready) return server;
  if (!devices_) devices_.emplace();
  std::vector<CardList::Output> outputs;
  for (const QAudioDevice& device : QMediaDevices::audioOutputs())
    outputs.push_back({device.id().toStdString(), device.description().toStdString()});
  cards_->Update(outputs);
  return server;
}

void SoundOutputs::Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play) {
  if (!play->Active()) return;
  const SoundServer server = Look();
  if (server.state == SoundServer::State::None) return Fail(*play, "There is no sound server to play on.");
  if (server.state == SoundServer::State::Silent) return Fail(*play, "The sound server does not answer.");
  const QAudioDevice device =
      OutputOf(number == 0 ? server.default_output : cards_->IdOf(number).value_or(""));
  if (device.isNull())
    return Fail(*play, number == 0 ? "There is no sound output to play on."
                                   : "There is no sound output number " + std::to_string(number) + " now.");
  players_.push_back(std::make_unique<CardPlayer>(device, play));
  tick_.start();
  Tick();
}

void SoundOutputs::Tick() {
  const auto goes = [this](const auto& player) { return Goes(*player); };
  const auto done = std::stable_partition(players_.begin(), players_.end(), goes);
  std::for_each(done, players_.end(), [](const auto& player) { player->Close(); });
  std::move(done, players_.end(), std::back_inserter(dismissed_));
  players_.erase(done, players_.end());
  if (!dismissed_.empty()) bury_.start(0ms);
  if (players_.empty()) tick_.stop();
}

/// False when nothing is left to do for the player.
bool SoundOutputs::Goes(CardPlayer& player) const {
  // The server may go on elsewhere with a stream whose output was unplugged; a message is not to be
  // heard from where nobody chose to hear it.
  if (OutputOf(player.Device().id().toStdString()).isNull()) {
    Fail(player.Play(), "The sound output " + Quoted(player.Device()) + " went away while it was playing.");
    return false;
  }
  if (player.Tick()) return true;
  if (!player.Problem().empty()) Fail(player.Play(), player.Problem());
  return false;
}

void SoundOutputs::Fail(CardPlay& play, const std::string& problem) const {
  if (play.Fail()) report_(problem);
}

}  // namespace orven
