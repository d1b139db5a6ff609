// SPDX-License-Identifier: GPL-3.0-or-later
//
// Measures the call records with a few months', years' and decades'
// worth of calls.
#include <filesystem>

#include "adapters/database/sqlite_connection.h"
#include "adapters/database/sqlite_database.h"
#include "measured.h"
#include "records/call.h"
#include "records/call_list.h"

namespace orven::bench {
namespace {

constexpr std::int32_t kRowsOfAWindow = 40;
constexpr int kTimes = 200;

SqliteDatabase CallRecords() {
  return SqliteDatabase{{{"Calls", {kCallFields.begin(), kCallFields.end()}},
                         kRead,
                         {"OpenCalls", {kOpenCallFields.begin(), kOpenCallFields.end()}}}};
}

/// A folder with a database of `count` records, inserted by one statement: committing each one separately
/// would take minutes.
class Folder {
 public:
  explicit Folder(std::int32_t count) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
    CallRecords().Open(Calls());
    SqliteConnection(Calls()).Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(count) +
        ") INSERT INTO Calls SELECT 'Anna', '555' || i, '14:05:07', '12/31/2003', '12-31-2003_14-05-07.wav', "
        "'5.2', '0' FROM n");
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string Calls() const { return (path_ / "Calls").string(); }

 private:
  std::filesystem::path path_ = std::filesystem::temp_directory_path() / "orven-bench-records";
};

/// A window that requests its visible rows whenever they may have changed.
class Window : public CallListView, public CallCountsView {
 public:
  const CallList* list = nullptr;
  std::int32_t first = 1;
  std::size_t seen = 0;  ///< keeps the compiler from removing the work
  void Look() {
    for (auto row = first; row < first + kRowsOfAWindow && row <= list->Count(); ++row) See(row);
  }
  void ShowColumns(const std::vector<CallColumn>& /*columns*/) override {}
  void ShowRowCount(std::int32_t /*count*/) override { Look(); }
  void ShowRowsInserted(std::int32_t /*count*/) override {}
  void ShowRowRemoved(std::int32_t /*index*/) override { Look(); }
  void ShowRowsChanged() override { Look(); }
  void ShowIcon(std::int32_t index, CallIcon /*icon*/) override { See(index); }
  CallRow ShownCall(std::int32_t index) const override { return list->Row(index); }
  void ShowSelection(std::int32_t /*index*/) override {}
  void EnsureVisible(std::int32_t /*index*/) override {}
  void PopUpMenu(bool /*message*/) override {}
  void MakeSysTryBaloon(std::int32_t /*total*/, std::int32_t /*new_calls*/) override {}

 private:
  void See(std::int32_t row) { seen += list->Row(row).number.size(); }
};

class NoLog : public SystemLog {
  void WriteSystem(const std::string& /*text*/) override {}
};

/// A call list that has been filled from `database`.
struct FilledList {
  explicit FilledList(SqliteDatabase& database) : list(database, log, view, view) {
    view.list = &list;
    list.makeList();
  }
  NoLog log;
  Window view;
  CallList list;
};

void AddRecord(SqliteDatabase& database) {
  std::vector<FieldValue> values;
  for (const char* field : kCallFields) values.push_back({field, "value"});
  database.Add(values);
}

void Mark(SqliteDatabase& database, std::int32_t number, std::int32_t read) {
  database.Change(database.Identity(number), {{kRead, read == 0 ? "0" : "1"}});
}

void MeasureRecords(std::int32_t count) {
  const Folder folder(count);
  std::printf("%d records\n", count);
  PrintTimes("open", Measure(kTimes / 10, [&] { CallRecords().Open(folder.Calls()); }));
  auto database = CallRecords();
  database.Open(folder.Calls());
  PrintTimes("makeList, initial", Measure(kTimes / 10, [&] { FilledList filled(database); }));
  FilledList filled(database);
  auto& list = filled.list;
  PrintTimes("rows of a page, at any position", Measure(kTimes, [&] {
               filled.view.first = filled.view.first * 7 % (count - kRowsOfAWindow) + 1;
               filled.view.Look();
             }));
  std::int32_t read = 0;
  PrintTimes("mark as heard", Measure(kTimes, [&] { Mark(database, count / 2, read = 1 - read); }));
  PrintTimes("add a call", Measure(kTimes, [&] { AddRecord(database); }));
  OpenCall call{1, 0, std::vector<std::string>(kOpenCallFields.size(), "value")};
  const auto ring = [&] { ++call.key, database.Keep(call); };
  PrintTimes("the first step of a call", Measure(kTimes, ring, [&] { AddRecord(database); }));
  PrintTimes("makeList, after a new call",
             Measure(
                 kTimes, [&] { list.makeList(); }, [&] { AddRecord(database); }));
  PrintTimes("delete a call, and makeList", Measure(kTimes, [&] {
               database.Remove(database.Identity(list.RecordNumber(500)));
               list.Remove(500);
               list.makeList();
             }));
}

}  // namespace
}  // namespace orven::bench

int main() {
  for (const std::int32_t count : {1'000, 10'000, 100'000}) orven::bench::MeasureRecords(count);
}
