// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <sstream>

#include "adapters/database/sqlite_database.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

using ::testing::EndsWith, ::testing::HasSubstr;

const RecordSchema kCalls{{"Calls", {"Call_Name", "Call_Number", "Type", "Read"}},
                          "",
                          {"OpenCalls", {"Call_Name", "Ring", "Left", "Folder", "Place", "Mail"}}};

/// An open call with `text` in all fields.
OpenCall Open(std::int64_t key, const std::string& text, std::int64_t record = 0) {
  return {key, record, std::vector<std::string>(kCalls.open.fields.size(), text)};
}

/// Executes `steps`, separated by blanks, and returns the texts they read; a failed step adds "!" and its
/// error number. The records are named by their position, the open calls by their key.
std::string Do(SqliteDatabase& database, const std::string& steps) {
  std::string told;
  std::istringstream list(steps);
  for (std::string step; list >> step;) {
    const std::string verb = step.substr(0, step.find(':')), value = step.substr(step.find(':') + 1);
    const std::string text = value.substr(value.find('=') + 1);
    const auto number = [&] { return std::stoi(value); };
    try {
      if (verb == "open") told += database.Open(value);
      if (verb == "add") database.Add({{"Call_Name", value}, {"Read", "0"}});
      if (verb == "file") database.Add({{"Call_Name", text}}, Open(number(), text));
      if (verb == "end") database.Add({{"Call_Name", text}}, {number(), 0, {}});
      if (verb == "name") database.Change(database.Identity(number()), {{"Call_Name", text}});
      if (verb == "complete") database.Change(1, {{"Call_Name", text}}, {number(), 0, {}});
      if (verb == "remove") database.Remove(database.Identity(number()));
      if (verb == "clear") database.DeleteAll();
      if (verb == "trim") database.DeleteFirst(number());
      if (verb == "keep") database.Keep(Open(number(), text));
      if (verb == "close") database.Close(number());
      if (verb == "calls")
        for (const auto& call : database.OpenCalls())
          told += std::to_string(call.key) + call.fields.back() + std::to_string(call.record) + " ";
      if (verb == "list")
        for (const auto& record : database.Query(value == "all" ? "Get *" : "Get a").records)
          told += record[0] + " ";
    } catch (const RuntimeError& error) {
      told += "!" + std::to_string(error.Number()) + " ";
    }
  }
  return told;
}

/// A database in a scratch folder.
class DatabaseTest : public ::testing::Test {
 protected:
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
  database_.Open(path_);
  EXPECT_EQ(Do(database_, "add:a add:b add:c remove:3 add:d"), "");
  database_.Change(1, {{"Call_Name", text}});
  SqliteDatabase again(kCalls);
  EXPECT_EQ(again.Open(path_), "");
  EXPECT_EQ(Do(again, "list:all"), text + " b d ");
  EXPECT_THAT(again.Query("Get *").records[0], ::testing::ElementsAre(text, "", "", "0"));
  const auto before = [&](std::int64_t identity, const std::string& name) {
    return again.Locate(again.NewestBefore(identity, {{"Type", "-1"}, {"Call_Name", name}}));
  };
  EXPECT_EQ(before(99, "d"), 2);
  EXPECT_EQ(before(again.Identity(2), "d"), 1);
  EXPECT_EQ(before(again.Identity(2), text), 0);
}

TEST_F(DatabaseTest, MisuseChangesNothing) {
  database_.Open(path_);
  EXPECT_EQ(Do(database_, "add:a add:b name:0=x remove:3 trim:3 list:a list:all"), "!9 !9 !9 !5 a b ");
  EXPECT_THROW(database_.Add({{"None", "x"}}, Open(1, "x")), RuntimeError);
  EXPECT_THROW(database_.Change(1, {{"Read", "1"}, {"None", "x"}}, Open(1, "x")), RuntimeError);
  EXPECT_EQ(Do(database_, "calls name:1=new list:all trim:1 list:all clear remove:1 list:all"),
            "new b b !9 ");
}

TEST_F(DatabaseTest, AnotherProgramReadsAndChangesTheOpenFile) {
  database_.Open(path_);
  EXPECT_EQ(Do(database_, "add:a add:b keep:1=ring file:1=c"), "");
  std::filesystem::copy_file(path_, folder_ / "copy");
  // The main file alone is complete.
  EXPECT_EQ(Ask("SELECT count(*) + max(Record) FROM Calls, OpenCalls", "copy"), "6");
  Ask("DELETE FROM Calls WHERE Call_Name IN ('a', 'b')");
  EXPECT_EQ(Do(database_, "complete:1=x calls add:d list:all"), "!9 1c3 c d ");
}

