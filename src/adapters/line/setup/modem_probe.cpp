// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/modem_probe.h"

#include <QEventLoop>
#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>

#include "adapters/desktop/qt_event_loop.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/modem/modem_preparation.h"
#include "adapters/line/modem/serial_link.h"

namespace orven {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> EntriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    entries.push_back(at->path());
  }
  std::ranges::sort(entries);
  return entries;
}

}  // namespace

std::vector<SerialPortFound> FindSerialPorts(const std::string& devices) {
  std::vector<SerialPortFound> ports;
  std::set<std::string> named;
  for (const auto& link : EntriesOf(fs::path(devices) / "serial" / "by-id")) {
    std::error_code error;
    const auto device = fs::canonical(link, error).filename().string();
    if (error) continue;
    named.insert(device);
    ports.push_back({link.string(), link.filename().string() + " (" + device + ")"});
  }
  for (const auto& device : EntriesOf(devices)) {
    const auto name = device.filename().string();
    const bool serial = name.starts_with("ttyACM") || name.starts_with("ttyUSB");
    if (serial && !named.contains(name)) ports.push_back({device.string(), device.string()});
  }
  return ports;
}

namespace {

constexpr std::chrono::milliseconds kLookForCancel{50};

const char* ReadyWords(SampleKind kind) {
  switch (kind) {
    case SampleKind::Linear16: return Tr("A voice modem answers at %1 (its sound has 16 bits).");
    case SampleKind::MuLaw: return Tr("A voice modem answers at %1 (its sound has 8 bits, mu-law).");
    default: return Tr("A voice modem answers at %1 (its sound has 8 bits).");
  }
}

const char* WordsFor(const PreparedModem& modem) {
  switch (modem.state) {
    case PreparedModem::State::Silent:
      return Tr("Nothing answers at %1: there is no modem, or it is switched off.");
    case PreparedModem::State::NoModem: return Tr("The device at %1 answers, but not as a modem does.");
    case PreparedModem::State::NoVoice:
      return Tr(
          "A modem answers at %1, but it is not a voice modem (it does not offer +FCLASS=8): it cannot "
          "speak or record.");
    case PreparedModem::State::NoFormat:
      return Tr("A voice modem answers at %1, but it offers no supported audio format.");
    default: return ReadyWords(modem.format.kind);
  }
}

/// The modem at one port, on this thread's event loop.
class Probe : private ModemLinkEvents, private ModemOutput {
 public:
  LineTestResult Run(const std::string& port, const std::atomic<bool>& cancelled) {
    if (const auto problem = link_->Open(port, kUsualRate, *this)) return {false, problem->text};
    const auto look = loop_.MakeTimer([&] {
      if (cancelled) waiting_.quit();
    });
    look->Start(kLookForCancel);
    ModemPreparation preparation(channel_, *link_, loop_, [this](const PreparedModem& modem) {
      modem_ = modem;
      waiting_.quit();
    });
    preparation.Start();
    waiting_.exec();
    link_->Close();
    if (lost_) return {false, Words("The modem at %1 is gone.").Arg(port)};
    return {modem_.state == PreparedModem::State::Ready, Words(WordsFor(modem_)).Arg(port)};
  }

 private:
  void Received(std::span<const std::uint8_t> bytes) override { channel_.Received(bytes); }
  void Lost() override {
    lost_ = true;
    waiting_.quit();
  }

  QtEventLoop loop_;
  QEventLoop waiting_;
  std::unique_ptr<ModemLink> link_ = MakeSerialLink();
  AtChannel channel_{*link_, loop_, *this};
  PreparedModem modem_;
  bool lost_ = false;
};

}  // namespace

LineTestResult ProbeModem(const std::string& port, const std::atomic<bool>& cancelled) {
  if (port != kAnyPort) return Probe().Run(port, cancelled);
  LineTestResult result{false, Words("No modem is plugged in.")};
  for (const auto& found : FindSerialPorts()) {
    result = Probe().Run(found.path, cancelled);
    if (result.passed || cancelled) break;
  }
  return result;
}

}  // namespace orven
