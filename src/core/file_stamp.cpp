// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/file_stamp.h"

#include <algorithm>

namespace orven {

std::string FileStamp(std::string date, std::string time) {
  std::replace(date.begin(), date.end(), '/', '-');
  std::replace(time.begin(), time.end(), ':', '-');
  return time.empty() ? date : date + "_" + time;
}

}  // namespace orven
