// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "actions/actions_dialog.h"
#include "base/words.h"
#include "checkup/own_call.h"
#include "core/settings.h"
#include "core/settings_store.h"
#include "greetings/greeting_creator.h"
#include "greetings/greeting_library.h"
#include "notify/desk_sounds.h"
#include "options/lines_dialog.h"
#include "platform/event_loop.h"
#include "platform/telephone_lines.h"
#include "setup/setup_steps.h"
#include "telephony/line_manager.h"

namespace orven {

/// How a person has his telephone.
enum class TelephoneKind : std::uint8_t { Router, Account, Modem, Try };

/// The window of the set-up assistant as the engine sees it. Setting a control calls nothing back.
class SetupView {
 public:
  virtual ~SetupView() = default;

  virtual void ShowPage(SetupPage page) noexcept = 0;

  /// Page Telephone: selects the kind and shows the fields of `line` that it has, and a note, which may be
  /// empty.
  virtual void ShowTelephone(TelephoneKind kind, const TelephoneLine& line, const Words& note) noexcept = 0;
  /// `line` with what is typed in its fields now.
  virtual TelephoneLine Typed(TelephoneLine line) const noexcept = 0;
  /// A line is being tested: nothing but going on without it is offered.
  virtual void ShowTesting(bool testing) noexcept = 0;
  /// What is wrong with the line, or what its test has found; empty: nothing. Gives the focus to its control,
  /// if that is on the page. `usable`: the line may be used although it has failed.
  virtual void ShowFound(const LineTestResult& found, bool usable) noexcept = 0;

  /// Page Greeting.
  virtual void ShowGreeting(const std::string& name) noexcept = 0;

  /// Page Away: the values of its settings' rows.
  virtual void ShowAway(const Choices& choices) noexcept = 0;
  virtual Choices Away() const noexcept = 0;
  /// Gives the focus to the control of a wrong value.
  virtual void ShowWrong(const SettingRow& row) noexcept = 0;

  /// Page Ready: how the line is, and the number to dial, which may be empty.
  virtual void ShowLine(const Words& state, const Words& dial) noexcept = 0;
  /// The steps of the own call; `obstacle` says why none can be made now, or is empty.
  virtual void ShowOwnCall(const OwnCall& call, const Words& obstacle) noexcept = 0;
};

/// The set-up assistant: four pages from a fresh installation to an answered call. Each stores what was
/// chosen on it as soon as it is left by Next; each can be skipped. User-interface thread.
class SetupAssistant {
 public:
  struct Parts {
    EventLoop& loop;
    LinesDialog::Parts lines;
    ActionsDialog::Parts actions;
    SettingsStore& store;
    Settings& settings;
    SetupSteps& steps;
    LineManager& line;
    const GreetingLibrary& library;
    DeskSounds& sounds;
    MessagePlayer& player;
    /// Opens the greeting creator on a tab until it is closed.
    std::function<void(CreatorTab tab)> make_greeting;
    OwnCall::Parts own_call;
    std::function<void()> keep_awake;  ///< the setting `KeepAwake` has changed
  };

  SetupAssistant(Parts parts, SetupView& view);
  /// Cancels a test and an own call in progress.
  ~SetupAssistant();
  SetupAssistant(const SetupAssistant&) = delete;
  SetupAssistant& operator=(const SetupAssistant&) = delete;

  /// Shows a page with what is in use now.
  void Open(SetupPage page);

  /// Finishes the page and shows the next one. Page Telephone tests its line first; the line is stored,
  /// chosen and opened when it passes. A wrong value keeps the page.
  void Next();

  /// Leaves the page as it is in the machine.
  void Skip();
  void Back();

  /// Page Telephone: another kind of telephone was chosen.
  void Choose(TelephoneKind kind);
  /// Something was typed: what was found is no longer about it.
  void Typed();
  /// Uses the line although its test has failed: its server may only be away.
  void UseAnyway();
  /// The line for the window with all its fields. It may put another one there; MoreClosed takes that over.
  LinesDialog& More();
  std::size_t LineIndex() const { return index_; }
  void MoreClosed();

  /// Page Greeting.
  void PlayGreeting();
  void StopGreeting();
  void MakeGreeting(CreatorTab tab);

  /// Page Away: sends a mail with what is typed.
  void TestMail();

  /// Page Ready.
  void CallMeNow();

 private:
  void Turn(int pages);
  void ReadLines();
  std::optional<std::size_t> MadeBefore(TelephoneKind kind) const;
  std::optional<std::size_t> SameAccount(const TelephoneLine& line) const;
  TelephoneLine Fresh(TelephoneKind kind) const;
  TelephoneKind KindOf(const TelephoneLine& line) const;
  std::optional<std::size_t> Chosen() const;
  void ShowTelephone();
  void TakeTyped();
  void Test();
  void Tested(const LineTestResult& result);
  void Use();
  void OpenChosen();
  bool StoreAway();
  bool StoreAlone(const char* setting, const Choices& choices);
  Choices MailChoices(Choices choices) const;
  void ShowReady();

  Parts parts_;
  SetupView& view_;
  ActionsDialog actions_;
  OwnCall own_call_;
  std::unique_ptr<LinesDialog> lines_;
  std::unique_ptr<Timer> tmrReady_;  ///< follows the line while page Ready is shown
  SetupPage page_ = SetupPage::Telephone;
  TelephoneKind kind_ = TelephoneKind::Router;
  std::size_t index_ = 0;  ///< of the line on page Telephone, in lines_
  Choices away_;           ///< as page Away showed them
};

}  // namespace orven
