// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "actions/actions_engine.h"
#include "core/activity_log.h"
#include "core/settings_store.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/mail.h"
#include "platform/shell.h"

namespace orven {

/// Whether `text` can be a mail address: at least six characters, one "@" with a "." somewhere after it, no
/// two dots in a row and none of the characters !#$%^&*()=+{}[]|\;:'"/?>,< and blank.
bool IsMailAddress(const std::string& text);

/// The mail account that is stored among the settings of the actions.
MailAccount StoredAccount(SettingsStore& store);

/// The rules of the actions dialog: the mail and the program that follow a call. Failures are logged.
/// User-interface thread.
class ActionsDialog {
 public:
  struct Parts {
    SettingsStore& store;
    SystemLog& log;
    Dialogs& dialogs;
    Shell& shell;
    const Clock& clock;
    MailControl& Mail1;
    MailTests& mail_tests;
    std::function<void()> saved;  ///< the main window reads the action settings again
  };

  explicit ActionsDialog(Parts parts) : parts_(std::move(parts)) {}

  /// Reads the stored settings and gives them to `show`.
  void Load(const std::function<void(const Choices&)>& show);

  /// `cmdParm`: lists the placeholders.
  void ShowParameters();

  /// `frmTest`: starts the program of `command` with made-up call details. Returns what failed;
  /// empty on success.
  Words Test(std::string command);

  /// What the window says about mails that wait or have failed; empty when there are none.
  Words MailProblem() const { return DescribeMails(parts_.Mail1.State()); }

  /// `cmdTestMail`: sends a mail with what is chosen, stored or not; `show` gets the result, unless the
  /// dialog is closed or tests again before.
  void TestMail(const Choices& choices, MailTests::Done show);

  /// `cmdOK`: checks and stores everything. On a wrong value it shows a message box, stores nothing and
  /// returns its setting's row; otherwise returns null, and the dialog closes.
  const SettingRow* Ok(const Choices& choices);

 private:
  Parts parts_;
  MailTests::Test test_;
};

}  // namespace orven
