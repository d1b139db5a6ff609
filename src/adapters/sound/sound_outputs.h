// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMediaDevices>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_play.h"
#include "adapters/sound/card_player.h"

namespace orven {

/// The sound system as the sound thread sees it: keeps the list of cards true and runs the plays.
/// Nothing wakes the thread up while nothing plays and no device comes or goes. Sound thread; every call
/// may wait for the sound server.
class SoundOutputs {
 public:
  /// Looks which outputs there are. `report` takes a sentence for each play that fails.
  SoundOutputs(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report);

  /// Starts `play` on card `number`, unless it has been stopped meanwhile.
  void Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play);

 private:
  void Look();
  void Tick();
  void Fail(CardPlay& play, const std::string& problem) const;
  QAudioDevice Device(std::int32_t number) const;

  std::shared_ptr<CardList> cards_;
  std::function<void(const std::string&)> report_;
  QMediaDevices devices_;
  QTimer tick_;  ///< runs while there are players
  std::vector<std::unique_ptr<CardPlayer>> players_;
};

}  // namespace orven
