// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace orven {

/// The operating system's version record.
struct SystemVersion {
  enum class Platform { Windows9x, WindowsNt, Other };
  Platform platform = Platform::Other;
  std::int32_t major = 0;
  std::int32_t minor = 0;
};

/// The few services of the operating system that start-up needs. User-interface thread.
class OperatingSystem {
 public:
  virtual ~OperatingSystem() = default;

  virtual SystemVersion Version() const = 0;

  /// Registers the extended common controls of `classes` (record size 8). False if the platform has none.
  virtual bool InitCommonControls(std::uint32_t record_size, std::uint32_t classes) = 0;

  /// Locks the application folder for this process until it ends. False when another instance of
  /// the program has locked it.
  virtual bool ClaimInstance() = 0;
};

}  // namespace orven
