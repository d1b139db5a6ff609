// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orven {

/// Raises this process's limit of open files as far as the system lets it, so that strangers who hold
/// many connections to the telephone line leave room for recordings and logs. Child processes inherit
/// the limit. Does nothing where the system refuses.
void RaiseFileLimit();

}  // namespace orven
