// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/activity_log.h"
#include "core/settings.h"
#include "platform/event_loop.h"
#include "platform/mail.h"
#include "platform/shell.h"
#include "records/call.h"
#include "records/message_files.h"
#include "telephony/call_effects.h"

namespace orven {

/// What a command line may tell of a call.
struct CallParameters {
  std::string name;
  std::string number;
  std::string time;
  std::string date;
  std::string message_path;
};

/// Puts the values in place of "<NUMBER>", "<NAME>", "<MESSAGE_PATH>", "<DATE>" and "<TIME>", in this
/// order and of each the first occurrence only; a value that holds a later placeholder is filled in its
/// turn. Letter case counts. The result is written back into `text`, and returned. A placeholder that
/// begins beyond character 32767 throws RuntimeError 6 ("Overflow"); what was filled before stays.
std::string SubstituteParameters(std::string& text, const CallParameters& call);

/// What the program does with a call that is over: mails it and starts the user's program. It says how
/// that goes in the status bar and in the system log. User-interface thread.
class ActionsEngine : public CallActions, public MailEvents {
 public:
  struct Ports {
    EventLoop& loop;
    MailControl& Mail1;
    Shell& shell;
    SystemLog& log;
    StatusPanel& status;
    const MessageFolders& folders;
  };

  /// `show_line_state` shows the line's state in the status bar again. The settings' command template
  /// is filled by the first call and stays so until the settings are read again.
  ActionsEngine(Ports ports, Settings& settings, std::function<void()> show_line_state);
  ~ActionsEngine() override;
  ActionsEngine(const ActionsEngine&) = delete;
  ActionsEngine& operator=(const ActionsEngine&) = delete;

  /// `kind` is "Mail" or "App"; anything else does nothing.
  void DoActions(const std::string& kind, Call& call) override;

  void Progress(std::int32_t total, std::int32_t sent) override;
  void Done(const std::string& recipient) override;
  void Error(const std::string& recipient, const std::string& description) override;

 private:
  void SendMail(const Call& call);
  void SendToApp(const Call& call);

  Ports ports_;
  Settings& settings_;
  std::function<void()> show_line_state_;
  std::uint64_t shown_ = 0;  ///< the status panel's count after the latest progress
  Lifeline lifeline_;
};

}  // namespace orven
