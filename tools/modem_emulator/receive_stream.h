// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "modem_emulator/host_port.h"
#include "modem_emulator/sound_coding.h"

namespace orven::emulator {

/// The line's sound on its way to the host: in the modem's format, shielded, in blocks of uneven size.
/// One for each +VRX.
class ReceiveStream {
 public:
  /// `sent` gets the bytes as they are sent, before they are shielded. `pairs`: two 0x10 in a row become
  /// <DLE><SUB>.
  ReceiveStream(ModemCoding coding, int rate, bool pairs, HostPort& port, std::vector<std::uint8_t>& sent);

  /// The line's next samples, 8000 a second.
  void Put(std::span<const std::int16_t> samples);

  /// Sends what waits for a block to be full.
  void Flush();

 private:
  void ChooseBlock();

  ModemCoding coding_;
  int rate_;
  bool pairs_;
  HostPort& port_;
  std::vector<std::uint8_t>& sent_;
  RateChange change_;
  std::vector<std::uint8_t> block_;
  std::size_t enough_ = 0;  ///< bytes of the present block
};

}  // namespace orven::emulator
