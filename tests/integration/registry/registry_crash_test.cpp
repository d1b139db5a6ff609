// SPDX-License-Identifier: GPL-3.0-or-later
// What a program that is killed while it stores settings leaves behind.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "integration/registry/registry_fixture.h"

namespace orven::test {
namespace {

using namespace std::chrono_literals;

/// Stores generation after generation, two values a time, until it is killed.
[[noreturn]] void StoreForEver(RegistryFile& registry, int generation) {
  for (;; ++generation) {
    const auto value = Text(std::to_string(generation) + std::string(9000, '.'));
    const std::vector<NamedRegistryValue> values{{"A", value}, {"B", value}};
    if (!registry.Write(RegistryRoot::LocalMachine, kKey, values)) ::_exit(1);
  }
}

TEST_F(RegistryFileTest, AKilledProgramLeavesTheOldSettingsOrTheNew) {
  int generation = 0;
  const auto stored = [&] {
    const auto value = Query("A");
    return value ? std::stoi(value->data) : 0;
  };
  for (int kills = 0; kills < 25; ++kills) {
    const pid_t child = ::fork();
    if (child == 0) StoreForEver(registry_, generation + 1);
    const int target = generation + 1 + kills % 4;
    const auto limit = std::chrono::steady_clock::now() + 20s;
    while (stored() < target && std::chrono::steady_clock::now() < limit) {
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ASSERT_GE(stored(), target);
    generation = stored();
    EXPECT_EQ(Query("A"), Query("B"));
    EXPECT_TRUE(reports_.empty()) << reports_[0];
  }
}

}  // namespace
}  // namespace orven::test
