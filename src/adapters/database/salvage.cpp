// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/database/salvage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <functional>
#include <optional>
#include <set>
#include <string_view>

#include "adapters/database/sqlite_connection.h"
#include "adapters/database/stray_log.h"
#include "adapters/files/disk_files.h"

namespace orven {
namespace {

// Offsets in the file header, and page types. https://www.sqlite.org/fileformat2.html
constexpr std::size_t kFileHeader = 100;
constexpr std::size_t kPageSizeAt = 16;
constexpr std::size_t kFormatAt = 18;  ///< two bytes: 1 for a rollback journal, 2 for a write-ahead log
constexpr std::size_t kPageCountAt = 28;
constexpr std::size_t kFreeListAt = 32;
constexpr std::size_t kLogHeader = 32;
constexpr std::size_t kLogFrameHeader = 24;
constexpr std::uint64_t kInnerPage = 0x05;  ///< of a table
constexpr std::uint64_t kLeafPage = 0x0D;   ///< of a table
constexpr std::size_t kUsualPageSize = 4096;

/// A record that claims to be larger is damaged; real records are far smaller.
constexpr std::uint64_t kLargestRecord = 1U << 20U;

using PageNumber = std::uint32_t;

/// The number of `size` bytes at `at`; bytes beyond the end count as 0.
std::uint64_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = at; i < at + size; ++i) {
    number = number << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
  }
  return number;
}

/// The variable-length number at `at`, which is advanced.
std::uint64_t TakeNumber(std::string_view bytes, std::size_t& at) {
  constexpr int kLongest = 9;  // bytes, the last with all of its eight bits
  std::uint64_t number = 0;
  for (int i = 1; i <= kLongest; ++i) {
    const std::uint64_t byte = Number(bytes, at++, 1);
    if (i == kLongest) return number << 8U | byte;
    number = number << 7U | (byte & 0x7FU);
    if (byte < 0x80) break;
  }
  return number;
}

/// A file's pages, numbered from 1, with the write-ahead log applied.
class Pages {
 public:
  Pages(std::string content, std::string_view log) : content_(std::move(content)) {
    const auto size = Number(content_, kPageSizeAt, 2);
    size_ = size == 1 ? 65536 : size;  // 65536 does not fit
    if (!std::has_single_bit(size_) || size_ < 512) size_ = kUsualPageSize;
    Apply(log);
  }

  PageNumber Count() const { return static_cast<PageNumber>(content_.size() / size_); }
  std::size_t Size() const { return size_; }
  std::string_view File() const { return content_; }
  std::string_view operator[](std::uint64_t number) const {
    if (number < 1 || number > Count()) return {};
    return std::string_view(content_).substr((number - 1) * size_, size_);
  }

 private:
  /// Applies the committed part of the log: up to the last frame that ends a transaction.
  void Apply(std::string_view log) {
    const auto salt = log.substr(std::min<std::size_t>(log.size(), 16), 8);
    const auto most = Count() + log.size() / size_;
    std::vector<std::pair<PageNumber, std::string_view>> open;
    for (auto at = kLogHeader; at + kLogFrameHeader + size_ <= log.size(); at += kLogFrameHeader + size_) {
      if (log.substr(at + 8, 8) != salt) break;
      open.emplace_back(Number(log, at, 4), log.substr(at + kLogFrameHeader, size_));
      if (Number(log, at + 4, 4) == 0) continue;
      for (const auto& [number, page] : open) {
        if (number >= 1 && number <= most) Put(number, page);
      }
      open.clear();
    }
  }

  void Put(PageNumber number, std::string_view page) {
    content_.resize(std::max(content_.size(), number * size_));
    content_.replace((number - 1) * size_, size_, page);
  }

  std::string content_;
  std::size_t size_;
};

/// Offset of the header of a table's page.
std::size_t HeaderOf(PageNumber page) {
  return page == 1 ? kFileHeader : 0;
}

std::uint64_t KindOf(const Pages& pages, PageNumber page) {
  return Number(pages[page], HeaderOf(page), 1);
}

