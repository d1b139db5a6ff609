// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/program.h"

#include <QApplication>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <system_error>
#include <utility>

#include "actions/actions_dialog.h"
#include "adapters/desktop/application.h"
#include "adapters/desktop/installation.h"
#include "adapters/line/setup/line_devices.h"
#include "records/call.h"
#include "records/message_recovery.h"
#include "widgets/icons.h"
#include "widgets/translation.h"

namespace orven {
namespace {

/// The speech engine among the installed classes, the program that drives it, and the variable that gives it
/// the address of our socket.
constexpr const char* kSpeechEngine = "SAPI.SpVoice";
constexpr const char* kSpeechHelper = "TTS.exe";
constexpr const char* kChannelVariable = "ORVEN_CHANNEL";

/// Mails that are not sent yet.
constexpr const char* kOutbox = "\\Outbox";

/// What a test call says, among the assets.
constexpr const char* kSentence = "TestCall/Sentence.wav";

/// Each start makes this file, so a folder without it is new.
constexpr const char* kRecords = "\\Calls";

/// How long a second start waits for the first, which may be busy.
constexpr std::chrono::seconds kRaiseLimit{5};

/// What a second start asks the first: to show its window, perhaps with the desktop's token for that.
constexpr const char* kRaise = "raise";

/// Interval at which we check whether the call is over, while changed lines wait to be opened.
constexpr std::chrono::milliseconds kLookForIdleLine{500};

/// Ends the application's event loop, even before that has started, and those of open dialogs.
void EndEventLoops() {
  QCoreApplication::exit();
}

std::string InUsersLanguage(const Words& words) {
  return Shown(words).toStdString();
}

}  // namespace

Program::Program(Folders folders)
    : home_(folders.application),
      folders_(std::move(folders)),
      system_(folders_.application),
      loop_([this](const std::string& fault) { Report("A task failed: " + fault); }),
      dialogs_(&InUsersLanguage),
      background_(loop_),
      registry_file_(home_.Path("\\registry.reg"), [this](const std::string& text) { Report(text); }),
      autostart_(registry_file_, Autostart(), [this](const std::string& text) { Report(text); }),
      registry_(autostart_, {{kSpeechEngine, [this] { return SpeechInstalled(HelperPath()); }}}),
      database_(
          {{"Calls", {kCallFields.begin(), kCallFields.end()}},
           kRead,
           {"OpenCalls", {kOpenCallFields.begin(), kOpenCallFields.end()}}},
          [this](const std::string& text) { Report(text); },
          [this](const std::string& text) {
            Report(text);
            window_.TellOfLoss(text);
          }),
      lines_(loop_, MakeLines(),
             {[this] { return LineHasSound(); }, [this](const std::string& text) { Report(text); }}),
      configured_lines_(
          LinesPath(), loop_, [this](std::int32_t index) { return UseOf(index); }, line_states_),
      own_caller_(loop_, line_states_, folders_.application, folders_.assets.PathOf(kSentence)),
      cards_(loop_, ReportFromAnyThread()),
      line_devices_(lines_, cards_.Beside()),
      desk_devices_(lines_, cards_),
      line_wave_(loop_, line_devices_, home_.Path(kRescueFolder)),
      desk_wave_(loop_, desk_devices_, home_.Path(kRescueFolder)),
      waveforms_(loop_),
      take_waveforms_(loop_),
      uDat_(loop_),
      caller_view_(frame_),
      shell_({ProgramIcon(), OwnPicture(QStringLiteral("orven-off")),
              OwnPicture(QStringLiteral("orven-trouble"))},
             &InUsersLanguage),
      notifications_(&InUsersLanguage, HasDisplay()),
      caller_notice_(notifications_),
      colours_(HasDisplay()),
      sleep_([this](const std::string& text) { Report(text); }),
      mail_(
          loop_, clock_, home_.Path(kOutbox), [this] { return StoredAccount(window_.Machine().store); },
          [this](const std::string& text) { Report(text); }),
      mail_tests_(loop_, &InUsersLanguage),
      program_dialogs_(Ports(), [this] { cards_.Look(); }),
      window_(Ports(), frame_.Views(CallerWindow()), home_, system_, program_dialogs_, EndEventLoops),
      link_(folders_.application) {
  QApplication::setWindowIcon(frame_.windowIcon());
  window_.Machine().line.Listen([this](const LineHealth& line) { TellOfTrouble(line); });
  program_dialogs_.Attach(window_.Machine(), frame_);
  program_dialogs_.AttachCheckUp(own_caller_, [this] { return PortsForCheckUp(); });
  program_dialogs_.AttachLines(configured_lines_, [this] { return UseChangedLines(); });
  frame_.Attach(window_);
  caller_view_.SetClicks(&window_.Machine().caller_view);
  caller_notice_.SetClicks(&window_.Machine().caller_view);
  shell_.SetMenu(&frame_.TrayMenu());
  shell_.SetHelper(kSpeechHelper, [this] {
    return HelperStart{HelperPath(), {{kChannelVariable, uDat_.Listen()}}};
  });
  shell_.SetMouseHandler(
      [this](double x, double twips_per_pixel) { window_.TrayMouseMove(x, twips_per_pixel); });
  AnswerOtherStarts();
}

Program::~Program() = default;

EnginePorts Program::Ports() {
  return {clock_,         loop_,      files_,          background_,     registry_, dialogs_,
          shell_,         mouse_,     mail_,           mail_tests_,     database_, lines_,
          line_wave_,     desk_wave_, waveforms_,      take_waveforms_, uDat_,     cards_,
          notifications_, sleep_,     &InUsersLanguage};
}

/// No program can place a window on Wayland, or keep it on top without the focus.
CallerViewWindow& Program::CallerWindow() {
  if (OnWayland()) return caller_notice_;
  return caller_view_;
}

void Program::AnswerOtherStarts() {
  link_.On(kRaise, [this](const std::string& token, const InstanceLink::Answer& answer) {
    UseActivationToken(QString::fromStdString(token));
    window_.BringToFront();
    answer({});
  });
  link_.On(kCheck, [this](const std::string&, const InstanceLink::Answer& answer) { CheckForOther(answer); });
}

std::unique_ptr<CheckUpPorts> Program::PortsForCheckUp() {
  return std::make_unique<CheckUpPorts>(
      LinesPath(), loop_, [this](std::int32_t index) { return UseOf(index); }, line_states_);
}

void Program::CheckForOther(const InstanceLink::Answer& answer) {
  auto& check = checks_.emplace_back();
  check.ports = PortsForCheckUp();
  const auto changed = [this, &check, answer] {
    const auto& results = check.check_up->Results();
    if (!results.Finished() || std::exchange(check.answered, true)) return;
    answer({results.AnyBad() ? EXIT_FAILURE : EXIT_SUCCESS, results.Text()});
    loop_.Post(lifeline_.Bind([this] { checks_.remove_if([](const auto& one) { return one.answered; }); }));
  };
  check.check_up = std::make_unique<CheckUp>(
      window_.Machine().ForCheckUp(check.ports->lines, check.ports->reader), changed);
  check.check_up->Start();
}

std::string Program::HelperPath() const {
  return folders_.executable + "/TTS";
}

AutostartSource Program::Autostart() const {
  return {.file = AutostartFile(),
          .program = QApplication::applicationFilePath().toStdString(),
          .application_folder = folders_.application,
          .folder_by_environment = !qEnvironmentVariableIsEmpty("ORVEN_HOME")};
}

std::vector<TelephoneDevice> Program::MakeLines() {
  std::vector<std::string> problems;
  auto lines = MakeTelephoneLines(LinesPath(), loop_, clock_, problems, ReportFromAnyThread(), line_states_);
  for (const auto& problem : problems) Report(problem);
  return lines;
}

std::string Program::LinesPath() const {
  return home_.Path("\\lines.ini");
}

FileTelephoneLines::Use Program::UseOf(std::int32_t line) const {
  return {lines_.IsLineOpen(line), lines_.OpenFailureOf(line)};
}

bool Program::LineInUse() const {
  return lines_.HasCall() || LineHasSound();
}

bool Program::LineHasSound() const {
  return line_wave_.IsRecording() || line_wave_.IsPlaying();
}

/// Opens changed lines now (true) or when the call is over.
bool Program::UseChangedLines() {
  if (Ended()) return false;
  if (!LineInUse()) {
    window_.Machine().line.ReplaceDevices([this] { (void)lines_.Replace(MakeLines()); });
    return true;
  }
  if (!std::exchange(lines_wait_, true)) WaitForLines();
  return false;
}

std::function<void(const std::string&)> Program::ReportFromAnyThread() {
  return [this](const std::string& text) { loop_.Post(lifeline_.Bind([this, text] { Report(text); })); };
}

void Program::WaitForLines() {
  loop_.After(kLookForIdleLine, lifeline_.Bind([this] {
    if (LineInUse()) return WaitForLines();
    lines_wait_ = false;
    (void)UseChangedLines();
  }));
}

bool Program::Start(const std::string& command_line) {
  FirstStart first_start(registry_, system_, home_, FirstStartSources());
  bool fresh = false;
  EntryRoutine entry(system_, dialogs_, first_start, [&](bool first) {
    fresh = first && IsNewFolder();
    PrepareFolder(first);
  });
  // The box about the other program takes it from the environment.
  const auto token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN").toStdString();
  if (!entry.Run(command_line, window_)) {
    if (HasDisplay()) (void)AskRunningProgram(home_.Path(), kRaise + (' ' + token), kRaiseLimit);
    return false;
  }
  if (Ended()) return true;
  mail_.Resume();
  if (fresh && frame_.isVisible() && HasDisplay())
    loop_.Post(lifeline_.Bind([this] { window_.Commands().OpenDialog(Dialog::frmSetup); }));
  return true;
}

/// Nobody has set anything up here before.
bool Program::IsNewFolder() const {
  std::error_code none;
  return !std::filesystem::exists(home_.Path(kRecords), none) && !std::filesystem::exists(LinesPath(), none);
}

void Program::PrepareFolder(bool first_start) {
  prepared_ = true;
  const auto seeded = SeedApplicationFolder(home_.Path(), folders_.assets, first_start);
  for (const auto& problem : early_problems_) Report(problem);
  for (const auto& problem : seeded.problems) Report(problem);
  // Without the claim the link may be another program's.
  const auto claim = system_.ClaimProblem().empty() ? link_.Open() : system_.ClaimProblem();
  if (!claim.empty()) Report(claim);
  // The help's pictures would delay the start on a slow disk.
  auto help = std::make_shared<SeedReport>();
  background_.Run(
      [help, folder = home_.Path(), assets = folders_.assets] { *help = RefreshHelp(folder, assets); },
      [this, help](const std::exception_ptr&) {
        for (const auto& problem : help->problems) Report(problem);
      });
}

FirstStart::Sources Program::FirstStartSources() {
  FirstStart::Sources sources;
  sources.random = [](std::uint32_t bound) {
    std::random_device device;
    return std::uniform_int_distribution<std::uint32_t>(0, bound - 1)(device);
  };
  sources.announce_password = [this](const std::string& password) {
    std::cout << "ORVEN: the password for listening to the messages by telephone is " << password
              << std::endl;
    TellOfLostSettings();
  };
  return sources;
}

/// Records of calls without settings: this is not a first start, the settings have been lost.
void Program::TellOfLostSettings() {
  const auto& damaged = registry_file_.DamagedFile();
  std::error_code none;
  if (damaged.empty() && !std::filesystem::exists(home_.Path(kRecords), none)) return;
  const auto loss =
      damaged.empty()
          ? Words("The settings are missing: the installation's settings and a new password are used")
          : Words(
                "The settings could not be read and are kept as %1: the installation's settings and a new "
                "password are used")
                .Arg(damaged);
  Report(loss.English());
  window_.TellOfLoss(loss);
}

void Program::TellOfTrouble(const LineHealth& line) {
  if (!line.trouble.Empty()) std::cerr << "ORVEN: " << line.trouble.English() << std::endl;
  const bool told = std::exchange(trouble_told_, !line.trouble.Empty());
  if (told && !trouble_told_ && line.on) std::cerr << "ORVEN: Calls can come in again" << std::endl;
}

int Program::ExitCode() const {
  return window_.Machine().line.NeverOpened() ? EXIT_FAILURE : EXIT_SUCCESS;
}

void Program::Report(const std::string& problem) {
  // Nothing is written into the folder before it is claimed.
  if (!prepared_) {
    early_problems_.push_back(problem);
    return;
  }
  std::cerr << "ORVEN: " << problem << std::endl;
  window_.Machine().log.WriteSystem(problem);
}

}  // namespace orven
