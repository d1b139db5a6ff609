// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/line_test_run.h"

#include <exception>
#include <utility>

namespace orven {
namespace {

LineTestResult Outcome(const LineTestRun::Work& work, const std::atomic<bool>& cancelled) {
  try {
    return work(cancelled);
  } catch (const std::exception& error) {
    return {false, std::string("The test failed: ") + error.what()};
  }
}

}  // namespace

LineTestRun::~LineTestRun() {
  Cancel();
  Forget(false);
}

void LineTestRun::Start(Work work, TelephoneLines::TestDone done) {
  Cancel();
  Forget(true);
  const auto run = std::make_shared<Run>();
  run->thread.reset(QThread::create([this, run, work = std::move(work), done = std::move(done)] {
    const auto result = Outcome(work, run->cancelled);
    loop_.Post(lifeline_.Bind([run, done, result] {
      if (!run->cancelled) done(result);
    }));
    run->finished = true;
  }));
  run->thread->start();
  runs_.push_back(run);
}

void LineTestRun::Cancel() {
  for (const auto& run : runs_) run->cancelled = true;
}

void LineTestRun::Forget(bool finished_only) {
  std::erase_if(runs_, [finished_only](const std::shared_ptr<Run>& run) {
    if (finished_only && !run->finished) return false;
    run->thread->wait();
    run->thread.reset();  // its work holds the run
    return true;
  });
}

}  // namespace orven
