// SPDX-License-Identifier: GPL-3.0-or-later
#include <cstdio>

#include "integration/database/database_fixture.h"

namespace orven::test {
namespace {

using RecordsTest = DatabaseTest;

std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return "";
  for (int letter = std::fgetc(pipe); letter != EOF; letter = std::fgetc(pipe)) {
    output += static_cast<char>(letter);
  }
  ::pclose(pipe);
  return output;
}

TEST_F(RecordsTest, KeepsRecordsInTheOrderOfInsertion) {
  Open();
  EXPECT_EQ(database_.RecordCount(), 0);
  EXPECT_TRUE(database_.Query("Get *").records.empty());
  for (const char* name : {"a", "b", "c"}) AddCall(database_, name);
  EXPECT_EQ(database_.GetField("Call_Name"), "c") << "an added record is the current one";
  database_.MoveTo(3);
  database_.Delete();
  AddCall(database_, "d");
  database_.MoveFirst();
  database_.MoveNext();
  EXPECT_EQ(database_.GetField("Call_Name"), "b");
  EXPECT_EQ(Names(database_), "a,b,d");
  EXPECT_EQ(database_.RecordCount(), 3);

  SqliteDatabase again(kCalls);
  EXPECT_EQ(again.Open(path_), "");
  EXPECT_EQ(Names(again), "a,b,d");
}

TEST_F(RecordsTest, AnyTextComesBack) {
  Open();
  using std::string_literals::operator""s;
  const std::string text = "quote ' \" ; \xC3\xA9 \xFF\r\n\0end"s;
  AddCall(database_, text);
  AddCall(database_, "");
  const RecordTable table = database_.Query("Get *");
  ASSERT_EQ(table.records.size(), 2U);
  EXPECT_EQ(table.records[0], (std::vector<std::string>{text, "", "", "", "", "", "0"}));
  EXPECT_EQ(table.records[0][static_cast<std::size_t>(database_.FieldIndex("Read"))], "0");
}

TEST_F(RecordsTest, EditsTheCurrentRecordOnUpdateOnly) {
  Open();
  for (const char* name : {"a", "b"}) AddCall(database_, name);
  database_.MoveTo(1);
  database_.Edit();
  database_.SetField("Read", "1");
  EXPECT_EQ(database_.GetField("Read"), "1");
  EXPECT_EQ(database_.Query("Get *").records[0][6], "0");
  database_.Update();
  EXPECT_EQ(database_.Query("Get *").records[0], (std::vector<std::string>{"a", "", "", "", "", "", "1"}));
  EXPECT_EQ(database_.Query("Get *").records[1][6], "0");

  database_.Edit();
  database_.SetField("Call_Name", "dropped");
  database_.MoveTo(2);
  EXPECT_EQ(Failure([&] { database_.Update(); }), 5) << "moving drops what was begun";
  EXPECT_EQ(Names(database_), "a,b");
}

TEST_F(RecordsTest, MisuseHasItsErrorAndChangesNothing) {
  Open();
  EXPECT_EQ(Failure([&] { database_.MoveFirst(); }), 9);
  AddCall(database_, "a");
  EXPECT_EQ(Failure([&] { database_.MoveNext(); }), 9);
  EXPECT_EQ(Failure([&] { database_.MoveTo(0); }), 9);
  EXPECT_EQ(Failure([&] { database_.MoveTo(2); }), 9);
  EXPECT_EQ(Failure([&] { database_.Query("Get"); }), 5);
  EXPECT_EQ(Failure([&] { database_.SetField("Read", "1"); }), 5);
  EXPECT_EQ(Failure([&] { database_.Update(); }), 5);
  EXPECT_EQ(Failure([&] { database_.FieldIndex("read"); }), 9);
  EXPECT_EQ(Failure([&] { database_.GetField("None"); }), 9);
  database_.Edit();
  EXPECT_EQ(Failure([&] { database_.SetField("None", 1); }), 9);
  database_.Delete();
  for (const auto& operation : std::vector<std::function<void()>>{
           [&] { database_.Delete(); }, [&] { database_.Edit(); }, [&] { database_.GetField("Read"); },
           [&] { database_.MoveNext(); }, [&] { database_.Update(); }}) {
    EXPECT_EQ(Failure(operation), 5);
  }
  AddCall(database_, "b");
  database_.DeleteAll();
  EXPECT_EQ(database_.RecordCount(), 0);
  EXPECT_EQ(Failure([&] { database_.GetField("Read"); }), 5);
}

TEST_F(RecordsTest, AnotherProgramReadsAndChangesTheOpenFile) {
  Open();
  for (const char* name : {"a", "b", "c"}) AddCall(database_, name);
  EXPECT_EQ(OutputOf("sqlite3 '" + path_ + "' 'select * from Calls'"), "a||||||0\nb||||||0\nc||||||0\n");
  EXPECT_EQ(OutputOf("cp '" + path_ + "' '" + path_ + ".copy'; sqlite3 '" + path_ +
                     ".copy' 'select count(*) from Calls'"),
            "3\n")
      << "the main file alone is complete";

  database_.MoveTo(2);
  database_.Edit();
  OutputOf("sqlite3 '" + path_ + "' \"delete from Calls where Call_Name in ('a', 'b')\"");
  EXPECT_EQ(Failure([&] { database_.Update(); }), 9);
  EXPECT_EQ(database_.RecordCount(), 1);
  database_.MoveTo(1);
  EXPECT_EQ(database_.GetField("Call_Name"), "c");
  AddCall(database_, "d");
  EXPECT_EQ(Names(database_), "c,d");
}

TEST_F(RecordsTest, PositionsAreFoundFastAmongManyRecords) {
  Open();
  constexpr int kCount = 100000;
  SqliteConnection writer(path_);
  writer.Execute(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < " + std::to_string(kCount) +
      ") INSERT INTO Calls SELECT i, '5550100', '14:05:07', '12/31/2003', '12-31-2003_14-05-07.wav', "
      "'12.5', '0' FROM n");
  // Scanning to each position would touch a billion records here.
  for (int step = 0; step < 20000; ++step) {
    const int number = kCount - step;
    database_.MoveTo(number);
    ASSERT_EQ(database_.GetField("Call_Name"), std::to_string(number));
  }
  AddCall(database_, "last");
  EXPECT_EQ(database_.RecordCount(), kCount + 1);
}

}  // namespace
}  // namespace orven::test
