// SPDX-License-Identifier: GPL-3.0-or-later
// Any file of the call records is used, or set aside unchanged and replaced; each change does what it says or
// nothing.
#include <optional>
#include <string>
#include <vector>

#include "adapters/database/sqlite_database.h"
#include "base/runtime_error.h"
#include "fuzz/fuzz.h"
#include "records/call.h"
#include "support/scratch_folder.h"

namespace orven::fuzz {
namespace {

using Record = std::vector<std::string>;

/// Callers expect RuntimeError and no other failure.
bool Succeeds(const auto& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

/// The records, which all operations agree on; nothing when they cannot be read.
std::optional<std::vector<Record>> Listed(SqliteDatabase& database) {
  std::vector<Record> records;
  const bool read = Succeeds([&] {
    records = database.Query(kGetAll).records;
    const std::int32_t count = database.RecordCount();
    Require(count == static_cast<std::int32_t>(records.size()) && database.CountRecords(kRead, "0") <= count);
    for (std::int32_t number = 1; number <= std::min(count, 8); ++number) {
      Require(database.Record(number) == records[static_cast<std::size_t>(number) - 1]);
      Require(database.Locate(database.Identity(number)) == number);
    }
  });
  return read ? std::optional(records) : std::nullopt;
}

void Change(SqliteDatabase& database, Choices& choices, const bool& damaged) {
  const auto before = Listed(database);
  if (!before) return;
  auto after = *before;
  const std::size_t number = before->empty() ? 0 : choices.Byte() % before->size();
  const auto at = after.begin() + static_cast<std::ptrdiff_t>(number);
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
      const auto position = static_cast<std::int32_t>(number) + 1;
      database.MoveTo(position);
      if (what == 1) {
        database.Edit();
        database.SetField(kRead, text);
        database.Update();
        at->back() = text;
      } else {
        what == 2 ? database.Delete() : database.DeleteFirst(position);
        after.erase(what == 2 ? at : after.begin(), at + 1);
      }
    }
  });
  const auto now = Listed(database);
  Require(damaged || !now || *now == (done ? after : *before));
}

}  // namespace

void Calls(Bytes input) {
  const test::ScratchFolder folder(ParentOfScratchFolders());
  const std::string path = folder / "Calls", content = TextOf(input);
  test::PutFile(path, content);
  bool damaged = false;
  const RecordSchema schema{"Calls", {kCallFields.begin(), kCallFields.end()}, kRead};
  SqliteDatabase database(
      schema, [](const std::string&) {}, [&damaged](const std::string&) { damaged = true; });
  std::string note;
  if (!Succeeds([&] { note = database.Open(path); })) return;
  std::size_t kept = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    const std::string name = entry.path().filename().string();
    const bool beside = name.ends_with("-wal") || name.ends_with("-shm") || name.ends_with("-journal");
    if (!name.starts_with("Calls.damaged") || beside) continue;
    Require(test::ContentOf(entry.path().string()) == content);
    ++kept;
  }
  Require(kept == (note.empty() ? 0 : 1) && (note.empty() || Listed(database)));
  for (Choices choices(input.last(std::min<std::size_t>(input.size(), 8))); choices.Any(); damaged = false)
    Change(database, choices, damaged);
  const auto records = Listed(database);
  SqliteDatabase again(schema);
  if (records && Succeeds([&] { note = again.Open(path); }) && note.empty())
    Require(Listed(again) == records);
}

}  // namespace orven::fuzz
