// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orven {

/// The samples of the sound file at `path` at 8000 Hz, at most five minutes of them; none when it cannot be
/// read. Any thread that may wait for a disk.
std::vector<std::int16_t> ReadSound(const std::string& path);

/// Looks for a sound in what is heard: whether it is this sound, and where. Compares the waves half a second
/// at a time, by their normalised correlation: the same words through a telephone's codec reach 0.9, other
/// words 0.3. Pieces may come a little later each, as when the sender stalls, and a third of them may be
/// lost.
class SoundSearch {
 public:
  enum class Result { Listening, Found, Missing };

  /// The sound begins at the sample `from` of what is heard or up to `patience` samples later.
  SoundSearch(std::vector<std::int16_t> sound, std::size_t from, std::size_t patience);

  /// `heard` is everything heard so far. Continues where the latest call ended. A silent sound is Missing.
  Result Look(std::span<const std::int16_t> heard);

  /// Where the sound ends in what is heard, once it is found.
  std::size_t End() const { return begin_ + sound_.size(); }

 private:
  /// A part of the sound that is not silent.
  struct Piece {
    std::size_t offset;
    std::size_t size;
  };

  bool Find(const Piece& piece, std::span<const std::int16_t> heard);
  double Likeness(const Piece& piece, const std::int16_t* heard) const;
  void Expect(std::size_t earliest, std::size_t latest);
  void Leave();

  std::vector<std::int16_t> sound_;
  std::vector<Piece> pieces_;
  std::size_t next_ = 0;     ///< the piece that is looked for
  std::size_t found_ = 0;    ///< how many were
  std::size_t begin_;        ///< of the sound, by the latest piece
  std::size_t at_ = 0;       ///< where that piece is looked for next
  std::size_t latest_ = 0;   ///< where it can begin at the latest
  std::size_t best_at_ = 0;  ///< where it was most like it
  double best_ = 0;
};

}  // namespace orven
