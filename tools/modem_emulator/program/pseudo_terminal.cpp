// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/program/pseudo_terminal.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <stdexcept>

namespace orven::emulator {
namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

}  // namespace

PseudoTerminal::PseudoTerminal(std::string link, Room room, Bytes read)
    : link_(std::move(link)), room_(std::move(room)), read_(std::move(read)) {
  Open();
  if (!link_.empty()) {
    std::error_code error;
    if (std::filesystem::is_symlink(link_)) std::filesystem::remove(link_, error);
    std::filesystem::create_symlink(name_, link_, error);
    if (error) throw std::runtime_error("The link " + link_ + " cannot be made: " + error.message());
  }
  ready_ = std::make_unique<QSocketNotifier>(own_, QSocketNotifier::Read);
  QObject::connect(ready_.get(), &QSocketNotifier::activated, ready_.get(), [this] { Read(); });
}

PseudoTerminal::~PseudoTerminal() {
  ready_.reset();
  ::close(port_);
  ::close(own_);
  std::error_code error;
  if (!link_.empty()) std::filesystem::remove(link_, error);
}

void PseudoTerminal::Open() {
  own_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  std::array<char, 128> name{};
  if (own_ < 0 || ::grantpt(own_) != 0 || ::unlockpt(own_) != 0 ||
      ::ptsname_r(own_, name.data(), name.size()) != 0) {
    Fail("No pseudo-terminal can be opened");
  }
  name_ = name.data();
  port_ = ::open(name_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  termios raw{};
  if (port_ < 0 || ::tcgetattr(port_, &raw) != 0) Fail(name_ + " cannot be opened");
  ::cfmakeraw(&raw);
  ::tcsetattr(port_, TCSANOW, &raw);
}

std::size_t PseudoTerminal::Write(std::span<const std::uint8_t> bytes) {
  const auto written = ::write(own_, bytes.data(), bytes.size());
  return bytes.size() - static_cast<std::size_t>(std::max<ssize_t>(written, 0));
}

void PseudoTerminal::Read() {
  std::array<std::uint8_t, 4096> buffer{};
  const auto room = std::min(room_(), buffer.size());
  // Without room the bytes wait, as they do behind a port's hardware flow control.
  ready_->setEnabled(room > 0);
  if (room == 0) return;
  const auto count = ::read(own_, buffer.data(), room);
  if (count > 0) read_(std::span(buffer).first(static_cast<std::size_t>(count)));
}

int PseudoTerminal::Rate() const {
  static const std::map<speed_t, int> rates = {{B9600, 9600},     {B19200, 19200},   {B38400, 38400},
                                               {B57600, 57600},   {B115200, 115200}, {B230400, 230400},
                                               {B460800, 460800}, {B921600, 921600}};
  termios settings{};
  if (::tcgetattr(port_, &settings) != 0) return 0;
  const auto found = rates.find(::cfgetospeed(&settings));
  return found == rates.end() ? 0 : found->second;
}

}  // namespace orven::emulator
