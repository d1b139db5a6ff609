// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Makes sure that there is a file at `path`: where there is none, one with a fresh RSA key and a
/// certificate for it that nobody but itself has signed is made, readable by the owner only. It encrypts;
/// that a caller has reached this machine and no other it proves only to who knows the certificate. The
/// file is there as a whole or not at all. Throws std::runtime_error with a sentence for the log.
void MakeCertificateOnFirstUse(const std::string& path);

}  // namespace orven
