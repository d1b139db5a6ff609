// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/files/background_thread.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "adapters/files/disk_files.h"
#include "base/runtime_error.h"
#include "support/scratch_folder.h"
#include "support/test_loop.h"

namespace orven::test {
namespace {

TEST(BackgroundThread, WorksElsewhereInOrderAndTellsOfFailures) {
  orven::testing::TestLoop loop;
  BackgroundThread background(loop);
  const auto here = std::this_thread::get_id();
  std::vector<int> done;
  for (int piece = 0; piece < 3; ++piece) {
    background.Run(
        [here, piece] {
          EXPECT_NE(std::this_thread::get_id(), here);
          if (piece == 1) throw RuntimeError(ErrorNumber::DiskFull);
        },
        [&, piece](const std::exception_ptr& failure) { done.push_back(failure ? -piece : piece); });
  }
  EXPECT_TRUE(orven::testing::Eventually([&] {
    loop.Run();
    return done.size() == 3;
  }));
  EXPECT_EQ(done, (std::vector{0, -1, 2}));
}

TEST(BackgroundThread, ItsEndWaitsForWhatWasAskedFor) {
  const ScratchFolder folder;
  DiskFiles files;
  files.Append(folder / "message.wav", "sound");
  orven::testing::TestLoop loop;
  std::optional<BackgroundThread> background(std::in_place, loop);
  for (const char* name : {"one.wav", "two.wav"}) {
    background->Run([&files, &folder, name] { files.Copy(folder / "message.wav", folder / name); },
                    [](const std::exception_ptr&) { FAIL() << "nobody is there to be told"; });
  }
  background.reset();
  loop.Run();
  EXPECT_EQ(files.Read(folder / "two.wav"), "sound");
}

}  // namespace
}  // namespace orven::test
