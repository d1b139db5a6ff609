// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// SQLite writes the pages in a write-ahead log into any file that it finds beside it. These tell whether
/// that would be the wrong one. Failures throw RuntimeError.

/// The content of the write-ahead log beside `path`; empty when there is none.
std::string LogBeside(const std::string& path);

/// Whether the log beside `path` belongs to another file, because the one at `path` is gone or was replaced
/// while no program had it open.
bool HasStrayLog(const std::string& path);

/// Whether nothing is in the log beside `path`, or only the page that MergeLog writes in advance.
bool LogIsEmpty(const std::string& path);

}  // namespace orven
