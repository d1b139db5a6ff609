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

/// What a failing disk does to a file of 1000 calls.
struct Damage {
  const char* what;
  std::size_t at;         ///< the first byte that it changes
  std::size_t size;       ///< of what is overwritten; 0: a bit is turned
  std::size_t most_lost;  ///< calls; a page of 4096 bytes has some 37 of these
  bool while_open = false;
  bool cut_off = false;  ///< the file ends at `at`
};

TEST_F(RecordFileTest, DamageCostsTheCallsThatItHitAndTheOthersGoOnAtOnce) {
  constexpr std::size_t kPage = 4096;
  auto counted = kCalls;
  counted.counted = "Read";
  for (const auto& [what, at, size, most_lost, while_open, cut_off] :
       std::vector<Damage>{{"the kind of file", 0, 16, 0},
                           {"the header and the schema", 0, kPage, 0},
                           {"the table's root", kPage, kPage, 0},
                           {"the index's root", 2 * kPage, kPage, 0},
                           {"a page of calls", 9 * kPage, kPage, 40},
                           {"a bit in the number of a page's calls", 9 * kPage + 3, 0, 40},
                           {"a bit in a page's kind", 9 * kPage, 0, 40},
                           {"a page in use", 9 * kPage, kPage, 40, true},
                           {"all behind the middle", 15 * kPage, 0, 700, true, true},
                           {"everything", 0, 0, 1000, true, true}}) {
    SCOPED_TRACE(what);
    const auto path = folder_ / what;
    std::string note;
    const auto take = [&note](const std::string& line) { note += line; };
    SqliteDatabase database(counted, take, take);
    SqliteDatabase(counted).Open(path);
    SqliteConnection(path).Execute(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
        "INSERT INTO Calls SELECT i, hex(randomblob(45)), '-1', '0' FROM n");
    if (while_open) database.Open(path);
    std::string content = ContentOf(path);
    if (size > 0) {
      content.replace(at, size, size, '\x5A');
    } else if (cut_off) {
      content.resize(at);
    } else {
      content[at] = static_cast<char>(content[at] ^ 8);
    }
    PutFile(path, content);  // the same file, if it is open
    if (while_open && !cut_off)
      SqliteConnection(path).Execute("PRAGMA user_version = 7");  // pages are read again
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
    EXPECT_EQ(SqliteDatabase(counted).Open(path), "") << "it is sound again";
    const auto told = while_open ? std::to_string(1001 - saved.size()) + " of 1000 calls are lost"
                                 : std::to_string(saved.size() - 1) + " calls could be read";
    EXPECT_NE(note.find(told), std::string::npos) << note;
  }
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
