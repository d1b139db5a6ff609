// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/mainloop-api.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "adapters/sound/card_list.h"
#include "adapters/sound/card_use.h"
#include "adapters/sound/sound_devices.h"

namespace orven {

/// The connection to the sound server, over PulseAudio's protocol, which PipeWire speaks too. It is made when
/// it is needed, starts the server if the desktop is configured so, and is kept; when the server ends, the
/// next look, play or take makes another. Nothing wakes the thread up while nothing plays or records. Sound
/// thread; no call waits for an answer.
class SoundServer {
 public:
  /// `cards` learns from each answer of the server.
  SoundServer(pa_mainloop_api& api, std::shared_ptr<CardList> cards) : api_(api), cards_(std::move(cards)) {}

  /// Closes all streams.
  ~SoundServer() { context_.reset(); }
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  /// Updates the list of cards.
  void Look();

  /// Starts `play` on card `number`, or lets it fail.
  void Begin(std::int32_t number, const std::shared_ptr<CardPlay>& play);

  /// Starts `take` from the microphone of card `number`, or lets it fail.
  void Begin(std::int32_t number, const std::shared_ptr<CardTake>& take);

 private:
  /// Gets the devices; none, and context_ is nullptr, when there is no server.
  using Then = std::function<void(const SoundDevices&)>;

  struct Question {
    Then then;
    SoundDevices devices = {};  ///< as far as they are known
  };

  struct EndContext {
    void operator()(pa_context* context) const;
  };

  void Ask(Then then);
  void Connect();
  void StateChanged();
  void Put();
  void Answer(const pa_server_info* info);
  void Lost();
  void Open(CardUse& use, const SoundDevice* device, const std::string& none);

  pa_mainloop_api& api_;
  const std::shared_ptr<CardList> cards_;
  std::unique_ptr<pa_context, EndContext> context_;
  std::deque<Question> questions_;  ///< the server answers them in order
};

}  // namespace orven
