// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulation/story.h"

namespace orven::test {

/// Receives the telephony events before the program, checks each call and lists the broken promises.
class Promises {
 public:
  explicit Promises(World& world);

  /// Plays a step of the story and checks the main window.
  void Play(const Step& step);

  /// Checks the line, the timers and the log after the last call.
  void CheckEnd();

  std::vector<std::string> broken;  ///< broken promises, each with its time
  std::vector<std::string> log;     ///< the system log in the order of writing
  int offered = 0;                  ///< number of offered calls
  bool whole = false;               ///< all faults are cleared: the next call must be filed with its message

 private:
  void Connect();
  void Handle(const LineEvent& event);
  void HandleIdle(const LineEvent& event);
  void HandleDigit(const LineEvent& event);
  void Pass(const LineEvent& event) { world_.Machine().sequence.Handle(event); }
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
  std::size_t mails_ = 0, programs_ = 0;  ///< number that calls requested
  int filed_ = 0;                         ///< number of added records at the last check
  int waiting_ = 0;                       ///< calls that could not be filed yet
  std::unique_ptr<Timer> second_;
  int silent_ = 0;                            ///< seconds without activity on a connected call
  std::int64_t heard_ = 0;                    ///< identity of the call whose message the owner last heard
  bool cut_short_ = false;                    ///< the owner's call was ended, or a message cannot be played
  bool turned_ = false;                       ///< the clock was changed
  bool lost_ = false;                         ///< the records' file was lost
  std::chrono::milliseconds lost_at_{-1000};  ///< when it was
  bool kept_ = true;                          ///< every step of an open call was kept
  bool stale_ = false;                        ///< the list has not been rebuilt since then
  bool unsure_ = false;                       ///< the program ended while the disk or the records failed
  std::string date_, time_, name_, number_;   ///< details of the current call
  int written_before_ = 0;                    ///< number of stored messages when the call came in
};

/// Checks the steps in a system log. Finds steps without the step they need earlier in the same call, steps
/// that appear twice, and error lines that no fault of the simulation explains. `records_lost`: the call
/// list still shows records that no longer exist.
std::vector<std::string> FaultsInLog(const std::vector<std::string>& lines, bool records_lost);

}  // namespace orven::test
