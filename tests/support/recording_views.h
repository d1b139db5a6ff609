// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/audio_device.h"
#include "platform/data_exchange.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/mail.h"
#include "platform/notifications.h"
#include "platform/operating_system.h"
#include "platform/shell.h"
#include "platform/sleep_guard.h"
#include "platform/wave.h"
#include "shell/main_commands.h"
#include "shell/main_window_view.h"

namespace orven::test {

/// A caller view window that records the calls to it.
class RecordingCallerView : public CallerViewWindow {
 public:
  /// `effect` is called with "view", "view:New Call" and so on.
  explicit RecordingCallerView(std::function<void(const std::string&)> effect) : effect_(std::move(effect)) {}

  bool open = false;
  CallerCommands commands = CallerCommands::None;
  std::vector<std::int32_t> tops;
  std::string name, path, when;

  std::int32_t Height() const noexcept override { return 2850; }
  void MoveTo(std::int32_t top) noexcept override { tops.push_back(top); }
  void Load() noexcept override {
    open = true;
    commands = CallerCommands::All;
    effect_("view");
  }
  void Unload() noexcept override { open = false; }
  void ShowCommands(CallerCommands shown) noexcept override {
    if (commands != shown && shown == CallerCommands::None) effect_("view:no commands");
    commands = shown;
  }
  void ShowStatus(const Words& text) noexcept override { effect_("view:" + text.English()); }
  void ShowRing(const Words& text) noexcept override { effect_("view:" + text.English()); }
  void ShowCall(const Call& call) noexcept override {
    name = call.caller_name;
    when = call.date + call.time;
    path = call.message_path;
  }

