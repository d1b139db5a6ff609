// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAudioDevice>
#include <QMediaDevices>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_play.h"
#include "adapters/sound/card_player.h"
#include "adapters/sound/sound_server.h"

namespace orven {

/// The sound system as the sound thread sees it: looks which cards there are and runs the plays.
/// Nothing wakes the thread up while nothing plays and no device comes or goes. Sound thread; every call
/// may wait for the sound server.
class SoundOutputs {
 public:
  /// `report` takes a sentence for each play that fails. Destroy it outside the thread's event loop.
  SoundOutputs(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report);
  ~SoundOutputs();
  SoundOutputs(const SoundOutputs&) = delete;
  SoundOutputs& operator=(const SoundOutputs&) = delete;

  /// Brings the list of cards up to date, if the sound server answers.
  SoundServer Look();

  /// Starts `play` on card `number`, unless it has been stopped meanwhile.
  void Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play);

 private:
  void Tick();
  bool Goes(CardPlayer& player) const;
  void Fail(CardPlay& play, const std::string& problem) const;

  std::shared_ptr<CardList> cards_;
  std::function<void(const std::string&)> report_;
  std::optional<QMediaDevices> devices_;  ///< from the first time on that the server answered
  QTimer tick_;                           ///< runs while there are players
  std::vector<std::unique_ptr<CardPlayer>> players_;

  /// Closed players, destroyed when no function of this class runs: Qt's stream lets the thread's events
  /// run while it is being destroyed.
  std::vector<std::unique_ptr<CardPlayer>> dismissed_;
  QTimer bury_;
};

}  // namespace orven
