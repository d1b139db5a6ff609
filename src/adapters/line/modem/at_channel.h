// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "adapters/line/modem/modem_reader.h"
#include "platform/event_loop.h"

namespace orven {
/// Receives what comes through a link, never inside one of its operations.
class ModemLinkEvents {
 public:
  virtual ~ModemLinkEvents() = default;

  virtual void Received(std::span<const std::uint8_t> bytes) = 0;
  /// The port was unplugged; the link is closed already.
  virtual void Lost() = 0;
};

/// Why a port cannot be opened, with one sentence for the user.
struct LinkProblem {
  enum class Kind : std::uint8_t { Absent, Taken, Forbidden, Failed };
  Kind kind = Kind::Failed;
  std::string text;
};

/// The connection to one modem, on one thread; no operation blocks.
class ModemLink {
 public:
  virtual ~ModemLink() = default;

  /// Opens the port exclusively: raw, 8N1, `rate` bit/s. Returns nothing on success.
  virtual std::optional<LinkProblem> Open(const std::string& port, int rate, ModemLinkEvents& events) = 0;
  virtual void Close() = 0;

  /// False when the port does not support that rate; it keeps its rate.
  virtual bool SetRate(int rate) = 0;

  /// Sends `bytes` as soon as the port takes them. Does nothing on a closed link.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;

  /// Discards what has been written but not yet taken by the port.
  virtual void DiscardUnsent() = 0;

  /// Bytes that wait to be sent, as when a stopped modem takes none.
  virtual std::size_t Unsent() const = 0;
};

/// A modem's answer to a command.
struct ModemReply {
  enum class Kind : std::uint8_t { Ok, Error, Connect, Nothing };
  Kind kind = Kind::Nothing;
  std::vector<std::string> lines;  ///< the lines before the result
  bool echoed = false;  ///< the command came back: the modem lost the setting that turned the echo off

  bool Ok() const { return kind == Kind::Ok; }
};

/// An AT command channel: sends commands one after the other and collects their answers. Unsolicited results
/// go to `unsolicited`, also those in the middle of an answer; NO CARRIER and BUSY count as both. One thread;
/// the link must be open while commands are sent.
class AtChannel : private ModemOutput {
 public:
  using Done = std::function<void(const ModemReply&)>;

  /// A modem answers within 100 ms; one that looks at the line first takes longer.
  static constexpr std::chrono::milliseconds kPatience{3'000};

  AtChannel(ModemLink& link, EventLoop& loop, ModemOutput& unsolicited)
      : link_(link), loop_(loop), unsolicited_(unsolicited) {}

  void Received(std::span<const std::uint8_t> bytes) { reader_.Read(bytes); }

  /// Sends `command` when the commands before it have their answers. `done` is called exactly once, with
  /// Nothing after `patience`; never after Forget.
  void Ask(
      std::string command, Done done = [](const ModemReply&) {},
      std::chrono::milliseconds patience = kPatience);

  /// The same for a command that starts a stream of audio, to us if `receive`: its result is Connect or
  /// Error.
  void AskForAudio(std::string command, bool receive, Done done);

  /// Waits for an OK that the modem sends without being given a command.
  void AwaitOk(Done done, std::chrono::milliseconds patience);

  /// Writes audio, or the codes that end it.
  void Write(std::span<const std::uint8_t> bytes) { link_.Write(bytes); }

  /// Call this when the end of the received audio was lost: what follows is text lines.
  void ExpectLines() { reader_.ExpectLines(); }

  /// Drops all commands that have no answer yet.
  void Forget();

  /// Whether this modem has said a stray OK before: the next one could be mistaken for an answer.
  bool StraysSeen() const { return strays_seen_; }

 private:
  struct Command {
    std::string command;  ///< empty: nothing is sent
    bool wants_connect = false;
    bool audio_follows = false;
    std::chrono::milliseconds patience;
    Done done;
  };

  void Add(Command command);
  void Next();
  void Finish(ModemReply::Kind kind);

  void Line(const std::string& text) override;
  void Event(char code) override { unsolicited_.Event(code); }
  void Packet(const std::string& text) override { unsolicited_.Packet(text); }
  void Audio(std::span<const std::uint8_t> bytes) override { unsolicited_.Audio(bytes); }
  void AudioEnded() override { unsolicited_.AudioEnded(); }

  ModemLink& link_;
  EventLoop& loop_;
  ModemOutput& unsolicited_;
  ModemReader reader_{*this};
  std::deque<Command> waiting_;
  Command current_;
  bool asking_ = false;
  bool strays_seen_ = false;
  ModemReply reply_;
  std::uint64_t turn_ = 0;  ///< number of the present command
  Lifeline lifeline_;
};

}  // namespace orven
