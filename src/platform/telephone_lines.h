// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/words.h"

namespace orven {

enum class LineKind { Sip, Modem, Sim };

/// The name of the only line while none is stored. It takes calls from programs on this computer.
inline constexpr const char* kFirstLine = "SIP 127.0.0.1:5060";

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
  Words text;                ///< one sentence; never quotes a password
};

/// A serial port of this machine.
struct SerialPortFound {
  std::string path;   ///< what a line stores: if possible a name that does not change with the socket
  std::string label;  ///< for the user
};

/// The result of a test.
struct LineTestResult {
  bool passed = false;
  Words text;                  ///< what was found and what to do about it, in one or two sentences
  std::string_view control{};  ///< of the dialog: what to change, a literal; empty: nothing in particular
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

  /// `listen` if a line could wait for calls there, else the same with the next port that is free, or
  /// `listen` if there is none. What a line of this program holds counts as free, because only one line is
  /// open.
  virtual std::string FreeAddress(const std::string& listen) const = 0;

  /// The address of the router that leads to the Internet, a guess for a home router's server; empty without
  /// one.
  virtual std::string Router() const = 0;

  /// The current state of `line`, in a few words: "Registered", "Registering", "Registration failed: …".
  virtual Words State(const TelephoneLine& line) const = 0;

  /// Tries `line` in the background as it is: waits at its address for calls and registers its accounts, or
  /// asks its modem. What an open line of this program does is left alone: its port counts as usable, and the
  /// server is only asked about its accounts. `done` is called once, later, unless CancelTest comes first.
  /// Cancels a test in progress.
  virtual void Test(const TelephoneLine& line, TestDone done) = 0;
  virtual void CancelTest() = 0;
};

}  // namespace orven
