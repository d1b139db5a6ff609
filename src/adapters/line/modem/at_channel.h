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
/// Told what comes through a link, never within one of its operations.
class ModemLinkEvents {
 public:
  virtual ~ModemLinkEvents() = default;

  virtual void Received(std::span<const std::uint8_t> bytes) = 0;
  /// The port is gone (unplugged); the link is closed already.
  virtual void Lost() = 0;
};

/// Why a port cannot be opened, with one sentence that tells its user so.
struct LinkProblem {
  enum class Kind : std::uint8_t { Absent, Taken, Forbidden, Failed };
  Kind kind = Kind::Failed;
  std::string text;
};

/// The bytes to and from one modem, on one thread; no operation waits.
class ModemLink {
 public:
  virtual ~ModemLink() = default;

  /// Takes the port for itself: raw, 8N1, `rate` bit/s. Nothing on success.
  virtual std::optional<LinkProblem> Open(const std::string& port, int rate, ModemLinkEvents& events) = 0;
  virtual void Close() = 0;

  /// False when the port cannot have that rate; then it keeps its own.
  virtual bool SetRate(int rate) = 0;

  /// Sends `bytes` as soon as the port takes them. Nothing on a link that is closed.
  virtual void Write(std::span<const std::uint8_t> bytes) = 0;

  /// Throws away what has been written and not yet been taken by the port.
  virtual void DiscardUnsent() = 0;

  /// Bytes that wait to be sent: a port whose modem has stopped takes none.
  virtual std::size_t Unsent() const = 0;
};

/// What a modem answers to a command.
struct ModemReply {
  enum class Kind : std::uint8_t { Ok, Error, Connect, Nothing };
  Kind kind = Kind::Nothing;
  std::vector<std::string> lines;  ///< what came before the result
  bool echoed = false;             ///< the command itself came back: the modem has its own settings

  bool Ok() const { return kind == Kind::Ok; }
};

/// Commands and their answers, one after the other; what belongs to no answer goes to `unsolicited`. A modem
/// says such things in the middle of an answer, too; NO CARRIER and BUSY are both. One thread; the link is
/// open while anything is asked.
class AtChannel : private ModemOutput {
 public:
  using Done = std::function<void(const ModemReply&)>;

  /// A modem answers within 100 ms; one that looks at the line first takes longer.
  static constexpr std::chrono::milliseconds kPatience{3'000};

  AtChannel(ModemLink& link, EventLoop& loop, ModemOutput& unsolicited)
      : link_(link), loop_(loop), unsolicited_(unsolicited) {}

  void Received(std::span<const std::uint8_t> bytes) { reader_.Read(bytes); }

  /// Sends `command` when what was asked before has its answer. `done` is told exactly once, with
  /// Nothing after `patience`; not after Forget.
  void Ask(
      std::string command, Done done = [](const ModemReply&) {},
      std::chrono::milliseconds patience = kPatience);

  /// The same for a command that sound follows: its result is Connect or Error.
  enum class Direction : std::uint8_t { Transmit, Receive };
  void AskForAudio(std::string command, Direction direction, Done done);

  /// The modem will say OK of itself.
  void AwaitOk(Done done, std::chrono::milliseconds patience);

  /// Sound that is transmitted, or the end of it.
  void Write(std::span<const std::uint8_t> bytes) { link_.Write(bytes); }

  /// The end of received sound has been lost: lines follow.
  void ExpectLines() { reader_.ExpectLines(); }

  /// Nothing is asked any more.
  void Forget();

  /// Whether this modem has said OK to nothing before: the next one could be taken for an answer.
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
  std::uint64_t turn_ = 0;  ///< tells the patience of one command from that of the next
  Lifeline lifeline_;
};

}  // namespace orven
