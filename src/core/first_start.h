// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/settings.h"
#include "platform/operating_system.h"
#include "platform/registry.h"

namespace orven {

/// Turns an application folder without settings into a working answering machine: the installer's
/// default settings, the three settings that depend on the machine, and a password of its own.
class FirstStart {
 public:
  struct Sources {
    /// Reads the installation's default settings.
    std::function<std::vector<NamedRegistryValue>()> defaults;
    /// A uniformly random number from 0 to one less than its argument, fit for making passwords.
    std::function<std::uint32_t(std::uint32_t)> random;
    /// Tells the new password to the person who installs; it is written nowhere else but into the
    /// settings.
    std::function<void(const std::string& password)> announce_password;
  };

  FirstStart(Registry& registry, const OperatingSystem& system, const SharedOptions& shared, Sources sources)
      : registry_(registry), system_(system), shared_(shared), sources_(std::move(sources)) {}

  /// A first start is one that finds no settings key.
  bool IsDue() const;

  /// Writes everything. The settings key comes last and in one piece, so that a start which is cut
  /// short is a first start again.
  void Run();

 private:
  Registry& registry_;
  const OperatingSystem& system_;
  const SharedOptions& shared_;
  Sources sources_;
};

}  // namespace orven
