// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/modem_probe.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSerialPort>
#include <algorithm>
#include <cerrno>
#include <optional>
#include <sstream>
#include <system_error>

namespace orven {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLookForCancel{50};

/// A modem that wakes up, or that still has half a command, misses the first one.
constexpr int kTries = 2;

constexpr const char* kVoiceClass = "8";

/// Why the port cannot be opened; Qt's own reasons do not tell "taken" from "forbidden".
std::string OpenProblem(const std::string& path) {
  const int port = ::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const int error = errno;
  if (port >= 0) {
    const bool terminal = ::isatty(port) == 1;
    ::close(port);
    return terminal ? "" : path + " is no serial port.";
  }
  switch (error) {
    case ENOENT:
    case ENXIO:
    case ENODEV: return "There is no port " + path + ": is the modem plugged in?";
    case EACCES:
    case EPERM:
      return "You may not use the port " + path +
             ": become a member of the group \"dialout\", then log in again.";
    case EBUSY: return "The port " + path + " is in use by another program.";
    default: return "The port " + path + " cannot be opened: " + std::generic_category().message(error) + '.';
  }
}

/// The lines of an answer, without blanks and without what is empty.
std::vector<std::string> LinesOf(const std::string& answer) {
  std::vector<std::string> lines;
  std::istringstream text(answer);
  for (std::string line; std::getline(text, line);) {
    std::erase_if(line, [](char letter) { return letter == '\r' || letter == ' '; });
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

bool IsFinal(const std::string& line) {
  return line == "OK" || line == "ERROR" || line.starts_with("+CMEERROR");
}

/// Talks with a modem.
class ModemTalk {
 public:
  ModemTalk(QSerialPort& port, const std::atomic<bool>& cancelled, milliseconds patience)
      : port_(port), cancelled_(cancelled), patience_(patience) {}

  /// The lines that answer `command`, "OK" or "ERROR" the last; nothing when none comes in time.
  std::optional<std::vector<std::string>> Ask(const char* command) {
    (void)port_.readAll();
    port_.write(QByteArray(command) + '\r');
    std::string answer;
    const auto end = std::chrono::steady_clock::now() + patience_;
    while (!cancelled_ && std::chrono::steady_clock::now() < end) {
      (void)port_.waitForReadyRead(static_cast<int>(kLookForCancel.count()));
      answer += port_.readAll().toStdString();
      // A line counts when its end is there.
      auto lines = LinesOf(answer.substr(0, answer.rfind('\n') + 1));
      if (std::ranges::any_of(lines, IsFinal)) return lines;
    }
    return std::nullopt;
  }

 private:
  QSerialPort& port_;
  const std::atomic<bool>& cancelled_;
  milliseconds patience_;
};

/// Whether `line` lists the voice class: "0,1,2,8", "(0-2,8)", "+FCLASS: 8".
bool ListsVoice(std::string line) {
  const auto colon = line.find(':');
  if (colon != std::string::npos) line.erase(0, colon + 1);
  std::erase_if(line, [](char letter) { return letter == '(' || letter == ')' || letter == '"'; });
  std::istringstream classes(line);
  for (std::string one; std::getline(classes, one, ',');) {
    if (one == kVoiceClass) return true;
  }
  return false;
}

LineTestResult Probe(ModemTalk talk, const std::string& path) {
  std::optional<std::vector<std::string>> answer;
  for (int i = 0; i < kTries && !answer; ++i) answer = talk.Ask("AT");
  if (!answer) return {false, "Nothing answers at " + path + ": no modem is there, or it is switched off."};
  if (answer->back() != "OK") return {false, "What is at " + path + " answers, but not as a modem does."};
  const auto classes = talk.Ask("AT+FCLASS=?");
  if (classes && std::ranges::any_of(*classes, ListsVoice)) {
    return {true, "A voice modem answers at " + path + '.'};
  }
  return {false, "A modem answers at " + path +
                     ", but it is no voice modem (it does not offer +FCLASS=8): it cannot speak or record."};
}

}  // namespace

LineTestResult ProbeModem(const std::string& path, const std::atomic<bool>& cancelled,
                          milliseconds patience) {
  if (const auto problem = OpenProblem(path); !problem.empty()) return {false, problem};
  QSerialPort port(QString::fromStdString(path));
  port.setBaudRate(QSerialPort::Baud115200);
  port.setDataBits(QSerialPort::Data8);
  port.setParity(QSerialPort::NoParity);
  port.setStopBits(QSerialPort::OneStop);
  port.setFlowControl(QSerialPort::HardwareControl);
  if (!port.open(QIODevice::ReadWrite)) {
    return {false, "The port " + path + " cannot be used: " + port.errorString().toStdString() + '.'};
  }
  return Probe(ModemTalk(port, cancelled, patience), path);
}

}  // namespace orven
