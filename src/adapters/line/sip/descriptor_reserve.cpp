// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/sip/descriptor_reserve.h"

#include <fcntl.h>
#include <unistd.h>

namespace orven {

void DescriptorReserve::Fill() {
  for (int& descriptor : held_) {
    if (descriptor == kNone) descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  }
}

void DescriptorReserve::Release() {
  for (int& descriptor : held_) {
    if (descriptor != kNone) ::close(descriptor);
    descriptor = kNone;
  }
}

}  // namespace orven
