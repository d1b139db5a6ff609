// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/config/line_settings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "adapters/line/config/line_keys.h"

namespace orven {
namespace {

constexpr std::string_view kScheme = "sip:";

struct Field {
  const char* key;
  LineField field;
  const char* label;
  std::string TelephoneLine::*value;
};

/// The keys whose values are shown unchanged.
constexpr std::array kSipFields{
    Field{"listen", LineField::Listen, "The address for calls", &TelephoneLine::listen},
    Field{"auth_user", LineField::AuthUser, "The login name", &TelephoneLine::auth_user},
    Field{"password", LineField::Password, "The password", &TelephoneLine::password},
    Field{"transport", LineField::Transport, "The transport", &TelephoneLine::transport},
    Field{"srtp", LineField::Transport, "The encryption of the sound", &TelephoneLine::srtp},
    Field{"tls_trust", LineField::Transport, "The trusted certificates' path", &TelephoneLine::tls_trust},
};
constexpr std::array kModemFields{Field{"port", LineField::Port, "The port", &TelephoneLine::port}};
constexpr std::array kSimFields{Field{"script", LineField::Script, "The script", &TelephoneLine::script}};

std::span<const Field> FieldsOf(LineKind kind) {
  if (kind == LineKind::Sip) return kSipFields;
  return kind == LineKind::Modem ? std::span<const Field>(kModemFields) : kSimFields;
}

const LineType& TypeOf(LineKind kind) {
  const char* name = kind == LineKind::Sip ? "sip" : kind == LineKind::Modem ? "modem" : "sim";
  return *std::ranges::find(LineTypes(), std::string_view(name), &LineType::name);
}

const LineKey& KeyOf(LineKind kind, std::string_view name) {
  return *std::ranges::find(TypeOf(kind).keys, name, &LineKey::name);
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

void PutAccount(TelephoneLine& line, const LineSection& section) {
  const auto account = section.values.find("account");
  if (account == section.values.end()) return;
  const auto at = account->second.find('@');
  line.user = account->second.substr(kScheme.size(), at - kScheme.size());
  line.server = account->second.substr(at + 1);
}

bool IsAccount(const std::string& user, const std::string& server) {
  return KeyOf(LineKind::Sip, "account").valid(AccountOf(user, server));
}

std::optional<LineFault> AccountFault(const TelephoneLine& line) {
  if (line.user.empty() && line.server.empty()) return std::nullopt;
  if (line.server.empty()) return LineFault{LineField::Server, "The server of the account is missing."};
  if (line.user.empty()) return LineFault{LineField::User, "The user of the account is missing."};
  if (!IsAccount("user", line.server)) {
    return LineFault{LineField::Server,
                     "The server is wrong: expected its name or address, perhaps with \":\" and a port, for "
                     "example sip.example.org or 192.168.1.1:5060."};
  }
  if (!IsAccount(line.user, line.server)) {
    return LineFault{LineField::User,
                     "The user is wrong: expected a name or number without blanks, @ and <>."};
  }
  return std::nullopt;
}

std::optional<LineFault> ValueFault(const TelephoneLine& line) {
  for (const auto& field : FieldsOf(line.kind)) {
    const auto& value = line.*field.value;
    const auto& key = KeyOf(line.kind, field.key);
    if ((value.empty() && !key.required) || key.valid(value)) continue;
    return LineFault{field.field, std::string(field.label) + (value.empty() ? " is missing" : " is wrong") +
                                      ": expected " + std::string(key.expected) + '.'};
  }
  const auto& ring = KeyOf(LineKind::Sip, "ring_seconds");
  if (line.kind == LineKind::Sip && !ring.valid(std::to_string(line.ring_seconds))) {
    return LineFault{LineField::RingSeconds,
                     "The time between rings is wrong: expected " + std::string(ring.expected) + '.'};
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
  const auto fault = [](LineField field, const char* label) {
    return LineFault{field,
                     std::string(label) +
                         " cannot be stored: expected no blank at its ends, no \";\" at its beginning or "
                         "after a blank, and no control characters."};
  };
  for (const auto& field : FieldsOf(line.kind)) {
    const auto& value = line.*field.value;
    if (!value.empty() && !CanBeWritten(value)) return fault(field.field, field.label);
  }
  const auto edit = EditOf(line, nullptr);
  const auto read = ParseLines(SectionText(edit), "").sections;
  const bool same = read.size() == 1 && read.front().name == edit.name && read.front().values == edit.values;
  return same ? std::nullopt : std::optional(fault(LineField::Name, "The name"));
}

}  // namespace

TelephoneLine LineOf(const LineSection& section) {
  TelephoneLine line;
  line.name = section.name;
  line.kind = section.type == "sip"     ? LineKind::Sip
              : section.type == "modem" ? LineKind::Modem
                                        : LineKind::Sim;
  line.origin = section.line_number;
  for (const auto& field : FieldsOf(line.kind)) {
    const auto value = section.values.find(field.key);
    if (value != section.values.end()) line.*field.value = value->second;
  }
  if (line.kind != LineKind::Sip) return line;
  PutAccount(line, section);
  const auto ring = section.values.find("ring_seconds");
  if (ring != section.values.end()) line.ring_seconds = RingSeconds(ring->second, line.ring_seconds);
  return line;
}

LineEdit EditOf(const TelephoneLine& line, const LineSection* before) {
  LineEdit edit{line.origin, line.name, std::string(TypeOf(line.kind).name), {}};
  if (before != nullptr) edit.values = before->values;
  const auto set = [&](const std::string& key, const std::string& value) {
    edit.values.erase(key);
    if (!value.empty()) edit.values[key] = value;
  };
  const TelephoneLine plain;
  for (const auto& field : FieldsOf(line.kind)) {
    const auto& value = line.*field.value;
    const bool given = before != nullptr && before->values.contains(field.key);
    const bool required = std::string_view(field.key) == "listen";
    if (required || given || value != plain.*field.value) set(field.key, value);
  }
  if (line.kind != LineKind::Sip) return edit;
  set("account", AccountOf(line.user, line.server));
  if (line.ring_seconds != (before != nullptr ? LineOf(*before) : plain).ring_seconds) {
    set("ring_seconds", std::to_string(line.ring_seconds));
  }
  return edit;
}

std::optional<LineFault> FaultOf(const TelephoneLine& line) {
  if (line.name.empty()) return LineFault{LineField::Name, "The line's name is missing."};
  if (auto fault = ValueFault(line)) return fault;
  if (line.kind == LineKind::Sip) {
    if (auto fault = AccountFault(line)) return fault;
  }
  return NotationFault(line);
}

namespace {

/// The section's value, or `otherwise` if it has none.
std::string Value(const LineSection& section, const std::string& key, const std::string& otherwise = "") {
  const auto value = section.values.find(key);
  return value == section.values.end() ? otherwise : value->second;
}

std::string PathValue(const LineSection& section, const std::string& key,
                      const std::filesystem::path& folder) {
  const auto path = Value(section, key);
  return path.empty() ? "" : (folder / path).string();
}

/// Callers hang up long before that.
constexpr int kIdleSeconds = 120;

}  // namespace

SipLineSettings SipSettingsOf(const LineSection& section, const std::filesystem::path& folder) {
  SipLineSettings settings;
  settings.name = section.name;
  settings.listen = Value(section, "listen", settings.listen);
  settings.account = Value(section, "account");
  settings.auth_user = Value(section, "auth_user");
  settings.password = Value(section, "password");
  settings.transport = Value(section, "transport", settings.transport);
  if (const auto srtp = Value(section, "srtp"); !srtp.empty()) {
    settings.srtp = srtp == "yes" ? SrtpUse::kRequired : SrtpUse::kNever;
  }
  settings.tls_trust = PathValue(section, "tls_trust", folder);
  settings.tls_listen = Value(section, "tls_listen");
  settings.tls_certificate = PathValue(section, "tls_certificate", folder);
  settings.tls_made_certificate = (folder / "sip-certificate.pem").string();
  settings.ring_seconds = RingSeconds(Value(section, "ring_seconds"), settings.ring_seconds);
  return settings;
}

std::chrono::seconds IdleLimitOf(const LineSection& section) {
  const auto text = Value(section, "idle_seconds");
  int seconds = kIdleSeconds;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  return std::chrono::seconds(seconds);
}

std::string ScriptOf(const LineSection& section, const std::filesystem::path& folder) {
  return PathValue(section, "script", folder);
}

}  // namespace orven
