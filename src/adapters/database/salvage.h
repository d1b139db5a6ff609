// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orven {

/// Rows by their number (rowid), each with the values of the fields that were asked for, as text.
using SalvagedRows = std::map<std::int64_t, std::vector<std::string>>;

/// Reads the rows of `table` from a damaged SQLite file at `path`, page by page as
/// https://www.sqlite.org/fileformat2.html describes them, and from the write-ahead log beside it. A page
/// that is damaged costs its own rows only: rows are found in every page that holds some, whether the table's
/// tree still leads there or not, except for pages of other tables and pages that were given up. Both files
/// are only read. Where the table's columns cannot be read, they are taken to be `fields`. Throws
/// RuntimeError when the file cannot be read at all.
SalvagedRows SalvageRows(const std::string& path, const std::string& table,
                         const std::vector<std::string>& fields);

}  // namespace orven