 private:
  std::function<void(const std::string&)> effect_;
};

/// Collects the mails and calls the test's `on_send` for each.
class ScriptedMail : public MailControl {
 public:
  struct Mail {
    std::string server, sender, sender_name, recipient, subject, attachment, text;
    bool operator==(const Mail&) const = default;
  };
  std::vector<Mail> mails;
  MailEvents* events = nullptr;
  std::function<void(const Mail&)> on_send = [](const Mail&) {};
  MailState state;
  int tries_now = 0;
  MailState State() const override { return state; }
  void TryNow() override { ++tries_now; }
  void Acknowledge() override { state.failed = 0; }
  void SetEvents(MailEvents* owner) override { events = owner; }
  void Send(const std::string& server, const std::string& sender, const std::string& sender_name,
            const std::string& recipient, const std::string& subject, const std::string& attachment,
            const std::string& text) override {
    mails.push_back({server, sender, sender_name, recipient, subject, attachment, text});
    on_send(mails.back());
  }
};

/// Keeps what is to be tested; the test answers through `done` while `running` is set.
class ScriptedMailTests : public MailTests {
 public:
  MailAccount account;
  std::string sender, recipient;
  std::weak_ptr<void> running;
  Done done;
  Test SendTestMail(const MailAccount& at, const std::string& from, const std::string& to,
                    Done when_done) override {
    sender = from, recipient = to;
    return TryServer(at, std::move(when_done));
  }
  Test TryServer(const MailAccount& at, Done when_done) override {
    account = at, done = std::move(when_done);
    auto test = std::make_shared<int>(0);
    running = test;
    return test;
  }
};

/// All views of the main window in one. Shows nothing and records everything.
class RecordingViews : public LineView,
                       public MailView,
                       public QuickOptionBoxes,
                       public WindowFrame,
                       public CallListView,
                       public PlayerView {
 public:
  MainWindowViews All() { return {*this, *this, *this, *this, *this, *this, caller_view}; }

  // The line.
  bool line_on = false;
  const std::string& Status() const { return status_; }
  void ShowStatus(const Words& text) override { status_ = text.English(); }
  void ShowLine(bool on, bool /*trying*/) override { line_on = on; }
  std::string offer;  ///< the line that can be used instead
  void OfferChosen(const std::string& name, bool waits) override { offer = name + (waits ? " waits" : ""); }

  // The mails.
  std::string mails;
  void ShowMail(const Words& text) noexcept override { mails = text.English(); }

  // The quick options.
  std::vector<std::string> greetings;
  std::string selected_greeting;
  std::int16_t shown_rings = -1;
  bool shown_record = false;
  void ShowRings(std::int16_t count) noexcept override { shown_rings = count; }
  void FillGreetings(const std::vector<std::string>& names, const std::string& selected) noexcept override {
    greetings = names;
    selected_greeting = selected;
  }
  std::string SelectedGreeting() const noexcept override { return selected_greeting; }
  void ShowRecordMessage(bool on) noexcept override { shown_record = on; }

  // The window.
  WindowGeometry geometry{100, 200, 9000, 6000, 0};
  bool grid_lines = false, shown = false, in_front = false, minimised = false, others_closed = false;
  bool quick_toolbar = false;
  SetupOffers offers;
  int tray_menus = 0;
  std::uint32_t list_style = 0;
  mutable std::map<Toolbar, std::uint32_t> toolbar_styles;
  WindowGeometry Geometry() const override { return geometry; }
  void Place(const WindowGeometry& place) override { geometry = place; }
  std::uint32_t ToolbarStyle(Toolbar toolbar) const noexcept override { return toolbar_styles[toolbar]; }
  void SetToolbarStyle(Toolbar toolbar, std::uint32_t style) noexcept override {
    toolbar_styles[toolbar] = style;
  }
  void ShowQuickToolbar(bool on) noexcept override { quick_toolbar = on; }
  void ShowSetupOffers(const SetupOffers& shown_offers) noexcept override { offers = shown_offers; }
  bool GridLines() const noexcept override { return grid_lines; }
  void SetGridLines(bool on) noexcept override { grid_lines = on; }
  void SetListStyle(std::uint32_t mask, std::uint32_t style) noexcept override {
    list_style = (list_style & ~mask) | (style & mask);
  }
  std::uintptr_t Handle() const noexcept override { return 4711; }
  bool InFront() const noexcept override { return in_front; }
  void Show() noexcept override { shown = true; }
  void Hide() noexcept override { shown = false; }
  void Minimise() noexcept override { minimised = true; }
  void Restore() noexcept override {
    shown = true;
    minimised = false;
  }
  void PopUpTrayMenu() noexcept override { ++tray_menus; }
  void CloseOtherWindows() noexcept override { others_closed = true; }

  // The list, updated only by the calls to this view.
  const CallList* list = nullptr;
  std::vector<CallColumn> columns;
  std::vector<CallRow> rows;
  std::int32_t selection = 0;
  int rebuilds = 0;
  std::vector<bool> menus;  ///< for each menu: was it the one for a message
  void ShowColumns(const std::vector<CallColumn>& shown_columns) override { columns = shown_columns; }
  void ShowRowCount(std::int32_t count) override {
    ++rebuilds;
    rows.clear();
    ShowRowsInserted(count);
  }
  void ShowRowsInserted(std::int32_t count) override {
    for (std::int32_t row = count; row > 0; --row) rows.insert(rows.begin(), list->Row(row));
  }
  void ShowRowRemoved(std::int32_t index) override { rows.erase(rows.begin() + index - 1); }
  void ShowRowsChanged() override {
    for (std::int32_t row = 1; row <= list->Count(); ++row) rows.at(At(row)) = list->Row(row);
  }
  void ShowIcon(std::int32_t index, CallIcon icon) override { rows.at(At(index)).icon = icon; }
  CallRow ShownCall(std::int32_t index) const override {
    return At(index) < rows.size() ? rows[At(index)] : CallRow();
  }
  void ShowSelection(std::int32_t index) override { selection = index; }
  void EnsureVisible(std::int32_t /*index*/) override {}
  void PopUpMenu(bool message) override { menus.push_back(message); }

  // The player and the clock.
  bool slider_enabled = true;
  std::int32_t slider = -1;
  std::string clock;
  void EnableSlider(bool on) override { slider_enabled = on; }
  void ShowSlider(std::int32_t value) override { slider = value; }
  void ShowWaveform(const Waveform& /*picture*/) override {}
  void ShowProgress(std::chrono::milliseconds /*position*/, std::chrono::milliseconds /*length*/) override {}
  void ShowClock(const std::string& time, const std::string& date) noexcept override {
    clock = time + ' ' + date;
  }

  // The effects of a call in order: "view", "view:New Call", "sound:/…", "action:Mail".
  std::vector<std::string> effects;
  std::function<void(const std::string&)> on_effect = [](const std::string&) {};
  bool Had(const std::string& effect) const { return std::ranges::count(effects, effect) > 0; }
  RecordingCallerView caller_view{[this](const std::string& effect) { Effect(effect); }};
  void Effect(const std::string& effect) {
    effects.push_back(effect);
    on_effect(effect);
  }

 private:
  std::string status_;
  static std::size_t At(std::int32_t index) { return static_cast<std::size_t>(index) - 1; }
};

/// A desktop with a notification area that has room for one icon.
class ScriptedShell : public Shell {
 public:
  bool notification_area = true;
  NotifyIconData icon;
  std::vector<NotifyRequest> requests;
  std::vector<std::string> opened;
  bool NotifyIcon(NotifyRequest request, const NotifyIconData& data) override {
    const bool done = (request == NotifyRequest::Add) == requests.empty();
    requests.push_back(request);
    if (done) icon = data;
    return done;
  }
  bool HasNotificationArea() const override { return notification_area; }
  bool opens = true;
  bool Open(const std::string& target) override {
    opened.push_back(target);
    return opens;
  }
  /// Started commands with their window styles.
  std::vector<std::pair<std::string, std::int32_t>> started;
  std::function<void()> before_start = [] {};
  std::size_t attempts = 0;  ///< attempts to start a command
  Environment environment;   ///< of the latest command
  void Run(const std::string& command, std::int32_t window_style, const Environment& added) override {
    ++attempts;
    before_start();
    started.emplace_back(command, window_style);
    environment = added;
  }
};

/// A desktop that shows every notification until it is withdrawn or a test presses a button.
class RecordingNotifications : public Notifications {
 public:
  std::map<Id, Notification> shown;
  std::vector<std::string> history;  ///< every one that was shown, as "title|text|button|…"
  std::int32_t unread = 0;
  Id Show(Notification notification, Id replaces) override {
    auto line = notification.title.English() + '|' + notification.text.English();
    for (const auto& button : notification.buttons) line += '|' + button.caption.English();
    history.push_back(line);
    const Id id = shown.contains(replaces) ? replaces : ++last_;
    shown[id] = std::move(notification);
    return id;
  }
  void Withdraw(Id id) override { shown.erase(id); }
  void ShowUnread(std::int32_t count) override { unread = count; }

