// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include "adapters/database/sqlite_database.h"
#include "support/file_size_limit.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const RecordSchema kCalls{"Calls", {"Call_Name", "Call_Number", "Type", "Read"}};

/// Number of the error that `statement` fails with; 0 when it does not.
std::int32_t Failure(const std::function<void()>& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    return error.Number();
  }
  return 0;
}

void AddCall(DatabaseControl& database, const std::string& name) {
  database.AddNew();
  database.SetField("Call_Name", name);
  database.SetField("Read", 0);
  database.Update();
}

/// Names of all calls in stored order, with commas between.
std::string Names(DatabaseControl& database) {
  std::string names;
  for (const auto& record : database.Query("Get *").records) names += (names.empty() ? "" : ",") + record[0];
  return names;
}

/// A database in a folder of its own.
class DatabaseTest : public testing::Test {
 protected:
  void OpenWith(const std::vector<std::string>& names) {
    EXPECT_EQ(database_.Open(path_), "");
    for (const auto& name : names) AddCall(database_, name);
  }
  std::string Ask(const std::string& sql, const std::string& file = "Calls") {
    return SqliteConnection(folder_ / file).Ask(sql);
  }

  ScratchFolder folder_;
  std::string path_ = folder_ / "Calls";
  std::vector<std::string> reports_;
  SqliteDatabase database_{kCalls, [this](const std::string& line) { reports_.push_back(line); }};
};

TEST_F(DatabaseTest, AnyTextComesBackInTheOrderOfInsertion) {
  const std::string text("quote ' \" ; \xC3\xA9 \xFF\r\n\0end", 22);
  OpenWith({text, "b", "c"});
  EXPECT_EQ(database_.GetField("Call_Name"), "c") << "an added record is the current one";
  database_.Delete();
  AddCall(database_, "d");
  SqliteDatabase again(kCalls);
  EXPECT_EQ(again.Open(path_), "");
  EXPECT_EQ(Names(again), text + ",b,d");
  EXPECT_THAT(again.Query("Get *").records[0], ElementsAre(text, "", "", "0"));
  const auto before = [&](std::int64_t identity, const std::string& name) {
    return again.Locate(again.NewestBefore(identity, {{"Type", "-1"}, {"Call_Name", name}}));
  };
  EXPECT_EQ(before(99, ""), 3);
  EXPECT_EQ(before(99, "d"), 2);
  EXPECT_EQ(before(again.Identity(2), "d"), 1);
  EXPECT_EQ(before(again.Identity(2), text), 0);
}

TEST_F(DatabaseTest, TheCurrentRecordChangesWithUpdateOnlyAndMisuseChangesNothing) {
  OpenWith({"a", "b"});
  database_.MoveTo(1);
  database_.Edit();
  database_.SetField("Call_Name", "changed");
  EXPECT_EQ(Names(database_), "a,b");
  database_.Update();
  database_.Edit();
  database_.SetField("Call_Name", "dropped");
  database_.MoveTo(2);
  const std::pair<std::int32_t, std::function<void()>> misuses[] = {
      {5, [&] { database_.Update(); }},      {5, [&] { database_.SetField("Read", "1"); }},
      {9, [&] { database_.MoveNext(); }},    {9, [&] { database_.MoveTo(0); }},
      {9, [&] { database_.MoveTo(3); }},     {9, [&] { database_.GetField("None"); }},
      {5, [&] { database_.Query("Get a"); }}};
  for (const auto& [number, misuse] : misuses) EXPECT_EQ(Failure(misuse), number);
  EXPECT_EQ(Names(database_), "changed,b");
  database_.DeleteAll();
  EXPECT_EQ(Failure([&] { database_.Delete(); }), 5);
  EXPECT_EQ(database_.RecordCount(), 0);
}

TEST_F(DatabaseTest, AnotherProgramReadsAndChangesTheOpenFile) {
  OpenWith({"a", "b", "c"});
  std::filesystem::copy_file(path_, folder_ / "copy");
  EXPECT_EQ(Ask("SELECT count(*) FROM Calls", "copy"), "3") << "the main file alone is complete";
  database_.MoveTo(2);
  database_.Edit();
  Ask("DELETE FROM Calls WHERE Call_Name IN ('a', 'b')");
  EXPECT_EQ(Failure([&] { database_.Update(); }), 9);
  AddCall(database_, "d");
  EXPECT_EQ(Names(database_), "c,d");
}

TEST_F(DatabaseTest, MissingColumnsAreAddedAndOthersKept) {
  SqliteConnection(path_).Execute(
      "CREATE TABLE Calls (Note TEXT, call_name TEXT, Call_Number TEXT);"
      "INSERT INTO Calls VALUES ('mine', 'a', '1')");
  OpenWith({});
  database_.MoveTo(1);
  database_.Edit();
  database_.SetField("Read", "1");
  database_.Update();
  EXPECT_EQ(Ask("SELECT Note || call_name || Call_Number || \"Read\" FROM Calls"), "minea11");
}

