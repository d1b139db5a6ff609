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

/// Whether `text` can be a mail address: at least six characters, one "@" with a "." somewhere after it, no
/// two dots in a row and none of the characters !#$%^&*()=+{}[]|\;:'"/?>,< and blank.
bool IsMailAddress(const std::string& text);

/// Entries of the two lists "Act with".
enum class ActWith { AllCalls = 0, MessagesOnly = 1 };

/// The state of every control of the actions dialog, by the controls' names.
struct ActionChoices {
  bool chkSendToMail = false;
  std::string txtSendToMail;
  std::string txtSMTP;
  std::string txtFromMail;
  ActWith cmbActMail = ActWith::AllCalls;
  std::string txtSMTPUser;
  std::string txtSMTPPass;    ///< never in any log
  bool chkSMTPSecure = true;  ///< log in to an encrypted server only
  bool chkApp = false;
  std::string txtAppTo;
  bool chkBGAPP = false;
  ActWith cmbActApp = ActWith::AllCalls;
};

/// The fields that OK checks.
enum class ActionField { txtSendToMail, txtSMTP, txtFromMail, txtAppTo };

/// The rules of the actions dialog: the mail and the program that follow a call. Failures are logged.
/// User-interface thread.
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

  /// `cmdParm`: lists the placeholders.
  void ShowParameters();

  /// `frmTest`: starts the program of `command` with made-up call details. Returns an error text for the
  /// user; empty on success.
  std::string Test(std::string command);

  /// `cmdOK`: checks and stores everything. On a wrong field it shows a message box, stores nothing and
  /// returns the field; otherwise returns nothing, and the dialog closes.
  std::optional<ActionField> Ok(const ActionChoices& choices);

 private:
  ActionChoices GetOptions();
  void PutReg(const ActionChoices& choices);
  std::string Value(const char* name);

  Parts parts_;
};

}  // namespace orven
