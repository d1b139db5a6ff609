// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/file_limit.h"

#include <sys/resource.h>

#include <algorithm>

namespace orven {
namespace {

/// Enough for every connection that the line allows, many times over; programs that walk over all
/// possible descriptors are slow with the system's own highest limit.
constexpr rlim_t kWanted = 4096;

}  // namespace

void RaiseFileLimit() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kWanted) return;
  limit.rlim_cur = std::min(limit.rlim_max, kWanted);
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace orven
