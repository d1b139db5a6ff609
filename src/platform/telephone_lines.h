// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

enum class LineKind { Sip, Modem, Sim };

/// One configured telephone line, as the user sees it. Texts are UTF-8.
struct TelephoneLine {
  std::string name;  ///< the device name; two lines may share one
  LineKind kind = LineKind::Sip;

  // kind Sip
  std::string listen = "0.0.0.0:5060";  ///< address or name, ":" and port for calls
  std::string server;     ///< registrar: host, perhaps ":" and port; empty as `user`: no account
  std::string user;       ///< of the account
  std::string auth_user;  ///< login name, where it is not `user`; else empty
  std::string password;
  std::string proxy;              ///< server to which all requests go, perhaps with ":" and port; or empty
  std::string transport = "udp";  ///< towards the server: udp, tcp, tls or auto
  std::string srtp;               ///< yes, no, or empty: yes with tls
  std::string tls_trust;          ///< PEM file of certificates the server may show; empty: the system's
  int ring_seconds = 6;           ///< 1 to 60, between Ring events

  std::string port;    ///< kind Modem: the serial device
  std::string script;  ///< kind Sim: path of a script, or empty

  int origin = 0;  ///< its position in what was read, 0 for a new line; passed through unchanged

  bool operator==(const TelephoneLine&) const = default;
};

struct LineFault {
  std::string_view control;  ///< of the dialog: where the fault is, a literal
  std::string text;          ///< one sentence; never quotes a password
};

/// A serial port of this machine.
struct SerialPortFound {
  std::string path;   ///< what a line stores: if possible a name that does not change with the socket
  std::string label;  ///< for the user
};

/// The result of a test, in one or two sentences.
struct LineTestResult {
  bool passed = false;
  std::string text;
};

/// The configured telephone lines and their states. User-interface thread; never waits
/// for a device or the network.
class TelephoneLines {
 public:
  struct Configured {
    std::vector<TelephoneLine> lines;     ///< in device-index order
    std::vector<std::string> complaints;  ///< what is wrong with stored lines that are missing here
  };
  using TestDone = std::function<void(const LineTestResult&)>;

  virtual ~TelephoneLines() = default;

  /// Reads the stored lines.
  virtual Configured Read() = 0;

  /// Replaces the lines of the latest Read by `lines`, all or none; only the owner can read the passwords.
  /// Text that Read does not understand is kept. Throws RuntimeError when writing fails or another program
  /// has changed the stored lines since Read.
  virtual void Store(const std::vector<TelephoneLine>& lines) = 0;

  /// Why `line` cannot be stored or used; nothing when it can.
  virtual std::optional<LineFault> Check(const TelephoneLine& line) const = 0;

  /// The current serial ports.
  virtual std::vector<SerialPortFound> SerialPorts() const = 0;

  /// The current state of `line`, in a few words: "Registered", "Registering", "Registration failed: …".
  virtual std::string State(const TelephoneLine& line) const = 0;

  /// Tries `line` in the background: registers at its server, or asks its modem. `done` is called once,
  /// later, unless CancelTest comes first. Cancels a test in progress.
  virtual void Test(const TelephoneLine& line, TestDone done) = 0;
  virtual void CancelTest() = 0;
};

}  // namespace orven
