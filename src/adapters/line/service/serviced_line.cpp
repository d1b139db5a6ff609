// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/service/serviced_line.h"

#include <utility>

#include "adapters/line/service/caller_text.h"

namespace orven {

void DriverEventQueue::Push(Event event) {
  {
    const std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
  }
  loop_.Post(pump_);
}

bool DriverEventQueue::DeliverNext(LineDriverEvents& target) {
  Event event;
  {
    const std::lock_guard lock(mutex_);
    if (events_.empty()) return false;
    event = std::move(events_.front());
    events_.pop_front();
  }
  event(target);
  return true;
}

void DriverEventQueue::Offered(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Offered(call); });
}

void DriverEventQueue::Ring(CallNumber call, std::int32_t count) {
  Push([=](LineDriverEvents& to) { to.Ring(call, count); });
}

void DriverEventQueue::CallerId(CallNumber call, const std::string& name, const std::string& number) {
  Push([=](LineDriverEvents& to) { to.CallerId(call, name, number); });
}

void DriverEventQueue::RequestDone(std::int32_t request, std::int32_t result) {
  Push([=](LineDriverEvents& to) { to.RequestDone(request, result); });
}

void DriverEventQueue::Connected(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Connected(call); });
}

void DriverEventQueue::Digit(CallNumber call, char digit) {
  Push([=](LineDriverEvents& to) { to.Digit(call, digit); });
}

void DriverEventQueue::Disconnected(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Disconnected(call); });
}

void DriverEventQueue::Idle(CallNumber call) {
  Push([=](LineDriverEvents& to) { to.Idle(call); });
}

void DriverEventQueue::Trouble(const std::string& text) {
  Push([=](LineDriverEvents& to) { to.Trouble(text); });
}

namespace {

using namespace std::chrono_literals;

/// The line's own hang-ups; the program's requests begin at 1.
constexpr std::int32_t kOwnRequest = 0;

/// Replaces a name or number that the network did not send.
constexpr const char* kUnknown = "UNKNOWN";

std::string OrUnknown(std::string text) {
  return text.empty() ? kUnknown : std::move(text);
}

}  // namespace

ServicedLine::ServicedLine(std::int32_t index, EventLoop& loop, TelephoneDevice device,
                           std::function<TelephonyEvents*()> events, const IdleCalls& idle)
    : index_(index),
      loop_(loop),
      driver_(std::move(device.driver)),
      events_(std::move(events)),
      idle_(idle),
      idle_limit_(device.idle_limit),
      tmrIdle_(idle_limit_ > 0s && idle.in_use ? loop.MakeTimer([this] { CountIdleSecond(); }) : nullptr),
      queue_(loop, lifeline_.Bind([this] { Pump(); })) {}

ServicedLine::~ServicedLine() {
  driver_->Close();
}

template <class Event, class... Arguments>
void ServicedLine::Raise(Event event, Arguments&&... arguments) {
  if (auto* receiver = events_()) (receiver->*event)(index_, std::forward<Arguments>(arguments)...);
}

std::int32_t ServicedLine::Open() {
  const auto result = driver_->Open(queue_);
  open_ = result == kTelephonyOk;
  return result;
}

void ServicedLine::Close() {
  driver_->Close();
  Pump();
  open_ = false;
}

std::int32_t ServicedLine::Answer(std::int32_t request) {
  if (call_.number == 0 || call_.dropped || call_.remote_gone) return kTelephonyNoCall;
  if (call_.answer_request != 0) return kTelephonyAlreadyAnswered;
  call_.answer_request = request;
  driver_->Answer(call_.number, request);
  return request;
}

std::int32_t ServicedLine::Drop(std::int32_t request) {
  if (call_.number == 0 || call_.dropped) return kTelephonyNoCall;
  call_.dropped = true;
  call_.connected = false;
  if (!call_.remote_gone) {
    driver_->Drop(call_.number, request);
    return request;
  }
  // The caller was faster: there is nothing left to hang up, but the request counts as done.
  call_.finished_requests.push_back(request);
  loop_.Post(lifeline_.Bind([this] { TellFinishedRequests(); }));
  return request;
}

