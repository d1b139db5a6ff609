// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/serial_ports.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace orven {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> EntriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    entries.push_back(at->path());
  }
  std::ranges::sort(entries);
  return entries;
}

}  // namespace

std::vector<SerialPortFound> FindSerialPorts(const std::string& devices) {
  std::vector<SerialPortFound> ports;
  std::set<std::string> named;
  for (const auto& link : EntriesOf(fs::path(devices) / "serial" / "by-id")) {
    std::error_code error;
    const auto device = fs::canonical(link, error).filename().string();
    if (error) continue;
    named.insert(device);
    ports.push_back({link.string(), link.filename().string() + " (" + device + ")"});
  }
  for (const auto& device : EntriesOf(devices)) {
    const auto name = device.filename().string();
    const bool serial = name.starts_with("ttyACM") || name.starts_with("ttyUSB");
    if (serial && !named.contains(name)) ports.push_back({device.string(), device.string()});
  }
  return ports;
}

}  // namespace orven
