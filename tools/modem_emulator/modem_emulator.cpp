// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/modem_emulator.h"

#include "modem_emulator/modem_impl.h"

namespace orven {

using emulator::NetworkTone;
using std::chrono::milliseconds;

ModemEmulator::ModemEmulator(const ModemProfile& profile, const ModemFaults& faults, EventLoop& loop,
                             const Clock& clock, ToHost to_host)
    : impl_(std::make_unique<Impl>(profile, faults, loop, clock, std::move(to_host))) {}

ModemEmulator::~ModemEmulator() = default;

void ModemEmulator::SetTell(Tell tell) {
  impl_->tell = std::move(tell);
}
void ModemEmulator::FromHost(std::span<const std::uint8_t> bytes) {
  impl_->FromHost(bytes);
}
std::size_t ModemEmulator::Room() const {
  return impl_->Room();
}
void ModemEmulator::Ring() {
  impl_->Ring();
}
void ModemEmulator::CallerIdLine(const std::string& line) {
  impl_->CallerIdLine(line);
}
void ModemEmulator::Press(char key, milliseconds duration) {
  impl_->Press(key, duration);
}
void ModemEmulator::Say(std::vector<std::int16_t> samples) {
  impl_->Say(std::move(samples));
}
void ModemEmulator::HangUp() {
  impl_->HangUp(NetworkTone::Busy);
}
void ModemEmulator::HangUpToDialTone() {
  impl_->HangUp(NetworkTone::Dial);
}
void ModemEmulator::HangUpToSilence() {
  impl_->HangUp(NetworkTone::Silence);
}
void ModemEmulator::Sign(char code) {
  impl_->Sign(code);
}
void ModemEmulator::Wedge() {
  impl_->Wedge(true);
}
void ModemEmulator::Wake() {
  impl_->Wedge(false);
}
void ModemEmulator::PowerCycle() {
  impl_->PowerCycle();
}
int ModemEmulator::NeededPortRate() const {
  return impl_->NeededPortRate();
}
bool ModemEmulator::OffHook() const {
  return impl_->OffHook();
}
bool ModemEmulator::Speaking() const {
  return impl_->caller.Speaking();
}
milliseconds ModemEmulator::OffHookAt() const {
  return impl_->off_hook_at;
}
milliseconds ModemEmulator::KeyReportedAt() const {
  return impl_->key_reported_at;
}
const std::vector<std::int16_t>& ModemEmulator::Heard() const {
  return impl_->heard;
}
const std::vector<std::int16_t>& ModemEmulator::Spoken() const {
  return impl_->spoken;
}
const std::vector<std::uint8_t>& ModemEmulator::PlayedBytes() const {
  return impl_->played;
}
const std::vector<std::uint8_t>& ModemEmulator::SentBytes() const {
  return impl_->sent;
}
const std::vector<std::string>& ModemEmulator::Commands() const {
  return impl_->commands;
}
const std::vector<std::string>& ModemEmulator::Complaints() const {
  return impl_->complaints;
}

}  // namespace orven
