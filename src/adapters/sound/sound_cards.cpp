// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_cards.h"

#include <chrono>
#include <utility>

#include "adapters/sound/sound_server.h"
#include "platform/wave.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A server that moves no audio for this long hangs. Waking a wireless headset takes up to 3 s.
constexpr auto kPatience = 5s;
constexpr auto kWatchInterval = 500ms;

}  // namespace

class SoundCards::Card : public AudioDevice {
 public:
  Card(SoundCards& owner, std::int32_t number) : owner_(owner), number_(number) {}

  std::int32_t StartPlay(AudioSource& source) override {
    if (play_ && play_->Active()) return kWaveBusy;
    play_ = std::make_shared<CardPlay>(source, owner_.report_);
    owner_.Start(number_, play_);
    return kWaveOk;
  }

  void StopPlay() override {
    if (play_ && play_->Stop()) owner_.Close(play_);
  }

  std::int32_t StartRecord(AudioSink& sink) override {
    if (take_ && take_->Active()) return kWaveBusy;
    if (!owner_.list_->MayRecord()) {
      owner_.Look();
      return kWaveNoDevice;
    }
    take_ = std::make_shared<CardTake>(sink, owner_.report_);
    owner_.Start(number_, take_);
    return kWaveOk;
  }

  void StopRecord() override {
    if (take_ && take_->Stop()) owner_.Close(take_);
  }

  /// Ends plays and takes that the server has not served for too long. True while something plays or records.
  bool Watch() const {
    const std::string card = "sound card " + std::to_string(number_);
    const bool plays = Goes(play_, "The sound server does not answer; playing on " + card + " was stopped.");
    const bool records =
        Goes(take_, "No sound comes from the microphone of " + card +
                        ": perhaps the sound server does not answer; the recording was stopped.");
    return plays || records;
  }

 private:
  bool Goes(const std::shared_ptr<CardUse>& use, const std::string& problem) const {
    if (!use || !use->Active()) return false;
    if (use->SinceLastBlock() <= kPatience) return true;
    use->Fail(problem);
    owner_.Close(use);
    return false;
  }

  SoundCards& owner_;
  const std::int32_t number_;
  std::shared_ptr<CardPlay> play_;  ///< the latest
  std::shared_ptr<CardTake> take_;  ///< the latest
};

SoundCards::SoundCards(EventLoop& loop, Report report)
    : loop_(loop), report_(std::move(report)), list_(std::make_shared<CardList>()) {}

SoundCards::~SoundCards() {
  for (const auto& [place, card] : cards_) {
    card->StopPlay();
    card->StopRecord();
  }
}

void SoundCards::Look() {
  Thread().Post([](SoundServer& server) { server.Look(); });
}

SoundThread& SoundCards::Thread() {
  if (!thread_) thread_.emplace(list_);
  return *thread_;
}

std::vector<std::string> SoundCards::Names() {
  Look();
  return list_->Names();
}

AudioDevice* SoundCards::FindIn(bool beside, std::int32_t number) {
  if (!list_->MayBe(number)) return nullptr;
  auto& card = cards_[{beside, number}];
  if (!card) card = std::make_unique<Card>(*this, number);
  return card.get();
}

template <class Use>
void SoundCards::Start(std::int32_t number, const std::shared_ptr<Use>& use) {
  Thread().Post([number, use](SoundServer& server) { server.Begin(number, use); });
  if (!watch_) watch_ = loop_.MakeTimer([this] { Watch(); });
  if (!watch_->Enabled()) watch_->Start(kWatchInterval);
}

void SoundCards::Close(const std::shared_ptr<CardUse>& use) {
  Thread().Post([use](SoundServer&) { use->Close(); });
}

/// On the user-interface thread, because the sound thread may hang with the server.
void SoundCards::Watch() {
  bool active = false;
  for (const auto& [place, card] : cards_) active |= card->Watch();
  if (!active) watch_->Stop();
}

}  // namespace orven
