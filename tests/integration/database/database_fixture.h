// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "adapters/database/sqlite_database.h"
#include "support/scratch_folder.h"

namespace orven::test {

inline const RecordSchema kCalls{
    "Calls", {"Call_Name", "Call_Number", "Call_Time", "Call_Date", "Call_Massage_Name", "Type", "Read"}};

/// Number of the error that `statement` fails with; 0 when it does not.
inline std::int32_t Failure(const std::function<void()>& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
    EXPECT_GT(std::string(error.what()).size(), 10U);
    return error.Number();
  }
  return 0;
}

inline void AddCall(DatabaseControl& database, const std::string& name) {
  database.AddNew();
  database.SetField("Call_Name", name);
  database.SetField("Read", 0);
  database.Update();
}

/// Names of all calls in stored order, with commas between.
inline std::string Names(DatabaseControl& database) {
  std::string names;
  for (const auto& record : database.Query("Get *").records) names += (names.empty() ? "" : ",") + record[0];
  return names;
}

/// A database in a folder of its own, not yet opened.
class DatabaseTest : public testing::Test {
 protected:
  void Open() { EXPECT_EQ(database_.Open(path_), ""); }

  /// Databases set aside, not counting the log files that belong to them.
  std::size_t SetAside() const {
    return folder_.Count("Calls.damaged-2") - CountEnding("-wal") - CountEnding("-shm");
  }

  ScratchFolder folder_;
  std::string path_ = folder_ / "Calls";
  std::vector<std::string> reports_;
  SqliteDatabase database_{kCalls, [this](const std::string& line) { reports_.push_back(line); }};

 private:
  std::size_t CountEnding(const std::string& end) const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "")) {
      const std::string name = entry.path().filename().string();
      count += name.starts_with("Calls.damaged-") && name.ends_with(end) ? 1U : 0U;
    }
    return count;
  }
};

}  // namespace orven::test
