// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/telephony_control.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/text.h"
#include "platform/wave.h"
#include "records/call.h"

namespace orven {
namespace {

using namespace std::chrono_literals;
using Kind = LineEvent::Kind;

/// The line's own hang-ups; the program's requests begin at 1.
constexpr std::int32_t kOwnRequest = 0;

const char* TextOf(std::int32_t result) {
  if (result > 0) return "Success";
  switch (result) {
    case kTelephonyOk: return "Success";
    case kTelephonyBadDevice: return Tr("There is no telephony device with this index.");
    case kTelephonyLineNotOpen: return Tr("The line is not open.");
    case kTelephonyLineInUse: return Tr("The line is in use by another program.");
    case kTelephonyNoCall: return Tr("There is no call on the line.");
    case kTelephonyAlreadyAnswered: return Tr("The call is being answered already.");
    case kTelephonyDeviceFailed: return Tr("The telephony device failed.");
    case kTelephonyNoDevices: return Tr("There are no telephony devices.");
    default: return nullptr;
  }
}

void Clean(LineEvent& event) {
  event.name = CleanCallerText(event.name);
  event.text = CleanCallerText(event.text);
}

/// Cleans the caller's texts and names what the network did not send. False when it sent nothing.
bool CleanCaller(LineEvent& event) {
  Clean(event);
  if (event.name.empty() && event.text.empty()) return false;
  for (auto* text : {&event.name, &event.text}) {
    if (text->empty()) *text = kUnknownCaller;
  }
  return true;
}

}  // namespace

TelephonyControl::TelephonyControl(EventLoop& loop, std::vector<TelephoneDevice> devices, IdleCalls idle)
    : loop_(loop), idle_(std::move(idle)) {
  Add(std::move(devices));
}

TelephonyControl::~TelephonyControl() {
  for (const auto* lines : {&lines_, &replaced_}) {
    for (const auto& line : *lines) line->device.driver->Close();
  }
}

void TelephonyControl::Add(std::vector<TelephoneDevice> devices) {
  for (auto& device : devices) {
    std::unique_ptr<Line> added(new Line{.index = GetNumDevs(), .device = std::move(device)});
    auto* line = added.get();
    line->deliver = lifeline_.Bind([this, line] { Deliver(*line); });
    if (line->device.idle_limit > 0s && idle_.in_use)
      line->tmrIdle = loop_.MakeTimer([this, line] { CountIdleSecond(*line); });
    lines_.push_back(std::move(added));
  }
}

bool TelephonyControl::HasCall() const {
  return std::ranges::any_of(lines_, [](const auto& line) { return line->call.number != 0; });
}

bool TelephonyControl::Replace(std::vector<TelephoneDevice> devices) {
  if (std::ranges::any_of(lines_, [](const auto& line) { return line->open; })) return false;
  std::ranges::move(lines_, std::back_inserter(replaced_));
  lines_.clear();
  Add(std::move(devices));
  return true;
}

TelephonyControl::Line* TelephonyControl::At(std::int32_t index) const {
  return index >= 0 && index < GetNumDevs() ? lines_[static_cast<std::size_t>(index)].get() : nullptr;
}

TelephonyControl::Line* TelephonyControl::OpenAt(std::int32_t index) const {
  auto* line = At(index);
  return line != nullptr && line->open ? line : nullptr;
}

std::string TelephonyControl::OpenFailureOf(std::int32_t index) const {
  const auto* line = At(index);
  return line != nullptr ? line->failure.reason : "";
}

Words TelephonyControl::OpenTroubleOf(std::int32_t index) const {
  const auto* line = At(index);
  if (line == nullptr || line->failure.result == kTelephonyOk) return {};
  if (!line->failure.trouble.Empty()) return line->failure.trouble;
  return Words("The line cannot be opened (%1)").Arg(Words(ErrorText(line->failure.result).c_str()));
}

std::string TelephonyControl::ErrorText(std::int32_t result) const {
  const char* text = TextOf(result);
  if (text == nullptr) return "Unknown telephony error " + std::to_string(result) + ".";
  const bool from_open = result == kTelephonyLineInUse || result == kTelephonyDeviceFailed;
  return from_open && !open_failure_.empty() ? text + (" " + open_failure_) : text;
}

void TelephonyControl::GetDevCaps(std::int32_t index, DeviceCapabilities& capabilities) const {
  const auto* line = At(index);
  capabilities = line != nullptr ? line->device.capabilities : DeviceCapabilities{};
}

std::int32_t TelephonyControl::LineOpen(std::int32_t index, std::int32_t /*privileges*/,
                                        std::int32_t /*media_modes*/) {
  auto* line = At(index);
  if (line == nullptr) return kTelephonyBadDevice;
  if (line->open) return kTelephonyOk;
  const auto failure =
      line->device.driver->Open([this, line](LineEvent event) { Push(*line, std::move(event)); });
  line->open = !failure;
  line->failure = failure.value_or(OpenFailure{});
  open_failure_ = line->failure.reason;
  return line->failure.result;
}

std::int32_t TelephonyControl::LineClose(std::int32_t index) {
  auto* line = OpenAt(index);
  if (line == nullptr) return kTelephonyLineNotOpen;
  line->device.driver->Close();
  Deliver(*line);
  line->open = false;
  return kTelephonyOk;
}

bool TelephonyControl::IsCallConnected(std::int32_t index) const {
  const auto* line = OpenAt(index);
  return line != nullptr && line->call.connected;
}

std::int32_t TelephonyControl::LineAnswer(std::int32_t index) {
  auto* line = OpenAt(index);
  if (line == nullptr) return kTelephonyLineNotOpen;
  const auto request = ++last_request_;
  auto& call = line->call;
  if (call.number == 0 || call.dropped || call.remote_gone) return kTelephonyNoCall;
  if (call.answer_request != 0) return kTelephonyAlreadyAnswered;
  call.answer_request = request;
  line->device.driver->Answer(call.number, request);
  return request;
}

std::int32_t TelephonyControl::LineDrop(std::int32_t index) {
  auto* line = OpenAt(index);
  if (line == nullptr) return kTelephonyLineNotOpen;
  const auto request = ++last_request_;
  auto& call = line->call;
  if (call.number == 0 || call.dropped) return kTelephonyNoCall;
  call.dropped = true;
  call.connected = false;
  if (!call.remote_gone) {
    line->device.driver->Drop(call.number, request);
    return request;
  }
  // The caller was faster: there is nothing left to hang up, but the request counts as done.
  call.finished_requests.push_back(request);
  loop_.Post(lifeline_.Bind([this, line] { TellFinishedRequests(*line); }));
  return request;
}

void TelephonyControl::MonitorDigits(std::int32_t index, bool on) {
  auto* line = OpenAt(index);
  if (line != nullptr && line->call.number != 0) line->device.driver->MonitorDigits(line->call.number, on);
}

std::int32_t TelephonyControl::GetWaveDeviceId(std::int32_t index, std::int32_t /*direction*/) const {
  return At(index) != nullptr ? kFirstLineWaveDevice + index : kNoWaveDevice;
}

AudioDevice* TelephonyControl::Find(std::int32_t number) {
  auto* line = At(number - kFirstLineWaveDevice);
  return line != nullptr ? &line->device.driver->Audio() : nullptr;
}

/// Any thread. One task for each event: a handler may run a nested loop (a message box), and that must
/// deliver events that were already waiting. They wait in the line and not in the loop, so that closing the
/// line can deliver the remaining ones at once.
void TelephonyControl::Push(Line& line, LineEvent event) {
  line.arrived.Put(std::move(event));
  loop_.Post(line.deliver);
}

void TelephonyControl::Deliver(Line& line) {
  while (auto event = line.arrived.Take()) Take(line, std::move(*event));
}

void TelephonyControl::Take(Line& line, LineEvent event) {
  auto& call = line.call;
  const bool current = call.number != 0 && call.number == event.call;
  switch (event.kind) {
    case Kind::InCommingCall: call = {.number = event.call}; break;
    case Kind::Ring:
      if (!current || call.connected || call.dropped) return;
      break;
    case Kind::CallerID:
      if (!current || !CleanCaller(event)) return;
      break;
    case Kind::Diverted:
      if (!current) return;
      Clean(event);
      if (event.name.empty()) event.name = kUnknownCaller;
      break;
    case Kind::Proc:
      if (event.number == kOwnRequest) return;
      if (event.result == kTelephonyOk) {
        event.result = event.number;
      } else if (event.number == call.answer_request) {
        call.answer_request = 0;
      }
      break;
    case Kind::Connected:
      // For the program a call that it has hung up is no longer connected.
      if (!current || call.dropped) return;
      call.connected = true;
      line.idle_for = 0s;
      if (line.tmrIdle) line.tmrIdle->Start(1s);
      break;
    case Kind::MonitorDigit:
      if (!current || !call.connected) return;
      line.idle_for = 0s;
      break;
    case Kind::Disconnected:
      if (!current || std::exchange(call.remote_gone, true)) return;
      if (!call.dropped) Raise(line, std::move(event));
      call.connected = false;
      return;
    case Kind::Idle:
      if (!current) return;
      TellFinishedRequests(line);
      call = {};
      break;
    case Kind::Trouble: break;
  }
  Raise(line, std::move(event));
}

void TelephonyControl::Raise(const Line& line, LineEvent event) const {
  event.line = line.index;
  if (receiver_) receiver_(event);
}

void TelephonyControl::TellFinishedRequests(Line& line) {
  for (const auto request : std::exchange(line.call.finished_requests, {}))
    Raise(line, {.kind = Kind::Proc, .number = request, .result = request});
}

/// Counts the idle seconds and ends the call at the limit: otherwise a caller who stays silent after the
/// longest message would block the line for ever. The program is told that the caller has hung up.
void TelephonyControl::CountIdleSecond(Line& line) {
  if (!line.call.connected) return line.tmrIdle->Stop();
  line.idle_for = idle_.in_use() ? 0s : line.idle_for + 1s;
  const auto limit = line.device.idle_limit;
  if (line.idle_for <= limit) return;  // the first second may have been a short one
  line.tmrIdle->Stop();
  idle_.report("[" + line.device.capabilities.device_name + "] Nothing was played, recorded or keyed for " +
               std::to_string(limit.count()) + " s: the line ends the call");
  const auto call = line.call.number;
  line.device.driver->Drop(call, kOwnRequest);
  Take(line, {.kind = Kind::Disconnected, .call = call});
}

}  // namespace orven
