// SPDX-License-Identifier: GPL-3.0-or-later
//
// Measures how long the main window blocks its thread when the list
// has many years of calls. Each operation includes repainting.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QScrollBar>

#include <memory>

#include "adapters/database/sqlite_connection.h"
#include "support/desk/desk.h"

namespace orven::test {
namespace {

constexpr int kRecords = 100'000;

class LongList : public Desk {
 public:
  LongList() : Desk("\"WornDelete\"=\"0\"\n") {
    File({{"Anna", 500}});
    SqliteConnection(home / "Calls")
        .Execute(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) INSERT INTO "
            "Calls SELECT 'Anna', '555' || i, '14:05:07', '12/31/2003', CASE i % 3 WHEN 0 THEN 'm.wav' "
            "END, CASE i % 3 WHEN 0 THEN '5.2' ELSE '-1' END, i % 2 FROM n");
  }
  void Paint() {
    QApplication::processEvents();
    window.repaint();
  }
  void FileACall() {
    database.Add({{"Call_Name", "Ben"}, {"Type", "-1"}, {"Read", "0"}});
    Machine().ListView1.makeList();
  }
};

/// Created by the first benchmark that needs it; destroyed in main, because no widget may outlive the
/// application.
std::unique_ptr<LongList> long_list;

LongList& Calls() {
  if (!long_list) {
    long_list = std::make_unique<LongList>();
    long_list->Start();
  }
  return *long_list;
}

void OpenTheRecords(benchmark::State& state) {
  LongList calls;
  for (auto _ : state) calls.database.Open(calls.home / "Calls");
}
BENCHMARK(OpenTheRecords)->Unit(benchmark::kMillisecond);

void FillTheWindow(benchmark::State& state) {
  auto& calls = Calls();
  for (auto _ : state) {
    calls.Machine().ListView1.Clear();
    calls.Machine().ListView1.makeList();
    calls.Paint();
  }
}
BENCHMARK(FillTheWindow)->Unit(benchmark::kMillisecond);

void ANewCall(benchmark::State& state) {
  auto& calls = Calls();
  calls.Machine().ListView1.Select(kRecords / 2);
  for (auto _ : state) {
    calls.FileACall();
    calls.Paint();
  }
}
BENCHMARK(ANewCall)->Unit(benchmark::kMillisecond);

void MarkACall(benchmark::State& state) {
  auto& calls = Calls();
  calls.Machine().ListView1.Select(1);
  bool read = true;
  for (auto _ : state) {
    calls.Machine().calls.MarkAsReadUnRead(1, read);
    read = !read;
    calls.Paint();
  }
}
BENCHMARK(MarkACall)->Unit(benchmark::kMillisecond);

void DeleteACall(benchmark::State& state) {
  auto& calls = Calls();
  calls.Machine().ListView1.Select(kRecords / 3);
  for (auto _ : state) {
    calls.Do("Toolbar1.Delete");
    calls.Paint();
  }
}
BENCHMARK(DeleteACall)->Unit(benchmark::kMillisecond);

void ScrollThrough(benchmark::State& state) {
  auto& calls = Calls();
  auto& bar = *calls.Get<QAbstractItemView>("ListView1").verticalScrollBar();
  const int page = bar.pageStep();
  for (auto _ : state) {
    bar.setValue(bar.value() + page < bar.maximum() ? bar.value() + page : 0);
    calls.Paint();
  }
}
BENCHMARK(ScrollThrough)->Unit(benchmark::kMillisecond);

void JumpToTheEnds(benchmark::State& state) {
  auto& calls = Calls();
  bool first = false;
  for (auto _ : state) {
    calls.Do(first ? "mnuFirst" : "mnuLast");
    first = !first;
    calls.Paint();
  }
}
BENCHMARK(JumpToTheEnds)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace orven::test

int main(int count, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(count, arguments);
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
  orven::test::long_list.reset();
  return 0;
}
