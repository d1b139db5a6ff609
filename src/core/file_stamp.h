// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// Date and time as a part of a file name: in the date every "/" becomes "-"; a time that is not
/// empty follows after "_", every ":" as "-". 12/31/2003 and 14:05:07 give 12-31-2003_14-05-07.
std::string FileStamp(std::string date, std::string time);

}  // namespace orven
