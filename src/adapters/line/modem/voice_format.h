// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orven {

/// The encoding of a sample; 16-bit samples are little-endian.
enum class SampleKind : std::uint8_t { Linear16, MuLaw, Unsigned8 };

/// A sample format as a modem knows it.
struct VoiceFormat {
  SampleKind kind = SampleKind::Unsigned8;
  int rate = 8000;      ///< samples a second: 8000, 7200 or 11025
  std::string setting;  ///< the value for "AT+VSM=", for example "129,8000"

  bool operator==(const VoiceFormat&) const = default;
};

/// The usable formats in the answer to "AT+VSM=?", best first: 16 bits, mu-law, 8 bits unsigned; within a
/// kind 8000 samples a second first. Recognised by name and bits, as the numbers differ from chip to chip.
std::vector<VoiceFormat> OfferedFormats(std::span<const std::string> answer);

/// What to try when a modem does not answer: 8 bits unsigned under the usual numbers.
std::vector<VoiceFormat> UsualFormats();

/// The format in the answer to "AT+VSM?", for a modem that has refused UsualFormats; empty if not usable.
std::vector<VoiceFormat> PresentFormat(std::span<const std::string> answer);

}  // namespace orven
