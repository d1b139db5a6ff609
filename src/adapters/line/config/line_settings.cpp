// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/line_settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

#include "adapters/line/config/codec_list.h"
#include "adapters/line/config/line_keys.h"
#include "base/conversions.h"

namespace orven {
namespace {

constexpr std::string_view kScheme = "sip:";

/// The keys whose values are shown unchanged.
std::vector<LineKey> ShownKeys(LineKind kind) {
  std::vector<LineKey> shown;
  for (const LineKey& key : TypeOf(kind).keys) {
    if (key.value != nullptr) shown.push_back(key);
  }
  return shown;
}

/// Whether a value that is not shown unchanged would be read.
bool IsValid(std::string_view name, const std::string& value) {
  return std::ranges::find(TypeOf(LineKind::Sip).keys, name, &LineKey::name)->valid(value);
}

/// Rings are counted in whole seconds.
int RingSeconds(const std::string& text, int otherwise) {
  double seconds = otherwise;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  return std::max(1, static_cast<int>(std::lround(seconds)));
}

std::string AccountOf(const std::string& user, const std::string& server) {
  return user.empty() && server.empty() ? "" : std::string(kScheme) + user + '@' + server;
}

/// The section's value, or `otherwise` if it has none.
std::string Value(const LineSection& section, const std::string& key, const std::string& otherwise = "") {
  const auto value = section.values.find(key);
  return value == section.values.end() ? otherwise : value->second;
}

void PutAccount(TelephoneLine& line, const LineSection& section) {
  const auto account = Value(section, "account");
  if (account.empty()) return;
  const auto at = account.find('@');
  line.user = account.substr(kScheme.size(), at - kScheme.size());
  line.server = account.substr(at + 1);
}

std::optional<LineFault> AccountFault(const TelephoneLine& line) {
  if (line.user.empty() && line.server.empty()) return std::nullopt;
  if (line.server.empty()) return LineFault{"txtServer", Words("The server of the account is missing.")};
  if (line.user.empty()) return LineFault{"txtUser", Words("The user of the account is missing.")};
  if (!IsValid("account", AccountOf("user", line.server))) {
    return LineFault{
        "txtServer",
        Words("The server is wrong: expected its name or address, perhaps with \":\" and a port, "
              "for example sip.example.org or 192.168.1.1:5060.")};
  }
  if (!IsValid("account", AccountOf(line.user, line.server))) {
    return LineFault{"txtUser",
                     Words("The user is wrong: expected a name or number without blanks, @ and <>.")};
  }
  return std::nullopt;
}

std::optional<LineFault> ValueFault(const TelephoneLine& line) {
  for (const auto& key : ShownKeys(line.kind)) {
    const auto& value = line.*key.value;
    if ((value.empty() && !key.required) || key.valid(value)) continue;
    const char* fault = value.empty() ? Tr("%1 is missing: expected %2.") : Tr("%1 is wrong: expected %2.");
    return LineFault{key.control, Words(fault).Arg(key.label).Arg(key.expected)};
  }
  if (line.kind == LineKind::Sip && !IsValid("ring_seconds", std::to_string(line.ring_seconds))) {
    return LineFault{"spnRing",
                     Words("The time between rings is wrong: expected a number of seconds from 1 to 60.")};
  }
  return std::nullopt;
}

/// Whether `value` is read back as it was written.
bool CanBeWritten(const std::string& value) {
  const auto read = ParseLines("[x]\ntype = sim\nscript = " + value + '\n', "").sections;
  return read.size() == 1 && read.front().values == std::map<std::string, std::string>{{"script", value}};
}

/// The file format has no quoting, so some texts cannot be stored.
std::optional<LineFault> NotationFault(const TelephoneLine& line) {
  const auto fault = [](std::string_view control, const char* label) {
    return LineFault{control, Words("%1 cannot be stored: expected no blank at its ends, no \";\" at its "
                                    "beginning or after a blank, and no control characters.")
                                  .Arg(label)};
  };
  for (const auto& key : ShownKeys(line.kind)) {
    const auto& value = line.*key.value;
    if (!value.empty() && !CanBeWritten(value)) return fault(key.control, key.label);
  }
  const auto edit = EditOf(line, nullptr);
  const auto read = ParseLines(SectionText(edit), "").sections;
  const bool same = read.size() == 1 && read.front().name == edit.name && read.front().values == edit.values;
  return same ? std::nullopt : std::optional(fault("txtName", Tr("The name")));
}

}  // namespace

TelephoneLine LineOf(const LineSection& section) {
  TelephoneLine line;
  line.name = section.name;
  line.kind = std::ranges::find(LineTypes(), section.type, &LineType::name)->kind;
  line.origin = section.line_number;
  for (const auto& key : ShownKeys(line.kind)) {
    line.*key.value = Value(section, std::string(key.name), line.*key.value);
  }
  if (line.kind != LineKind::Sip) return line;
  PutAccount(line, section);
  line.ring_seconds = RingSeconds(Value(section, "ring_seconds"), line.ring_seconds);
  return line;
}

LineSection EditOf(const TelephoneLine& line, const LineSection* before) {
  LineSection edit{line.name, line.origin, std::string(TypeOf(line.kind).name), {}};
  if (before != nullptr) edit.values = before->values;
  const auto set = [&](const std::string& key, const std::string& value) {
    edit.values.erase(key);
    if (!value.empty()) edit.values[key] = value;
  };
  const TelephoneLine plain;
  for (const auto& key : ShownKeys(line.kind)) {
    const std::string name(key.name);
    const auto& value = line.*key.value;
    const bool given = before != nullptr && before->values.contains(name);
    if (key.required || given || value != plain.*key.value) set(name, value);
  }
  if (line.kind != LineKind::Sip) return edit;
  set("account", AccountOf(line.user, line.server));
  if (line.ring_seconds != (before != nullptr ? LineOf(*before) : plain).ring_seconds) {
    set("ring_seconds", std::to_string(line.ring_seconds));
  }
  return edit;
}

std::optional<LineFault> FaultOf(const TelephoneLine& line) {
  if (line.name.empty()) return LineFault{"txtName", Words("The line's name is missing.")};
  if (auto fault = ValueFault(line)) return fault;
  if (line.kind == LineKind::Sip) {
    if (auto fault = AccountFault(line)) return fault;
  }
  return NotationFault(line);
}

namespace {

std::string PathValue(const LineSection& section, const std::string& key,
                      const std::filesystem::path& folder) {
  const auto path = Value(section, key);
  return path.empty() ? "" : (folder / path).string();
}

std::vector<SipAccount> AccountsOf(const LineSection& section) {
  std::vector<SipAccount> accounts;
  for (const auto number : kAccountNumbers) {
    const auto value = [&](const std::string& key) { return Value(section, key + std::string(number)); };
    if (value("account").empty()) continue;
    accounts.push_back({value("account"), value("auth_user"), value("password")});
    accounts.back().proxy = value("proxy");
    if (auto transport = value("transport"); !transport.empty())
      accounts.back().transport = std::move(transport);
  }
  return accounts;
}

/// Callers hang up long before that.
constexpr int kIdleSeconds = 120;

}  // namespace

SipLineSettings SipSettingsOf(const LineSection& section, const std::filesystem::path& folder) {
  SipLineSettings settings;
  settings.listen = Value(section, "listen", settings.listen);
  settings.accounts = AccountsOf(section);
  settings.installation = folder.string();
  if (const auto srtp = Value(section, "srtp"); !srtp.empty()) {
    settings.srtp = srtp == "yes" ? SrtpUse::kRequired : SrtpUse::kNever;
  }
  settings.codecs = ReadCodecs(Value(section, "codecs"));
  settings.tls_trust = PathValue(section, "tls_trust", folder);
  settings.tls_listen = Value(section, "tls_listen");
  settings.tls_certificate = PathValue(section, "tls_certificate", folder);
  settings.tls_made_certificate = (folder / "sip-certificate.pem").string();
  settings.ring_seconds = RingSeconds(Value(section, "ring_seconds"), settings.ring_seconds);
  return settings;
}

std::chrono::seconds IdleLimitOf(const LineSection& section) {
  return std::chrono::seconds(WholeNumber<int>(Value(section, "idle_seconds")).value_or(kIdleSeconds));
}

std::string ScriptOf(const LineSection& section, const std::filesystem::path& folder) {
  return PathValue(section, "script", folder);
}

}  // namespace orven
