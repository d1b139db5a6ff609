// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace orven::emulator {

/// A serial port that others open by its name. Not for use by several threads.
class PseudoTerminal {
 public:
  using Bytes = std::function<void(std::span<const std::uint8_t>)>;
  /// How many bytes may be read now.
  using Room = std::function<std::size_t()>;

  /// `link`, if any, becomes a symbolic link to the port. Throws std::runtime_error.
  PseudoTerminal(std::string link, Room room, Bytes read);
  /// Whoever has it open sees it unplugged; the link goes.
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  const std::string& Name() const { return name_; }

  /// How many bytes the host's queue had no room for.
  std::size_t Write(std::span<const std::uint8_t> bytes);

  /// Reads what waits there. Call it again when Room had none.
  void Read();

  /// Bits a second that the host has set.
  int Rate() const;

 private:
  void Open();

  std::string link_;
  Room room_;
  Bytes read_;
  std::string name_;
  int own_ = -1;
  int port_ = -1;  ///< kept open, so that the host may come and go
  std::unique_ptr<QSocketNotifier> ready_;
};

}  // namespace orven::emulator
