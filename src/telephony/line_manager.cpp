// SPDX-License-Identifier: GPL-3.0-or-later
#include "telephony/line_manager.h"

#include <algorithm>
#include <utility>

#include "core/error_trap.h"

namespace orven {
namespace {

constexpr std::int32_t kNoneSelected = -1;
constexpr std::int32_t kNoneUsable = -2;

constexpr std::int32_t kOwnerPrivilege = 4;
constexpr std::int32_t kAutomatedVoice = 8;

/// A port is often taken for a moment only; what lasts must not keep the computer busy. Doubles with each
/// failure.
constexpr std::chrono::seconds kFirstPause{1}, kLongestPause{60};

/// Between two looks whether the call is over.
constexpr std::chrono::milliseconds kLookForCall{500};

std::string Device(std::int32_t index, const std::string& name) {
  return "[LineIndex:" + std::to_string(index) + " Device Name:" + name + "]";
}

}  // namespace

bool LineManager::SelectModemDevice() {
  const ErrorTrap trap(ports_.log, "ErrSelectModemDevice ");
  if (settings_.Modem == kNoneSelected) {
    trap([&] { ChooseFirstUsable(); });
    if (settings_.Modem == kNoneUsable) return false;
  }
  std::int32_t index = kNoneSelected;
  trap([&] { index = FindByName(settings_.ModemName); });
  settings_.Modem = index;
  if (index != kNoneSelected) return true;
  trap([&] { store_.Set("Modem", std::to_string(kNoneSelected)); });
  TellToSelectDevice();
  return false;
}

void LineManager::TellToSelectDevice() {
  if (std::exchange(telling_, true)) return;
  ports_.dialogs.Information(Words("Select Modem Device From Options/Devices [Modem Device]"));
  telling_ = false;
}

void LineManager::ChooseFirstUsable() {
  settings_.Modem = FindUsable();
  settings_.ModemName = DeviceName(settings_.Modem);
  store_.Set("Modem", std::to_string(settings_.Modem));
  store_.Set("ModemName", settings_.ModemName);
  ports_.log.WriteSystem("SelectDevice->LineIndex: " + std::to_string(settings_.Modem) +
                         "  Device Name: " + settings_.ModemName);
}

std::int32_t LineManager::FindByName(const std::string& name) const {
  for (std::int32_t index = 0; index < ports_.Tapi1.GetNumDevs(); ++index) {
    if (DeviceName(index) == name) return index;
  }
  return kNoneSelected;
}

std::int32_t LineManager::FindUsable() const {
  for (std::int32_t index = 0; index < ports_.Tapi1.GetNumDevs(); ++index) {
    DeviceCapabilities capabilities;
    ports_.Tapi1.GetDevCaps(index, capabilities);
    // An answering machine has to play and record by itself and to hear the owner's password.
    if (capabilities.automated_voice && capabilities.monitor_digits) return index;
  }
  return kNoneUsable;
}

std::string LineManager::DeviceName(std::int32_t index) const {
  DeviceCapabilities capabilities;
  ports_.Tapi1.GetDevCaps(index, capabilities);
  return capabilities.device_name;
}

void LineManager::OpenLine(std::int32_t index) {
  failure_.clear();
  pause_ = kFirstPause;
  TryToOpen(index);
}

void LineManager::TryToOpen(std::int32_t index) {
  const ErrorTrap trap(ports_.log, "ErrOpenLine ");
  trap([&] { Open(index); });
}

void LineManager::Open(std::int32_t index) {
  tmrOpenLine_->Stop();
  if (index < 0 || ports_.Tapi1.IsLineOpen(CurrentIndex()) || ports_.Tapi1.IsLineOpen(index)) return;
  const auto result = ports_.Tapi1.LineOpen(index, kOwnerPrivilege, kAutomatedVoice);
  const auto name = DeviceName(index);
  const auto line = "LineOpen" + Device(index, name) + "->" + ports_.Tapi1.ErrorText(result);
  if (result != kTelephonyOk) return OpenFailed(index, "Error " + line);
  open_index_ = index;
  ever_open_ = true;
  ports_.log.WriteSystem(line);
  Become({.on = true});
}

void LineManager::OpenFailed(std::int32_t index, const std::string& line_of_log) {
  tmrOpenLine_->Start(pause_);
  pause_ = std::min(2 * pause_, kLongestPause);
  ever_open_ = ever_open_.value_or(false);
  if (std::exchange(failure_, line_of_log) == line_of_log) return;
  ports_.log.WriteSystem(line_of_log);
  Become({.trying = true, .trouble = ports_.Tapi1.OpenTroubleOf(index)});
}

/// Shows the line's state everywhere.
void LineManager::Become(LineHealth health) {
  const bool news = health != health_;
  health_ = std::move(health);
  ShowLine();
  ShowMonitoring();
  if (!news) return;
  for (const auto& listener : listeners_) listener(health_);
}

void LineManager::CloseLine(std::int32_t index) {
  if (open_index_ >= 0) index = open_index_;
  tmrOpenLine_->Stop();
  const ErrorTrap trap(ports_.log, "ErrCloseLine ");
  trap([&] {
    if (!ports_.Tapi1.IsLineOpen(index)) return;
    const auto result = ports_.Tapi1.LineClose(index);
    ports_.log.WriteSystem("LineClose[LineIndex=" + std::to_string(index) + "]->" +
                           ports_.Tapi1.ErrorText(result));
  });
  open_index_ = -1;
  Become({});
}

void LineManager::ReplaceDevices(const std::function<void()>& replace) {
  const ErrorTrap trap(ports_.log, "ErrReplaceDevices ");
  const bool on = health_.on || health_.trying;
  const bool take_again = on || settings_.Modem < 0;
  if (on) CloseLine(CurrentIndex());
  trap(replace);
  const auto index = FindByName(settings_.ModemName);
  // It may have been chosen before there was a device for it.
  if (std::exchange(settings_.Modem, index) < 0 && index >= 0) store_.Set("Modem", std::to_string(index));
  if (SelectModemDevice() && take_again) OpenLine(settings_.Modem);
}

void LineManager::UseChosen() {
  tmrUseChosen_->Stop();
  if (AnotherIsOpen() && ports_.Tapi1.HasCall()) {
    tmrUseChosen_->Start(kLookForCall);
  } else {
    if (AnotherIsOpen()) CloseLine(open_index_);
    OpenLine(settings_.Modem);
  }
  ShowLine();
}

void LineManager::ShowLine() {
  ports_.view.ShowLine(health_.on, health_.trying);
  if (!AnotherIsOpen()) tmrUseChosen_->Stop();
  ports_.view.OfferChosen(AnotherIsOpen() ? settings_.ModemName : "", tmrUseChosen_->Enabled());
}

void LineManager::ShowMonitoring() {
  if (!health_.trouble.Empty()) return ports_.view.ShowStatus(health_.trouble);
  ports_.view.ShowStatus(health_.on ? Words("Monitoring %1").Arg(DeviceName(open_index_))
                                    : Words("Off Mode"));
}

void LineManager::Trouble(std::int32_t index, const Words& trouble) {
  if (index == open_index_ && trouble != health_.trouble) Become({.on = true, .trouble = trouble});
}

}  // namespace orven