  /// Presses a button of the newest notification.
  void Press(std::size_t button) {
    const auto newest = std::prev(shown.end());
    const auto press = newest->second.buttons.at(button).press;
    shown.erase(newest);
    press();
  }

 private:
  Id last_ = 0;
};

class RecordingSleepGuard : public SleepGuard {
 public:
  bool held = false;
  void Hold(bool awake) override { held = awake; }
};

/// Sound cards with the names that the test sets.
class ScriptedCards : public SoundCardNames {
 public:
  std::vector<std::string> names{"Default output"};
  std::vector<std::string> Names() override { return names; }
};

class ScriptedMouse : public Mouse {
 public:
  bool swapped = false;
  std::vector<MouseKey> down;
  bool ButtonsSwapped() const override { return swapped; }
  bool IsDown(MouseKey button) const override { return std::ranges::count(down, button) > 0; }
};

/// Reads no file. The test calls `done` when a waveform is ready.
class ScriptedWaveforms : public WaveformReader {
 public:
  std::string path;
  Done done;
  void Request(const std::string& file, Done when_done) override {
    path = file;
    done = std::move(when_done);
  }
  void Cancel() override { path.clear(); }
};

/// Does the work immediately and reports completion later.
class PostedBackground : public Background {
 public:
  explicit PostedBackground(EventLoop& loop) : loop_(loop) {}
  std::chrono::milliseconds takes{0};  ///< delay before completion is reported
  void Run(Work work, Done done) override {
    std::exception_ptr failure;
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    loop_.After(takes, [done = std::move(done), failure] { done(failure); });
  }

