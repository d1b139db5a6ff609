// SPDX-License-Identifier: GPL-3.0-or-later
//
// Measures how many calls a second the whole engine handles on
// virtual time, on one core.
#include <ctime>
#include <random>

#include "measured.h"
#include "support/world.h"

namespace orven::bench {
namespace {

using namespace std::chrono_literals;

constexpr int kCalls = 1000;   // per measurement
constexpr int kOfAWorld = 50;  // calls per engine, so that neither log nor records grow long
constexpr int kMeasurements = 15;
constexpr double kAim = 5000;

/// A caller who speaks in sentences; an average call takes one minute.
void Call(test::World& world, std::mt19937& random) {
  world.CallAndWaitForRecording();
  const int sentences = std::uniform_int_distribution(5, 14)(random);
  for (int i = 0; i < sentences; ++i) {
    world.Talk();
    world.RunFor(4s);
    world.FallSilent();
    world.RunFor(1500ms);
  }
  world.HangUp();
  world.RunFor(2s);
}

/// Plays kCalls calls; returns their duration in virtual time.
std::chrono::milliseconds PlayCalls() {
  std::mt19937 random(2003);
  std::chrono::milliseconds virtual_time{0};
  for (int call = 0; call < kCalls;) {
    test::World world;
    world.registry.Set("MaxRec", "5");
    world.Start();
    const auto begin = world.time.Uptime();
    for (int i = 0; i < kOfAWorld; ++i, ++call) Call(world, random);
    virtual_time += world.time.Uptime() - begin;
  }
  return virtual_time;
}

/// CPU time, so that other programs on this core do not count.
void MeasureSimulation() {
  Times times;
  std::chrono::milliseconds virtual_time{0};
  for (int i = 0; i < kMeasurements; ++i) {
    const auto begin = std::clock();
    virtual_time = PlayCalls();
    times.push_back(1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
  }
  const auto rate = [](double milliseconds) { return kCalls / milliseconds * 1000; };
  std::printf("  simulated calls of %.1f virtual seconds   median %.0f a second   worst %.0f   (aim %.0f)\n",
              static_cast<double>(virtual_time.count()) / 1000 / kCalls, rate(Median(times)),
              rate(Worst(times)), kAim);
}

}  // namespace
}  // namespace orven::bench

int main() {
  orven::bench::MeasureSimulation();
}
