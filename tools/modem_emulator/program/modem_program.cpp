// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/program/modem_program.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <functional>
#include <iomanip>
#include <iostream>
#include <map>
#include <utility>

namespace orven::emulator {
namespace {

constexpr std::chrono::milliseconds kTick(10);

}  // namespace

ModemProgram::ModemProgram(Options options)
    : options_(std::move(options)),
      clock_(QLocale::c()),
      modem_(*options_.profile, options_.faults, loop_, clock_,
             [this](std::span<const std::uint8_t> bytes) {
               if (!port_) return;
               if (port_->Write(bytes) > 0) Report("complaint: the host does not read, bytes are lost");
             }),
      captured_(options_.captured),
      spoken_(options_.spoken),
      sent_(options_.sent),
      tick_(loop_.MakeTimer([this] { Tick(); })) {
  modem_.SetTell([this](const std::string& news) { Heard(news); });
  Plug();
  tick_->Start(kTick);
  loop_.After(options_.lifetime, [] { QCoreApplication::quit(); });
  for (const auto& step : options_.script) loop_.After(step.at, [this, step] { Take(step); });
  WatchInput();
}

void ModemProgram::Plug() {
  if (port_) return;
  port_.emplace(
      options_.link, [this] { return modem_.Room(); },
      [this](std::span<const std::uint8_t> bytes) { modem_.FromHost(bytes); });
  Report("port " + port_->Name());
}

void ModemProgram::WatchInput() {
  struct stat facts {};
  const bool somebody = ::fstat(STDIN_FILENO, &facts) == 0 &&
                        (S_ISFIFO(facts.st_mode) || S_ISSOCK(facts.st_mode) || ::isatty(STDIN_FILENO) == 1);
  if (!somebody) return;
  input_ = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
  QObject::connect(input_.get(), &QSocketNotifier::activated, input_.get(), [this] { ReadInput(); });
}

void ModemProgram::ReadInput() {
  std::array<char, 4096> buffer{};
  const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
  if (count <= 0) return QCoreApplication::quit();  // the program that started this has ended
  input_text_.append(buffer.data(), static_cast<std::size_t>(count));
  for (auto end = input_text_.find('\n'); end != std::string::npos; end = input_text_.find('\n')) {
    const auto line = input_text_.substr(0, end);
    input_text_.erase(0, end + 1);
    try {
      if (!line.empty()) Take(ReadStep(line));
    } catch (const std::runtime_error& error) {
      Report(std::string("refused: ") + error.what());
    }
  }
}

void ModemProgram::Take(const Step& step) {
  if (step.verb == "quit") {
    quit_ = true;
  } else if (step.verb == "unplug") {
    port_.reset();
    modem_.PowerCycle();
  } else if (step.verb == "replug") {
    Plug();
  } else {
    TakeLineStep(step);
  }
}

void ModemProgram::TakeLineStep(const Step& step) {
  const std::map<std::string, std::function<void()>> actions = {
      {"ring",
       [this] {
         if (options_.times) Report("ring");
         modem_.Ring();
       }},
      {"callerid", [&] { modem_.CallerIdLine(step.rest); }},
      {"press",
       [&] {
         for (const char key : step.rest) modem_.Press(key);
       }},
      {"say",
       [&] {
         modem_.Say(ReadAudio(step.rest));
         speaking_ = true;
       }},
      {"hangup", [this] { modem_.HangUp(); }},
      {"busy", [this] { modem_.HangUp(); }},
      {"dialtone", [this] { modem_.HangUpToDialTone(); }},
      {"silence", [this] { modem_.HangUpToSilence(); }},
      {"event",
       [&] {
         if (!step.rest.empty()) modem_.Event(step.rest[0]);
       }},
      {"wedge", [this] { modem_.Wedge(); }},
      {"wake", [this] { modem_.Wake(); }},
  };
  actions.at(step.verb)();
}

void ModemProgram::Heard(const std::string& news) {
  if (news == "off-hook") {
    captured_.Begin();
    spoken_.Begin();
    sent_.Begin();
  }
  const bool sound = news == "playing" || news == "receiving";
  if (sound && port_ && port_->Rate() != 0 && port_->Rate() <= modem_.NeededPortRate()) {
    Report("complaint: the port is set to " + std::to_string(port_->Rate()) + " bit/s, but the audio needs " +
           std::to_string(modem_.NeededPortRate()));
  }
  Report(news);
}

void ModemProgram::Tick() {
  if (port_) port_->Read();
  captured_.Append(modem_.Heard());
  spoken_.Append(modem_.Spoken());
  sent_.Append(modem_.SentBytes());
  if (speaking_ && !modem_.Speaking()) {
    speaking_ = false;
    Report("said");
  }
  if (options_.times && std::exchange(key_reported_at_, modem_.KeyReportedAt()) != modem_.KeyReportedAt()) {
    Report("key", key_reported_at_);
  }
  if (quit_ && !modem_.OffHook()) QCoreApplication::quit();
}

void ModemProgram::Report(const std::string& line, std::chrono::milliseconds at) {
  std::cout << line;
  if (options_.times) {
    std::cout << " at " << std::fixed << std::setprecision(3) << std::chrono::duration<double>(at).count();
  }
  std::cout << std::endl;
}

}  // namespace orven::emulator
