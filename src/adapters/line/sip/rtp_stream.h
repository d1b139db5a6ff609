// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "adapters/line/driver/line_audio.h"
#include "adapters/line/sip/codec.h"
#include "adapters/line/sip/digits.h"
#include "adapters/line/sip/jitter_buffer.h"
#include "adapters/line/sip/libre.h"
#include "adapters/line/sip/media_agreement.h"
#include "adapters/line/sip/placement.h"
#include "adapters/line/sip/rtp.h"
#include "adapters/line/sip/sip_line_settings.h"
#include "adapters/line/sip/srtp.h"
#include "adapters/line/sip/timeline.h"

namespace orven {

/// One call's audio: every 20 ms it sends a block of the played audio, passes on what is heard now, and what
/// has come for the recording. Sends at start + n x 20 ms and catches up after a stall. While nothing is
/// played and nobody listens along, it does the work of 100 ms at once. SIP thread.
class RtpStream {
 public:
  /// What happens in a call's audio. SIP thread, also within RtpStream's operations.
  struct Events {
    std::function<void()> heard;  ///< the peer's first audio has arrived
    std::function<void(DigitSource source, char digit, DigitMerger::Time at)> digit;
    std::function<void(DigitSource source, DigitMerger::Time at)> held;
    /// The peer has sent nothing for too long, its computer refuses our packets, or AwaitsMore no longer
    /// holds.
    std::function<void()> over;
  };

  /// Binds a port pair at `address`; nullptr when there is none.
  static std::unique_ptr<RtpStream> Bind(const sa& address, LineAudio& audio, const SipLineTimers& timers,
                                         Events events);

  RtpStream(const RtpStream&) = delete;
  RtpStream& operator=(const RtpStream&) = delete;
  ~RtpStream() { Stop(); }

  std::uint16_t Port() const { return ports_.port; }

  /// Begins. Until the peer's address is known (`agreement` absent) it sends nothing and records silence.
  void Start(const std::optional<MediaAgreement>& agreement);

  /// The playing source has its first audio. If the peer has heard only silence so far, that audio is sent
  /// now, and the 20 ms are counted from now.
  void SourceReady();

  /// Playing or recording has begun.
  void AudioBegun() {
    if (started_) Tick();
  }

  /// A re-INVITE has changed the agreement: the peer may also send from another address now.
  void Update(const MediaAgreement& agreement);

  /// The peer has hung up: sends no more. Whether audio for the recording is still under way; then it is
  /// taken until `over` is raised, SipLineTimers::last_audio from now at the latest.
  bool AwaitsMore();

  /// Ends. First passes all that has come to the recording. Idempotent.
  void Stop();

 private:
  using Time = std::chrono::steady_clock::time_point;

  RtpStream(LineAudio& audio, const SipLineTimers& timers, Events events);

  void Agree(const MediaAgreement& agreement);
  void Tick();
  void SendBlock(bool may_play);
  void Send(std::span<const std::uint8_t> packet);
  void Keep();
  void HearBlock(Time at);
  void KeepPace();
  void CheckPeer(Time now);
  bool IsUnderWay(Time now);

  static std::optional<std::span<const std::uint8_t>> Opened(std::optional<SrtpReceiver>& receiver,
                                                             std::span<const std::uint8_t> datagram);
  void TakePacket(const sa& source, std::span<const std::uint8_t> datagram, Time arrived);
  void TakeRtcp(const sa& source, std::span<const std::uint8_t> datagram);
  void TakeRefusal(const sa& destination);
  bool IsPeer(const sa& source);
  void Place(const RtpPacket& packet, std::optional<Codec> codec, Time arrived);
  void TakeEvent(const RtpPacket& packet, Time arrived);

  LineAudio& audio_;
  const SipLineTimers& timers_;
  const Events events_;
  RtpPorts ports_;
  MonotonicTimer ticker_;
  std::optional<MediaAgreement> agreement_;
  std::optional<SrtpSender> srtp_sender_;  ///< absent, like the receivers, in a plain call
  std::optional<SrtpReceiver> rtp_receiver_;
  std::optional<SrtpReceiver> rtcp_receiver_;
  std::optional<sa> source_;  ///< where the peer's packets come from
  bool source_open_ = true;   ///< the next packet may come from anywhere and becomes the peer's

  std::optional<Placement> placement_;  ///< since Start
  TimeLine kept_;                       ///< within LineAudio's Keep and OnStopRecord
  JitterBuffer heard_now_;
  DtmfDetector dtmf_detector_;
  TelephoneEvents telephone_events_;

  bool started_ = false;
  bool heard_ = false;
  Time start_;
  std::int64_t blocks_ = 0;           ///< blocks handled since start_
  std::chrono::milliseconds pace_{};  ///< between two turns
  bool flooded_ = false;              ///< the latest turn read more than a peer sends
  Time alive_;                        ///< when the peer last sent something
  std::optional<Time> refused_since_;
  std::optional<Time> hung_up_;

  Encoder encoder_;
  std::vector<std::uint8_t> packet_;  ///< the latest one sent, for its memory
  std::uint32_t ssrc_;
  std::uint32_t timestamp_;
  std::uint16_t sequence_;
  bool talking_ = false;  ///< the previous block was sent
  bool silent_ = true;    ///< only silence has been sent so far
};

}  // namespace orven
