// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/modem/serial_link.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSerialPort>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace orven {
namespace {

using Kind = LinkProblem::Kind;

/// Why the port cannot be opened; Qt does not distinguish "taken" from "forbidden".
std::optional<LinkProblem> ProblemOf(const std::string& port) {
  const int descriptor = ::open(port.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  const int error = errno;
  if (descriptor >= 0) {
    const bool terminal = ::isatty(descriptor) == 1;
    ::close(descriptor);
    if (terminal) return std::nullopt;
    return LinkProblem{Kind::Failed, port + " is not a serial port."};
  }
  switch (error) {
    case ENOENT:
    case ENXIO:
    case ENODEV: return LinkProblem{Kind::Absent, "There is no port " + port + ": is the modem plugged in?"};
    case EACCES:
    case EPERM:
      return LinkProblem{Kind::Forbidden,
                         "You may not use the port " + port +
                             ": become a member of the group \"dialout\", then log in again."};
    case EBUSY: return LinkProblem{Kind::Taken, "The port " + port + " is in use by another program."};
    default:
      return LinkProblem{Kind::Failed, "The port " + port + " cannot be opened: " +
                                           std::generic_category().message(error) + '.'};
  }
}

/// Only real serial ports and USB serial cables have the wires for it.
bool HasFlowControl(const std::string& port) {
  std::error_code error;
  const auto device = std::filesystem::canonical(port, error).filename().string();
  return !error && (device.starts_with("ttyS") || device.starts_with("ttyUSB"));
}

class SerialLink final : public ModemLink {
 public:
  SerialLink() {
    QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] { Read(); });
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_, [this](auto error) { Failed(error); });
  }

  std::optional<LinkProblem> Open(const std::string& port, int rate, ModemLinkEvents& events) override {
    Close();
    if (auto problem = ProblemOf(port)) return problem;
    port_.setPortName(QString::fromStdString(port));
    port_.setBaudRate(rate);
    port_.setDataBits(QSerialPort::Data8);
    port_.setParity(QSerialPort::NoParity);
    port_.setStopBits(QSerialPort::OneStop);
    port_.setFlowControl(HasFlowControl(port) ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
    if (!port_.open(QIODevice::ReadWrite)) return OpenProblem(port);
    events_ = &events;
    return std::nullopt;
  }

  void Close() override {
    events_ = nullptr;
    if (port_.isOpen()) port_.close();
  }

  bool SetRate(int rate) override {
    const auto before = port_.baudRate();
    if (port_.setBaudRate(rate)) return true;
    port_.setBaudRate(before);
    return false;
  }

  void Write(std::span<const std::uint8_t> bytes) override {
    if (events_ != nullptr) {
      port_.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
    }
  }

  void DiscardUnsent() override {
    if (events_ != nullptr) port_.clear(QSerialPort::Output);
  }

  std::size_t Unsent() const override { return static_cast<std::size_t>(port_.bytesToWrite()); }

 private:
  LinkProblem OpenProblem(const std::string& port) const {
    if (port_.error() == QSerialPort::PermissionError) {
      return {Kind::Taken, "The port " + port + " is in use by another program."};
    }
    return {Kind::Failed, "The port " + port + " cannot be used: " + port_.errorString().toStdString() + '.'};
  }

  void Read() {
    const auto bytes = port_.readAll();
    if (events_ == nullptr || bytes.isEmpty()) return;
    events_->Received(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                static_cast<std::size_t>(bytes.size())));
  }

  /// Qt reports an unplugged port in several ways, and inside its own operations.
  void Failed(QSerialPort::SerialPortError error) {
    const bool gone = error == QSerialPort::ResourceError || error == QSerialPort::DeviceNotFoundError ||
                      error == QSerialPort::ReadError || error == QSerialPort::WriteError;
    if (!gone || events_ == nullptr) return;
    QMetaObject::invokeMethod(
        &port_,
        [this, events = events_] {
          if (events_ != events) return;
          Read();
          Close();
          events->Lost();
        },
        Qt::QueuedConnection);
  }

  QSerialPort port_;
  ModemLinkEvents* events_ = nullptr;  ///< nullptr while closed
};

}  // namespace

std::unique_ptr<ModemLink> MakeSerialLink() {
  return std::make_unique<SerialLink>();
}

}  // namespace orven
