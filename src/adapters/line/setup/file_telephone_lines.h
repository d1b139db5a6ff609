// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QThread>
#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/line/config/lines_ini.h"
#include "adapters/line/setup/line_devices.h"
#include "platform/event_loop.h"
#include "platform/telephone_lines.h"

namespace orven {

/// Runs the tests of lines in the background; only the latest one reports. User-interface thread.
class LineTestRun {
 public:
  /// Must look at `cancelled` at least a few times a second.
  using Work = std::function<LineTestResult(const std::atomic<bool>& cancelled)>;

  explicit LineTestRun(EventLoop& loop) : loop_(loop) {}
  LineTestRun(const LineTestRun&) = delete;
  LineTestRun& operator=(const LineTestRun&) = delete;

  /// Cancels, and waits for the threads: up to two seconds.
  ~LineTestRun();

  /// Cancels the running work and runs `work` on a thread. `done` is called on the user-interface thread
  /// unless Cancel is called first.
  void Start(Work work, TelephoneLines::TestDone done);

  /// Returns at once; the work ends by itself.
  void Cancel();

 private:
  struct Run {
    std::atomic<bool> cancelled = false;
    std::atomic<bool> finished = false;
    std::unique_ptr<QThread> thread;  ///< Qt's serial ports need one of Qt's threads
  };

  void Forget(bool finished_only);

  EventLoop& loop_;
  std::vector<std::shared_ptr<Run>> runs_;  ///< the latest one counts, the others are cancelled
  Lifeline lifeline_;
};

/// The telephone lines of the file `lines.ini`. Invalid parts of the file stay there; a file that is not text
/// is copied before it is replaced. User-interface thread.
class FileTelephoneLines final : public TelephoneLines {
 public:
  /// What the program does with a device.
  struct Use {
    bool open = false;
    std::string failure;  ///< why the latest opening failed; empty when it did not
  };

  /// `path` is the file's; `use` tells the use of the device with an index; `states` are those of all
  /// devices.
  FileTelephoneLines(std::string path, EventLoop& loop, std::function<Use(std::int32_t index)> use,
                     const LineStates& states)
      : path_(std::move(path)), use_(std::move(use)), states_(states), tests_(loop) {}

  Configured Read() override;
  void Store(const std::vector<TelephoneLine>& lines) override;
  std::optional<LineFault> Check(const TelephoneLine& line) const override;
  std::vector<SerialPortFound> SerialPorts() const override;
  std::string FreeAddress(const std::string& listen) const override;
  std::string Router() const override;
  Words State(const TelephoneLine& line) const override;
  void Test(const TelephoneLine& line, TestDone done) override;
  void CancelTest() override { tests_.Cancel(); }

 private:
  LineSection SectionOf(const TelephoneLine& line) const;
  std::int32_t DeviceOf(const TelephoneLine& line) const;
  bool IsOpen(std::size_t index) const { return use_(static_cast<std::int32_t>(index)).open; }
  bool AnyOpen() const;
  std::vector<std::string> OpenAddresses() const;
  LineTestRun::Work TestOf(const TelephoneLine& line) const;
  LineTestRun::Work SipTest(const TelephoneLine& line) const;
  bool HasOpenAccount(const SipLineSettings& settings) const;

  const std::string path_;
  const std::function<Use(std::int32_t index)> use_;
  const LineStates& states_;
  LinesFile file_;  ///< as Read found it
  LineTestRun tests_;
};

}  // namespace orven
