// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_cards.h"

#include <chrono>
#include <mutex>

#include "adapters/sound/sound_outputs.h"
#include "platform/wave.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A server that takes no sound for this long hangs. Waking a wireless headset takes up to three.
constexpr auto kPatience = 5s;
constexpr auto kWatchInterval = 500ms;

}  // namespace

struct SoundCards::Shared {
  explicit Shared(Report to) : report(std::move(to)) {}

  void Tell(const std::string& text) {
    const std::lock_guard lock(mutex);
    if (report) report(text);
  }

  const std::shared_ptr<CardList> cards = std::make_shared<CardList>();
  std::unique_ptr<SoundOutputs> outputs;  ///< sound thread only
  std::mutex mutex;
  Report report;
};

class SoundCards::Card : public AudioDevice {
 public:
  Card(SoundCards& owner, std::int32_t number) : owner_(owner), number_(number) {}

  std::int32_t StartPlay(AudioSource& source) override {
    if (play_ && play_->Active()) return kWaveBusy;
    play_ = std::make_shared<CardPlay>(source);
    owner_.Start(number_, play_);
    return kWaveOk;
  }

  void StopPlay() override {
    if (play_) play_->Stop();
  }

  std::int32_t StartRecord(AudioSink& /*sink*/) override { return kWaveNoDevice; }
  void StopRecord() override {}

  CardPlay* Play() const { return play_.get(); }

 private:
  SoundCards& owner_;
  const std::int32_t number_;
  std::shared_ptr<CardPlay> play_;  ///< the latest
};

SoundCards::SoundCards(EventLoop& loop, Report report)
    : loop_(loop), shared_(std::make_shared<Shared>(std::move(report))) {}

SoundCards::~SoundCards() {
  for (const Cards* cards : {&cards_, &more_cards_}) {
    for (const auto& [number, card] : *cards) card->StopPlay();
  }
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->report = nullptr;
  }
}

void SoundCards::Prepare() {
  if (thread_) return;
  thread_ = std::make_unique<SoundThread>([shared = shared_] { shared->outputs.reset(); });
  thread_->Post([shared = shared_] {
    shared->outputs = std::make_unique<SoundOutputs>(
        shared->cards, [to = shared.get()](const std::string& text) { to->Tell(text); });
    shared->outputs->Look();
  });
}

std::vector<SoundCard> SoundCards::Present() {
  if (thread_) thread_->Post([shared = shared_] { shared->outputs->Look(); });
  Prepare();
  return shared_->cards->Present();
}

AudioDevice* SoundCards::FindIn(Cards& cards, std::int32_t number) {
  if (!shared_->cards->MayBe(number)) return nullptr;
  auto& card = cards[number];
  if (!card) card = std::make_unique<Card>(*this, number);
  return card.get();
}

void SoundCards::Start(std::int32_t number, const std::shared_ptr<CardPlay>& play) {
  Prepare();
  thread_->Post([shared = shared_, number, play] { shared->outputs->Begin(number, play); });
  if (!watch_) watch_ = loop_.MakeTimer([this] { Watch(); });
  if (!watch_->Enabled()) watch_->Start(kWatchInterval);
}

/// Ends the plays that a hanging server holds up; the sound thread itself may hang with it.
void SoundCards::Watch() {
  const bool first = Watch(cards_);
  const bool second = Watch(more_cards_);
  if (!first && !second) watch_->Stop();
}

/// True when one of the cards still plays.
bool SoundCards::Watch(const Cards& cards) {
  bool active = false;
  for (const auto& [number, card] : cards) {
    CardPlay* const play = card->Play();
    if (play == nullptr || !play->Active()) continue;
    active = true;
    if (play->SinceLastRead() < kPatience || !play->Fail()) continue;
    shared_->Tell("The sound server does not answer; what was playing on sound card " +
                  std::to_string(number) + " was given up.");
  }
  return active;
}

}  // namespace orven
