// SPDX-License-Identifier: GPL-3.0-or-later
// How long the call records take at the size of many years of calls.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "adapters/database/sqlite_connection.h"
#include "adapters/database/sqlite_database.h"
#include "records/call_fields.h"
#include "records/call_list.h"

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
  SqliteDatabase database_{{"Calls", {kCallFields.begin(), kCallFields.end()}, kRead}};
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

/// A window that asks for the forty rows that fit into it, whenever they may have changed.
class FortyRows : public CallListView, public CallCountsView {
 public:
  const CallList* list = nullptr;
  std::int32_t first = 1;
  void Look() const {
    for (auto row = first; row < first + 40 && row <= list->Count(); ++row)
      benchmark::DoNotOptimize(list->Row(row));
  }
  void ShowColumns(const std::vector<CallColumn>& /*columns*/) override {}
  void ShowRowCount(std::int32_t /*count*/) override { Look(); }
  void ShowRowsInserted(std::int32_t /*count*/) override {}
  void ShowRowRemoved(std::int32_t /*index*/) override { Look(); }
  void ShowRowsChanged() override { Look(); }
  void ShowIcon(std::int32_t index, CallIcon /*icon*/) override {
    benchmark::DoNotOptimize(list->Row(index));
  }
  void ShowSelection(std::int32_t /*index*/) override {}
  void EnsureVisible(std::int32_t /*index*/) override {}
  void PopUpMenu(bool /*message*/) override {}
  void MakeSysTryBaloon(std::int32_t /*total*/, std::int32_t /*new_calls*/) override {}
};

class NoLog : public SystemLog {
  void WriteSystem(const std::string& /*text*/) override {}
};

/// The call list over `database`, filled.
struct FilledList {
  explicit FilledList(SqliteDatabase& database) : list(database, log, view, view) {
    view.list = &list;
    list.makeList();
  }
  NoLog log;
  FortyRows view;
  CallList list;
};

void FillTheList(benchmark::State& state) {
  auto& database = Database();
  for (auto _ : state) FilledList filled(database);
}
BENCHMARK(FillTheList)->Unit(benchmark::kMillisecond);

void ScrollTheListByAPage(benchmark::State& state) {
  FilledList filled(Database());
  for (auto _ : state) {
    filled.view.first = filled.view.first * 7 % (kRecords - 40) + 1;
    filled.view.Look();
  }
}
BENCHMARK(ScrollTheListByAPage)->Unit(benchmark::kMillisecond);

void ListANewCall(benchmark::State& state) {
  auto& database = Database();
  FilledList filled(database);
  for (auto _ : state) {
    database.AddNew();
    for (const char* field : kCallFields) database.SetField(field, "value");
    database.Update();
    filled.list.makeList();
  }
}
BENCHMARK(ListANewCall)->Unit(benchmark::kMillisecond);

void DeleteACallFromTheList(benchmark::State& state) {
  auto& database = Database();
  FilledList filled(database);
  for (auto _ : state) {
    database.MoveTo(filled.list.RecordNumber(500));
    database.Delete();
    filled.list.Remove(500);
    filled.list.makeList();
  }
}
BENCHMARK(DeleteACallFromTheList)->Unit(benchmark::kMillisecond);

void OpenTheDatabase(benchmark::State& state) {
  static Records records("orven-bench-open");
  for (auto _ : state) {
    SqliteDatabase database{{"Calls", {kCallFields.begin(), kCallFields.end()}, kRead}};
    database.Open(records.Path());
  }
}
BENCHMARK(OpenTheDatabase)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orven
