// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/desktop/instance_lock.h"
#include "platform/operating_system.h"

namespace orven {

/// The operating system's few services. The version is the kernel's.
class DesktopSystem final : public OperatingSystem {
 public:
  /// `application_folder` is what ClaimInstance claims; it exists.
  explicit DesktopSystem(const std::string& application_folder);

  SystemVersion Version() const override;
  bool InitCommonControls(std::uint32_t record_size, std::uint32_t classes) override;

  /// A folder that cannot be locked at all (read-only, no locks on that file system) is not held by
  /// anybody: the claim succeeds, and ClaimProblem says what is missing.
  bool ClaimInstance() override;

  /// One sentence for the user on why the last claim gives no protection; empty when it does.
  const std::string& ClaimProblem() const { return lock_.Problem(); }

 private:
  InstanceLock lock_;
};

}  // namespace orven