/// Offsets of the cells in a table's page, without invalid ones.
std::vector<std::size_t> CellsOf(const Pages& pages, PageNumber page, std::size_t header_size) {
  const auto bytes = pages[page];
  const auto first = HeaderOf(page) + header_size;
  const auto count = Number(bytes, HeaderOf(page) + 3, 2);
  std::vector<std::size_t> cells;
  for (std::size_t i = 0; i < count && first + 2 * i < bytes.size(); ++i) {
    const auto cell = Number(bytes, first + 2 * i, 2);
    if (cell >= first && cell < pages.Size()) cells.push_back(cell);
  }
  return cells;
}

/// Adds the page and those below it to `found`.
void AddTree(const Pages& pages, PageNumber root, std::set<PageNumber>& found) {
  std::vector<PageNumber> next{root};
  while (!next.empty()) {
    const auto page = next.back();
    next.pop_back();
    if (page < 1 || page > pages.Count() || !found.insert(page).second) continue;
    if (KindOf(pages, page) != kInnerPage) continue;
    for (const auto cell : CellsOf(pages, page, 12)) {
      next.push_back(static_cast<PageNumber>(Number(pages[page], cell, 4)));
    }
    next.push_back(static_cast<PageNumber>(Number(pages[page], HeaderOf(page) + 8, 4)));
  }
}

/// Adds the free pages, whose content was deleted.
void AddFreePages(const Pages& pages, std::set<PageNumber>& found) {
  auto trunk = Number(pages.File(), kFreeListAt, 4);
  while (trunk >= 1 && trunk <= pages.Count()) {
    const auto bytes = pages[trunk];
    const auto next = Number(bytes, 0, 4);
    const auto count = Number(bytes, 4, 4);
    if (next > pages.Count() || count > bytes.size() / 4) return;  // not a free-list page
    if (!found.insert(static_cast<PageNumber>(trunk)).second) return;
    for (std::size_t i = 0; i < count; ++i)
      found.insert(static_cast<PageNumber>(Number(bytes, 8 + 4 * i, 4)));
    trunk = next;
  }
}

/// The `size` bytes of a record that begins at `at` in a leaf; empty when some cannot be reached.
std::string Payload(const Pages& pages, std::string_view leaf, std::size_t at, std::size_t size) {
  const auto usable = pages.Size();
  auto here = size;
  if (size > usable - 35) {  // the rest is in a chain of pages
    const auto least = (usable - 12) * 32 / 255 - 23;
    here = least + (size - least) % (usable - 4);
    if (here > usable - 35) here = least;
  }
  if (at + here > usable) return {};
  std::string payload(leaf.substr(at, here));
  auto next = Number(leaf, at + here, 4);
  while (payload.size() < size) {
    const auto page = pages[next];
    if (page.empty()) return {};
    payload += page.substr(4, std::min(size - payload.size(), usable - 4));
    next = Number(page, 0, 4);
  }
  return payload;
}

std::string RealText(std::uint64_t bits) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), std::bit_cast<double>(bits)).ptr;
  return {text.data(), end};
}

/// The size in bytes of a value of this serial type; nothing for an invalid type.
std::optional<std::uint64_t> SizeOfKind(std::uint64_t kind) {
  constexpr std::array<std::uint64_t, 10> kSizes{0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
  if (kind < kSizes.size()) return kSizes[kind];
  return kind < 12 ? std::nullopt : std::optional((kind - 12) / 2);
}

std::string ValueText(std::string_view bytes, std::uint64_t kind) {
  if (kind == 0) return {};
  if (kind >= 12) return std::string(bytes);
  if (kind >= 8) return kind == 8 ? "0" : "1";
  const auto number = Number(bytes, 0, bytes.size());
  if (kind == 7) return RealText(number);
  const auto unused = 64 - 8 * bytes.size();  // shifting back fills them with the sign
  return std::to_string(static_cast<std::int64_t>(number << unused) >> unused);
}

/// The values of a record; nothing when it contradicts itself, or has more than `most`.
std::optional<std::vector<std::string>> ValuesOf(std::string_view record, std::size_t most) {
  std::size_t at = 0;
  const auto header = TakeNumber(record, at);
  if (header > record.size()) return std::nullopt;
  auto value = static_cast<std::size_t>(header);
  std::vector<std::string> values;
  while (at < header) {
    const auto kind = TakeNumber(record, at);
    const auto size = SizeOfKind(kind);
    if (!size || *size > record.size() - value || values.size() == most) return std::nullopt;
    values.push_back(ValueText(record.substr(value, *size), kind));
    value += *size;
  }
  if (at != header || value != record.size()) return std::nullopt;
  return values;
}

/// Rows of a page are sorted by their numbers: an unsorted one has a damaged number.
void PutInOrder(std::vector<std::pair<std::int64_t, std::vector<std::string>>>& rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto before = i == 0 ? 0 : rows[i - 1].first;
    const bool too_high =
        i + 1 < rows.size() && rows[i].first >= rows[i + 1].first && rows[i + 1].first > before + 1;
    if (rows[i].first <= before || too_high) rows[i].first = before + 1;
  }
}

