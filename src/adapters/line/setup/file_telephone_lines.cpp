// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/file_telephone_lines.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/config/lines_ini.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/setup/free_address.h"
#include "adapters/line/setup/modem_probe.h"
#include "adapters/line/setup/sip_probe.h"
#include "adapters/line/sim/sim_script.h"
#include "base/conversions.h"
#include "base/durable_file.h"
#include "base/runtime_error.h"
#include "base/unicode.h"

namespace orven {
namespace {

LineTestResult Outcome(const LineTestRun::Work& work, const std::atomic<bool>& cancelled) {
  try {
    return work(cancelled);
  } catch (const std::exception& error) {
    return {false, Words("The test failed: %1.").Arg(ReasonOf(error))};
  }
}

}  // namespace

LineTestRun::~LineTestRun() {
  Cancel();
  Forget(false);
}

void LineTestRun::Start(Work work, TelephoneLines::TestDone done) {
  Cancel();
  Forget(true);
  const auto run = std::make_shared<Run>();
  run->thread.reset(QThread::create([this, run, work = std::move(work), done = std::move(done)] {
    const auto result = Outcome(work, run->cancelled);
    loop_.Post(lifeline_.Bind([run, done, result] {
      if (!run->cancelled) done(result);
    }));
    run->finished = true;
  }));
  run->thread->start();
  runs_.push_back(run);
}

void LineTestRun::Cancel() {
  for (const auto& run : runs_) run->cancelled = true;
}

void LineTestRun::Forget(bool finished_only) {
  std::erase_if(runs_, [finished_only](const std::shared_ptr<Run>& run) {
    if (finished_only && !run->finished) return false;
    run->thread->wait();
    run->thread.reset();  // its work holds the run
    return true;
  });
}

namespace {

/// The file holds passwords.
constexpr unsigned kOwnerOnly = 0600;

constexpr const char* kNewFile = "; The telephone lines, one section each, in this order.\n";

bool FileExists(const std::string& path) {
  std::error_code error;
  return std::filesystem::status(path, error).type() != std::filesystem::file_type::not_found;
}

/// The whole file; empty if there is none.
std::string ContentOf(const std::string& path) {
  if (!FileExists(path)) return "";
  Descriptor file(path, O_RDONLY | O_NONBLOCK);
  std::string content;
  for (std::string part = file.Read(); !part.empty(); part = file.Read()) content += part;
  return content;
}

/// `several`: the line has more than one account.
Words RegistrationWords(const RegistrationNews& news, bool several) {
  switch (news.state) {
    case RegistrationNews::State::Trying: return Words("Registering");
    case RegistrationNews::State::Registered: return Words("Registered");
    default: break;
  }
  if (several) return Words("Registration failed: %1: %2").Arg(news.account).Arg(news.reason);
  return Words("Registration failed: %1").Arg(news.reason);
}

LineTestResult ReadScript(const std::string& path) {
  if (path.empty()) return {true, Words("The simulated line has no script: nobody calls.")};
  std::vector<std::string> complaints;
  const auto steps = ToCount(ReadSimScript(path, complaints).size());
  if (complaints.empty()) return {true, Words("The script can be played; it has %1 steps.").Arg(steps)};
  const auto more = ToCount(complaints.size()) - 1;
  if (more == 0) return {false, complaints.front() + '.'};
  return {false, Words("%1 (and %2 more).").Arg(complaints.front()).Arg(more)};
}

}  // namespace

TelephoneLines::Configured FileTelephoneLines::Read() {
  file_ = ReadLines(path_);
  Configured configured{{}, file_.complaints};
  for (const auto& section : file_.sections) configured.lines.push_back(LineOf(section));
  return configured;
}

void FileTelephoneLines::Store(const std::vector<TelephoneLine>& lines) {
  if (FileExists(path_) != file_.exists || ContentOf(path_) != file_.text) {
    throw RuntimeError(ErrorNumber::PathAccessError,
                       path_ + " was changed meanwhile, and nothing was stored; open the window again");
  }
  std::vector<LineSection> sections;
  for (const auto& line : lines) sections.push_back(SectionOf(line));
  std::string text = file_.text;
  std::vector<LineSection> before = file_.sections;
  if (!IsUtf8(text)) {  // invalid parts of a text file stay in it
    CreateFile(NameToSetAside(path_, "damaged"), text, kOwnerOnly);
    for (auto& section : sections) section.line_number = 0;
    before.clear();
    text.clear();
  }
  ReplaceFile(path_, EditLines(text.empty() ? kNewFile : text, before, sections), kOwnerOnly);
}

/// The section for `line`, with the keys that no window shows.
LineSection FileTelephoneLines::SectionOf(const TelephoneLine& line) const {
  const auto before = std::ranges::find(file_.sections, line.origin, &LineSection::line_number);
  const bool has_one = line.origin != 0 && before != file_.sections.end();
  return EditOf(line, has_one ? &*before : nullptr);
}

std::optional<LineFault> FileTelephoneLines::Check(const TelephoneLine& line) const {
  return FaultOf(line);
}

std::vector<SerialPortFound> FileTelephoneLines::SerialPorts() const {
  return FindSerialPorts();
}

std::int32_t FileTelephoneLines::DeviceOf(const TelephoneLine& line) const {
  const auto section = SectionOf(line);
  for (std::size_t index = 0; index < states_.size(); ++index) {
    const auto& device = states_[index].section;  // other lines may have been added above
    if (device.name == section.name && device.type == section.type && device.values == section.values) {
      return static_cast<std::int32_t>(index);
    }
  }
  return -1;
}

bool FileTelephoneLines::AnyOpen() const {
  for (std::size_t index = 0; index < states_.size(); ++index) {
    if (IsOpen(index)) return true;
  }
  return false;
}

Words FileTelephoneLines::State(const TelephoneLine& line) const {
  const auto device = DeviceOf(line);
  if (device < 0) return Words("Not in use yet");
  const auto use = use_(device);
  if (!use.failure.empty()) return Words("Could not be opened: %1").Arg(use.failure);
  if (!use.open) return AnyOpen() ? Tr("Another line is chosen") : Tr("Off");
  const auto& states = states_[static_cast<std::size_t>(device)];
  if (line.kind == LineKind::Modem) return states.modem->Get();
  const auto accounts = SipSettingsOf(states.section, {}).accounts.size();
  return accounts == 0 ? Words("Waiting for calls")
                       : RegistrationWords(states.registration->Get(), accounts > 1);
}

/// Whether an open line has one of the accounts, perhaps with other settings.
bool FileTelephoneLines::HasOpenAccount(const SipLineSettings& settings) const {
  for (std::size_t index = 0; index < states_.size(); ++index) {
    if (!IsOpen(index)) continue;
    const auto open = SipSettingsOf(states_[index].section, {}).accounts;
    if (std::ranges::find_first_of(open, settings.accounts, {}, &SipAccount::address, &SipAccount::address) !=
        open.end()) {
      return true;
    }
  }
  return false;
}

/// Addresses at which this program listens now, where no test can listen.
std::vector<std::string> FileTelephoneLines::OpenAddresses() const {
  std::vector<std::string> addresses;
  for (std::size_t index = 0; index < states_.size(); ++index) {
    if (!IsOpen(index)) continue;
    for (const char* key : {"listen", "tls_listen"}) {
      const auto address = states_[index].section.values.find(key);
      if (address != states_[index].section.values.end()) addresses.push_back(address->second);
    }
  }
  return addresses;
}

std::string FileTelephoneLines::FreeAddress(const std::string& listen) const {
  return NextFree(listen, OpenAddresses()).value_or(listen);
}

std::string FileTelephoneLines::Router() const {
  sa router{};
  std::array<char, 64> text{};
  const bool found = net_default_gateway_get(AF_INET, &router) == 0 &&
                     sa_ntop(&router, text.data(), static_cast<int>(text.size())) == 0;
  return found ? text.data() : "";
}

LineTestRun::Work FileTelephoneLines::SipTest(const TelephoneLine& line) const {
  const auto settings = SipSettingsOf(SectionOf(line), std::filesystem::path(path_).parent_path());
  const SipProbeOptions options{.only_asks = HasOpenAccount(settings), .open_addresses = OpenAddresses()};
  return [settings, options](const std::atomic<bool>& cancelled) {
    return ProbeSipLine(settings, options, cancelled);
  };
}

LineTestRun::Work FileTelephoneLines::TestOf(const TelephoneLine& line) const {
  const auto found = [](const LineTestResult& result) { return [result](auto&) { return result; }; };
  const auto device = DeviceOf(line);
  const bool open = device >= 0 && use_(device).open;
  switch (line.kind) {
    case LineKind::Modem:
      if (!open) return [line](auto& cancelled) { return ProbeModem(line.port, cancelled); };
      return found(
          {State(line) == Words(std::string(kModemReady)), Words("The line is open: %1.").Arg(State(line))});
    case LineKind::Sim:
      return [script = ScriptOf(SectionOf(line), std::filesystem::path(path_).parent_path())](auto&) {
        return ReadScript(script);
      };
    default: break;
  }
  if (!open || !line.server.empty()) return SipTest(line);
  return found({true, Words("The line is open: calls can come in at %1.").Arg(line.listen)});
}

void FileTelephoneLines::Test(const TelephoneLine& line, TestDone done) {
  tests_.Start(TestOf(line), std::move(done));
}

}  // namespace orven
