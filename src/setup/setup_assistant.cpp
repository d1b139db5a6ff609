// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/setup_assistant.h"

#include <algorithm>
#include <utility>

#include "core/error_trap.h"

namespace orven {
namespace {

/// Fast enough for a registration to be seen at once.
constexpr std::chrono::milliseconds kLookAtLine{500};

/// The name of the line that the assistant made last.
constexpr const char* kOwnLine = "SetupLine";

/// Calls from programs on this computer, to try the machine without a telephone.
constexpr const char* kThisComputer = "127.0.0.1:5060";

/// The settings on page Away, beside those of the mail.
constexpr const char* kPassword = "Pass";
constexpr const char* kKeepAwake = "KeepAwake";

bool HasServer(TelephoneKind kind) {
  return kind == TelephoneKind::Router || kind == TelephoneKind::Account;
}

}  // namespace

SetupAssistant::SetupAssistant(Parts parts, SetupView& view)
    : parts_(std::move(parts)),
      view_(view),
      actions_(parts_.actions),
      own_call_(parts_.own_call, [this] { view_.ShowOwnCall(own_call_, own_call_.Obstacle()); }),
      tmrReady_(parts_.loop.MakeTimer([this] { ShowReady(); })) {}

SetupAssistant::~SetupAssistant() = default;

void SetupAssistant::Open(SetupPage page) {
  page_ = page;
  tmrReady_->Stop();
  ReadLines();
  if (page == SetupPage::Telephone) {
    const auto chosen = Chosen();
    const bool fresh =
        !chosen || (lines_->At(*chosen).name == kFirstLine && parts_.store.Value(kOwnLine) != kFirstLine);
    Choose(fresh ? TelephoneKind::Router : KindOf(lines_->At(*chosen)));
  }
  if (page == SetupPage::Greeting) view_.ShowGreeting(parts_.settings.Greeting);
  if (page == SetupPage::Away) {
    actions_.Load([this](const Choices& choices) { away_ = choices; });
    auto shown = away_;
    shown[kPassword] = parts_.settings.Pass;
    shown[kKeepAwake] = parts_.store.IsOn(kKeepAwake) ? "1" : "0";
    view_.ShowAway(shown);
  }
  view_.ShowPage(page);
  if (page != SetupPage::Ready) return;
  ShowReady();
  tmrReady_->Start(kLookAtLine);
}

void SetupAssistant::Turn(int pages) {
  StopGreeting();
  Open(static_cast<SetupPage>(static_cast<int>(page_) + pages));
}

void SetupAssistant::Next() {
  if (page_ == SetupPage::Telephone) return Test();
  if (page_ == SetupPage::Away && !StoreAway()) return;
  view_.ShowFound({}, false);
  parts_.steps.Finish(page_);
  Turn(1);
}

void SetupAssistant::Skip() {
  Typed();
  // Whoever passes by knows about the telephone: an empty list need not ask again.
  if (page_ == SetupPage::Telephone) parts_.steps.Finish(page_);
  Turn(1);
}

void SetupAssistant::Back() {
  Typed();
  Turn(-1);
}

void SetupAssistant::ReadLines() {
  lines_ = std::make_unique<LinesDialog>(parts_.lines);
}

TelephoneKind SetupAssistant::KindOf(const TelephoneLine& line) const {
  if (line.kind == LineKind::Modem) return TelephoneKind::Modem;
  if (line.kind == LineKind::Sim || line.server.empty()) return TelephoneKind::Try;
  return line.server == parts_.lines.lines.Router() ? TelephoneKind::Router : TelephoneKind::Account;
}

/// The line that is chosen now.
std::optional<std::size_t> SetupAssistant::Chosen() const {
  for (std::size_t i = 0; i < lines_->Count(); ++i) {
    if (lines_->At(i).name == parts_.settings.ModemName) return i;
  }
  return std::nullopt;
}

/// The line to change instead of making another one: what the assistant made last, or for a try any line
/// without an account.
std::optional<std::size_t> SetupAssistant::MadeBefore(TelephoneKind kind) const {
  const auto own = parts_.store.Value(kOwnLine);
  for (std::size_t i = 0; i < lines_->Count(); ++i) {
    const auto& line = lines_->At(i);
    const auto its = KindOf(line);
    if ((line.name == own || kind == TelephoneKind::Try) &&
        (its == kind || (HasServer(its) && HasServer(kind))))
      return i;
  }
  return std::nullopt;
}

/// Another line with the account of `line`: it was made in the options, or renamed there.
std::optional<std::size_t> SetupAssistant::SameAccount(const TelephoneLine& line) const {
  for (std::size_t i = 0; i < lines_->Count(); ++i) {
    const auto& other = lines_->At(i);
    if (i != index_ && !other.server.empty() && other.server == line.server && other.user == line.user)
      return i;
  }
  return std::nullopt;
}

TelephoneLine SetupAssistant::Fresh(TelephoneKind kind) const {
  auto line = lines_->NewLine();
  if (kind == TelephoneKind::Modem) {
    line.kind = LineKind::Modem;
    line.port = "auto";
  }
  if (kind == TelephoneKind::Router) line.server = parts_.lines.lines.Router();
  if (kind == TelephoneKind::Try) line.listen = kThisComputer;
  return line;
}

void SetupAssistant::Choose(TelephoneKind kind) {
  Typed();
  ReadLines();  // drops the line of the kind that was chosen before
  kind_ = kind;
  const auto before = MadeBefore(kind);
  index_ = before.value_or(lines_->Count());
  if (!before) lines_->Put(Fresh(kind), std::nullopt);
  ShowTelephone();
}

/// A line listens where it can.
void SetupAssistant::ShowTelephone() {
  auto line = lines_->At(index_);
  Words note;
  if (line.kind == LineKind::Sip) {
    const auto wanted = std::exchange(line.listen, parts_.lines.lines.FreeAddress(line.listen));
    if (line.listen != wanted)
      note = Words("Another program uses %1: calls will come in at %2.").Arg(wanted).Arg(line.listen);
    lines_->Put(line, index_);
  }
  view_.ShowTelephone(kind_, line, note);
}

void SetupAssistant::TakeTyped() {
  lines_->Put(view_.Typed(lines_->At(index_)), index_);
}

LinesDialog& SetupAssistant::More() {
  Typed();
  TakeTyped();
  return *lines_;
}

void SetupAssistant::MoreClosed() {
  const auto kind = KindOf(lines_->At(index_));
  if (HasServer(kind) != HasServer(kind_)) kind_ = kind;  // a router is an account, too
  ShowTelephone();
}

void SetupAssistant::Typed() {
  lines_->CancelTest();
  view_.ShowTesting(false);
  view_.ShowFound({}, false);
}

void SetupAssistant::Test() {
  Typed();
  TakeTyped();
  const auto line = lines_->At(index_);
  if (HasServer(kind_) && line.server.empty())
    return view_.ShowFound({false, Words("The server is missing: its name or address."), "txtServer"}, false);
  if (const auto same = SameAccount(line)) {
    auto other = lines_->At(*same);
    other.password = line.password;
    ReadLines();
    index_ = *same;
    lines_->Put(other, index_);
  }
  const auto& tested = lines_->At(index_);
  if (const auto fault = lines_->Check(tested, index_))
    return view_.ShowFound({false, fault->text, fault->control}, false);
  view_.ShowTesting(true);
  lines_->Test(tested, [this](const LineTestResult& result) { Tested(result); });
}

void SetupAssistant::Tested(const LineTestResult& result) {
  view_.ShowTesting(false);
  if (result.passed) Use();
  view_.ShowFound(result, !result.passed);
}

void SetupAssistant::UseAnyway() {
  view_.ShowFound({}, false);
  Use();
}

/// Stores the line, chooses and opens it, and turns the page. A box has told when it cannot be stored.
void SetupAssistant::Use() {
  const auto name = lines_->At(index_).name;
  const auto before = std::exchange(parts_.settings.ModemName, name);
  if (!lines_->Ok()) {
    parts_.settings.ModemName = before;
    return;
  }
  parts_.store.Set("ModemName", name);
  parts_.store.Set(kOwnLine, name);
  OpenChosen();
  parts_.steps.Finish(SetupPage::Telephone);
  Turn(1);
}

/// During a call, a line that is new has no device yet; it is opened when its device is made.
void SetupAssistant::OpenChosen() {
  const auto index = parts_.line.FindByName(parts_.settings.ModemName);
  if (index < 0) return;
  parts_.settings.Modem = index;
  parts_.store.Set("Modem", std::to_string(index));
  parts_.line.UseChosen();
}

void SetupAssistant::PlayGreeting() {
  parts_.sounds.PlayWave(parts_.library.PathOf(parts_.settings.Greeting));
}

void SetupAssistant::StopGreeting() {
  if (page_ == SetupPage::Greeting && parts_.player.IsPlaying()) parts_.player.Stop();
}

void SetupAssistant::MakeGreeting(CreatorTab tab) {
  StopGreeting();
  parts_.make_greeting(tab);
  view_.ShowGreeting(parts_.settings.Greeting);
}

/// False when a mail setting is wrong; a box has told which.
bool SetupAssistant::StoreAway() {
  const auto shown = view_.Away();
  parts_.settings.Pass = shown.Text(kPassword);
  StoreAlone(kPassword, shown);
  if (StoreAlone(kKeepAwake, shown)) parts_.keep_awake();
  const auto choices = MailChoices(shown);
  if (choices == away_) return true;
  const auto* wrong = actions_.Ok(choices);
  if (wrong != nullptr) view_.ShowWrong(*wrong);
  return wrong == nullptr;
}

/// Stores one setting, if it has changed.
bool SetupAssistant::StoreAlone(const char* setting, const Choices& choices) {
  const auto value = choices.Text(setting);
  if (parts_.store.Value(setting) == value) return false;
  parts_.store.Set(setting, value);
  return true;
}

/// The mail's settings with what the page does not show; the owner sends his mails to himself.
Choices SetupAssistant::MailChoices(Choices choices) const {
  for (const char* other : {kPassword, kKeepAwake}) choices.erase(other);
  choices.insert(away_.begin(), away_.end());
  if (choices.On("pMailTo") && !IsMailAddress(choices.Text("MailFrom")))
    choices["MailFrom"] = choices.Text("MailTo");
  return choices;
}

void SetupAssistant::TestMail() {
  view_.ShowFound({true, Words("Sending a test mail…")}, false);
  actions_.TestMail(MailChoices(view_.Away()), [this](const MailTestResult& result) {
    if (page_ == SetupPage::Away) view_.ShowFound({result.passed, result.text}, false);
  });
}

void SetupAssistant::ShowReady() {
  const auto chosen = Chosen();
  if (chosen) {
    const auto& line = lines_->At(*chosen);
    const auto row = lines_->RowAt(*chosen);
    const auto kind = KindOf(line);
    Words dial;
    if (kind == TelephoneKind::Router)
      dial = Words("To try it from another telephone at the router, dial %1.").Arg(line.user);
    if (kind == TelephoneKind::Account)
      dial = Words("To try it from another telephone, dial the number of the account %1.").Arg(line.user);
    const auto& trouble = parts_.line.Health().trouble;
    view_.ShowLine(Words("%1: %2").Arg(line.name).Arg(trouble.Empty() ? row.state : trouble), dial);
  } else {
    view_.ShowLine(Words("No telephone line is chosen."), {});
  }
  view_.ShowOwnCall(own_call_, own_call_.Obstacle());
}

void SetupAssistant::CallMeNow() {
  own_call_.Start();
}

}  // namespace orven
