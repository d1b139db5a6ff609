// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>

#include "records/call.h"

namespace orven {

/// What the telephone line shows on the main window.
class LineView {
 public:
  virtual ~LineView() = default;
  /// First panel of the status bar.
  virtual void ShowStatus(const std::string& text) = 0;
  /// Shows the on/off button, and enables `mnuOn` or `mnuOff` to match. `trying`: the line is off and is
  /// opened as soon as possible; both are enabled then.
  virtual void ShowLine(bool on, bool trying) = 0;
};

/// The caller view window that announces a call at the top of the screen.
class CallerView {
 public:
  virtual ~CallerView() = default;
  virtual bool IsOpen() const = 0;
  /// Open, but sliding out.
  virtual bool IsClosing() const = 0;
  /// Closes it at once.
  virtual void Unload() = 0;
  /// Opens it, unless it is open. `speed` in twips a tick, `seconds` until it closes by itself.
  virtual void ViewCallViewer(bool animate, std::int16_t speed, bool auto_close, std::int16_t seconds) = 0;
  /// Shows the commands for a ringing call.
  virtual void ShowControl() = 0;
  /// The call was answered: hides "Answer Now".
  virtual void HideAnswer() = 0;
  /// Hides all commands: the call is over.
  virtual void HideControl() = 0;
  /// The call's state in a few words: "New Call".
  virtual void ShowMessage(const std::string& text) = 0;
  /// The number of rings: "Ring : 3".
  virtual void ShowRing(const std::string& text) = 0;
  /// Name, number, date, time and message of the call.
  virtual void ShowCall(const Call& call) = 0;
};

/// Plays sound files on the computer's sound card.
class EventSounds {
 public:
  virtual ~EventSounds() = default;
  /// Plays the file at `path` on the sound card, stopping what plays there.
  virtual void PlayWave(const std::string& path) = 0;
};

/// The icon in the notification area, as a finished call sees it.
class TrayBlinker {
 public:
  virtual ~TrayBlinker() = default;
  virtual void StartBlinking() = 0;
};

/// The mail and the program that follow a call.
class CallActions {
 public:
  virtual ~CallActions() = default;
  /// Mails the call (`kind` "Mail") or starts the user's program ("App"), if the settings say so. Starting
  /// the program sets the call's sent-to-application flag.
  virtual void DoActions(const std::string& kind, Call& call) = 0;
};

/// The first panel of the status bar. It counts the texts, so that a writer can check that its text is still
/// shown before clearing it. User-interface thread.
class StatusPanel : public LineView {
 public:
  explicit StatusPanel(LineView& view) : view_(view) {}

  void ShowStatus(const std::string& text) override {
    ++writings_;
    view_.ShowStatus(text);
  }
  void ShowLine(bool on, bool trying) override { view_.ShowLine(on, trying); }

  std::uint64_t Writings() const { return writings_; }

 private:
  LineView& view_;
  std::uint64_t writings_ = 0;
};

}  // namespace orven
