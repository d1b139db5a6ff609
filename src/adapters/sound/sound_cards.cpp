// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_cards.h"

#include <chrono>
#include <mutex>
#include <utility>

#include "adapters/sound/sound_streams.h"
#include "platform/wave.h"

namespace orven {
namespace {

using namespace std::chrono_literals;

/// A server that moves no audio for this long hangs. Waking a wireless headset takes up to 3 s.
constexpr auto kPatience = 5s;
constexpr auto kWatchInterval = 500ms;

}  // namespace

struct SoundCards::Shared {
  Shared(std::shared_ptr<CardList> list, Report to) : cards(std::move(list)), report(std::move(to)) {}

  void Tell(const std::string& text) {
    const std::lock_guard lock(mutex);
    if (report) report(text);
  }

  /// Removes the report function: nothing is reported afterwards.
  Report TakeReport() {
    const std::lock_guard lock(mutex);
    return std::exchange(report, nullptr);
  }

  const std::shared_ptr<CardList> cards;
  std::unique_ptr<SoundStreams> streams;  ///< sound thread only
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

  std::int32_t StartRecord(AudioSink& sink) override {
    if (take_ && take_->Active()) return kWaveBusy;
    if (!owner_.shared_->cards->MayRecord()) {
      owner_.Look();
      return kWaveNoDevice;
    }
    take_ = std::make_shared<CardTake>(sink);
    owner_.Start(number_, take_);
    return kWaveOk;
  }

  void StopRecord() override {
    if (take_) take_->Stop();
  }

  /// Ends plays and takes that the server has not served for too long. True while something plays or records.
  bool Watch() const {
    const std::string card = "sound card " + std::to_string(number_);
    const bool plays =
        Goes(play_.get(), "The sound server does not answer; playing on " + card + " was stopped.");
    const bool records = Goes(take_.get(), "No sound comes from the microphone of " + card +
                                               ": perhaps the sound server does not answer; the recording "
                                               "was stopped.");
    return plays || records;
  }

 private:
  template <class Use>
  bool Goes(Use* use, const std::string& problem) const {
    if (use == nullptr || !use->Active()) return false;
    if (use->SinceLastBlock() > kPatience && use->Fail()) owner_.GaveUp(problem);
    return true;
  }

  SoundCards& owner_;
  const std::int32_t number_;
  std::shared_ptr<CardPlay> play_;  ///< the latest
  std::shared_ptr<CardTake> take_;  ///< the latest
};

SoundCards::SoundCards(EventLoop& loop, Report report)
    : loop_(loop), shared_(std::make_shared<Shared>(std::make_shared<CardList>(), std::move(report))) {}

SoundCards::~SoundCards() {
  for (const Cards* cards : {&cards_, &more_cards_}) {
    for (const auto& [number, card] : *cards) {
      card->StopPlay();
      card->StopRecord();
    }
  }
  shared_->TakeReport();
}

void SoundCards::Prepare() {
  if (thread_) return;
  thread_ = std::make_unique<SoundThread>([shared = shared_] { shared->streams.reset(); });
  thread_->Post([shared = shared_] {
    shared->streams = std::make_unique<SoundStreams>(
        shared->cards, [to = shared.get()](const std::string& text) { to->Tell(text); });
    shared->streams->Look();
  });
}

std::vector<SoundCard> SoundCards::Present() {
  Look();
  return shared_->cards->Present();
}

void SoundCards::Look() {
  LeaveHangingThread();
  if (thread_) thread_->Post([shared = shared_] { shared->streams->Look(); });
  Prepare();
}

std::vector<std::string> SoundCards::Names() {
  std::vector<std::string> names;
  for (const auto& card : Present()) {
    const auto number = static_cast<std::size_t>(card.number);
    while (names.size() < number) names.push_back(std::to_string(names.size()) + " (not connected)");
    names.push_back(card.description);
  }
  return names;
}

AudioDevice* SoundCards::FindIn(Cards& cards, std::int32_t number) {
  if (!shared_->cards->MayBe(number)) return nullptr;
  auto& card = cards[number];
  if (!card) card = std::make_unique<Card>(*this, number);
  return card.get();
}

template <class Use>
void SoundCards::Start(std::int32_t number, const std::shared_ptr<Use>& use) {
  LeaveHangingThread();
  Prepare();
  thread_->Post([shared = shared_, number, use] { shared->streams->Begin(number, use); });
  if (!watch_) watch_ = loop_.MakeTimer([this] { Watch(); });
  if (!watch_->Enabled()) watch_->Start(kWatchInterval);
}

void SoundCards::GaveUp(const std::string& problem) {
  shared_->Tell(problem);
  alive_ = std::make_shared<std::atomic<bool>>(false);
  thread_->Post([alive = alive_] { *alive = true; });
}

/// Qt 6.4 waits forever for a stream that the server refuses; what starts later needs another thread.
void SoundCards::LeaveHangingThread() {
  const auto alive = std::exchange(alive_, nullptr);
  if (!alive || *alive) return;
  SoundThread::Abandon(std::move(thread_));
  shared_ = std::make_shared<Shared>(shared_->cards, shared_->TakeReport());
}

/// On the user-interface thread, because the sound thread may hang with the server.
void SoundCards::Watch() {
  bool active = false;
  for (const Cards* cards : {&cards_, &more_cards_})
    for (const auto& [number, card] : *cards) active |= card->Watch();
  if (!active) watch_->Stop();
}

}  // namespace orven
