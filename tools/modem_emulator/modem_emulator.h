// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "modem_emulator/modem_profile.h"
#include "platform/clock.h"
#include "platform/event_loop.h"

namespace orven {

/// What goes wrong with this modem.
struct ModemFaults {
  bool ignores_silence_detection = false;  ///< +VSD is accepted, and nothing is ever reported
  bool no_hang_up_code = false;            ///< the caller's end is heard as a tone or silence only
  bool refuses_off_hook_in_ring = false;   ///< +VLS=1 while the bell rings: ERROR
  bool answer_does_not_take = false;       ///< the first +VLS=1 says OK, and it rings on
  bool stale_ok = false;                   ///< an OK that belongs to nothing after each end of sound
  bool ring_inside_a_reply = false;        ///< RING between the lines of every longer answer
  bool tripled_keys = false;               ///< one key press is reported three times, without brackets
  int stops_needed = 1;                    ///< so many <DLE>! until receiving ends
};

/// A voice modem with a telephone line, in the time of `loop` and `clock`, so on virtual time too.
/// Single-threaded. The host's side is bytes, the line's side are the methods below.
class ModemEmulator {
 public:
  using ToHost = std::function<void(std::span<const std::uint8_t>)>;
  using Tell = std::function<void(const std::string&)>;

  ModemEmulator(const ModemProfile& profile, const ModemFaults& faults, EventLoop& loop, const Clock& clock,
                ToHost to_host);
  ~ModemEmulator();

  /// `tell` hears at once what happens: "off-hook", "on-hook", "playing", "receiving", "idle" (neither any
  /// more), "complaint: …".
  void SetTell(Tell tell);

  /// Bytes from the host; the answer comes 20 to 100 ms later, in pieces of any size.
  void FromHost(std::span<const std::uint8_t> bytes);

  /// How many bytes the modem takes now: flow control holds back what is more. What comes all the same is
  /// lost and complained of.
  std::size_t Room() const;

  // The telephone network's side.
  /// The bell rings for two seconds.
  void Ring();
  /// One line such as "NMBR = 5551234", as the modem would write it (only while caller id is on).
  void CallerIdLine(const std::string& line);
  /// The caller presses a key for `duration`, after those pressed before.
  void Press(char key, std::chrono::milliseconds duration = std::chrono::milliseconds(120));
  /// The caller says this from now on (8000 a second); silence afterwards.
  void Say(std::vector<std::int16_t> samples);
  /// The caller hangs up: the code that this chip has for it, then the busy tone until we hang up.
  void HangUp();
  /// The same with the dial tone, and with silence.
  void HangUpToDialTone();
  void HangUpToSilence();
  /// Any other sign, for example 'H': the handset of the telephone beside the modem is lifted.
  void Sign(char code);
  /// Answers nothing any more until Wake.
  void Wedge();
  void Wake();
  /// As after power came back: everything as at the beginning, no call.
  void PowerCycle();

  /// Bits a second that the serial port needs for the present sample format.
  int NeededPortRate() const;

  bool OffHook() const;
  /// Whether the caller has something left to say.
  bool Speaking() const;
  /// The time at which the latest off-hook command came in.
  std::chrono::milliseconds OffHookAt() const;
  /// The time at which the first report of the latest key went out.
  std::chrono::milliseconds KeyReportedAt() const;

  /// What the line has heard since it was answered last, in 8000 samples a second of 16 bits: what was
  /// transmitted, at the time at which it was played, with silence where nothing was.
  const std::vector<std::int16_t>& Heard() const;
  /// What came over the line from the caller in the same time.
  const std::vector<std::int16_t>& Spoken() const;
  /// The transmitted sample bytes alone, unshielded, in the modem's format: for comparisons bit by bit.
  const std::vector<std::uint8_t>& PlayedBytes() const;
  /// The sample bytes that were sent to the host while it received, since it was answered last.
  const std::vector<std::uint8_t>& SentBytes() const;
  /// Commands as they came in, without AT: for tests that want to know what was asked.
  const std::vector<std::string>& Commands() const;
  /// What the host did that a real modem would take amiss: unshielded 0x10, commands outside voice mode,
  /// bytes in the middle of an answer, an underrun, a full buffer. One sentence each.
  const std::vector<std::string>& Complaints() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace orven
