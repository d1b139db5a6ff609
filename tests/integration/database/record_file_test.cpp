// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "integration/database/database_fixture.h"
#include "support/file_size_limit.h"

namespace orven::test {
namespace {

using RecordFileTest = DatabaseTest;

constexpr std::size_t kDamageAt = 12288;  // Page 4: behind the header and the schema.
const std::string kDamage(12288, '\x5A');

TEST_F(RecordFileTest, WhatIsNoDatabaseIsSetAsideAndSaidSo) {
  PutFile(path_, std::string(5000, 'x'));
  PutFile(path_ + "-wal", "its log");
  const std::string note = database_.Open(path_);
  EXPECT_NE(note.find(path_), std::string::npos) << note;
  EXPECT_NE(note.find("Calls.damaged-2"), std::string::npos) << note;
  EXPECT_EQ(SetAside(), 1U);
  AddCall(database_, "a");
  EXPECT_EQ(Names(database_), "a");

  // Once more within the second: both are kept.
  PutFile(folder_ / "other", std::string(5000, 'y'));
  std::filesystem::rename(folder_ / "other", path_);
  SqliteDatabase second(kCalls);
  EXPECT_NE(second.Open(path_), "");
  std::string kept;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) {
    const std::string content = ContentOf(entry.path().string());
    if (content == std::string(5000, 'x') || content == std::string(5000, 'y')) kept += content[0];
    if (content == "its log") kept += 'l';
  }
  EXPECT_EQ(kept.size(), 3U) << kept;
}

TEST_F(RecordFileTest, ADamagedDatabaseIsSetAside) {
  {
    SqliteDatabase writer(kCalls);
    writer.Open(path_);
    for (int number = 0; number < 200; ++number) AddCall(writer, std::string(100, 'n'));
  }
  std::string content = ContentOf(path_);
  content.replace(kDamageAt, kDamage.size(), kDamage);
  PutFile(path_, content);
  EXPECT_NE(database_.Open(path_).find("Calls.damaged-2"), std::string::npos);
  EXPECT_EQ(database_.RecordCount(), 0);
  EXPECT_EQ(SetAside(), 1U);
}

TEST_F(RecordFileTest, DamageThatShowsLaterIsAnErrorAndTheNextOpenRepairs) {
  Open();
  for (int number = 0; number < 200; ++number) AddCall(database_, std::string(100, 'n'));
  {
    // The pages change beneath the open database, as a failing disk does it.
    std::fstream file(path_, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(kDamageAt);
    file << kDamage;
  }
  SqliteConnection(path_).Execute("PRAGMA user_version = 7");  // Makes the open one forget its pages.
  EXPECT_EQ(Failure([&] { database_.Query("Get *"); }), 57);
  SqliteDatabase next(kCalls);
  EXPECT_NE(next.Open(path_), "");
  AddCall(next, "a");
  EXPECT_EQ(Names(next), "a");
}

TEST_F(RecordFileTest, AFileThatCannotBeOpenedIsAnErrorThatNamesIt) {
  std::filesystem::create_directory(path_);
  PutFile(folder_ / "file", "x");
  for (const std::string& path : {path_, folder_ / "none/Calls", folder_ / "file/Calls"}) {
    try {
      database_.Open(path);
      ADD_FAILURE() << path;
    } catch (const RuntimeError& error) {
      EXPECT_EQ(error.Number(), 75);
      EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
    }
  }
  EXPECT_TRUE(std::filesystem::is_directory(path_));
}

TEST_F(RecordFileTest, ARecordThatArrivesWhenTheDiskIsBackIsStored) {
  EXPECT_EQ(Failure([&] { database_.AddNew(); }), 5) << "never opened";
  const std::string late = folder_ / "disk/Calls";
  EXPECT_EQ(Failure([&] { database_.Open(late); }), 75);
  for (const auto& operation : std::vector<std::function<void()>>{
           [&] { AddCall(database_, "lost"); }, [&] { database_.RecordCount(); },
           [&] { database_.MoveTo(1); }, [&] { database_.Query("Get *"); }, [&] { database_.DeleteAll(); }}) {
    EXPECT_EQ(Failure(operation), 5);
  }
  EXPECT_TRUE(reports_.empty());
  std::filesystem::create_directory(folder_ / "disk");
  AddCall(database_, "a");
  EXPECT_EQ(Names(database_), "a");
  ASSERT_EQ(reports_.size(), 1U);
  EXPECT_EQ(reports_[0], late + " is open again");
}

TEST_F(RecordFileTest, ALockedFileIsAnErrorAndNothingIsLost) {
  Open();
  AddCall(database_, "a");
  {
    SqliteConnection other(path_);
    other.Execute("BEGIN IMMEDIATE");
    EXPECT_EQ(Failure([&] { AddCall(database_, "b"); }), 70);
    SqliteDatabase second(kCalls);
    EXPECT_EQ(Failure([&] { second.Open(path_); }), 70);
    EXPECT_EQ(Names(database_), "a") << "reading goes on";
    other.Execute("COMMIT");
  }
  database_.Update();
  EXPECT_EQ(Names(database_), "a,b") << "the record that could not be stored was still begun";
  EXPECT_EQ(folder_.Count("Calls.damaged"), 0U);
}

TEST_F(RecordFileTest, AFullDiskLeavesTheStoredRecords) {
  Open();
  AddCall(database_, "a");
  const std::string large(std::size_t{1} << 20U, 'x');
  {
    FileSizeLimit limit(400000);  // SQLite calls it an I/O error (57), a full disk proper 61.
    const std::int32_t number = Failure([&] { AddCall(database_, large); });
    EXPECT_TRUE(number == 57 || number == 61) << number;
    EXPECT_EQ(Names(database_), "a");
  }
  database_.Update();
  EXPECT_EQ(database_.RecordCount(), 2);
  EXPECT_EQ(SqliteConnection(path_).Ask("PRAGMA integrity_check"), "ok");
}

TEST_F(RecordFileTest, MissingColumnsAreAddedAndOthersKept) {
  SqliteConnection(path_).Execute(
      "CREATE TABLE Calls (Note TEXT, call_name TEXT, Call_Number TEXT);"
      "INSERT INTO Calls VALUES ('mine', 'a', '1');"
      "CREATE TABLE Other (x)");
  Open();
  database_.MoveTo(1);
  EXPECT_EQ(database_.GetField("Type"), "");
  database_.Edit();
  database_.SetField("Read", "1");
  database_.Update();
  AddCall(database_, "b");
  EXPECT_EQ(Names(database_), "a,b");
  SqliteConnection reader(path_);
  EXPECT_EQ(reader.Ask("SELECT Note || Call_Number || \"Read\" FROM Calls WHERE rowid = 1"), "mine11");
  EXPECT_EQ(reader.Ask("SELECT count(*) FROM Other"), "0");
}

TEST_F(RecordFileTest, ATableThatCannotKeepOrderIsSetAside) {
  SqliteConnection(path_).Execute("CREATE TABLE Calls (Call_Name TEXT PRIMARY KEY) WITHOUT ROWID");
  EXPECT_NE(database_.Open(path_), "");
  AddCall(database_, "a");
  std::filesystem::remove(path_);
  SqliteConnection(path_).Execute("CREATE VIEW Calls AS SELECT 1 AS Call_Name");
  SqliteDatabase other(kCalls);
  EXPECT_NE(other.Open(path_), "");
  AddCall(other, "b");
  EXPECT_EQ(SetAside(), 2U);
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
  EXPECT_EQ(reports_.size(), 1U);

  database_.AddNew();
  database_.SetField("Call_Name", "stored all the same");
  std::filesystem::remove(path_);
  database_.Update();
  EXPECT_EQ(Names(database_), "stored all the same");
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