TEST_F(DatabaseTest, MissingColumnsAreAddedAndOthersKept) {
  SqliteConnection(path_).Execute(
      "CREATE TABLE Calls (Note TEXT, call_name TEXT, Call_Number TEXT);"
      "INSERT INTO Calls VALUES ('mine', 'a', '1')");
  database_.Open(path_);
  database_.Change(1, {{"Read", "0"}});
  EXPECT_EQ(Ask("SELECT Note || call_name || Call_Number || \"Read\" FROM Calls"), "minea10");
}

TEST_F(DatabaseTest, AnOpenCallIsKeptUntilItsRecordIsStored) {
  database_.Open(path_);
  EXPECT_EQ(Do(database_, "keep:5=ring keep:4=early keep:5=later file:4=a end:5=b calls remove:2"), "4a1 ");
  EXPECT_EQ(Do(database_, "keep:7=x close:9"), "");
  database_.Keep(Open(8, "names", 6));  // a record that was deleted
  for (const std::string part : {"", "-wal"}) PutFile(folder_ / ("killed" + part), ContentOf(path_ + part));
  EXPECT_EQ(Do(database_, "open:" + folder_ / "killed"), "");
  EXPECT_EQ(Do(database_, "complete:4=new close:7 calls add:c list:all"), "8names6 new c ");
  EXPECT_EQ(database_.Identity(2), 7);
}

TEST_F(DatabaseTest, AFileThatIsReplacedOrAppearsLateIsOpenedAgain) {
  database_.Open(path_);
  SqliteDatabase backup(kCalls);
  backup.Open(folder_ / "backup");
  EXPECT_EQ(Do(backup, "add:restored keep:3=old keep:4=older open:" + folder_ / "closed"), "");
  EXPECT_EQ(Do(database_, "keep:1=a keep:2=b close:2 keep:4=mine add:before"), "");
  std::filesystem::rename(folder_ / "backup", path_);
  EXPECT_EQ(Do(database_, "keep:1=a"), "");
  EXPECT_EQ(Ask("SELECT group_concat(rowid || Ring, ' ') FROM OpenCalls"), "1a 3old 4mine");
  EXPECT_EQ(Do(database_, "add:after list:all"), "restored after ");
  std::filesystem::rename(path_, folder_ / "moved");
  EXPECT_EQ(Do(database_, "close:4 calls"), "1a0 ");
  EXPECT_THAT(reports_,
              ::testing::ElementsAre(EndsWith("was moved or replaced"), EndsWith("was moved or replaced")));

  const std::string late = folder_ / "disk/Calls";
  reports_.clear();
  EXPECT_EQ(Do(database_, "open:" + late + " add:lost keep:1=lost"), "!75 !5 !5 ");
  std::filesystem::create_directory(folder_ / "disk");
  EXPECT_EQ(Do(database_, "keep:1=lost add:a calls list:all"), "!5 a ");
  EXPECT_THAT(reports_, ::testing::ElementsAre(late + " is open again"));

  Ask("CREATE TABLE Other AS SELECT zeroblob(9999)", "moved");
  for (const char* step : {"", "keep:2=b"}) {  // the logs that a program leaves when it is killed
    Do(database_, step);
    PutFile(folder_ / "moved-wal", ContentOf(late + "-wal"));
    SqliteDatabase restored(kCalls);
    restored.Open(folder_ / "moved");
    EXPECT_EQ(Do(restored, "list:all") + Ask("SELECT count(*) FROM Other", "moved"), "restored after 1");
  }
}

TEST_F(DatabaseTest, ALockedFileOrAFullDiskIsAnErrorAndNothingIsChanged) {
  database_.Open(path_);
  EXPECT_EQ(Do(database_, "add:a keep:1=ring"), "");
  SqliteConnection other(path_);
  other.Execute("BEGIN IMMEDIATE");
  EXPECT_EQ(Do(database_, "end:1=b complete:1=b keep:1=b close:1 close:2 keep:1=ring"), "!70 !70 !70 !70 ");
  other.Execute("COMMIT");
  {
    const FileSizeLimit limit(400000);  // SQLite reports it as an I/O error (57); a full disk is 61
    EXPECT_THAT(Do(database_, "end:1=" + std::string(1U << 20U, 'x')), ::testing::AnyOf("!57 ", "!61 "));
  }
  EXPECT_EQ(Do(database_, "calls list:all end:1=b calls list:all"), "1ring0 a a b ");
  EXPECT_EQ(Ask("PRAGMA integrity_check"), "ok");
}

