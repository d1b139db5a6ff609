// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/settings.h"

namespace orven {

/// The folder that serves for the messages.
struct MessagesFolder {
  std::string path;  ///< what a message's file name directly follows
  std::string note;  ///< for the log: why it is not the stored one; empty when it is
};

/// Which folder serves when the setting `MassagesPath` is `stored`. One that is missing or no full path would
/// lead to wherever the program was started: then it is the application folder's own.
MessagesFolder ServingMessagesFolder(const std::string& stored, const SharedOptions& shared);

}  // namespace orven
