// SPDX-License-Identifier: GPL-3.0-or-later
#include "integration/database/database_fixture.h"

namespace orven::test {
namespace {

using RecordsTest = DatabaseTest;

TEST_F(RecordsTest, AnyTextComesBackInTheOrderOfInsertion) {
  Open();
  using std::string_literals::operator""s;
  const std::string text = "quote ' \" ; \xC3\xA9 \xFF\r\n\0end"s;
  for (const std::string& name : {text, "b"s, "c"s}) AddCall(database_, name);
  EXPECT_EQ(database_.GetField("Call_Name"), "c") << "an added record is the current one";
  database_.Delete();
  AddCall(database_, "d");

  SqliteDatabase again(kCalls);
  EXPECT_EQ(again.Open(path_), "");
  EXPECT_EQ(Names(again), text + ",b,d");
  EXPECT_EQ(again.Query("Get *").records[0], (std::vector<std::string>{text, "", "", "0"}));
  const auto before = [&](std::int64_t identity, const std::string& name) {
    return again.Locate(again.NewestBefore(identity, {{"Type", "-1"}, {"Call_Name", name}}));
  };
  EXPECT_EQ(before(99, ""), 3);
  EXPECT_EQ(before(99, "d"), 2);
  EXPECT_EQ(before(again.Identity(2), "d"), 1);
  EXPECT_EQ(before(again.Identity(2), text), 0);
}

TEST_F(RecordsTest, EditsTheCurrentRecordOnUpdateOnly) {
  Open();
  for (const char* name : {"a", "b"}) AddCall(database_, name);
  database_.MoveTo(1);
  database_.Edit();
  database_.SetField("Call_Name", "changed");
  EXPECT_EQ(Names(database_), "a,b");
  database_.Update();
  EXPECT_EQ(Names(database_), "changed,b");

  database_.Edit();
  database_.SetField("Call_Name", "dropped");
  database_.MoveTo(2);
  EXPECT_EQ(Failure([&] { database_.Update(); }), 5) << "moving drops what was begun";
  EXPECT_EQ(Names(database_), "changed,b");
}

TEST_F(RecordsTest, MisuseHasItsErrorAndChangesNothing) {
  Open();
  AddCall(database_, "a");
  EXPECT_EQ(Failure([&] { database_.MoveNext(); }), 9);
  EXPECT_EQ(Failure([&] { database_.MoveTo(0); }), 9);
  EXPECT_EQ(Failure([&] { database_.MoveTo(2); }), 9);
  EXPECT_EQ(Failure([&] { database_.SetField("Read", "1"); }), 5);
  EXPECT_EQ(Failure([&] { database_.GetField("None"); }), 9);
  EXPECT_EQ(Names(database_), "a");
  database_.DeleteAll();
  EXPECT_EQ(Failure([&] { database_.Delete(); }), 5);
  EXPECT_EQ(database_.RecordCount(), 0);
}

TEST_F(RecordsTest, AnotherProgramReadsAndChangesTheOpenFile) {
  Open();
  for (const char* name : {"a", "b", "c"}) AddCall(database_, name);
  std::filesystem::copy_file(path_, folder_ / "copy");
  EXPECT_EQ(SqliteConnection(folder_ / "copy").Ask("SELECT count(*) FROM Calls"), "3")
      << "the main file alone is complete";

  database_.MoveTo(2);
  database_.Edit();
  SqliteConnection(path_).Execute("DELETE FROM Calls WHERE Call_Name IN ('a', 'b')");
  EXPECT_EQ(Failure([&] { database_.Update(); }), 9);
  database_.MoveTo(1);
  EXPECT_EQ(database_.GetField("Call_Name"), "c");
  AddCall(database_, "d");
  EXPECT_EQ(Names(database_), "c,d");
}

}  // namespace
}  // namespace orven::test
