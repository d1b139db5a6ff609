// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/telephone_lines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>

#include "adapters/line/service/lines_file.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/line/sip/sip_line.h"

namespace orven {
namespace {

/// The section's value, or `otherwise` where the file gives none.
std::string Value(const LineSection& section, const std::string& key, const std::string& otherwise) {
  const auto value = section.values.find(key);
  return value == section.values.end() ? otherwise : value->second;
}

/// Whole seconds: a telephone rings no finer than that.
int RingSeconds(const std::string& text, int otherwise) {
  double seconds = otherwise;
  std::from_chars(text.data(), text.data() + text.size(), seconds);
  return std::max(1, static_cast<int>(std::lround(seconds)));
}

/// Paths of a line's certificates begin at the folder of lines.ini, where our own certificate is, too.
void CompletePaths(LineSection& section, const std::filesystem::path& folder) {
  for (const char* key : {"tls_trust", "tls_certificate"}) {
    const auto path = section.values.find(key);
    if (path != section.values.end()) path->second = (folder / path->second).string();
  }
  section.values["tls_made_certificate"] = (folder / "sip-certificate.pem").string();
}

std::unique_ptr<LineDriver> MakeSip(const LineSection& section,
                                    const std::function<void(const std::string&)>& report,
                                    const std::shared_ptr<RegistrationState>& state) {
  SipLineSettings settings;
  settings.name = section.name;
  settings.listen = Value(section, "listen", settings.listen);
  settings.account = Value(section, "account", "");
  settings.auth_user = Value(section, "auth_user", "");
  settings.password = Value(section, "password", "");
  settings.transport = Value(section, "transport", settings.transport);
  if (const auto srtp = Value(section, "srtp", ""); !srtp.empty()) {
    settings.srtp = srtp == "yes" ? SrtpUse::kRequired : SrtpUse::kNever;
  }
  settings.tls_trust = Value(section, "tls_trust", "");
  settings.tls_listen = Value(section, "tls_listen", "");
  settings.tls_certificate = Value(section, "tls_certificate", "");
  settings.tls_made_certificate = Value(section, "tls_made_certificate", "");
  settings.ring_seconds = RingSeconds(Value(section, "ring_seconds", ""), settings.ring_seconds);
  settings.report = report;
  settings.registration_news = [state](const RegistrationNews& news) { state->Take(news); };
  return MakeSipLine(settings);
}

std::unique_ptr<LineDriver> MakeSim(const LineSection& section, EventLoop& loop,
                                    std::vector<std::string>& problems) {
  const auto script = Value(section, "script", "");
  return std::make_unique<SimLine>(section.name, loop,
                                   script.empty() ? SimScript{} : ReadSimScript(script, problems));
}

}  // namespace

std::vector<std::unique_ptr<LineDriver>> MakeTelephoneLines(
    const std::string& path, EventLoop& loop, std::vector<std::string>& problems,
    const std::function<void(const std::string&)>& report, LineStates& states) {
  auto file = ReadLines(path);
  for (auto& section : file.sections) CompletePaths(section, std::filesystem::path(path).parent_path());
  problems.insert(problems.end(), file.complaints.begin(), file.complaints.end());
  std::vector<std::unique_ptr<LineDriver>> lines;
  states.Clear();
  for (const auto& section : file.sections) {
    if (section.type == "sip") {
      lines.push_back(MakeSip(section, report, states.Add(section)));
    } else if (section.type == "sim") {
      states.Add(section);
      lines.push_back(MakeSim(section, loop, problems));
    } else {
      problems.push_back("lines.ini:" + std::to_string(section.line_number) + ": [" + section.name +
                         "] is a " + section.type +
                         " line, which this version of ORVEN cannot use; the other lines work");
    }
  }
  return lines;
}

}  // namespace orven
