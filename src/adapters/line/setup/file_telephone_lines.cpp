// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/file_telephone_lines.h"

#include <fcntl.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>
#include <utility>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/config/lines_ini.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/setup/modem_probe.h"
#include "adapters/line/setup/sip_probe.h"
#include "adapters/line/sim/sim_script.h"
#include "base/durable_file.h"
#include "base/runtime_error.h"
#include "base/unicode.h"

namespace orven {
namespace {

LineTestResult Outcome(const LineTestRun::Work& work, const std::atomic<bool>& cancelled) {
  try {
    return work(cancelled);
  } catch (const std::exception& error) {
    return {false, std::string("The test failed: ") + error.what()};
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

std::string RegistrationWords(const RegistrationNews& news) {
  switch (news.state) {
    case RegistrationNews::State::Trying: return "Registering";
    case RegistrationNews::State::Registered: return "Registered";
    default: return "Registration failed: " + news.reason;
  }
}

LineTestResult ReadScript(const std::string& path) {
  if (path.empty()) return {true, "The simulated line has no script: nobody calls."};
  std::vector<std::string> complaints;
  const auto steps = ReadSimScript(path, complaints).size();
  if (complaints.empty())
    return {true, "The script can be played; it has " + std::to_string(steps) + " steps."};
  const auto more = complaints.size() - 1;
  return {false, complaints.front() + (more > 0 ? " (and " + std::to_string(more) + " more)" : "") + '.'};
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

std::string FileTelephoneLines::State(const TelephoneLine& line) const {
  const auto device = DeviceOf(line);
  if (device < 0) return "Not in use yet";
  const auto use = use_(device);
  if (!use.failure.empty()) return "Could not be opened: " + use.failure;
  if (!use.open) return AnyOpen() ? "Another line is chosen" : "Off";
  const auto& states = states_[static_cast<std::size_t>(device)];
  if (line.kind == LineKind::Modem) return states.modem->Get();
  if (line.server.empty()) return "Waiting for calls";
  return RegistrationWords(states.registration->Get());
}

/// Whether an open line has registered this account, perhaps with other settings.
bool FileTelephoneLines::IsRegistered(const TelephoneLine& line) const {
  for (std::size_t index = 0; index < states_.size(); ++index) {
    const auto device = LineOf(states_[index].section);
    if (device.user == line.user && device.server == line.server && IsOpen(index) &&
        states_[index].registration->Get().state == RegistrationNews::State::Registered) {
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

void FileTelephoneLines::Test(const TelephoneLine& line, TestDone done) {
  const auto device = DeviceOf(line);
  const bool open = device >= 0 && use_(device).open;
  const SipProbeOptions options{.registered_now = IsRegistered(line), .open_addresses = OpenAddresses()};
  const auto state = open ? State(line) : "";
  tests_.Start(
      [line, open, state, options, section = SectionOf(line),
       folder =
           std::filesystem::path(path_).parent_path()](const std::atomic<bool>& cancelled) -> LineTestResult {
        if (line.kind == LineKind::Modem && open)
          return {state == kModemReady, "The line is open: " + state + '.'};
        if (line.kind == LineKind::Modem) return ProbeModem(line.port, cancelled);
        if (line.kind == LineKind::Sim) return ReadScript(ScriptOf(section, folder));
        if (open && line.server.empty())
          return {true, "The line is open: calls can come in at " + line.listen + '.'};
        return ProbeSipLine(line, SipSettingsOf(section, folder), options, cancelled);
      },
      std::move(done));
}

}  // namespace orven
