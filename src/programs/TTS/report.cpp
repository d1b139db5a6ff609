// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/report.h"

#include <unistd.h>

namespace orven {

void Report(const std::string& text) {
  const std::string line = "TTS: " + text + "\n";
  // Nobody is left to be told when that fails.
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace orven
