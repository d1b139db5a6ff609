// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/paths.h"
#include "checkup/check_results.h"
#include "core/settings.h"
#include "platform/audio_device.h"
#include "platform/clock.h"
#include "platform/database.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/mail.h"
#include "platform/telephone_lines.h"
#include "platform/wave.h"
#include "records/message_files.h"
#include "telephony/line_manager.h"

namespace orven {

/// Checks every link of the chain from a call to its message, in the background and all at once. Nothing that
/// the machine does is disturbed: no mail is sent, nothing is registered, no call is made. Destroying it ends
/// the checks. User-interface thread.
class CheckUp {
 public:
  struct Parts {
    EventLoop& loop;
    Background& background;
    const Clock& clock;
    Files& files;
    TelephoneLines& lines;   ///< this check-up's own
    WaveformReader& sounds;  ///< likewise
    SoundCardNames& cards;
    MailTests& mail;
    const MailControl& Mail1;
    SettingsStore& store;
    DatabaseControl& DataBase1;
    const LineManager& line;
    const MessageFolders& folders;
    const Settings& settings;
    const ApplicationFolder& home;
  };

  /// `changed` is called after each new result.
  CheckUp(Parts parts, std::function<void()> changed);
  ~CheckUp();
  CheckUp(const CheckUp&) = delete;
  CheckUp& operator=(const CheckUp&) = delete;

  /// Checks everything (again). After half a minute the links that are still being checked are bad.
  void Start();

  const CheckResults& Results() const { return results_; }

 private:
  /// A task of this round: later rounds drop it.
  EventLoop::Task Bind(EventLoop::Task task) const;
  void Set(CheckLink link, CheckResult result);
  void CheckLine();
  void TestLine();
  void TakeLineTest(const TelephoneLine& line, const LineTestResult& result);
  void CheckSounds();
  void CheckDisk();
  void CheckCard();
  void CheckMail();
  void CheckClock(Clock::WallTime written);
  void Expire();

  Parts parts_;
  std::function<void()> changed_;
  CheckResults results_;
  std::uint32_t round_ = 0;
  MailTests::Test mail_test_;
  Lifeline lifeline_;
};

}  // namespace orven
