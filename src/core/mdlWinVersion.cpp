// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/mdlWinVersion.h"

namespace orven {
namespace {

std::string Windows9xName(std::int32_t minor) {
  switch (minor) {
    case 0: return "Windows 95";
    case 10: return "Windows 98";
    case 90: return "Windows Mellinnium";
    default: return "";
  }
}

std::string WindowsNtName(std::int32_t major, std::int32_t minor) {
  switch (major) {
    case 3: return "Windows NT 3.51";
    case 4: return "Windows NT 4.0";
    case 5: return minor == 0 ? "Windows 2000" : "Windows XP";
    default: return "";
  }
}

}  // namespace

std::string GetWindowsVersionName(const SystemVersion& version) {
  switch (version.platform) {
    case SystemVersion::Platform::Windows9x: return Windows9xName(version.minor);
    case SystemVersion::Platform::WindowsNt: return WindowsNtName(version.major, version.minor);
    case SystemVersion::Platform::Other: break;
  }
  return "Failed";
}

bool IsOldWindows(const std::string& version_name) {
  return version_name == "Windows 95" || version_name == "Windows 98" || version_name == "Windows NT 3.51" ||
         version_name == "Windows NT 4.0";
}

}  // namespace orven
