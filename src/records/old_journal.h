// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/activity_log.h"
#include "platform/database.h"
#include "platform/files.h"
#include "records/open_calls.h"

namespace orven {

struct OldJournal {
  Files& files;
  DatabaseControl& DataBase1;
  SystemLog& log;
  const OpenCalls& open;
};

/// Takes over the calls that version 1.0 kept in its journal, "Call.journal" in `folder` (ending in a
/// separator), when it was killed: they become open calls, each with its record if it has one, which may have
/// to be found by its texts. A journal with invalid lines is kept as "Call.journal.damaged", any other
/// deleted. Throws when that fails; then it can be called again. To be called before the open calls are read.
void TakeOverJournal(const OldJournal& ports, const std::string& folder);

}  // namespace orven
