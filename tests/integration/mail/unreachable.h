// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/durable_file.h"

namespace orven::testing {

/// A port of this computer that refuses connections or, when told so, lets them hang.
class DeadPort {
 public:
  DeadPort();
  std::string Address() const;
  /// Connections come about, and nobody says anything.
  void Listen();
  /// Connections do not even come about: the queue for them is full.
  void Fill();

 private:
  Descriptor listener_;
  std::vector<std::unique_ptr<Descriptor>> fillers_;
};

/// While it lives, asking for the address of "hanging.invalid" does not return. That of "unknown.invalid"
/// is unknown at once, whatever network the tests run in.
class HangingNameServer {
 public:
  HangingNameServer();
  ~HangingNameServer();
  HangingNameServer(const HangingNameServer&) = delete;
  HangingNameServer& operator=(const HangingNameServer&) = delete;

  /// Whether somebody is waiting for that answer.
  static bool Asked();
};

}  // namespace orven::testing
