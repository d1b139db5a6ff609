// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMediaDevices>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_stream.h"
#include "adapters/sound/card_use.h"
#include "adapters/sound/sound_server.h"

namespace orven {

/// The sound thread's side: looks which cards are connected and runs the plays and takes. Nothing wakes the
/// thread up while nothing plays or records and no device comes or goes. Sound thread; every call may wait
/// for the sound server.
class SoundStreams {
 public:
  /// `report` gets a sentence for each play or take that fails. Destroy it outside the thread's event loop.
  SoundStreams(std::shared_ptr<CardList> cards, std::function<void(const std::string&)> report);
  ~SoundStreams();
  SoundStreams(const SoundStreams&) = delete;
  SoundStreams& operator=(const SoundStreams&) = delete;

  /// Updates the list of cards, if the sound server answers.
  SoundServer Look();

  /// Starts `play` on card `number`, unless it has been stopped meanwhile.
  void Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play);

  /// Starts `take` from the microphone of card `number`, unless it has been stopped meanwhile.
  void Begin(std::int32_t number, const std::shared_ptr<CardTake>& take);

 private:
  void Run(std::unique_ptr<CardStream> stream);
  void Tick();
  bool Goes(CardStream& stream) const;

  std::shared_ptr<CardList> cards_;
  std::function<void(const std::string&)> report_;
  std::optional<QMediaDevices> devices_;  ///< since the server answered for the first time
  QTimer tick_;                           ///< runs while there are streams
  std::vector<std::unique_ptr<CardStream>> streams_;

  /// Closed streams, destroyed when no function of this class runs: their destructors let the thread's events
  /// run.
  std::vector<std::unique_ptr<CardStream>> dismissed_;
  QTimer bury_;
};

}  // namespace orven