 private:
  EventLoop& loop_;
};

class RecordingDialogFactory : public DialogFactory {
 public:
  std::vector<std::pair<Dialog, int>> opened;
  void Open(Dialog dialog, int tab) override { opened.emplace_back(dialog, tab); }
};

/// Answers every dialog as the test has set, and records the texts.
class ScriptedDialogs : public Dialogs {
 public:
  std::vector<std::string> messages, informations;
  std::optional<std::string> chosen;  ///< the file or folder chosen in the next dialogs
  std::vector<std::string> chooser;   ///< title, filter and name of the latest file dialog
  void Message(const Words& text) override { messages.push_back(text.English()); }
  std::function<void()> while_open = [] {};
  void Information(const Words& text) override {
    informations.push_back(text.English());
    while_open();
  }
  bool yes = false;
  std::vector<std::string> questions;
  bool Confirm(const Words& text, QuestionIcon /*icon*/) override {
    questions.push_back(text.English());
    while_open();
    return yes;
  }
  std::optional<std::string> SaveAs(const Words& title, const std::string& filter,
                                    const std::string& name) override {
    chooser = {title.English(), filter, name};
    return chosen;
  }
  std::string BrowseFolder(const Words& title, const std::string& /*present*/) override {
    chooser = {title.English()};
    return chosen.value_or("");
  }
  std::optional<std::string> OpenFile(const Words& title, const std::string& filter) override {
    chooser = {title.English(), filter};
    return chosen;
  }
};

/// A speech helper that accepts every message and sends what the test passes to Say.
class ScriptedExchange : public DataExchange {
 public:
  std::vector<std::string> sent;
  std::vector<std::int32_t> checked;  ///< the argument of every OpenCheck
  bool up = true;
  bool takes = true;  ///< the helper accepts messages
  bool closed = false;
  std::function<void()> while_waiting = [] {};  ///< called once, during the next OpenCheck
  std::function<void(const std::string&)> on_message = [](const std::string&) {};

  void Say(const std::string& text) {
    if (events_ != nullptr) events_->DataArrival(text);
  }
  void Die() {
    up = false;
    if (events_ != nullptr) events_->LinkLost();
  }

  void SetEvents(DataExchangeEvents* events) override { events_ = events; }
  bool OpenCheck(std::int32_t seconds) override {
    checked.push_back(seconds);
    std::exchange(while_waiting, [] {})();
    return up;
  }
  bool Send(const std::string& text) override {
    if (!up || !takes) return false;
    sent.push_back(text);
    on_message(text);
    return true;
  }
  void Close() override {
    closed = true;
    up = false;
  }

 private:
  DataExchangeEvents* events_ = nullptr;
};

class ScriptedSystem : public OperatingSystem {
 public:
  SystemVersion version;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> common_controls;
  SystemVersion Version() const override { return version; }
  bool InitCommonControls(std::uint32_t size, std::uint32_t classes) override {
    common_controls.emplace_back(size, classes);
    return false;
  }
  bool ClaimInstance() override { return true; }
};

/// What both the simulated world and the real windows of the tests get instead of a desktop.
struct ScriptedPorts {
  ScriptedDialogs dialogs;
  ScriptedSystem system;
  ScriptedShell shell;
  ScriptedMouse mouse;
  ScriptedMail Mail1;
  ScriptedMailTests mail_tests;
  ScriptedExchange uDat;
  ScriptedCards cards;
  RecordingNotifications notifications;
  RecordingSleepGuard sleep;
  RecordingDialogFactory dialog_factory;
};

}  // namespace orven::test
