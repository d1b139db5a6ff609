// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulation/story.h"

namespace orven::test {

/// Stands between the telephony control and the program, watches each call and says which of the
/// machine's promises were broken.
class Promises : public TelephonyEvents {
 public:
  explicit Promises(World& world);

  /// Carries out a step of the story and looks at what the main window shows.
  void Play(const Step& step);

  /// Everything is over: looks at the line, the timers and the log.
  void CheckEnd();

  std::vector<std::string> broken;  ///< promises, each with its time
  std::vector<std::string> log;     ///< the system log, in the order in which it was written
  int offered = 0;                  ///< calls
  bool whole = false;               ///< nothing fails any more: the next call must be filed with its message

  void InCommingCall(std::int32_t line, const CallInformation& call) override;
  void Idle(std::int32_t line) override;
  void Proc(std::int32_t line, std::int32_t request, std::int32_t result) override;
  void MonitorDigit(std::int32_t line, char digit) override;
  void Disconnected(std::int32_t line) override;
  void Connected(std::int32_t line) override { Program().Connected(line); }
  void Ring(std::int32_t line, std::int32_t count) override;
  void CallerID(std::int32_t line, const std::string& name, const std::string& number) override;

 private:
  CallSequence& Program() { return world_.Machine().sequence; }
  std::string Newest(std::string_view field) const;
  std::string Message(std::size_t record) const;
  bool RecordsWork() const { return !world_.database_full && !world_.database.gone; }
  void Expect(bool kept, const std::string& promise);
  void Restart(const Step& step);
  void CheckQuiet();
  void CountFiled();
  void CheckFiling(int filed, bool message_only, bool could_be);
  void CheckMessage();
  void CheckWindow();
  void Hear(const std::string& path, std::string_view text);
  void CheckActions(std::size_t mails, std::size_t programs);
  void CountSilence();
  std::size_t NextUnheard() const;
  void OwnerHears(const std::string& path);

  World& world_;
  int idle_ = 0;
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
  bool unsure_ = false;       ///< the program has ended while the disk or the records failed
  std::string date_, time_, name_, number_;  ///< the call's
  int written_before_ = 0;                   ///< recordings that were files when the call came in
};

/// What is wrong with a system log's steps: a step without the one it needs before it in the same
/// call, a step that stands twice, a fault line that nothing in the simulation explains. `records_lost`:
/// records have gone that the call list still shows.
std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines, bool records_lost);

}  // namespace orven::test
