// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/settings_store.h"

#include "base/conversions.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

constexpr const char* kGridLines = "GridLines";

void Assign(Settings& settings, const SettingDefinition& definition, const std::string& text) {
  struct Converter {
    Settings& settings;
    const std::string& text;
    void operator()(std::int16_t Settings::*field) const { settings.*field = ToInt16(text); }
    void operator()(std::int32_t Settings::*field) const { settings.*field = ToInt32(text); }
    void operator()(std::string Settings::*field) const { settings.*field = text; }
  };
  std::visit(Converter{settings, text}, definition.field);
}

}  // namespace

std::string SettingsStore::Value(std::string_view name) {
  return GetRegValue(registry_, RegistryRoot::LocalMachine, kSettingsKey, std::string(name));
}

void SettingsStore::Set(const std::string& name, const std::string& text) {
  SetRegValue(registry_, RegistryRoot::LocalMachine, kSettingsKey, name, kRegString, text);
}

void SettingsStore::Read(unsigned reader, const std::string& label) {
  Read(reader, ErrorTrap(log_, label));
}

void SettingsStore::Read(unsigned reader, const ErrorTrap& trap) {
  for (const auto& definition : SettingsSchema()) {
    if ((definition.readers & reader) == 0) continue;
    trap([&] { Assign(settings_, definition, Value(definition.name)); });
  }
}

void SettingsStore::GetMainOptions() {
  Read(kMainOptionsReader, "ErrGetMainOptions ");
}
void SettingsStore::GetMainAction() {
  Read(kMainActionReader, "ErrGetMainAction ");
}
void SettingsStore::GetMainEvents() {
  Read(kMainEventsReader, "ErrGetMainEvents ");
}

void SettingsStore::GetLogProperties() {
  Read(kLogPropertiesReader, ErrorTrap::Silent());
}

void SettingsStore::GetView(PlacedWindow& window) {
  const WindowGeometry present = window.Geometry();
  settings_.MeTop = present.top;
  settings_.MeLeft = present.left;
  settings_.MeWidth = present.width;
  settings_.MeHeight = present.height;
  Read(kViewReader, "ErrGetView ");
  if (present.state != 0) return;
  const ErrorTrap trap(log_, "ErrGetView ");
  trap([&] {
    window.Place({settings_.MeTop, settings_.MeLeft, settings_.MeWidth, settings_.MeHeight, present.state});
  });
}

void SettingsStore::SetView(const PlacedWindow& window, bool hidden) {
  const WindowGeometry geometry = window.Geometry();
  if (hidden || geometry.state != 0) return;
  const NamedRegistryValue values[] = {RegString("MeTop", std::to_string(geometry.top)),
                                       RegString("MeLeft", std::to_string(geometry.left)),
                                       RegString("MeWinState", std::to_string(geometry.state)),
                                       RegString("MeWidth", std::to_string(geometry.width)),
                                       RegString("MeHeight", std::to_string(geometry.height))};
  const ErrorTrap trap(log_, "ErrSetView ");
  trap([&] { registry_.Write(RegistryRoot::LocalMachine, kSettingsKey, values); });
}

bool SettingsStore::GetGridLines() {
  return Value(kGridLines) != "0";
}

void SettingsStore::SetGridLines(bool on) {
  Set(kGridLines, on ? "1" : "0");
}

void SettingsStore::TakeMaxRec(const ErrorTrap& trap) {
  trap([&] { settings_.max_record_seconds = NarrowToInt16(std::int64_t{settings_.MaxRec} * 60); });
}

void SettingsStore::GetAppOptions(const std::function<void()>& use_messages_path) {
  const std::string label = "ErrGetAppOption ";
  const ErrorTrap trap(log_, label);
  Read(kAppOptionsReader, label);
  if (settings_.MassagesPath.empty()) {
    settings_.MassagesPath = shared_.InApplicationFolder("\\Messages\\");
    Set("MassagesPath", settings_.MassagesPath);
  }
  TakeMaxRec(trap);
  use_messages_path();
  Read(kLogFlagsReader, label);
}

}  // namespace orven
