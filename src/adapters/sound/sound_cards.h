// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_use.h"
#include "adapters/sound/sound_thread.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"

namespace orven {

/// The sound cards as numbered audio devices, over libpulse. Number 0 is the desktop's default output and
/// input at the moment a play or take starts; the others are numbered as CardList says and record from the
/// input that MicrophoneOf gives.
///
/// libpulse runs in one thread, which starts with the first look, play or take; no operation waits for
/// it. A play that the sound server refuses or stops ends by itself (AudioSource::Gone), a take gets no more
/// blocks; one sentence about it is reported. So is a play or take for which nothing has moved for 5 s.
/// StartRecord returns kWaveNoDevice when the latest look found no input, and looks again. User-interface
/// thread.
class SoundCards : public AudioDevices, public SoundCardNames {
 public:
  using Report = CardUse::Report;

  /// `loop` outlives the cards. `report` is called on any thread, never after the destructor.
  SoundCards(EventLoop& loop, Report report);

  /// Ends all plays and takes. Waits for the sound thread, but at most a second.
  ~SoundCards() override;

  /// Starts to look which cards are connected.
  void Look();

  /// The cards of the latest look, only number 0 before the first one. Starts another look.
  std::vector<std::string> Names() override;

  /// nullptr for a number that no card has had; before the first look is done every number may have one.
  /// When the card is not connected, a play on it ends by itself.
  AudioDevice* Find(std::int32_t number) override { return FindIn(false, number); }

  /// The same cards as a second set of devices: both sets can play at once, and record at once.
  AudioDevices& Beside() { return beside_; }

 private:
  class Card;

  class BesideCards : public AudioDevices {
   public:
    explicit BesideCards(SoundCards& owner) : owner_(owner) {}
    AudioDevice* Find(std::int32_t number) override { return owner_.FindIn(true, number); }

   private:
    SoundCards& owner_;
  };

  AudioDevice* FindIn(bool beside, std::int32_t number);
  SoundThread& Thread();
  template <class Use>
  void Start(std::int32_t number, const std::shared_ptr<Use>& use);
  void Close(const std::shared_ptr<CardUse>& use);
  void Watch();

  EventLoop& loop_;
  const Report report_;
  const std::shared_ptr<CardList> list_;  ///< also the sound thread's
  std::optional<SoundThread> thread_;
  std::map<std::pair<bool, std::int32_t>, std::unique_ptr<Card>> cards_;  ///< by set (Beside) and number
  BesideCards beside_{*this};
  std::unique_ptr<Timer> watch_;  ///< runs while something plays or records
};

}  // namespace orven
