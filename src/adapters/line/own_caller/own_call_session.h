// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/own_caller/sound_search.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/rtp_stream.h"
#include "adapters/line/sip/sip_endpoint.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "platform/own_caller.h"

namespace orven {

/// What an own call is to do. The paths are those of sound files.
struct OwnCallPlan {
  SipLineSettings line;  ///< the line to call, which listens
  std::string greeting;
  std::string beep;
  std::string sentence;
};

/// The caller's side of an own call: rings the line, compares what it hears with the greeting and the beep,
/// says the sentence and hangs up. Made, used and destroyed on a SIP thread, where it raises its events.
class OwnCallSession {
 public:
  struct Events {
    std::function<void(const OwnCallerNews&)> news;
    std::function<void()> gone;  ///< after Close: the line has confirmed the end, or a second is over
  };

  OwnCallSession(OwnCallPlan plan, Events events);
  OwnCallSession(const OwnCallSession&) = delete;
  OwnCallSession& operator=(const OwnCallSession&) = delete;
  ~OwnCallSession();

  /// Calls the line.
  void Begin();

  /// Ends the call, without news.
  void Close();

 private:
  enum class Phase : std::uint8_t { Ringing, Greeting, Beep, Speaking, Over };

  /// Gets what is heard.
  struct Ear : AudioSink {
    explicit Ear(OwnCallSession& session) : session_(session) {}
    void Write(std::span<const std::int16_t> samples) override { session_.Hear(samples); }
    OwnCallSession& session_;
  };
  /// Says the sentence.
  struct Mouth : AudioSource {
    explicit Mouth(OwnCallSession& session) : session_(session) {}
    bool Read(std::span<std::int16_t> block) override { return session_.Say(block); }
    OwnCallSession& session_;
  };

  Words Call();
  int Connect(const sa& line);
  void Rings();
  int TakeAnswer(const sip_msg& answer);
  void Closed(int error, const sip_msg* answer);
  void Hear(std::span<const std::int16_t> samples);
  bool Say(std::span<std::int16_t> block);
  void Listen();
  void AwaitBeep(bool greeted);
  void Next();
  void Tell(OwnCallerNews::Kind kind, Words fault = {});
  void End(Words fault);
  void Gone();

  const OwnCallPlan plan_;
  const Events events_;
  Ear ear_{*this};
  Mouth mouth_{*this};
  LineAudio audio_;
  LibrePtr<dnsc> names_;
  std::unique_ptr<SipEndpoint> endpoint_;
  std::unique_ptr<RtpStream> stream_;
  std::optional<MediaNegotiation> negotiation_;
  LibrePtr<sipsess> session_;
  MonotonicTimer next_;   ///< until the phase's next step
  MonotonicTimer leave_;  ///< until the end is not waited for any longer

  Phase phase_ = Phase::Ringing;
  std::optional<SoundSearch> search_;
  std::size_t greeting_length_ = 0;  ///< samples
  std::vector<std::int16_t> heard_;
  std::vector<std::int16_t> sentence_;
  std::size_t said_ = 0;  ///< samples of the sentence
  bool rings_ = false;
  bool gone_ = false;
};

}  // namespace orven
