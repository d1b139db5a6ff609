// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/microphone_take.h"

namespace orven {
namespace {

constexpr std::int32_t kDefaultCard = 0;
constexpr WaveFormat kFormat{kWaveFormatPcm, 1, 16, 8000};

}  // namespace

std::int32_t MicrophoneTake::Start(std::int32_t device) {
  parts_.Wave1.SetRecordFolder(parts_.home.Path());
  parts_.Wave1.SetRecordName({});
  auto result = parts_.Wave1.StartRecord(device, kFormat);
  if (result == kWaveNoDevice) result = parts_.Wave1.StartRecord(kDefaultCard, kFormat);
  recording_ = result == kWaveOk;
  parts_.log.WriteSystem((recording_ ? "Start RecMessage[Device:" : "Error Start RecMessage[Device:") +
                         std::to_string(device) + " 1, 1, 16, 8000]->" +
                         parts_.Wave1.RecordErrorText(result));
  return result;
}

std::int32_t MicrophoneTake::Stop() {
  recording_ = false;
  const auto result = parts_.Wave1.StopRecordToFile(Path());
  if (result != kWaveOk)
    parts_.log.WriteSystem("ErrStopRecGreet " + std::to_string(result) + " " +
                           parts_.Wave1.RecordErrorText(result));
  return result;
}

void MicrophoneTake::MakeWay() {
  if (!Recording()) return;
  parts_.log.WriteSystem("A call was answered: the take from the microphone ends");
  const bool kept = Stop() == kWaveOk;
  if (interrupted_) interrupted_(kept);
}

}  // namespace orven
