// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever the file of the call records holds: it is used, or set aside as it was and replaced.
// Links: orven_database orven_test_support
#include <optional>
#include <string>
#include <vector>

#include "adapters/database/sqlite_database.h"
#include "base/runtime_error.h"
#include "fuzz/input.h"
#include "records/call.h"
#include "support/scratch_folder.h"

namespace {

using namespace orven;
using namespace orven::fuzz;
using namespace orven::test;

using Record = std::vector<std::string>;

const RecordSchema& Schema() {
  static const RecordSchema schema{"Calls", {kCallFields.begin(), kCallFields.end()}, kRead};
  return schema;
}

/// The only failure that a caller expects.
bool Succeeds(const auto& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

/// Lists the records, each way of which agrees with the others; nothing when the file cannot be read.
std::optional<std::vector<Record>> Listed(SqliteDatabase& database) {
  std::vector<Record> records;
  std::int32_t count = 0;
  if (!Succeeds([&] {
        records = database.Query(kGetAll).records;
        count = database.RecordCount();
      })) {
    return std::nullopt;
  }
  Require(count >= 0 && static_cast<std::size_t>(count) == records.size());
  std::int64_t before = 0;
  bool first = true;
  for (std::int32_t number = 1; number <= count && number <= 8; ++number) {
    Record record;
    std::int64_t identity = 0;
    if (!Succeeds([&] {
          record = database.Record(number);
          identity = database.Identity(number);
        })) {
      return std::nullopt;
    }
    Require(record == records[static_cast<std::size_t>(number) - 1] && record.size() == kCallFields.size());
    Require((first || identity > before) && database.Locate(identity) == number);
    before = identity;
    first = false;
  }
  (void)Succeeds([&] { Require(database.CountRecords(kRead, "0") <= count); });
  return records;
}

/// A change that succeeds has done what was asked for, and one that fails nothing, unless it met damage.
void Change(SqliteDatabase& database, Choices& choices, const bool& damaged) {
  auto before = Listed(database);
  if (!before) return;
  auto after = *before;
  const std::size_t number = before->empty() ? 0 : choices.Below(std::min<std::size_t>(before->size(), 256));
  const std::string text = "text " + std::to_string(choices.Byte());
  const std::size_t what = choices.Below(5);
  const bool done = Succeeds([&] {
    if (what == 0) {
      database.AddNew();
      for (const char* field : kCallFields) database.SetField(field, text);
      database.Update();
      after.emplace_back(kCallFields.size(), text);
    } else if (what == 4) {
      database.DeleteAll();
      after.clear();
    } else if (number < before->size()) {
      database.MoveTo(static_cast<std::int32_t>(number) + 1);
      if (what == 1) {
        database.Edit();
        database.SetField(kRead, text);
        database.Update();
        after[number].back() = text;
      } else if (what == 2) {
        database.Delete();
        after.erase(after.begin() + static_cast<std::ptrdiff_t>(number));
      } else {
        database.DeleteFirst(static_cast<std::int32_t>(number) + 1);
        after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(number) + 1);
      }
    }
  });
  const auto now = Listed(database);
  Require(damaged || !now || *now == (done ? after : *before));
}

/// The files that were set aside, without what SQLite had beside them.
std::vector<std::string> KeptIn(const ScratchFolder& folder) {
  std::vector<std::string> kept;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    const std::string name = entry.path().filename().string();
    const bool beside = name.ends_with("-wal") || name.ends_with("-shm") || name.ends_with("-journal");
    if (name.starts_with("Calls.damaged") && !beside) kept.push_back(ContentOf(entry.path().string()));
  }
  return kept;
}

void Clear(const ScratchFolder& folder) {
  for (const auto& entry : std::filesystem::directory_iterator(folder / ""))
    std::filesystem::remove(entry.path());
}

}  // namespace

/// The file; its last bytes choose what is done with it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchFolder folder(MemoryFolder());
  const std::string path = folder / "Calls";
  const Bytes input(data, size);
  const std::string content = TextOf(input);
  PutFile(path, content);
  {
    bool damaged = false;
    const auto ignore = [](const std::string&) {};
    SqliteDatabase database(Schema(), ignore, [&damaged](const std::string&) { damaged = true; });
    std::string note;
    const bool opened = Succeeds([&] { note = database.Open(path); });
    // A damaged file is kept to the last byte; the other is the one that is used.
    const auto kept = KeptIn(folder);
    Require(kept.size() == (note.empty() ? 0 : 1) || !opened);
    for (const std::string& one : kept) Require(one == content);
    if (opened) {
      Choices choices(input.last(std::min<std::size_t>(size, 8)));
      Require(note.empty() || Listed(database));
      for (; choices.Any(); damaged = false) Change(database, choices, damaged);
      const auto records = Listed(database);
      SqliteDatabase again(Schema(), [](const std::string&) {});
      if (records && Succeeds([&] { note = again.Open(path); }) && note.empty())
        Require(Listed(again) == records);
    }
  }
  Clear(folder);
  return 0;
}
