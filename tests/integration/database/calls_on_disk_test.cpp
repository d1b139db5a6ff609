// SPDX-License-Identifier: GPL-3.0-or-later
// A whole answering machine whose records are on the disk: what happens to their file during a call costs
// nothing.
#include <gmock/gmock.h>
#include <sys/fsuid.h>

#include <optional>

#include "adapters/database/sqlite_database.h"
#include "support/scratch_folder.h"
#include "support/world.h"

namespace orven::test {
namespace {

namespace fs = std::filesystem;

/// The records' file, wherever the program says that it is.
struct RecordsOnDisk : SqliteDatabase {
  explicit RecordsOnDisk(std::string where)
      : SqliteDatabase({{"Calls", {kCallFields.begin(), kCallFields.end()}},
                        kRead,
                        {"OpenCalls", {kOpenCallFields.begin(), kOpenCallFields.end()}}}),
        path(std::move(where)) {}
  std::string Open(const std::string& /*path*/) override { return SqliteDatabase::Open(path); }
  const std::string path;
};

struct Fault {
  const char* name;
  bool only_at_start;
  std::function<void(const std::string&path)> happens, ends;
};

std::vector<Fault> Faults() {
  static std::optional<SqliteConnection> other;
  static std::optional<FileSizeLimit> limit;
  const auto nothing = [](const std::string&) {};
  const auto permit = [](const std::string& path, bool writing) {
    setfsuid(geteuid());
    fs::permissions(path, fs::perms(writing ? 0644 : 0444));
    fs::permissions(fs::path(path).parent_path(), fs::perms(writing ? 0755 : 0555));
    if (!writing) setfsuid(65534);  // root may write everywhere
  };
  return {
      {"moved", false, [](auto path) { fs::rename(path, path + ".away"); }, nothing},
      {"replaced", false, [](auto path) { fs::rename(path + ".backup", path); }, nothing},
      {"damaged", false, [](auto path) { PutFile(path, std::string(fs::file_size(path), 'Z')); }, nothing},
      {"locked", false, [](auto path) { other.emplace(path).Execute("BEGIN IMMEDIATE"); },
       [](auto) { other.reset(); }},
      {"full", false, [](auto) { limit.emplace(1); }, [](auto) { limit.reset(); }},
      {"read-only", true, [=](auto path) { permit(path, false); }, [=](auto path) { permit(path, true); }}};
}

TEST(CallsOnDisk, WhateverHappensToTheirFileACallIsFiledOnceWithItsMessage) {
  for (const auto& fault : Faults()) {
    for (int moment = 0; moment < (fault.only_at_start ? 1 : 4); ++moment) {
      for (const bool killed : {false, true}) {
        SCOPED_TRACE(fault.name + (" at moment " + std::to_string(moment)) + (killed ? ", killed" : ""));
        const ScratchFolder folder;
        RecordsOnDisk records(folder / "Calls");
        World world(&records);
        world.Start().Talk();
        fs::copy_file(records.path, records.path + ".backup");
        int now = 0;
        const auto reached = [&] {
          if (now++ != moment) return;
          if (fault.only_at_start) world.Crash();
          fault.happens(records.path);
          if (fault.only_at_start) world.Start();
        };
        reached();
        world.line->Offer();
        world.line->CallerId("Anna", "555");
        world.RunFor(10ms);
        reached();
        for (int ring = 0; ring < 2; ++ring) world.line->Ring(), world.RunFor(1s);
        world.time.RunUntil([&] { return world.Wave1.IsRecording(); }, 60s);
        reached();
        world.RunFor(2s);
        reached();
        if (!killed || moment == 3) world.HangUp();
        if (killed) world.Crash();
        fault.ends(records.path);
        if (killed) world.RunFor(60s), world.Start();
        world.RunFor(6s);

        SqliteConnection file(records.path);
        EXPECT_EQ(file.Ask("SELECT count(*) || max(Call_Name) FROM Calls"), "1Anna");
        EXPECT_EQ(file.Ask("SELECT count(*) FROM OpenCalls"), "0");
        const auto message = world.messages + file.Ask("SELECT Call_Massage_Name FROM Calls");
        EXPECT_EQ(world.Wave1.FileLength(message), std::stod(file.Ask("SELECT Type FROM Calls")));
        EXPECT_GT(world.Wave1.FileLength(message), 1.9);
        EXPECT_TRUE(world.files.List("/home/orven/", ".call-*").empty());
      }
    }
  }
}

}  // namespace
}  // namespace orven::test
