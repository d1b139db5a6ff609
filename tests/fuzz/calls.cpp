// SPDX-License-Identifier: GPL-3.0-or-later
// A call record file with any content is used, or set aside unchanged and replaced; each change is made
// completely or not at all.
#include <filesystem>
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

using Records = std::vector<std::vector<std::string>>;

/// Returns whether the statement succeeds. Any exception but RuntimeError ends the program.
bool Succeeds(const auto& statement) {
  try {
    statement();
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

/// Returns the records, which every operation must report alike, or nothing if they cannot be read.
std::optional<Records> Listed(SqliteDatabase& database) {
  Records records;
  const bool read = Succeeds([&] {
    records = database.Query(kGetAll).records;
    const std::int32_t count = database.RecordCount();
    Require(count == static_cast<std::int32_t>(records.size()) && database.CountRecords(kRead, "0") <= count);
    for (const OpenCall& call : database.OpenCalls())
      Require(call.key > 0 && call.fields.size() == kOpenCallFields.size());
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
  const auto position = before->empty() ? 1 : static_cast<std::int32_t>(choices.Byte() % before->size()) + 1;
  const std::string text = "text " + std::to_string(choices.Byte());
  const std::size_t what = before->empty() ? 0 : choices.Below(5);
  const OpenCall open{position, 0, std::vector<std::string>(kOpenCallFields.size(), text)};
  const bool done = Succeeds([&] {
    if (what == 0) {
      std::vector<FieldValue> values;
      for (const char* field : kCallFields) values.push_back({field, text});
      database.Add(values, open);
      after.emplace_back(kCallFields.size(), text);
    } else if (what == 1) {
      database.Change(database.Identity(position), {{kRead, text}}, {position, 0, {}});
      after[static_cast<std::size_t>(position) - 1].back() = text;
    } else if (what == 2) {
      database.Keep(open);
      Require(std::ranges::count(database.OpenCalls(), open) == 1);
    } else if (what == 3) {
      database.Close(position);
    } else {
      database.DeleteFirst(position);
      after.erase(after.begin(), after.begin() + position);
    }
  });
  const auto now = Listed(database);
  Require(damaged || !now || *now == (done ? after : *before));
}

}  // namespace

void Calls(Bytes input) {
  const test::ScratchFolder folder(std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp");
  const std::string path = folder / "Calls", content = TextOf(input);
  test::PutFile(path, content);
  bool damaged = false;
  const RecordSchema schema{{"Calls", {kCallFields.begin(), kCallFields.end()}},
                            kRead,
                            {"OpenCalls", {kOpenCallFields.begin(), kOpenCallFields.end()}}};
  SqliteDatabase database(
      schema, [](const std::string&) {}, [&damaged](const std::string&) { damaged = true; });
  std::string note;
  if (!Succeeds([&] { note = database.Open(path); })) return;
  bool kept = false;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "")) {
    const std::string name = entry.path().string();
    kept = kept || (name.starts_with(path + ".damaged") && test::ContentOf(name) == content);
  }
  Require(note.empty() ? !kept : kept && Listed(database));
  for (Choices choices(input.last(std::min<std::size_t>(input.size(), 8))); choices.Any(); damaged = false)
    Change(database, choices, damaged);
  const auto records = Listed(database);
  SqliteDatabase again(schema);
  if (records && Succeeds([&] { note = again.Open(path); }) && note.empty())
    Require(Listed(again) == records);
}

}  // namespace orven::fuzz
