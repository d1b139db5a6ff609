// SPDX-License-Identifier: GPL-3.0-or-later
// What a killed program leaves behind.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "integration/audio/sounds.h"
#include "integration/audio/test_loop.h"

namespace orven::testing {
namespace {

/// The recorder program, killed at the latest with this object.
class Recorder {
 public:
  explicit Recorder(std::string folder) {
    std::string program = ORVEN_RECORDER;
    char* arguments[] = {program.data(), folder.data(), nullptr};
    EXPECT_EQ(0, posix_spawn(&process_, program.c_str(), nullptr, nullptr, arguments, environ));
  }
  ~Recorder() { Kill(); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  void Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  pid_t process_ = 0;
};

TEST(Crash, AKilledProgramLeavesWhatItHasRecorded) {
  const TempFolder folder;
  std::size_t seen = 0;
  const auto grown = [&](std::size_t samples) {
    for (const std::string& name : folder.Names(".wav.part"))
      if (const auto content = ReadWithSndfile(folder / name)) seen = content->size();
    return seen >= samples;
  };
  for (std::size_t round = 0; round < 3; ++round) {
    seen = 0;
    Recorder recorder(folder.Path());
    ASSERT_TRUE(Eventually([&] { return grown(1); }));
    ASSERT_TRUE(Eventually([&] { return grown(seen + 1 + round * 1000); })) << "it does not grow on";
    recorder.Kill();
    const auto left = folder.Names();
    ASSERT_EQ(1U, left.size());
    const auto samples = ReadWithSox(folder / left[0]);
    ASSERT_TRUE(samples);
    EXPECT_GE(samples->size(), seen);
    for (std::size_t i = 0; i < samples->size(); ++i)
      ASSERT_EQ(i % 30000, static_cast<std::size_t>((*samples)[i]));
    std::filesystem::remove(folder / left[0]);
  }
}

}  // namespace
}  // namespace orven::testing
