// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// One section of `lines.ini`: one telephone line. Its place among the sections is its device index.
///
/// `values` holds each valid key as the file has it:
///
///   type = sip     listen        host, ":", port; as ParseListen reads it; required
///                  account       "sip:", user, "@", host, optionally ":" and a port
///                  auth_user     the name for the registrar
///                  password
///                  proxy         the host to which requests go, optionally ":" and a port
///                  transport     udp, tcp, tls or auto
///                  account2 to account9, with their auth_user2 and so on: further accounts
///                  srtp          yes or no
///                  codecs        a list of pcmu, pcma, g722 and opus
///                  tls_trust     path of a PEM file
///                  tls_listen    as listen
///                  tls_certificate  path of a PEM file
///                  ring_seconds  seconds between Ring events, 1 to 60, decimals allowed
///   any type       idle_seconds  0 to 86400, whole: an idle call ends after it; 0: never
///   type = modem   port          the serial device; required
///   type = sim     script        path of a script
///
/// For a key that is missing the driver has a default.
struct LineSection {
  std::string name;     ///< the device name
  int line_number = 0;  ///< of the section's head, from 1; 0 for the line that exists without a file
  std::string type;     ///< sip, modem or sim
  std::map<std::string, std::string> values;
};

/// The content of a `lines.ini` and its faults. A complaint has the file's name, the line's number and what
/// is expected, for example `lines.ini:12: ring_seconds is "abc": expected …`; it never quotes a password.
struct LinesFile {
  std::vector<LineSection> sections;
  std::vector<std::string> complaints;
  std::string text{};  ///< as ReadLines found it; empty when it could not be read
  bool exists = true;
};

/// Reads the text of a `lines.ini` (UTF-8; a byte order mark and CR LF are allowed). Never fails: a key that
/// is wrong or unknown is left out, the last of several equal keys counts, and a section without a valid
/// type, listen (sip) or port (modem) is left out. Each of these is a complaint, which begins with
/// `file_name`. Two sections may have the same name: they are two devices.
LinesFile ParseLines(std::string_view text, const std::string& file_name);

/// Reads the file at `path`. Without a file there is one line, "SIP 127.0.0.1:5060", for calls from this
/// computer; a file that cannot be read gives no lines and a complaint. Any thread.
LinesFile ReadLines(const std::string& path);

/// The text of a section that is appended to the file.
std::string SectionText(const LineSection& line);

/// The text of a `lines.ini` whose sections `before` (as ParseLines found them in `text`) become `after`:
/// sections whose line number is not in `after` are removed, new ones (line number 0) are appended, and of
/// the others only the lines with changed values change. Comments, order, line ends and everything that
/// ParseLines left out stay.
std::string EditLines(std::string_view text, const std::vector<LineSection>& before,
                      const std::vector<LineSection>& after);

}  // namespace orven
