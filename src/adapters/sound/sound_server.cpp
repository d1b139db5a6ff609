// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_server.h"

#include <pulse/operation.h>
#include <pulse/proplist.h>

#include <string>
#include <utility>

namespace orven {
namespace {

std::string Text(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

/// Drivers that do not group their devices into cards still report the bus.
std::string CardName(std::uint32_t card, const pa_proplist* properties) {
  if (card != PA_INVALID_INDEX) return "card " + std::to_string(card);
  const char* const bus = pa_proplist_gets(properties, PA_PROP_DEVICE_BUS_PATH);
  return bus == nullptr ? std::string() : std::string("bus ") + bus;
}

/// An output or an input.
template <class Info>
SoundDevice DeviceOf(const Info& info) {
  const bool connected = info.active_port == nullptr || info.active_port->available != PA_PORT_AVAILABLE_NO;
  return {Text(info.name), Text(info.description), CardName(info.card, info.proplist), connected};
}

/// A request that cannot be sent is not answered; the connection has failed then.
void Release(pa_operation* request) {
  if (request != nullptr) pa_operation_unref(request);
}

}  // namespace

void SoundServer::EndContext::operator()(pa_context* context) const {
  pa_context_set_state_callback(context, nullptr, nullptr);
  pa_context_disconnect(context);
  pa_context_unref(context);
}

void SoundServer::Look() {
  Ask([](const SoundDevices&) {});
}

void SoundServer::Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play) {
  Ask([this, number, play](const SoundDevices& devices) {
    const bool any = number == 0;
    Open(*play, OutputOf(devices, any ? devices.default_output : cards_->IdOf(number)),
         any ? "There is no sound output to play on."
             : "There is no sound output number " + std::to_string(number) + " now.");
  });
}

void SoundServer::Begin(std::int32_t number, const std::shared_ptr<CardTake>& take) {
  Ask([this, number, take](const SoundDevices& devices) {
    Open(*take, MicrophoneOf(devices, cards_->IdOf(number)), "There is no microphone to record from.");
  });
}

void SoundServer::Open(CardUse& use, const SoundDevice* device, const std::string& none) {
  if (context_ == nullptr) return use.Fail("There is no sound server.");
  if (device == nullptr) return use.Fail(none);
  use.Open(context_.get(), *device);
}

void SoundServer::Ask(Then then) {
  questions_.push_back({std::move(then)});
  if (context_ == nullptr) return Connect();
  if (pa_context_get_state(context_.get()) == PA_CONTEXT_READY) Put();
}

void SoundServer::Connect() {
  context_.reset(pa_context_new(&api_, "ORVEN"));
  if (context_ == nullptr) return Lost();
  pa_context_set_state_callback(
      context_.get(), [](pa_context*, void* self) { static_cast<SoundServer*>(self)->StateChanged(); }, this);
  if (pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0) Lost();
}

void SoundServer::StateChanged() {
  const pa_context_state_t state = pa_context_get_state(context_.get());
  if (!PA_CONTEXT_IS_GOOD(state)) return Lost();
  if (state != PA_CONTEXT_READY) return;
  for (std::size_t unanswered = questions_.size(); unanswered > 0; --unanswered) Put();
}

/// Asks one question.
void SoundServer::Put() {
  static const auto devices_of = [](void* self) -> SoundDevices& {
    return static_cast<SoundServer*>(self)->questions_.front().devices;
  };
  const auto output = [](pa_context*, const pa_sink_info* info, int end, void* self) {
    if (end == 0) devices_of(self).outputs.push_back(DeviceOf(*info));
  };
  const auto input = [](pa_context*, const pa_source_info* info, int end, void* self) {
    if (end == 0 && info->monitor_of_sink == PA_INVALID_INDEX)
      devices_of(self).inputs.push_back(DeviceOf(*info));
  };
  const auto server = [](pa_context*, const pa_server_info* info, void* self) {
    static_cast<SoundServer*>(self)->Answer(info);
  };
  Release(pa_context_get_sink_info_list(context_.get(), output, this));
  Release(pa_context_get_source_info_list(context_.get(), input, this));
  Release(pa_context_get_server_info(context_.get(), server, this));
}

/// The last part of an answer. There is no `info` when libpulse has waited too long for it.
void SoundServer::Answer(const pa_server_info* info) {
  if (info == nullptr) return Lost();
  Question question = std::move(questions_.front());
  questions_.pop_front();
  question.devices.default_output = Text(info->default_sink_name);
  question.devices.default_input = Text(info->default_source_name);
  cards_->Update(question.devices.outputs);
  cards_->SetRecords(MicrophoneOf(question.devices, "") != nullptr);
  question.then(question.devices);
}

/// Nothing can be recorded if there was no server to answer; about the next one nothing is known.
void SoundServer::Lost() {
  context_.reset();
  for (const Question& question : std::exchange(questions_, {})) {
    cards_->SetRecords(false);
    question.then(SoundDevices());
  }
}

}  // namespace orven
