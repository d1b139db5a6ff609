// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/words.h"

namespace orven {

/// A mail server and the login there.
struct MailAccount {
  std::string server{};  ///< "name", "name:port", "smtp://…" or "smtps://…"
  std::string user{};    ///< empty: no login
  std::string password{};
  /// Whether a mail fails rather than being sent without encryption. Otherwise STARTTLS is used when the
  /// server offers it (an attacker on the network can remove that offer).
  bool require_encryption = false;
};

/// Events of the mail control, one mail after the other.
class MailEvents {
 public:
  virtual ~MailEvents() = default;

  /// `sent` of `total` bytes of the current mail have been sent; `total` may be 0 while it is unknown.
  virtual void Progress(std::int32_t total, std::int32_t sent) = 0;

  /// The server has accepted the mail to `recipient`.
  virtual void Done(const std::string& recipient) = 0;

  /// A try to send the mail to `recipient` has failed, for the reason in `description` (not a whole
  /// sentence). Whether the mail waits for another try or has failed for good is in the state.
  virtual void Error(const std::string& recipient, const Words& description) = 0;

  /// What State returns has changed.
  virtual void StateChanged() = 0;
};

/// What the mail control has not sent.
struct MailState {
  std::size_t waiting = 0;  ///< mails that are tried again later
  std::size_t failed = 0;   ///< mails that failed for good and are not acknowledged
  bool sending = false;     ///< a mail is being sent now
  Words reason{};  ///< why the latest try failed, not a whole sentence; only while mails wait or failed
};

/// The mail control (`Mail1`). User-interface thread; Send returns at once, events arrive later, never
/// inside it.
class MailControl {
 public:
  virtual ~MailControl() = default;

  /// The receiver of the events; it outlives the control's last event. nullptr: no receiver.
  virtual void SetEvents(MailEvents* events) = 0;

  /// Sends one mail with the lines of `text` and the file at `attachment` attached through the SMTP server
  /// `server` (as in MailAccount), after the mails before it. A file that does not exist (a call without a
  /// message) is not attached.
  ///
  /// A try that fails raises Error. If the reason may pass (no network, the server is silent or answers 4xx),
  /// the mail waits and is tried again with growing pauses for three days, and younger mails to the same
  /// server wait with it; a refused mail fails at once. A mail is kept on disk until it is sent: a later run
  /// of the program sends it, at least once, always with the same Message-ID. One that has failed for good
  /// stays there, too, and is not sent again.
  virtual void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
                    const std::string& recipient, const std::string& subject, const std::string& attachment,
                    const std::string& text) = 0;

  virtual MailState State() const = 0;

  /// Tries the mails that wait now: the settings have changed, or a person wants it.
  virtual void TryNow() = 0;

  /// A person knows of the failed mails: they do not count any more. Their files are kept.
  virtual void Acknowledge() = 0;
};

/// The result of a test, in whole sentences.
struct MailTestResult {
  bool passed = false;
  Words text;  ///< who has accepted it, or what is wrong and what can be done about it
};

/// Tests the settings for mail, stored or not, apart from the calls' mails: nothing of a test is kept or
/// repeated. User-interface thread; never waits for the network.
class MailTests {
 public:
  using Done = std::function<void(const MailTestResult&)>;
  /// A test in progress. Destroying it ends the test, and `done` is not called any more.
  using Test = std::shared_ptr<void>;

  virtual ~MailTests() = default;

  /// Sends a small mail at once. `done` is called once, later.
  [[nodiscard]] virtual Test SendTestMail(const MailAccount& account, const std::string& sender,
                                          const std::string& recipient, Done done) = 0;

  /// Connects to the server, with the encryption and the login that a mail would have, but sends none.
  /// `done` is called once, later.
  [[nodiscard]] virtual Test TryServer(const MailAccount& account, Done done) = 0;
};

}  // namespace orven
