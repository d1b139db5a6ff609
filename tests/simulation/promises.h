// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
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

  /// A step of the script is about to be carried out.
  void Before(const std::string& step);

  /// A step of the script was carried out.
  void After(const std::string& step);

  /// From here on nothing fails: the next call must be filed with its message.
  void ExpectWholeCall() { whole_ = true; }

  const std::vector<std::string>& Broken() const { return broken_; }
  const std::vector<std::string>& Log() const { return log_; }
  int Calls() const { return offered_; }

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
  void CheckStart();
  void CountFiled();
  void CheckFiling(int filed, bool message_only, bool could_be);
  void CheckRecord();
  void CheckMessage();
  void CheckMessages();
  void Hear(const std::string& path, std::string_view text);
  void CheckActions(std::size_t mails, std::size_t programs);
  void CountSilence();
  std::int64_t NextUnheard();
  void OwnerHears(const std::string& path);

  World& world_;
  CallSequence* program_;
  int offered_ = 0, idle_ = 0;
  std::size_t mails_ = 0, programs_ = 0;  ///< that calls have asked for
  int filed_ = 0;                         ///< records that were added at the end of a call
  int waiting_ = 0;                       ///< calls that could not be filed yet
  int refused_ = 0;                       ///< records that could not be written
  std::unique_ptr<Timer> second_;
  int silent_ = 0;            ///< seconds in which nothing happened on a connected call
  std::int64_t heard_ = 0;    ///< identity of the call whose message the owner heard last
  bool cut_short_ = false;    ///< the owner hung up or was hung up on, or a message cannot be played
  bool turned_ = false;       ///< the clock
  bool lost_ = false;         ///< records have been taken away
  bool journal_kept_ = true;  ///< all that was to be written to it
  bool stale_ = false;        ///< the list has not been made since then
  int refused_at_exit_ = 0;
  bool records_at_exit_ = false;  ///< they could be written
  bool whole_ = false;
  /// Before a start: what the next one has to file.
  struct Interrupted {
    bool call = false;
    int least = 0, most = 0;
    bool happens = false;
  };
  Interrupted interrupted_;
  bool unsure_ = false;                      ///< the program has ended while the disk or the records failed
  std::string date_, time_, name_, number_;  ///< the call's
  std::vector<std::string> log_;
  int written_before_ = 0;  ///< recordings that were files when the call came in
  std::vector<std::string> broken_;
};

}  // namespace orven::test
