// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/own_caller/sound_search.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <utility>

#include "adapters/audio/audio_file.h"
#include "platform/wave.h"

namespace orven {
namespace {

constexpr std::size_t kPiece = kSampleRate / 2;
constexpr std::size_t kLongest = std::size_t{5} * 60 * kSampleRate;

/// Half way between the same and another sound.
constexpr double kAlike = 0.6;

/// A piece this much quieter than the loudest one says nothing.
constexpr double kQuiet = 0.05;
constexpr double kSilence = 30;  ///< of 32,768: the noise of a quiet recording

/// How much earlier and later than the one before it a piece may come.
constexpr std::size_t kEarlier = kSampleRate / 100;
constexpr std::size_t kLater = kSampleRate / 2;

double Loudness(std::span<const std::int16_t> samples) {
  const double sum = std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus<>(),
                                           [](double sample) { return sample * sample; });
  return samples.empty() ? 0 : std::sqrt(sum / static_cast<double>(samples.size()));
}

}  // namespace

std::vector<std::int16_t> ReadSound(const std::string& path) {
  std::unique_ptr<TelephoneDecoder> decoder;
  if (TelephoneDecoder::Open(path, decoder) != kWaveOk) return {};
  std::vector<std::int16_t> samples(kLongest);
  samples.resize(decoder->Read(samples));
  return samples;
}

SoundSearch::SoundSearch(std::vector<std::int16_t> sound, std::size_t from, std::size_t patience)
    : sound_(std::move(sound)), begin_(from) {
  const std::span<const std::int16_t> all(sound_);
  const auto whole = std::max<std::size_t>(1, all.size() / kPiece);
  std::vector<double> loudness;
  for (std::size_t i = 0; i < whole; ++i)
    loudness.push_back(Loudness(all.subspan(i * kPiece, std::min(kPiece, all.size()))));
  const double enough = std::max(kSilence, kQuiet * *std::ranges::max_element(loudness));
  for (std::size_t i = 0; i < whole; ++i) {
    if (loudness[i] >= enough) pieces_.push_back({i * kPiece, std::min(kPiece, all.size())});
  }
  if (!pieces_.empty()) Expect(from + pieces_[0].offset, from + pieces_[0].offset + patience);
}

SoundSearch::Result SoundSearch::Look(std::span<const std::int16_t> heard) {
  for (; next_ < pieces_.size(); Leave()) {
    if (!Find(pieces_[next_], heard)) return Result::Listening;
    // Something else is played.
    if (next_ == 1 && found_ == 0 && best_ < kAlike) return Result::Missing;
  }
  const bool most = !pieces_.empty() && 3 * found_ >= 2 * pieces_.size();
  return most ? Result::Found : Result::Missing;
}

/// Whether the search for `piece` is over, found or not.
bool SoundSearch::Find(const Piece& piece, std::span<const std::int16_t> heard) {
  for (; at_ <= latest_; ++at_) {
    if (at_ + piece.size > heard.size()) return false;
    const double likeness = Likeness(piece, &heard[at_]);
    if (likeness > best_) best_ = likeness, best_at_ = at_;
    // A part of a tone is like all of it: the best place is further on.
    if (best_ >= kAlike && at_ > best_at_ + piece.size / 2) return true;
  }
  return true;
}

double SoundSearch::Likeness(const Piece& piece, const std::int16_t* heard) const {
  const std::int16_t* const own = &sound_[piece.offset];
  double product = 0, own_power = 0, power = 0;
  for (std::size_t i = 0; i < piece.size; ++i) {
    const double a = own[i], b = heard[i];
    product += a * b;
    own_power += a * a;
    power += b * b;
  }
  return power == 0 ? 0 : product / std::sqrt(own_power * power);
}

void SoundSearch::Expect(std::size_t earliest, std::size_t latest) {
  at_ = earliest;
  latest_ = latest;
  best_ = 0;
}

/// Goes on to the next piece, which is expected where this one's place says.
void SoundSearch::Leave() {
  if (best_ >= kAlike) {
    begin_ = best_at_ - std::min(best_at_, pieces_[next_].offset);
    ++found_;
  }
  if (++next_ == pieces_.size()) return;
  const auto place = begin_ + pieces_[next_].offset;
  const auto first = found_ == 0 ? latest_ - pieces_[next_ - 1].offset + pieces_[next_].offset : place;
  Expect(place - std::min(place, kEarlier), std::max(first, place + kLater));
}

}  // namespace orven
