// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSocketNotifier>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace orven::emulator {

/// A serial port that other programs open by its name. Not thread-safe.
class PseudoTerminal {
 public:
  using Bytes = std::function<void(std::span<const std::uint8_t>)>;
  /// Returns how many bytes may be read now.
  using Room = std::function<std::size_t()>;

  /// `link`, if any, becomes a symbolic link to the port. Throws std::runtime_error.
  PseudoTerminal(std::string link, Room room, Bytes read);
  /// Programs that have it open see it unplugged; removes the link.
  ~PseudoTerminal();
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  const std::string& Name() const { return name_; }

  /// Returns how many bytes were lost as the host's queue was full.
  std::size_t Write(std::span<const std::uint8_t> bytes);

  /// Reads what the host has written, up to Room. Call it again after Room was 0.
  void Read();

  /// The rate that the host has set, bit/s.
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
