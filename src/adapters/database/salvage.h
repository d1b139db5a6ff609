// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orven {

/// Rows by their number (rowid), each with the values of the requested fields as text.
using SalvagedRows = std::map<std::int64_t, std::vector<std::string>>;

/// Reads the rows of `table` from a damaged SQLite file at `path`, page by page as
/// https://www.sqlite.org/fileformat2.html describes them, and from its write-ahead log. A damaged page costs
/// only its own rows: rows are found in every page that has some, even if the table's tree no longer refers
/// to it, except for pages of other tables and free pages. Rows with less than `least` values are not the
/// table's. Both files are only read. If the table's columns cannot be read, `fields` is assumed. Throws
/// RuntimeError when the file cannot be read at all.
SalvagedRows SalvageRows(const std::string& path, const std::string& table,
                         const std::vector<std::string>& fields, std::size_t least);

}  // namespace orven
