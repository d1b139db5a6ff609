// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/wave_result_text.h"

#include "platform/wave.h"

namespace orven {
namespace {

std::string CommonText(std::int32_t code) {
  switch (code) {
    case kWaveOk: return "The operation completed successfully.";
    case kWaveFileNotFound: return "The sound file was not found.";
    case kWaveFileUnreadable: return "The file is empty, damaged, not a sound file, or may not be read.";
    case kWaveNotRecording: return "No recording is running.";
    case kWavePathNotFound: return "The folder for the recording was not found.";
    case kWaveWriteDenied: return "The recording may not be written there.";
    case kWaveDiskFull: return "The disk is full.";
    case kWaveWriteFailed: return "The recording could not be written.";
    default: return "Unknown wave error " + std::to_string(code) + ".";
  }
}

}  // namespace

std::string PlayResultText(std::int32_t code) {
  switch (code) {
    case kWaveNoDevice: return "There is no such wave device, or it cannot play now.";
    case kWaveBusy: return "The wave device is already playing.";
    case kWaveBadFormat: return "Sound in this format cannot be played.";
    default: return CommonText(code);
  }
}

std::string RecordResultText(std::int32_t code) {
  switch (code) {
    case kWaveNoDevice: return "There is no such wave device, or it cannot record now.";
    case kWaveBusy: return "The wave device is already in use.";
    case kWaveBadFormat: return "The wave device cannot record in this format.";
    default: return CommonText(code);
  }
}

}  // namespace orven
