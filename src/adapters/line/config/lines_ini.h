// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orven {

/// One section of `lines.ini`: one telephone line. Its place among the sections is its device index.
///
/// `values` holds, as it stands in the file, every key that was given and understood:
///
///   type = sip     listen        IPv4 address, ":", port 1 to 65535; always there
///                  account       "sip:", user, "@", host, perhaps ":" and a port
///                  auth_user     the name for the registrar
///                  password
///                  transport     udp, tcp or tls
///                  srtp          yes or no
///                  tls_trust     path of a PEM file
///                  tls_listen    as listen
///                  tls_certificate  path of a PEM file
///                  ring_seconds  seconds between Ring events, 1 to 60, decimals allowed
///   any type       idle_seconds  0 to 86400, whole: an idle call is ended after it; 0: never
///   type = modem   port          the serial device; always there
///   type = sim     script        path of a script
///
/// A key that is not there has its driver's default.
struct LineSection {
  std::string name;     ///< the device name
  int line_number = 0;  ///< of the section's head, from 1; 0 for the line that no file names
  std::string type;     ///< sip, modem or sim
  std::map<std::string, std::string> values;
};

/// What a `lines.ini` says, and what is wrong with it: one text a fault with file name, line number
/// and what is expected, for example `lines.ini:12: ring_seconds is "abc": expected …`. No text
/// quotes a password.
struct LinesFile {
  std::vector<LineSection> sections;
  std::vector<std::string> complaints;
};

/// Understands the text of a `lines.ini` (UTF-8, a byte order mark and CR LF allowed). Never fails: a
/// key that is wrong or unknown is left out, of a key given twice the last one counts, and a section
/// without a usable type, listen (sip) or port (modem) is left out; each is a complaint. Section
/// names may repeat: two devices of one name. `file_name` begins the complaints.
LinesFile ParseLines(std::string_view text, const std::string& file_name);

/// Reads the file at `path`. Without a file there is one line, "SIP 127.0.0.1:5060", for direct calls
/// from this machine; a file that cannot be read gives no lines and a complaint. Any thread.
LinesFile ReadLines(const std::string& path);

/// What is neither value nor name at the ends of a line of `lines.ini`.
inline constexpr std::string_view kLineBlanks = " \t\r";

std::string_view TrimmedLine(std::string_view text);

/// The line without its comment: a whole line behind ";" or "#", or the rest behind a blank and ";".
/// A "#" within a line is part of the value: passwords have it.
std::string_view WithoutLineComment(std::string_view line);

/// With ASCII letters in lower case, as keys are compared.
std::string LowerAscii(std::string_view text);

/// One telephone line as `lines.ini` shall have it.
struct LineEdit {
  int head = 0;      ///< LineSection::line_number of the section that it changes; 0 for a new one
  std::string name;  ///< the device name
  std::string type;  ///< sip, modem or sim
  std::map<std::string, std::string> values;  ///< every key that shall have a value
};

/// A whole section, as it is appended.
std::string SectionText(const LineEdit& line);

/// The text of a `lines.ini` after its usable sections `before` (as ParseLines found them in `text`)
/// became `after`: a section that is not in `after` goes, new ones are appended, and of the others only
/// the lines change whose values do. Comments, the order, and what ParseLines did not understand stay;
/// so do the line ends.
std::string EditLines(std::string_view text, const std::vector<LineSection>& before,
                      const std::vector<LineEdit>& after);

}  // namespace orven
