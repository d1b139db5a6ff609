// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/line_service.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace orven {
namespace {

const char* TextOf(std::int32_t result) {
  if (result > 0) return "Success";
  switch (result) {
    case kTelephonyOk: return "Success";
    case kTelephonyBadDevice: return "There is no telephony device with this index.";
    case kTelephonyLineNotOpen: return "The line is not open.";
    case kTelephonyLineInUse: return "The line is in use by another program.";
    case kTelephonyNoCall: return "There is no call on the line.";
    case kTelephonyAlreadyAnswered: return "The call is being answered already.";
    case kTelephonyDeviceFailed: return "The telephony device failed.";
    case kTelephonyNoDevices: return "There are no telephony devices.";
    default: return nullptr;
  }
}

}  // namespace

LineService::LineService(EventLoop& loop, std::vector<TelephoneDevice> devices, IdleCalls idle)
    : loop_(loop), idle_(std::move(idle)) {
  Add(std::move(devices));
}

void LineService::Add(std::vector<TelephoneDevice> devices) {
  for (auto& device : devices) {
    lines_.push_back(std::make_unique<ServicedLine>(
        static_cast<std::int32_t>(lines_.size()), loop_, std::move(device), [this] { return events_; },
        idle_));
  }
}

bool LineService::HasCall() const {
  return std::ranges::any_of(lines_, &ServicedLine::HasCall);
}

bool LineService::Replace(std::vector<TelephoneDevice> devices) {
  if (std::ranges::any_of(lines_, &ServicedLine::IsOpen)) return false;
  std::ranges::move(lines_, std::back_inserter(replaced_));
  lines_.clear();
  Add(std::move(devices));
  return true;
}

ServicedLine* LineService::At(std::int32_t index) const {
  return index >= 0 && index < GetNumDevs() ? lines_[static_cast<std::size_t>(index)].get() : nullptr;
}

ServicedLine* LineService::OpenLineAt(std::int32_t index) const {
  auto* line = At(index);
  return line != nullptr && line->IsOpen() ? line : nullptr;
}

std::string LineService::OpenFailure(std::int32_t index) const {
  const auto* line = At(index);
  return line != nullptr ? line->LastError() : "";
}

std::int32_t LineService::LineInitialize() {
  return lines_.empty() ? kTelephonyNoDevices : kTelephonyOk;
}

std::string LineService::ErrorText(std::int32_t result) const {
  const char* text = TextOf(result);
  if (text == nullptr) return "Unknown telephony error " + std::to_string(result) + ".";
  const bool from_open = result == kTelephonyLineInUse || result == kTelephonyDeviceFailed;
  return from_open && !open_failure_.empty() ? text + (" " + open_failure_) : text;
}

void LineService::GetDevCaps(std::int32_t index, DeviceCapabilities& capabilities) const {
  const auto* line = At(index);
  capabilities = line != nullptr ? line->Capabilities() : DeviceCapabilities{};
}

bool LineService::IsLineOpen(std::int32_t index) const {
  return OpenLineAt(index) != nullptr;
}

std::int32_t LineService::LineOpen(std::int32_t index, std::int32_t /*privileges*/,
                                   std::int32_t /*media_modes*/) {
  auto* line = At(index);
  if (line == nullptr) return kTelephonyBadDevice;
  if (line->IsOpen()) return kTelephonyOk;
  const auto result = line->Open();
  open_failure_ = result == kTelephonyOk ? "" : line->LastError();
  return result;
}

std::int32_t LineService::LineClose(std::int32_t index) {
  auto* line = OpenLineAt(index);
  if (line == nullptr) return kTelephonyLineNotOpen;
  line->Close();
  return kTelephonyOk;
}

bool LineService::IsCallConnected(std::int32_t index) const {
  const auto* line = OpenLineAt(index);
  return line != nullptr && line->IsCallConnected();
}

std::int32_t LineService::LineAnswer(std::int32_t index) {
  auto* line = OpenLineAt(index);
  return line != nullptr ? line->Answer(++last_request_) : kTelephonyLineNotOpen;
}

std::int32_t LineService::LineDrop(std::int32_t index) {
  auto* line = OpenLineAt(index);
  return line != nullptr ? line->Drop(++last_request_) : kTelephonyLineNotOpen;
}

void LineService::MonitorDigits(std::int32_t index, bool on) {
  if (auto* line = OpenLineAt(index)) line->MonitorDigits(on);
}

void LineService::SetGreetingPhase(std::int32_t index, bool on) {
  if (auto* line = OpenLineAt(index)) line->SetGreetingPhase(on);
}

std::int32_t LineService::GetWaveDeviceId(std::int32_t index, std::int32_t /*direction*/) const {
  return At(index) != nullptr ? kFirstLineWaveDevice + index : kNoWaveDevice;
}

AudioDevice* LineService::Find(std::int32_t number) {
  auto* line = At(number - kFirstLineWaveDevice);
  return line != nullptr ? &line->Audio() : nullptr;
}

}  // namespace orven
