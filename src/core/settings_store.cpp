// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/settings_store.h"

#include <variant>

#include "base/conversions.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

constexpr const char* kGridLines = "GridLines";

}  // namespace

std::string SettingsStore::Value(std::string_view name) {
  return GetRegValue(registry_, RegistryRoot::LocalMachine, kSettingsKey, std::string(name));
}

bool SettingsStore::IsOn(std::string_view name) {
  return ToShown(RowOf(name), Value(name)) == "1";
}

void SettingsStore::Set(std::string_view name, const std::string& text) {
  SetRegValue(registry_, RegistryRoot::LocalMachine, kSettingsKey, std::string(name), kRegString, text);
}

void SettingsStore::Read(Group group, const ErrorTrap& trap) {
  for (const auto* row : RowsOf(group)) Read(row->name, trap);
}

void SettingsStore::Read(std::string_view name, const ErrorTrap& trap) {
  trap([&] { Assign(settings_, RowOf(name), Value(name)); });
}

void SettingsStore::GetMainOptions() {
  Read(Group::Options, ErrorTrap(log_, "ErrGetMainOptions "));
}
void SettingsStore::GetMainAction() {
  Read(Group::Actions, ErrorTrap(log_, "ErrGetMainAction "));
}
void SettingsStore::GetMainEvents() {
  Read(Group::Events, ErrorTrap(log_, "ErrGetMainEvents "));
}

void SettingsStore::GetLogProperties() {
  Read(Group::Log, ErrorTrap::Silent());
}

Choices SettingsStore::StoredChoices(Group group, const ErrorTrap& trap) {
  Choices choices;
  for (const auto* row : RowsOf(group, &Order::load)) {
    if (row->kind == Row::Kind::None) continue;
    auto& choice = choices[std::string(row->name)];
    if (IsFlag(*row)) choice = "0";
    trap([&] { choice = ToShown(*row, Value(row->name)); });
  }
  return choices;
}

Choices SettingsStore::UsedChoices(Group group) {
  Choices choices;
  for (const auto* row : RowsOf(group)) {
    const bool read_when_used = std::holds_alternative<std::monostate>(row->field);
    const auto used = read_when_used ? Value(row->name) : FieldText(settings_, *row);
    choices[std::string(row->name)] = ToShown(*row, used);
  }
  return choices;
}

void SettingsStore::GetView(PlacedWindow& window) {
  const WindowGeometry present = window.Geometry();
  settings_.MeTop = present.top;
  settings_.MeLeft = present.left;
  settings_.MeWidth = present.width;
  settings_.MeHeight = present.height;
  const ErrorTrap trap(log_, "ErrGetView ");
  Read(Group::Window, trap);
  if (present.state != 0) return;
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
  const ErrorTrap trap(log_, "ErrGetAppOption ");
  for (const char* name : {"Modem", "MassagesPath"}) Read(name, trap);
  if (settings_.MassagesPath.empty()) {
    settings_.MassagesPath = home_.Path("\\Messages\\");
    Set("MassagesPath", settings_.MassagesPath);
  }
  TakeMaxRec(trap);
  use_messages_path();
  for (const char* name : {"cLogCalls", "cLogSys"}) Read(name, trap);
}

}  // namespace orven
