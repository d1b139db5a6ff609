// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/modem_preparation.h"

#include <algorithm>
#include <array>
#include <optional>
#include <regex>
#include <sstream>
#include <tuple>
#include <utility>

#include "adapters/line/modem/modem_reader.h"

namespace orven {
namespace {

using std::chrono::milliseconds;

/// Between the byte sequences that stop what the modem is doing.
constexpr milliseconds kPause{100};
/// Until the modem has finished its output.
constexpr milliseconds kQuiet{200};
constexpr milliseconds kWakeUpPatience{1'000};
constexpr int kWakeUpTries = 3;

constexpr std::array<std::uint8_t, 4> kPurge{kDle, kCan, kDle, kEtx};
constexpr std::array<std::uint8_t, 2> kAbort{kDle, '!'};
constexpr std::array<std::uint8_t, 1> kReturn{'\r'};

/// Whether `line` lists the voice class: "0,1,2,8", "(0-2,8)", "+FCLASS: 8".
bool ListsVoice(std::string line) {
  const auto colon = line.find(':');
  if (colon != std::string::npos) line.erase(0, colon + 1);
  std::erase_if(line,
                [](char letter) { return std::string_view("()\" ").find(letter) != std::string_view::npos; });
  std::istringstream classes(line);
  for (std::string one; std::getline(classes, one, ',');) {
    if (one == "8") return true;
  }
  return false;
}

using Version = std::tuple<int, int, int>;

/// The first version without missed rings and caller ids, as users report.
constexpr Version kMended{1, 2, 23};

/// The first number with three parts.
std::optional<Version> VersionIn(const std::string& text) {
  static const std::regex three_parts(R"((?:^|\D)(\d{1,3})\.(\d{1,3})\.(\d{1,3}))");
  std::smatch found;
  if (!std::regex_search(text, found, three_parts)) return std::nullopt;
  return Version(std::stoi(found[1]), std::stoi(found[2]), std::stoi(found[3]));
}

}  // namespace

void ModemPreparation::Start() {
  channel_.Forget();
  channel_.ExpectLines();
  channel_.Write(kPurge);
  loop_.After(kPause, lifeline_.Bind([this] { channel_.Write(kAbort); }));
  loop_.After(kPause * 2, lifeline_.Bind([this] { channel_.Write(kReturn); }));
  loop_.After(kPause * 2 + kQuiet, lifeline_.Bind([this] { WakeUp(kWakeUpTries); }));
}

void ModemPreparation::WakeUp(int tries_left) {
  channel_.Ask(
      "AT",
      [this, tries_left](const ModemReply& reply) {
        if (reply.Ok()) return Reset();
        if (tries_left > 1) return WakeUp(tries_left - 1);
        // A device that only echoes is not a modem.
        const bool silent = reply.kind == ModemReply::Kind::Nothing && !reply.echoed;
        Finish(silent ? PreparedModem::State::Silent : PreparedModem::State::NoModem);
      },
      kWakeUpPatience);
}

void ModemPreparation::Reset() {
  // Some modems are busy for a moment after ATZ.
  for (const char* command : {"ATH0", "ATZ", "ATE0V1Q0", "ATS0=0"}) channel_.Ask(command);
  const auto name = [this](const ModemReply& reply) {
    for (const auto& line : reply.lines) {
      if (modem_.identity.find(line) == std::string::npos) {
        modem_.identity += (modem_.identity.empty() ? "" : ", ") + line;
      }
    }
  };
  for (const char* command : {"ATI0", "ATI3", "ATI7", "AT+GMI", "AT+FMI?", "AT+FMM?"})
    channel_.Ask(command, name);
  AskClasses();
}

void ModemPreparation::AskClasses() {
  channel_.Ask("AT+FCLASS=?", [this](const ModemReply& reply) {
    if (!std::ranges::any_of(reply.lines, ListsVoice)) return Finish(PreparedModem::State::NoVoice);
    AskVoice();
  });
}

void ModemPreparation::AskVoice() {
  channel_.Ask("AT+FCLASS=8");
  channel_.Ask("AT+VSD=?", [this](const ModemReply& reply) { modem_.detects_silence = reply.Ok(); });
  channel_.Ask("AT+VGR=?", [this](const ModemReply& reply) { modem_.has_gains = reply.Ok(); });
  channel_.Ask("AT+VSM=?", [this](const ModemReply& reply) {
    formats_ = OfferedFormats(reply.lines);
    if (formats_.empty()) formats_ = UsualFormats();
    TryFormat();
  });
}

void ModemPreparation::TryFormat() {
  if (formats_.empty()) return AskPresentFormat();
  if (formats_.front().kind == SampleKind::Linear16 && link_.SetRate(kFastRate)) return TryRate();
  SetFormat();
}

void ModemPreparation::TryRate() {
  channel_.Ask(
      "AT",
      [this](const ModemReply& reply) {
        if (reply.Ok()) return SetFormat();
        link_.SetRate(kUsualRate);
        channel_.Ask("AT", [this](const ModemReply&) { TryNextFormat(); });
      },
      kWakeUpPatience);
}

void ModemPreparation::SetFormat() {
  channel_.Ask("AT+VSM=" + formats_.front().setting, [this](const ModemReply& reply) {
    if (!reply.Ok()) return TryNextFormat();
    modem_.format = formats_.front();
    WaitForCalls();
  });
}

void ModemPreparation::TryNextFormat() {
  formats_.erase(formats_.begin());
  TryFormat();
}

void ModemPreparation::AskPresentFormat() {
  if (last_formats_) return Finish(PreparedModem::State::NoFormat);
  last_formats_ = true;
  channel_.Ask("AT+VSM?", [this](const ModemReply& reply) {
    formats_ = PresentFormat(reply.lines);
    TryFormat();
  });
}

void ModemPreparation::WaitForCalls() {
  // An inactivity timer in the modem would cut greetings short.
  channel_.Ask("AT+VIT=0");
  channel_.Ask("AT+FCLASS=0");
  channel_.Ask("AT+VCID=1", [this](const ModemReply& reply) {
    const auto ready = [this](const ModemReply& last) {
      modem_.always_echoes = last.echoed;
      Finish(last.kind == ModemReply::Kind::Nothing ? PreparedModem::State::Silent
                                                    : PreparedModem::State::Ready);
    };
    if (!reply.Ok()) channel_.Ask("AT#CID=1");
    channel_.Ask("ATM0", ready);
  });
}

void ModemPreparation::Finish(PreparedModem::State state) {
  modem_.state = state;
  if (state != PreparedModem::State::Ready) channel_.Forget();
  done_(modem_);
}

std::string FirmwareAdvice(const std::string& identity) {
  if (identity.find("5637") == std::string::npos) return "";
  const auto version = VersionIn(identity);
  if (!version || *version >= kMended) return "";
  return "Its firmware misses rings and caller ids; versions from 1.2.23 on do not";
}

}  // namespace orven
