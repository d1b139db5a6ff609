// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_server.h"

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/mainloop.h>
#include <pulse/proplist.h>

#include <cstdint>
#include <memory>

namespace orven {
namespace {

using Clock = std::chrono::steady_clock;

struct FreeLoop {
  void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
};

struct FreeContext {
  void operator()(pa_context* context) const {
    pa_context_disconnect(context);
    pa_context_unref(context);
  }
};

/// Drivers that do not group their devices into cards still report the bus.
std::string CardName(std::uint32_t card, const pa_proplist* properties) {
  if (card != PA_INVALID_INDEX) return "card " + std::to_string(card);
  const char* const bus = pa_proplist_gets(properties, PA_PROP_DEVICE_BUS_PATH);
  return bus == nullptr ? std::string() : std::string("bus ") + bus;
}

std::string Text(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

/// One short connection to the server.
class Conversation {
 public:
  explicit Conversation(std::chrono::milliseconds limit)
      : deadline_(Clock::now() + limit),
        loop_(pa_mainloop_new()),
        context_(pa_context_new(pa_mainloop_get_api(loop_.get()), "ORVEN")) {}

  SoundServer Ask() {
    if (pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOFLAGS, nullptr) < 0) return {};
    while (State() != PA_CONTEXT_READY) {
      if (!PA_CONTEXT_IS_GOOD(State())) return {};
      if (!Step()) return Silent();
    }
    Put(pa_context_get_server_info(context_.get(), &Conversation::TakeDefaults, this));
    Put(pa_context_get_sink_info_list(context_.get(), &Conversation::TakeOutput, this));
    Put(pa_context_get_source_info_list(context_.get(), &Conversation::TakeInput, this));
    while (unanswered_ > 0) {
      if (!PA_CONTEXT_IS_GOOD(State())) return {};
      if (!Step()) return Silent();
    }
    answer_.state = SoundServer::State::Ready;
    return answer_;
  }

 private:
  static SoundServer Silent() {
    SoundServer server;
    server.state = SoundServer::State::Silent;
    return server;
  }

  /// A request that cannot be sent is never answered; the connection has failed then.
  void Put(pa_operation* question) {
    ++unanswered_;
    if (question != nullptr) pa_operation_unref(question);
  }

  static void TakeDefaults(pa_context* /*context*/, const pa_server_info* info, void* self) {
    auto& conversation = *static_cast<Conversation*>(self);
    --conversation.unanswered_;
    if (info == nullptr) return;
    conversation.answer_.default_output = Text(info->default_sink_name);
    conversation.answer_.default_input = Text(info->default_source_name);
  }

  static void TakeOutput(pa_context* /*context*/, const pa_sink_info* info, int end, void* self) {
    auto& conversation = *static_cast<Conversation*>(self);
    if (end != 0) {
      --conversation.unanswered_;
    } else {
      conversation.answer_.outputs.push_back({Text(info->name), CardName(info->card, info->proplist)});
    }
  }

  static void TakeInput(pa_context* /*context*/, const pa_source_info* info, int end, void* self) {
    auto& conversation = *static_cast<Conversation*>(self);
    if (end != 0) {
      --conversation.unanswered_;
      return;
    }
    if (info->monitor_of_sink != PA_INVALID_INDEX) return;
    const pa_source_port_info* const port = info->active_port;
    const bool connected = port == nullptr || port->available != PA_PORT_AVAILABLE_NO;
    conversation.answer_.inputs.push_back(
        {Text(info->name), CardName(info->card, info->proplist), connected});
  }

  pa_context_state_t State() const { return pa_context_get_state(context_.get()); }

  /// Waits for the next event; false when the time is up.
  bool Step() {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline_ - Clock::now());
    if (left.count() <= 0) return false;
    return pa_mainloop_prepare(loop_.get(), static_cast<int>(left.count())) >= 0 &&
           pa_mainloop_poll(loop_.get()) >= 0 && pa_mainloop_dispatch(loop_.get()) >= 0;
  }

  const Clock::time_point deadline_;
  std::unique_ptr<pa_mainloop, FreeLoop> loop_;
  std::unique_ptr<pa_context, FreeContext> context_;
  SoundServer answer_;
  int unanswered_ = 0;
};

std::string CardOf(const SoundServer& server, const std::string& output) {
  for (const SoundServer::Output& candidate : server.outputs)
    if (candidate.id == output) return candidate.card;
  return {};
}

std::string DefaultMicrophone(const SoundServer& server) {
  const SoundServer::Input* found = nullptr;
  for (const SoundServer::Input& input : server.inputs) {
    if (input.id == server.default_input) return input.id;
    if (found == nullptr && input.connected) found = &input;
  }
  return found == nullptr ? std::string() : found->id;
}

}  // namespace

SoundServer AskSoundServer(std::chrono::milliseconds limit) {
  return Conversation(limit).Ask();
}

std::string MicrophoneOf(const SoundServer& server, const std::string& output) {
  const std::string card = CardOf(server, output);
  const SoundServer::Input* found = nullptr;
  for (const SoundServer::Input& input : server.inputs) {
    if (card.empty() || input.card != card || !input.connected) continue;
    if (found == nullptr || input.id == server.default_input) found = &input;
  }
  return found == nullptr ? DefaultMicrophone(server) : found->id;
}

}  // namespace orven
