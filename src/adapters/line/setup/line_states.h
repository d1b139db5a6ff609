// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "adapters/line/service/lines_file.h"
#include "adapters/line/sip/sip_line_settings.h"

namespace orven {

/// How the registration of one line stands, told on the line's thread and asked on any.
class RegistrationState {
 public:
  void Take(const RegistrationNews& news);
  RegistrationNews Latest() const;

 private:
  mutable std::mutex mutex_;
  RegistrationNews latest_;
};

/// How a modem stands, in words; told on the line's thread and asked on any.
class ModemState {
 public:
  void Take(const std::string& words);
  std::string Latest() const;

 private:
  mutable std::mutex mutex_;
  std::string latest_;
};

/// The lines that this program has devices for, in device-index order. User-interface thread.
class LineStates {
 public:
  struct Device {
    LineSection section;
    std::shared_ptr<RegistrationState> registration = std::make_shared<RegistrationState>();
    std::shared_ptr<ModemState> modem = std::make_shared<ModemState>();
  };

  /// The next device, whose states are for its driver to report to; they outlive the driver.
  const Device& Add(const LineSection& section);
  void Clear() { devices_.clear(); }
  const std::vector<Device>& Devices() const { return devices_; }

 private:
  std::vector<Device> devices_;
};

}  // namespace orven
