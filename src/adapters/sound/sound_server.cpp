// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/sound_server.h"

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/mainloop.h>

#include <algorithm>
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
    pa_operation* const question = pa_context_get_server_info(context_.get(), &Conversation::Take, this);
    if (question == nullptr) return {};
    pa_operation_unref(question);
    while (answer_.state != SoundServer::State::Ready) {
      if (!PA_CONTEXT_IS_GOOD(State())) return {};
      if (!Step()) return Silent();
    }
    return answer_;
  }

 private:
  static SoundServer Silent() { return {SoundServer::State::Silent, {}}; }

  static void Take(pa_context* /*context*/, const pa_server_info* info, void* self) {
    SoundServer& answer = static_cast<Conversation*>(self)->answer_;
    answer.state = SoundServer::State::Ready;
    if (info != nullptr && info->default_sink_name != nullptr)
      answer.default_output = info->default_sink_name;
  }

  pa_context_state_t State() const { return pa_context_get_state(context_.get()); }

  /// Waits for the next thing to happen; false when the time is up.
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
};

}  // namespace

SoundServer AskSoundServer(std::chrono::milliseconds limit) {
  return Conversation(limit).Ask();
}

}  // namespace orven
