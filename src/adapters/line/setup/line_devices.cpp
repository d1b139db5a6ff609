// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/line/setup/line_devices.h"

#include <filesystem>

#include "adapters/line/config/line_settings.h"
#include "adapters/line/config/lines_ini.h"
#include "adapters/line/modem/modem_line.h"
#include "adapters/line/setup/modem_probe.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/line/sip/sip_line.h"

namespace orven {
namespace {

/// 8000 samples a second of 16 bits.
constexpr std::int32_t kModemRate = 128'000;

std::unique_ptr<LineDriver> MakeSip(const LineSection& section, const std::filesystem::path& folder,
                                    const std::function<void(const std::string&)>& report,
                                    const LineState& state) {
  auto settings = SipSettingsOf(section, folder);
  settings.report = report;
  settings.registration_news = [state = state.registration](const RegistrationNews& news) {
    state->Take(news);
  };
  return MakeSipLine(settings);
}

std::vector<std::string> PortsFound() {
  std::vector<std::string> paths;
  for (const auto& port : FindSerialPorts()) paths.push_back(port.path);
  return paths;
}

std::unique_ptr<LineDriver> MakeModem(const LineSection& section, const Clock& clock,
                                      const std::function<void(const std::string&)>& report,
                                      const LineState& state) {
  ModemLineSettings settings;
  settings.port = section.values.at("port");
  settings.find_ports = PortsFound;
  settings.report = [report, name = section.name](const std::string& text) {
    report('[' + name + "] " + text);
  };
  settings.state_news = [state = state.modem](const std::string& words) { state->Take(words); };
  return MakeModemLine(std::move(settings), clock);
}

std::unique_ptr<LineDriver> MakeSim(const LineSection& section, const std::filesystem::path& folder,
                                    EventLoop& loop, std::vector<std::string>& problems) {
  const auto script = ScriptOf(section, folder);
  return std::make_unique<SimLine>(loop, script.empty() ? SimScript{} : ReadSimScript(script, problems));
}

}  // namespace

std::vector<TelephoneDevice> MakeTelephoneLines(const std::string& path, EventLoop& loop, const Clock& clock,
                                                std::vector<std::string>& problems,
                                                const std::function<void(const std::string&)>& report,
                                                LineStates& states) {
  const auto file = ReadLines(path);
  const auto folder = std::filesystem::path(path).parent_path();
  problems.insert(problems.end(), file.complaints.begin(), file.complaints.end());
  std::vector<TelephoneDevice> lines;
  states.clear();
  for (const auto& section : file.sections) {
    const auto& state = states.emplace_back(LineState{.section = section});
    auto& line =
        lines.emplace_back(TelephoneDevice{VoiceDevice(section.name), nullptr, IdleLimitOf(section)});
    if (section.type == "sip") {
      line.driver = MakeSip(section, folder, report, state);
    } else if (section.type == "modem") {
      line.driver = MakeModem(section, clock, report, state);
      line.capabilities.max_rate = kModemRate;
      line.capabilities.data_mode = true;
    } else {
      line.driver = MakeSim(section, folder, loop, problems);
    }
  }
  return lines;
}

}  // namespace orven
