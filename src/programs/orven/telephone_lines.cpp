// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/orven/telephone_lines.h"

#include <filesystem>

#include "adapters/line/service/lines_file.h"
#include "adapters/line/setup/line_settings.h"
#include "adapters/line/sim/sim_line.h"
#include "adapters/line/sip/sip_line.h"

namespace orven {
namespace {

std::unique_ptr<LineDriver> MakeSip(const LineSection& section, const std::filesystem::path& folder,
                                    const std::function<void(const std::string&)>& report,
                                    const std::shared_ptr<RegistrationState>& state) {
  auto settings = SipSettingsOf(section, folder);
  settings.report = report;
  settings.registration_news = [state](const RegistrationNews& news) { state->Take(news); };
  return MakeSipLine(settings);
}

std::unique_ptr<LineDriver> MakeSim(const LineSection& section, const std::filesystem::path& folder,
                                    EventLoop& loop, std::vector<std::string>& problems) {
  const auto script = ScriptOf(section, folder);
  return std::make_unique<SimLine>(section.name, loop,
                                   script.empty() ? SimScript{} : ReadSimScript(script, problems));
}

}  // namespace

std::vector<std::unique_ptr<LineDriver>> MakeTelephoneLines(
    const std::string& path, EventLoop& loop, std::vector<std::string>& problems,
    const std::function<void(const std::string&)>& report, LineStates& states) {
  const auto file = ReadLines(path);
  const auto folder = std::filesystem::path(path).parent_path();
  problems.insert(problems.end(), file.complaints.begin(), file.complaints.end());
  std::vector<std::unique_ptr<LineDriver>> lines;
  states.Clear();
  for (const auto& section : file.sections) {
    if (section.type == "sip") {
      lines.push_back(MakeSip(section, folder, report, states.Add(section)));
    } else if (section.type == "sim") {
      states.Add(section);
      lines.push_back(MakeSim(section, folder, loop, problems));
    } else {
      problems.push_back("lines.ini:" + std::to_string(section.line_number) + ": [" + section.name +
                         "] is a " + section.type +
                         " line, which this version of ORVEN cannot use; the other lines work");
    }
  }
  return lines;
}

}  // namespace orven
