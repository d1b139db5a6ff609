// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

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

}  // namespace orven
