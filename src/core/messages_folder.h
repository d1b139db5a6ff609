// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#include "core/settings.h"
#include "platform/files.h"

namespace orven {

/// Setting: where the messages are being moved, until they are there.
inline constexpr const char* kMoveUnderWay = "MassagesPathNext";

/// The folder that serves for the messages.
struct MessagesFolder {
  std::string path;  ///< what a message's file name directly follows
  std::string note;  ///< for the log and the status bar: why it is not the stored one; empty when it is
};

/// Which folder serves when the setting `MassagesPath` is `stored`. One that is missing or no full path would
/// lead to wherever the program was started: then it is the application folder's own, and also where the
/// stored one is not there (a copied application folder, a disk that is not plugged in) and no messages are
/// `moving` from it.
MessagesFolder ServingMessagesFolder(const std::string& stored, const SharedOptions& shared,
                                     const Files& files, bool moving);

}  // namespace orven
