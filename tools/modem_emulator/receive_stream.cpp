// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/receive_stream.h"

#include "modem_emulator/codes.h"

namespace orven::emulator {
namespace {

constexpr int kShortestBlock = 3;  // ms
constexpr int kLongestBlock = 60;

std::vector<std::uint8_t> Shielded(std::span<const std::uint8_t> bytes, bool pairs) {
  std::vector<std::uint8_t> out;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    out.push_back(bytes[i]);
    if (bytes[i] != kDleByte) continue;
    const bool pair = pairs && i + 1 < bytes.size() && bytes[i + 1] == kDleByte;
    out.push_back(pair ? kSubByte : kDleByte);
    if (pair) ++i;
  }
  return out;
}

}  // namespace

ReceiveStream::ReceiveStream(ModemCoding coding, int rate, bool pairs, HostPort& port,
                             std::vector<std::uint8_t>& sent)
    : coding_(coding), rate_(rate), pairs_(pairs), port_(port), sent_(sent), change_(kLineRate, rate) {
  ChooseBlock();
}

void ReceiveStream::ChooseBlock() {
  const int samples = port_.Any(kShortestBlock, kLongestBlock) * rate_ / 1000;
  // One byte more or less, so that blocks end in the middle of a sample as well.
  enough_ = static_cast<std::size_t>(samples) * BytesPerSample(coding_) + 1;
}

void ReceiveStream::Put(std::span<const std::int16_t> samples) {
  std::vector<std::int16_t> sound;
  change_.Process(samples, false, sound);
  for (const auto sample : sound) {
    WriteSample(coding_, sample, block_);
    if (block_.size() >= enough_) Flush();
  }
}

void ReceiveStream::Flush() {
  if (block_.empty()) return;
  sent_.insert(sent_.end(), block_.begin(), block_.end());
  port_.Send(Shielded(block_, pairs_), HostPort::Time(0));
  block_.clear();
  ChooseBlock();
}

}  // namespace orven::emulator
