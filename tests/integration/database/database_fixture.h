// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "adapters/database/sqlite_database.h"
#include "support/scratch_folder.h"

namespace orven::test {

inline const RecordSchema kCalls{"Calls", {"Call_Name", "Call_Number", "Type", "Read"}};

/// Number of the error that `statement` fails with; 0 when it does not.
inline std::int32_t Failure(const std::function<void()>& statement) {
  try {
    statement();
  } catch (const RuntimeError& error) {
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

  ScratchFolder folder_;
  std::string path_ = folder_ / "Calls";
  std::vector<std::string> reports_;
  SqliteDatabase database_{kCalls, [this](const std::string& line) { reports_.push_back(line); }};
};

}  // namespace orven::test