void ServicedLine::MonitorDigits(bool on) {
  if (call_.number != 0) driver_->MonitorDigits(call_.number, on);
}

void ServicedLine::SetGreetingPhase(bool on) {
  if (call_.number != 0) driver_->SetGreetingPhase(call_.number, on);
}

void ServicedLine::Pump() {
  while (queue_.DeliverNext(*this)) {
  }
}

/// Counts the idle seconds and ends the call at the limit: otherwise a caller who stays silent after the
/// longest message would block the line for ever. The program is told that the caller has hung up.
void ServicedLine::CountIdleSecond() {
  if (!call_.connected) return tmrIdle_->Stop();
  idle_for_ = idle_.in_use() ? 0s : idle_for_ + 1s;
  if (idle_for_ <= idle_limit_) return;  // the first second may have been a short one
  tmrIdle_->Stop();
  idle_.report("[" + Capabilities().device_name + "] Nothing was played, recorded or keyed for " +
               std::to_string(idle_limit_.count()) + " s: the line ends the call");
  driver_->Drop(call_.number, kOwnRequest);
  Disconnected(call_.number);
}

void ServicedLine::TellFinishedRequests() {
  for (const auto request : std::exchange(call_.finished_requests, {})) {
    Raise(&TelephonyEvents::Proc, request, request);
  }
}

void ServicedLine::Offered(CallNumber call) {
  call_ = Mirror{};
  call_.number = call;
  Raise(&TelephonyEvents::InCommingCall, CallInformation{call});
}

void ServicedLine::Ring(CallNumber call, std::int32_t count) {
  if (!IsCurrent(call) || call_.connected || call_.dropped) return;
  Raise(&TelephonyEvents::Ring, count);
}

void ServicedLine::CallerId(CallNumber call, const std::string& name, const std::string& number) {
  if (!IsCurrent(call)) return;
  auto clean_name = CleanCallerText(name);
  auto clean_number = CleanCallerText(number);
  if (clean_name.empty() && clean_number.empty()) return;
  Raise(&TelephonyEvents::CallerID, OrUnknown(std::move(clean_name)), OrUnknown(std::move(clean_number)));
}

void ServicedLine::RequestDone(std::int32_t request, std::int32_t result) {
  if (request == kOwnRequest) return;
  if (result != kTelephonyOk && request == call_.answer_request) call_.answer_request = 0;
  Raise(&TelephonyEvents::Proc, request, result == kTelephonyOk ? request : result);
}

void ServicedLine::Connected(CallNumber call) {
  // For the program a call that it has hung up is no longer connected.
  if (!IsCurrent(call) || call_.dropped) return;
  call_.connected = true;
  idle_for_ = 0s;
  if (tmrIdle_) tmrIdle_->Start(1s);
  Raise(&TelephonyEvents::Connected);
}

void ServicedLine::Digit(CallNumber call, char digit) {
  if (!IsCurrent(call) || !call_.connected) return;
  idle_for_ = 0s;
  Raise(&TelephonyEvents::MonitorDigit, digit);
}

void ServicedLine::Disconnected(CallNumber call) {
  if (!IsCurrent(call) || call_.remote_gone) return;
  call_.remote_gone = true;
  if (!call_.dropped) Raise(&TelephonyEvents::Disconnected);
  call_.connected = false;
}

void ServicedLine::Idle(CallNumber call) {
  if (!IsCurrent(call)) return;
  TellFinishedRequests();
  call_ = Mirror{};
  Raise(&TelephonyEvents::Idle);
}

void ServicedLine::Trouble(const std::string& text) {
  Raise(&TelephonyEvents::Trouble, text);
}

}  // namespace orven
