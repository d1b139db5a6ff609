// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "integration/database/database_fixture.h"
#include "support/file_size_limit.h"

namespace orven::test {
namespace {

using RecordFileTest = DatabaseTest;

TEST_F(RecordFileTest, WhatIsNoDatabaseIsSetAsideWithItsLogAndSaidSo) {
  std::string kept;
  for (const char letter : {'x', 'y'}) {  // twice within a second: both are kept
    std::filesystem::remove(path_);
    PutFile(path_, std::string(5000, letter));
    PutFile(path_ + "-wal", "its log");
    SqliteDatabase database(kCalls);
    EXPECT_NE(database.Open(path_).find("Calls.damaged-2"), std::string::npos);
    AddCall(database, "a");
    EXPECT_EQ(Names(database), "a");
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) {
    const std::string content = ContentOf(entry.path().string());
    if (content == std::string(5000, 'x') || content == std::string(5000, 'y')) kept += content[0];
    if (content == "its log") kept += 'l';
  }
  EXPECT_EQ(kept.size(), 4U) << kept;
}

TEST_F(RecordFileTest, DamageThatShowsLaterIsAnErrorAndTheNextOpenRepairs) {
  Open();
  for (int number = 0; number < 200; ++number) AddCall(database_, std::string(100, 'n'));
  {
    // The pages change beneath the open database, as a failing disk does it.
    std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(12288);  // page 4: behind the header and the schema
    file << std::string(12288, '\x5A');
  }
  SqliteConnection(path_).Execute("PRAGMA user_version = 7");  // Makes the open one forget its pages.
  EXPECT_EQ(Failure([&] { database_.Query("Get *"); }), 57);
  SqliteDatabase next(kCalls);
  EXPECT_NE(next.Open(path_), "");
  AddCall(next, "a");
  EXPECT_EQ(Names(next), "a");
}

TEST_F(RecordFileTest, ARecordThatArrivesWhenTheDiskIsBackIsStored) {
  const std::string late = folder_ / "disk/Calls";
  EXPECT_EQ(Failure([&] { database_.Open(late); }), 75);
  EXPECT_EQ(Failure([&] { AddCall(database_, "lost"); }), 5);
  EXPECT_EQ(Failure([&] { database_.DeleteAll(); }), 5);
  EXPECT_TRUE(reports_.empty());
  std::filesystem::create_directory(folder_ / "disk");
  AddCall(database_, "a");
  EXPECT_EQ(Names(database_), "a");
  EXPECT_EQ(reports_, std::vector<std::string>{late + " is open again"});
}

TEST_F(RecordFileTest, ALockedFileOrAFullDiskIsAnErrorAndNothingIsLost) {
  Open();
  AddCall(database_, "a");
  {
    SqliteConnection other(path_);
    other.Execute("BEGIN IMMEDIATE");
    EXPECT_EQ(Failure([&] { AddCall(database_, "b"); }), 70);
    EXPECT_EQ(Names(database_), "a") << "reading goes on";
    other.Execute("COMMIT");
  }
  database_.Update();
  EXPECT_EQ(Names(database_), "a,b") << "the record that could not be stored was still begun";
  {
    FileSizeLimit limit(400000);  // SQLite calls it an I/O error (57), a full disk proper 61.
    const std::int32_t number = Failure([&] { AddCall(database_, std::string(1U << 20U, 'x')); });
    EXPECT_TRUE(number == 57 || number == 61) << number;
    EXPECT_EQ(Names(database_), "a,b");
  }
  database_.Update();
  EXPECT_EQ(database_.RecordCount(), 3);
  EXPECT_EQ(SqliteConnection(path_).Ask("PRAGMA integrity_check"), "ok");
}

TEST_F(RecordFileTest, WhatAFileWouldRunIsNotRun) {
  SqliteConnection(path_).Execute(
      "CREATE TABLE Calls (Call_Name TEXT, Call_Number TEXT, Type TEXT, Read TEXT);"
      "CREATE TRIGGER gone AFTER INSERT ON Calls BEGIN DELETE FROM Calls; END");
  Open();
  AddCall(database_, "a");
  EXPECT_EQ(Names(database_), "a");
}

TEST_F(RecordFileTest, ATableThatCannotBeFilledIsSetAsideAsItWas) {
  for (const char* sql : {"CREATE VIEW Calls AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x FROM c) "
                          "SELECT x AS Call_Name, x AS Call_Number, x AS Type, x AS Read FROM c",
                          "CREATE TABLE Calls (Call_Name TEXT, Read TEXT AS (hex(zeroblob(200000000))))"}) {
    SqliteConnection(path_).Execute(sql);
    const std::string content = ContentOf(path_);
    SqliteDatabase database(kCalls);
    const std::string note = database.Open(path_);
    AddCall(database, "a");
    EXPECT_EQ(Names(database), "a");
    const auto begin = note.find("Calls.damaged-");
    ASSERT_NE(begin, std::string::npos) << note;
    EXPECT_EQ(ContentOf(folder_ / note.substr(begin, note.find(',', begin) - begin)), content);
    std::filesystem::remove(path_);
  }
}

TEST_F(RecordFileTest, MissingColumnsAreAddedAndOthersKept) {
  SqliteConnection(path_).Execute(
      "CREATE TABLE Calls (Note TEXT, call_name TEXT, Call_Number TEXT);"
      "INSERT INTO Calls VALUES ('mine', 'a', '1')");
  Open();
  database_.MoveTo(1);
  database_.Edit();
  database_.SetField("Read", "1");
  database_.Update();
  EXPECT_EQ(SqliteConnection(path_).Ask("SELECT Note || call_name || Call_Number || \"Read\" FROM Calls"),
            "minea11");
}

TEST_F(RecordFileTest, AFileThatIsReplacedWhileOpenIsNoticed) {
  Open();
  AddCall(database_, "before");
  database_.Edit();
  {
    SqliteDatabase backup(kCalls);
    backup.Open(folder_ / "backup");
    AddCall(backup, "restored");
  }
  std::filesystem::rename(folder_ / "backup", path_);
  EXPECT_EQ(Failure([&] { database_.Update(); }), 5) << "the edited record is not in this file";
  AddCall(database_, "after");
  EXPECT_EQ(Names(database_), "restored,after");
}

TEST_F(RecordFileTest, WhatWasUpdatedSurvivesAKill) {
  int acknowledged[2] = {};
  ASSERT_EQ(::pipe(acknowledged), 0);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    SqliteDatabase writer(kCalls);
    writer.Open(path_);
    for (int number = 1;; ++number) {
      AddCall(writer, std::to_string(number));
      if (::write(acknowledged[1], "x", 1) != 1) ::_exit(1);
    }
  }
  char mark = 0;
  for (int count = 0; count < 25; ++count) ASSERT_EQ(::read(acknowledged[0], &mark, 1), 1);
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  ::close(acknowledged[1]);
  int stored = 25;
  while (::read(acknowledged[0], &mark, 1) == 1) ++stored;
  ::close(acknowledged[0]);

  Open();
  EXPECT_GE(database_.RecordCount(), stored);
  EXPECT_LE(database_.RecordCount(), stored + 1);
  database_.MoveTo(stored);
  EXPECT_EQ(database_.GetField("Call_Name"), std::to_string(stored));
}

}  // namespace
}  // namespace orven::test
