// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/activity_log.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/registry.h"
#include "platform/shell.h"

namespace orven {

/// Whether `text` can be the address of a mail: six characters or more, one "@" with a "." somewhere
/// behind it, no two dots in a row, none of the characters that addresses on the Internet do without.
bool IsMailAddress(const std::string& text);

/// Entries of the two lists "Act with".
enum class ActWith { AllCalls = 0, MessagesOnly = 1 };

/// The state of every control of the actions dialog, under the controls' names.
struct ActionChoices {
  bool chkSendToMail = false;
  std::string txtSendToMail;
  std::string txtSMTP;
  std::string txtFromMail;
  ActWith cmbActMail = ActWith::AllCalls;
  std::string txtSMTPUser;
  std::string txtSMTPPass;    ///< never in any log
  bool chkSMTPSecure = true;  ///< the login is given to an encrypted server only
  bool chkApp = false;
  std::string txtAppTo;
  bool chkBGAPP = false;
  ActWith cmbActApp = ActWith::AllCalls;
};

/// A field that a check found wrong.
enum class ActionField { txtSendToMail, txtSMTP, txtFromMail, txtAppTo };

/// What the actions dialog does: the settings of what follows a call, by mail and by a program. Every
/// statement that fails is logged. User-interface thread.
class ActionsDialog {
 public:
  struct Parts {
    Registry& registry;
    SystemLog& log;
    Dialogs& dialogs;
    Shell& shell;
    const Clock& clock;
    std::function<void()> saved;  ///< the main window reads the action settings again
  };

  explicit ActionsDialog(Parts parts) : parts_(std::move(parts)) {}

  /// Reads the stored settings and gives them to `show`.
  void Load(const std::function<void(const ActionChoices&)>& show);

  /// `cmdParm`: tells the placeholders.
  void ShowParameters();

  /// `frmTest`: starts the program of `command` with the details of a call that never was. Returns
  /// what went wrong, in a form for people; empty when it was started.
  std::string Test(std::string command);

  /// `cmdOK`: the field that is wrong, after a box has said so and with nothing stored; or nothing, when
  /// all is stored and the dialog closes.
  std::optional<ActionField> Ok(const ActionChoices& choices);

 private:
  ActionChoices GetOptions();
  void PutReg(const ActionChoices& choices);
  std::string Value(const char* name);

  Parts parts_;
};

}  // namespace orven
