// SPDX-License-Identifier: GPL-3.0-or-later
// How long the call records take at the size of many years of calls.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "adapters/database/sqlite_connection.h"
#include "adapters/database/sqlite_database.h"
#include "records/call_fields.h"

namespace orven {
namespace {

constexpr std::int32_t kRecords = 100'000;

/// One database of 100,000 records for all measurements; committing each by itself would take minutes,
/// so it is made with a single statement.
class Records {
 public:
  explicit Records(const char* name) : folder_(std::filesystem::temp_directory_path() / name) {
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    database_.Open(Path());
    SqliteConnection(Path()).Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) INSERT INTO Calls "
        "SELECT 'Anna', '555' || i, '14:05:07', '12/31/2003', '12-31-2003_14-05-07.wav', '5.2', '0' FROM n");
  }
  ~Records() { std::filesystem::remove_all(folder_); }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;

  std::string Path() const { return (folder_ / "Calls").string(); }
  SqliteDatabase& Database() { return database_; }

 private:
  std::filesystem::path folder_;
  SqliteDatabase database_{{"Calls", {kCallFields.begin(), kCallFields.end()}}};
};

SqliteDatabase& Database() {
  static Records records("orven-bench-records");
  return records.Database();
}

void MoveToAnyRecord(benchmark::State& state) {
  auto& database = Database();
  std::int32_t number = 1;
  for (auto _ : state) {
    database.MoveTo(number);
    benchmark::DoNotOptimize(database.GetField(kCallName));
    number = number * 7 % kRecords + 1;
  }
}
BENCHMARK(MoveToAnyRecord);

void MarkARecordRead(benchmark::State& state) {
  auto& database = Database();
  std::int32_t read = 0;
  for (auto _ : state) {
    database.MoveTo(kRecords / 2);
    database.Edit();
    database.SetField(kRead, read = 1 - read);
    database.Update();
  }
}
BENCHMARK(MarkARecordRead)->Unit(benchmark::kMillisecond);

void FileACall(benchmark::State& state) {
  auto& database = Database();
  for (auto _ : state) {
    database.AddNew();
    for (const char* field : kCallFields) database.SetField(field, "value");
    database.Update();
  }
}
BENCHMARK(FileACall)->Unit(benchmark::kMillisecond);

void ReadAllRecords(benchmark::State& state) {
  auto& database = Database();
  for (auto _ : state) benchmark::DoNotOptimize(database.Query(kGetAll));
}
BENCHMARK(ReadAllRecords)->Unit(benchmark::kMillisecond);

void OpenTheDatabase(benchmark::State& state) {
  static Records records("orven-bench-open");
  for (auto _ : state) {
    SqliteDatabase database{{"Calls", {kCallFields.begin(), kCallFields.end()}}};
    database.Open(records.Path());
  }
}
BENCHMARK(OpenTheDatabase)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orven