void ReadLeaf(const Pages& pages, PageNumber page, std::size_t least, std::size_t most,
              const std::function<void(std::int64_t, std::vector<std::string>)>& take) {
  std::vector<std::pair<std::int64_t, std::vector<std::string>>> rows;
  for (auto cell : CellsOf(pages, page, 8)) {
    const auto size = TakeNumber(pages[page], cell);
    const auto row = static_cast<std::int64_t>(TakeNumber(pages[page], cell));
    if (size == 0 || size > kLargestRecord) continue;
    const auto record = Payload(pages, pages[page], cell, size);
    if (auto values = ValuesOf(record, most); values && values->size() >= least)
      rows.emplace_back(row, *values);
  }
  PutInOrder(rows);
  for (auto& [row, values] : rows) take(row, std::move(values));
}

/// The file's schema, as far as it can be read.
struct Schema {
  std::vector<std::string> columns;
  std::vector<PageNumber> other_tables;  ///< their first pages
};

std::optional<Schema> ReadSchema(const Pages& pages, const std::string& table) try {
  std::string file(pages.File());
  if (file.size() < kFileHeader) return std::nullopt;
  // A copy in memory has no log.
  file.replace(kFormatAt, 2, "\1\1");
  file.replace(kPageCountAt, 4, 4, '\0');
  SqliteConnection memory(":memory:");
  memory.Borrow(file);
  Schema schema;
  SqliteStatement columns(memory, "SELECT lower(name) FROM pragma_table_xinfo(?) WHERE hidden <> 2");
  columns.Bind(1, table);
  while (columns.Step()) schema.columns.push_back(columns.Text(0));
  SqliteStatement others(
      memory, "SELECT rootpage FROM sqlite_schema WHERE type = 'table' AND lower(name) <> lower(?)");
  others.Bind(1, table);
  while (others.Step()) schema.other_tables.push_back(static_cast<PageNumber>(others.Integer(0)));
  return schema.columns.empty() ? std::nullopt : std::optional(schema);
} catch (const SqliteError&) {
  return std::nullopt;
}

std::vector<std::string> Lowered(std::vector<std::string> names) {
  for (auto& name : names) {
    for (char& letter : name) {
      if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
  }
  return names;
}

}  // namespace

SalvagedRows SalvageRows(const std::string& path, const std::string& table,
                         const std::vector<std::string>& fields, std::size_t least) {
  const auto log = LogBeside(path);
  const Pages pages(DiskFiles().Read(path), log);
  const auto wanted = Lowered(fields);
  const auto schema = ReadSchema(pages, table).value_or(Schema{wanted, {}});
  std::set<PageNumber> others;
  AddTree(pages, 1, others);  // the schema itself
  AddFreePages(pages, others);
  for (const auto root : schema.other_tables) AddTree(pages, root, others);

  SalvagedRows found;
  const auto most = schema.columns.size();
  for (PageNumber page = 1; page <= pages.Count(); ++page) {
    if (KindOf(pages, page) != kLeafPage || others.contains(page)) continue;
    ReadLeaf(pages, page, least, most, [&](std::int64_t row, std::vector<std::string> values) {
      values.resize(most);
      std::vector<std::string> record;
      for (const auto& field : wanted) {
        const auto column = std::ranges::find(schema.columns, field);
        record.push_back(column == schema.columns.end()
                             ? ""
                             : values[static_cast<std::size_t>(column - schema.columns.begin())]);
      }
      found.try_emplace(row, std::move(record));
    });
  }
  return found;
}

}  // namespace orven
