// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

#include "support/world.h"

namespace orven::test {

/// Stands between the telephony control and the program, watches each call and says which of the
/// machine's promises were broken.
class Promises : public TelephonyEvents {
 public:
  explicit Promises(World& world);

  /// Looks at what the main window shows, at any moment.
  void CheckWindow();

  /// Everything is over: looks at the line, the timers and the log.
  void CheckEnd();

  const std::vector<std::string>& Broken() const { return broken_; }

  void InCommingCall(std::int32_t line, const CallInformation& call) override;
  void Idle(std::int32_t line) override;
  void Proc(std::int32_t line, std::int32_t request, std::int32_t result) override;
  void MonitorDigit(std::int32_t line, char digit) override;
  void Disconnected(std::int32_t line) override;
  void Connected(std::int32_t line) override;
  void Ring(std::int32_t line, std::int32_t count) override;
  void CallerID(std::int32_t line, const std::string& name, const std::string& number) override;

 private:
  void Expect(bool kept, const std::string& promise);
  void CheckQuiet();
  void CheckFiling(std::size_t filed, bool message_only);
  void CheckMessage();
  void CheckActions(std::size_t mails, std::size_t programs);

  World& world_;
  CallSequence& program_;
  int offered_ = 0, idle_ = 0;
  std::size_t mails_ = 0, programs_ = 0;  ///< that calls have asked for
  std::size_t waiting_ = 0;  ///< calls that could not be filed yet
  int written_before_ = 0;   ///< recordings that were files when the call came in
  std::vector<std::string> broken_;
};

}  // namespace orven::test
