// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_outputs.h"

#include <QAudioDevice>
#include <algorithm>
#include <chrono>

namespace orven {
namespace {

using namespace std::chrono_literals;

bool IsThere(const QAudioDevice& device) {
  const auto outputs = QMediaDevices::audioOutputs();
  return std::any_of(outputs.begin(), outputs.end(),
                     [&](const QAudioDevice& output) { return output.id() == device.id(); });
}

}  // namespace

SoundOutputs::SoundOutputs(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report)
    : cards_(std::move(cards)), report_(std::move(report)) {
  tick_.setTimerType(Qt::PreciseTimer);
  tick_.setInterval(20ms);
  QObject::connect(&tick_, &QTimer::timeout, [this] { Tick(); });
  QObject::connect(&devices_, &QMediaDevices::audioOutputsChanged, [this] { Look(); });
  Look();
}

void SoundOutputs::Look() {
  std::vector<CardList::Output> outputs;
  for (const QAudioDevice& device : QMediaDevices::audioOutputs())
    outputs.push_back({device.id().toStdString(), device.description().toStdString()});
  cards_->Update(outputs);
  // The server may go on elsewhere with a stream whose output was unplugged; a message is not to be
  // heard from where nobody chose to hear it.
  std::erase_if(players_, [this](const auto& player) {
    if (IsThere(player->Device())) return false;
    Fail(player->Play(), "The sound output \"" + player->Device().description().toStdString() +
                             "\" went away while it was playing.");
    return true;
  });
}

void SoundOutputs::Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play) {
  if (!play->Active()) return;
  const QAudioDevice device = Device(number);
  if (device.isNull()) {
    Fail(*play, number == 0 ? "There is no sound output to play on; perhaps no sound server runs."
                            : "There is no sound output number " + std::to_string(number) + " to play on.");
    return;
  }
  auto player = std::make_unique<CardPlayer>(device, play);
  if (!player->Problem().empty()) return Fail(*play, player->Problem());
  players_.push_back(std::move(player));
  tick_.start();
  Tick();
}

void SoundOutputs::Tick() {
  std::erase_if(players_, [this](const auto& player) {
    if (player->Tick()) return false;
    if (!player->Problem().empty()) Fail(player->Play(), player->Problem());
    return true;
  });
  if (players_.empty()) tick_.stop();
}

void SoundOutputs::Fail(CardPlay& play, const std::string& problem) const {
  if (play.Fail()) report_(problem);
}

/// A null device when there is none now.
QAudioDevice SoundOutputs::Device(std::int32_t number) const {
  if (number == 0) return QMediaDevices::defaultAudioOutput();
  const auto id = cards_->IdOf(number);
  const auto outputs = QMediaDevices::audioOutputs();
  const auto found = std::find_if(outputs.begin(), outputs.end(), [&](const QAudioDevice& output) {
    return id == output.id().toStdString();
  });
  return found == outputs.end() ? QAudioDevice() : *found;
}

}  // namespace orven
