// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "adapters/line/driver/line_trouble.h"
#include "adapters/line/sip/listen_address.h"

namespace orven {

/// Why a line cannot wait for calls at `listen`, which the settings write as `text`: `error` is the errno
/// value of the failure. EADDRNOTAVAIL also means that it has no address of this computer now; ENOENT: its
/// name is unknown.
LineTrouble CannotListen(const std::string& text, const ListenAddress& listen, int error);

/// Others cannot reach this computer.
Words NoNetwork();

}  // namespace orven
