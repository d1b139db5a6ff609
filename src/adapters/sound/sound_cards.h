// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_use.h"
#include "adapters/sound/sound_thread.h"
#include "platform/audio_device.h"
#include "platform/event_loop.h"
#include "platform/sound_card_names.h"

namespace orven {

class SoundStreams;

/// The sound cards as numbered audio devices, over Qt Multimedia. Number 0 is the desktop's default
/// output and input at the moment a play or take starts; the others are numbered as CardList says and
/// record from the input that MicrophoneOf gives.
///
/// All of Qt Multimedia happens in one thread, which starts with Prepare or the first play or take; no
/// operation waits for it, whatever the sound server does. A play that the server does not take, or no
/// longer takes, ends by itself (AudioSource::Gone), a take then gets no more blocks; one sentence about it
/// is reported. StartRecord gives kWaveNoDevice when the latest look found no input, and looks anew.
/// One object a process. User-interface thread.
class SoundCards : public AudioDevices, public SoundCardNames {
 public:
  using Report = std::function<void(const std::string&)>;

  /// `loop` outlives the cards. `report` is called on any thread, and not after the destructor.
  SoundCards(EventLoop& loop, Report report);

  /// Ends all plays and takes. Waits at most a second for the sound thread; when the sound server hangs, the
  /// thread is left behind and ends with the process.
  ~SoundCards() override;

  /// Begins to look which cards there are, unless that has begun.
  void Prepare();

  /// The cards that were there at the latest look, only number 0 before the first one; begins a new
  /// look, because not every sound system tells of what comes and goes.
  std::vector<SoundCard> Present();

  /// Those of Present, each at its number.
  std::vector<std::string> Names() override;

  /// nullptr for a number that no card has had. Whether the card is there now shows when a play has
  /// started: it then ends by itself, as it does when a card goes away. Until the first look is done every
  /// number may have a card.
  AudioDevice* Find(std::int32_t number) override { return FindIn(cards_, number); }

  /// The same cards once more: what plays on these is heard together with what plays on those, and both
  /// may record at once.
  AudioDevices& Beside() { return beside_; }

 private:
  class Card;
  struct Shared;
  using Cards = std::map<std::int32_t, std::unique_ptr<Card>>;

  class BesideCards : public AudioDevices {
   public:
    explicit BesideCards(SoundCards& owner) : owner_(owner) {}
    AudioDevice* Find(std::int32_t number) override { return owner_.FindIn(owner_.more_cards_, number); }

   private:
    SoundCards& owner_;
  };

  AudioDevice* FindIn(Cards& cards, std::int32_t number);
  void Look();
  void GaveUp(const std::string& problem);
  void LeaveHangingThread();
  template <class Use>
  void Start(std::int32_t number, const std::shared_ptr<Use>& use);
  void Watch();

  EventLoop& loop_;
  std::shared_ptr<Shared> shared_;  ///< with the sound thread, which may outlive this object
  std::unique_ptr<SoundThread> thread_;

  /// Set by the sound thread when it has come to since a play or take was given up; nullptr: none was.
  std::shared_ptr<std::atomic<bool>> alive_;
  Cards cards_;
  Cards more_cards_;  ///< those of Beside
  BesideCards beside_{*this};
  std::unique_ptr<Timer> watch_;  ///< runs while something plays or records
};

}  // namespace orven