TEST_F(DatabaseTest, AFileThatIsNotADatabaseIsSetAsideWithItsLogAndReported) {
  for (const std::string letter : {"x", "y"}) {  // twice within a second: both are kept
    PutFile(path_, "no database " + letter);
    PutFile(path_ + "-wal", "log of " + letter);
    SqliteDatabase database(kCalls);
    EXPECT_THAT(database.Open(path_), HasSubstr("Calls.damaged-2"));
    EXPECT_EQ(Do(database, "add:a list:all"), "a ");
  }
  std::string kept;
  for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) kept += ContentOf(entry.path());
  for (const char* content : {"no database x", "no database y", "log of x", "log of y"})
    EXPECT_THAT(kept, HasSubstr(content));
}

TEST_F(DatabaseTest, DamageLosesOnlyTheCallsThatItHitsAndTheOthersStayInUse) {
  constexpr std::size_t kPage = 4096;
  struct Damage {
    const char* what;
    std::size_t at;         ///< the first byte that it changes
    std::size_t size;       ///< bytes that are overwritten; 0: one bit is flipped
    std::size_t most_lost;  ///< of 1000 calls; a page holds about 37
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
                         {"everything after the middle", 15 * kPage, 0, 700, true, true},
                         {"everything", 0, 0, 1000, true, true}};
  auto counted = kCalls;
  counted.counted = "Read";
  const OpenCall ringing{9, 7, {"ringing", "", "", "", "", ""}};
  for (const auto& [what, at, size, most_lost, while_open, cut_off] : damages) {
    SCOPED_TRACE(what);
    std::string note;
    const std::string path = folder_ / what;
    const auto take = [&note](const std::string& line) { note += line; };
    SqliteDatabase database(counted, take, take);
    SqliteDatabase(counted).Open(path);
    SqliteConnection(path).Execute(
        "INSERT INTO OpenCalls (rowid, Call_Name, Record) VALUES (9, 'ringing', 7);"
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
        "INSERT INTO Calls SELECT i, hex(randomblob(iif(i > 990, 500 * (i - 990), 45))), "
        "iif(i % 2, i * -400000000, 1 / i), iif(i % 3, i / 8.0, i % 2) FROM n");
    if (at > 0) {  // rows of other tables and deleted calls must not come back
      SqliteConnection(path).Execute(
          "CREATE TABLE Other AS SELECT * FROM Calls;"
          "INSERT INTO Calls SELECT * FROM Calls; DELETE FROM Calls WHERE rowid > 1000");
    }
    const auto stored = [&] {
      SqliteDatabase intact(counted);
      return intact.Open(path), intact.Query("Get *").records;
    }();
    if (while_open) database.Open(path), database.OpenCalls();
    std::string content = ContentOf(path);
    if (cut_off) content.resize(at);
    if (!cut_off && size == 0) content[at] = static_cast<char>(content[at] ^ 8);
    if (size > 0) content.replace(at, size, size, '\x5A');
    PutFile(path, content);  // in place, as the database may have the file open
    if (while_open && !cut_off) Ask("PRAGMA user_version = 7", what);  // makes it read the pages again
    if (!while_open) note = database.Open(path);

    Do(database, "add:1001");
    EXPECT_THAT(database.OpenCalls(), ::testing::ElementsAre(ringing));
    const auto saved = database.Query("Get *").records;
    std::int64_t before = 0;
    for (std::int32_t number = 1; number <= database.RecordCount(); ++number) {
      const auto identity = database.Identity(number);
      EXPECT_LT(std::exchange(before, identity), identity);
      if (identity > 1000) continue;
      EXPECT_EQ(saved[static_cast<std::size_t>(number) - 1], stored[static_cast<std::size_t>(identity) - 1]);
    }
    EXPECT_EQ(before, 1001) << "the new call is stored last";
    EXPECT_GE(saved.size() + most_lost, 1001U);
    EXPECT_EQ(SqliteDatabase(counted).Open(path), "") << "it is intact again";
    EXPECT_THAT(note, HasSubstr(while_open ? std::to_string(1001 - saved.size()) + " of 1000 calls are lost"
                                           : std::to_string(saved.size() - 1) + " calls could be read"));
  }
}

}  // namespace
}  // namespace orven::test
