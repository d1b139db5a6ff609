// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/line_settings.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace orven {
namespace {

/// The section's value, or `otherwise` where the file gives none.
std::string Value(const LineSection& section, const std::string& key, const std::string& otherwise = "") {
  const auto value = section.values.find(key);
  return value == section.values.end() ? otherwise : value->second;
}

std::string PathValue(const LineSection& section, const std::string& key,
                      const std::filesystem::path& folder) {
  const auto path = Value(section, key);
  return path.empty() ? "" : (folder / path).string();
}

/// Whole seconds: a telephone rings no finer than that.
int RingSeconds(const std::string& text, int otherwise) {
  double seconds = otherwise;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  return std::max(1, static_cast<int>(std::lround(seconds)));
}

/// Nobody waits so long for something to happen on a telephone.
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
