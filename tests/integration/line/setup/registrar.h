// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <sys/types.h>

#include <cstdint>

#include "support/scratch_folder.h"

namespace orven::test {

/// A real registrar on this machine, with the account "100" and its password "secret". It ends with
/// this object, and by itself when a test program dies.
class Registrar {
 public:
  Registrar();
  Registrar(const Registrar&) = delete;
  Registrar& operator=(const Registrar&) = delete;
  ~Registrar();

  std::uint16_t Port() const { return port_; }

 private:
  bool Answers() const;

  ScratchFolder folder_;
  std::uint16_t port_;
  pid_t process_ = 0;
};

}  // namespace orven::test