TEST_F(DatabaseTest, AFileThatIsReplacedOrComesLateIsOpenedAgain) {
  OpenWith({"before"});
  database_.Edit();
  SqliteDatabase backup(kCalls);
  backup.Open(folder_ / "backup");
  AddCall(backup, "restored");
  std::filesystem::rename(folder_ / "backup", path_);
  EXPECT_EQ(Failure([&] { database_.Update(); }), 5) << "the edited record is not in this file";
  AddCall(database_, "after");
  EXPECT_EQ(Names(database_), "restored,after");

  const std::string late = folder_ / "disk/Calls";
  reports_.clear();
  EXPECT_EQ(Failure([&] { database_.Open(late); }), 75);
  EXPECT_EQ(Failure([&] { AddCall(database_, "lost"); }), 5);
  std::filesystem::create_directory(folder_ / "disk");
  AddCall(database_, "a");
  EXPECT_EQ(Names(database_), "a");
  EXPECT_THAT(reports_, ElementsAre(late + " is open again"));
}

TEST_F(DatabaseTest, ALockedFileOrAFullDiskIsAnErrorAndNothingIsLost) {
  OpenWith({"a"});
  SqliteConnection other(path_);
  other.Execute("BEGIN IMMEDIATE");
  EXPECT_EQ(Failure([&] { AddCall(database_, "b"); }), 70);
  other.Execute("COMMIT");
  database_.Update();
  EXPECT_EQ(Names(database_), "a,b") << "the record that could not be stored was still begun";
  {
    FileSizeLimit limit(400000);  // SQLite calls it an I/O error (57), a full disk proper 61.
    EXPECT_THAT(Failure([&] { AddCall(database_, std::string(1U << 20U, 'x')); }), testing::AnyOf(57, 61));
  }
  database_.Update();
  EXPECT_EQ(database_.RecordCount(), 3);
  EXPECT_EQ(Ask("PRAGMA integrity_check"), "ok");
}

TEST_F(DatabaseTest, WhatIsNoDatabaseIsSetAsideWithItsLogAndReported) {
  std::string kept;
  for (const std::string letter : {"x", "y"}) {  // twice within a second: both are kept
    std::filesystem::remove(path_);
    PutFile(path_, "no database " + letter);
    PutFile(path_ + "-wal", "log of " + letter);
    SqliteDatabase database(kCalls);
    EXPECT_THAT(database.Open(path_), HasSubstr("Calls.damaged-2"));
    AddCall(database, "a");
    EXPECT_EQ(Names(database), "a");
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) kept += ContentOf(entry.path());
  for (const char* content : {"no database x", "no database y", "log of x", "log of y"})
    EXPECT_THAT(kept, HasSubstr(content));
}

TEST_F(DatabaseTest, OnAFailingDiskOnlyTheCallsThatAreHitAreLostAndTheOthersGoOnAtOnce) {
  constexpr std::size_t kPage = 4096;
  struct Damage {
    const char* what;
    std::size_t at;         ///< the first byte that it changes
    std::size_t size;       ///< of what is overwritten; 0: a bit is turned
    std::size_t most_lost;  ///< of 1000 calls; a page has some 37 of these
    bool while_open = false;
    bool cut_off = false;  ///< the file ends at `at`
  };
  const Damage damages[]{{"the header and the schema", 0, kPage, 0},
                         {"the table's root", kPage, kPage, 0},
                         {"the index's root", 2 * kPage, kPage, 0},
                         {"a page of calls", 9 * kPage, kPage, 40},
                         {"a bit in the number of a page's calls", 9 * kPage + 3, 0, 40},
                         {"a bit in a page's kind", 9 * kPage, 0, 40},
                         {"a page in use", 9 * kPage, kPage, 40, true},
                         {"all behind the middle", 15 * kPage, 0, 700, true, true},
                         {"everything", 0, 0, 1000, true, true}};
  auto counted = kCalls;
  counted.counted = "Read";
  for (const auto& [what, at, size, most_lost, while_open, cut_off] : damages) {
    SCOPED_TRACE(what);
    std::string note;
    const std::string path = folder_ / what;
    const auto take = [&note](const std::string& line) { note += line; };
    SqliteDatabase database(counted, take, take);
    SqliteDatabase(counted).Open(path);
    SqliteConnection(path).Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
        "INSERT INTO Calls SELECT i, hex(randomblob(45)), '-1', '0' FROM n");
    if (while_open) database.Open(path);
    std::string content = ContentOf(path);
    if (cut_off) content.resize(at);
    if (!cut_off && size == 0) content[at] = static_cast<char>(content[at] ^ 8);
    if (size > 0) content.replace(at, size, size, '\x5A');
    PutFile(path, content);                                            // the same file, if it is open
    if (while_open && !cut_off) Ask("PRAGMA user_version = 7", what);  // pages are read again
    if (!while_open) note = database.Open(path);

    AddCall(database, "1001");
    const auto saved = database.Query("Get *").records;
    std::int64_t before = 0;
    for (std::int32_t number = 1; number <= database.RecordCount(); ++number) {
      const auto identity = database.Identity(number);
      EXPECT_LT(std::exchange(before, identity), identity);
      EXPECT_EQ(saved[static_cast<std::size_t>(number) - 1][0], std::to_string(identity));
    }
    EXPECT_EQ(before, 1001) << "the new call";
    EXPECT_GE(saved.size() + most_lost, 1001U);
    EXPECT_EQ(SqliteDatabase(counted).Open(path), "") << "it is intact again";
    EXPECT_THAT(note, HasSubstr(while_open ? std::to_string(1001 - saved.size()) + " of 1000 calls are lost"
                                           : std::to_string(saved.size() - 1) + " calls could be read"));
  }
}

}  // namespace
}  // namespace orven::test
