// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orven {

/// Runs the speech helper at the other end of the link in the environment variable ORVEN_CHANNEL, until it is
/// told to unload, the link is lost, or a signal asks for the end. The process's exit code: 0 when it was
/// told or asked to end, 1 when it cannot work or the link was lost. `count` and `arguments` are main's.
int RunHelper(int& count, char** arguments);

/// Speaks the UTF-8 text of standard input into the file at `path`, with the American English voice at
/// its normal rate. 0, or 1 with one line on standard error; then an older file stays as it is.
int SpeakIntoFile(const char* path);

}  // namespace orven
