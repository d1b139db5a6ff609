// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "adapters/line/service/line_service.h"
#include "adapters/line/service/lines_file.h"
#include "adapters/line/setup/line_states.h"
#include "adapters/line/setup/line_test_run.h"
#include "platform/event_loop.h"
#include "platform/telephone_lines.h"

namespace orven {

/// The telephone lines of the file `lines.ini`. What is wrong in it stays there; one that is no text at all
/// is copied beside its place before it is replaced. User-interface thread.
class FileTelephoneLines final : public TelephoneLines {
 public:
  /// `path` is the file's; `states` are those of the lines that `service` has, device by device.
  FileTelephoneLines(std::string path, EventLoop& loop, const LineService& service, const LineStates& states)
      : path_(std::move(path)), service_(service), states_(states), tests_(loop) {}

  Configured Read() override;
  void Store(const std::vector<TelephoneLine>& lines) override;
  std::optional<LineFault> Check(const TelephoneLine& line) const override;
  std::vector<SerialPortFound> SerialPorts() const override;
  std::string State(const TelephoneLine& line) const override;
  void Test(const TelephoneLine& line, TestDone done) override;
  void CancelTest() override { tests_.Cancel(); }

 private:
  const LineSection* SectionAt(int head) const;
  LineSection SectionOf(const TelephoneLine& line) const;
  std::int32_t DeviceOf(const TelephoneLine& line) const;
  bool AnyOpen() const;
  std::vector<std::string> OpenAddresses() const;
  bool IsRegistered(const TelephoneLine& line) const;
  void SetAside() const;

  const std::string path_;
  const LineService& service_;
  const LineStates& states_;
  bool exists_ = false;  ///< as Read found it
  std::string text_;     ///< as Read found it
  LinesFile file_;       ///< as Read found it
  LineTestRun tests_;
};

}  // namespace orven
