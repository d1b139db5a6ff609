// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "notify/status_panel.h"
#include "platform/event_loop.h"
#include "platform/mail.h"
#include "platform/shell.h"
#include "records/call.h"
#include "records/message_files.h"

namespace orven {

/// The details of a call that a command line may contain.
struct CallParameters {
  std::string name;
  std::string number;
  std::string time;
  std::string date;
  std::string message_path;
};

/// The details of a call in the environment of the user's program: ORVEN_NAME, ORVEN_NUMBER, ORVEN_DATE,
/// ORVEN_TIME, ORVEN_MESSAGE (`message`, a full path; empty without one) and ORVEN_LENGTH (whole seconds).
/// Each program gets all of them, so that none is left from another call.
Environment CallEnvironment(const CallParameters& call, const std::string& message, std::int32_t seconds);

/// Replaces "<NUMBER>", "<NAME>", "<MESSAGE_PATH>", "<DATE>" and "<TIME>" by their values, in this order and
/// only the first occurrence of each; a later placeholder in a value is replaced, too. Case-sensitive. The
/// result is written back to `text` and returned. A placeholder that begins after character 32767 throws
/// RuntimeError 6 ("Overflow"); earlier replacements stay.
std::string SubstituteParameters(std::string& text, const CallParameters& call);

/// What the window says about mails that wait or have failed, and why; empty when there are none.
Words DescribeMails(const MailState& state);

/// Shows that on the main window.
class MailView {
 public:
  virtual ~MailView() = default;
  virtual void ShowMail(const Words& text) noexcept = 0;
};

/// Runs the actions after a call: mails it and starts the user's program. Shows progress and failures in the
/// status bar and the system log. User-interface thread.
class ActionsEngine : public MailEvents {
 public:
  struct Ports {
    EventLoop& loop;
    MailControl& Mail1;
    Shell& shell;
    SystemLog& log;
    StatusPanel& status;
    MailView& mail_view;
    const MessageFolders& folders;
    Translation translation;  ///< of the mails' texts
  };

  /// `show_line_state` shows the line's state in the status bar again. The first call fills the command
  /// template in the settings; it stays filled until the settings are read again.
  ActionsEngine(Ports ports, Settings& settings, std::function<void()> show_line_state);
  ~ActionsEngine() override;
  ActionsEngine(const ActionsEngine&) = delete;
  ActionsEngine& operator=(const ActionsEngine&) = delete;

  /// Mails the call (`kind` "Mail") or starts the user's program ("App"), if the settings say so; anything
  /// else does nothing. Starting the program sets the call's sent-to-application flag.
  void DoActions(const std::string& kind, Call& call);

  void Progress(std::int32_t total, std::int32_t sent) override;
  void Done(const std::string& recipient) override;
  void Error(const std::string& recipient, const Words& description) override;
  void StateChanged() override;

 private:
  void SendMail(const Call& call);
  std::string MailText(const Call& call) const;
  void SendToApp(const Call& call);

  Ports ports_;
  Settings& settings_;
  std::function<void()> show_line_state_;
  std::uint64_t shown_ = 0;  ///< the status panel's count after the last progress
  Lifeline lifeline_;
};

}  // namespace orven
