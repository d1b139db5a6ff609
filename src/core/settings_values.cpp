// SPDX-License-Identifier: GPL-3.0-or-later
//
// A setting as its field, its control and the registry hold it.
#include <algorithm>
#include <cmath>

#include "base/conversions.h"
#include "core/mdlReg.h"
#include "core/settings.h"

namespace orven {
namespace {

std::string Flag(bool on) {
  return on ? "1" : "0";
}

bool HasNoField(const SettingRow& row) {
  return std::holds_alternative<std::monostate>(row.field);
}

bool IsOn(const SettingRow& row, const std::string& stored) {
  if (!HasNoField(row)) return ToInt16(stored) != 0;
  return (stored == kNotFound && row.first != nullptr ? row.first : stored) != "0";
}

}  // namespace

void Assign(Settings& settings, const SettingRow& row, const std::string& text) {
  struct Converter {
    Settings& settings;
    const std::string& text;
    void operator()(std::monostate) const {}
    void operator()(std::int16_t Settings::*field) const { settings.*field = ToInt16(text); }
    void operator()(std::int32_t Settings::*field) const { settings.*field = ToInt32(text); }
    void operator()(std::string Settings::*field) const { settings.*field = text; }
  };
  std::visit(Converter{settings, text}, row.field);
}

std::string FieldText(const Settings& settings, const SettingRow& row) {
  struct Converter {
    const Settings& settings;
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(std::int16_t Settings::*field) const { return std::to_string(settings.*field); }
    std::string operator()(std::int32_t Settings::*field) const { return std::to_string(settings.*field); }
    std::string operator()(std::string Settings::*field) const { return settings.*field; }
  };
  return std::visit(Converter{settings}, row.field);
}

bool IsFlag(const SettingRow& row) {
  return row.kind == Row::Kind::Check ||
         (row.kind == Row::Kind::Choice && std::holds_alternative<std::int16_t Settings::*>(row.field));
}

std::string ToShown(const SettingRow& row, const std::string& stored) {
  if (IsFlag(row)) return Flag(IsOn(row, stored));
  if (row.kind == Row::Kind::Choice) return std::to_string(ToInt32(stored));
  if (row.kind == Row::Kind::Slider) {
    const auto steps = static_cast<int>(std::nearbyint(double(ToInt16(stored)) / row.scale));
    return std::to_string(std::clamp(steps, row.least, row.most));
  }
  if (row.kind == Row::Kind::Number) ToInt32(stored);  // throws when it is not one
  return HasNoField(row) && stored == kNotFound ? "" : stored;
}

std::string ToStored(const SettingRow& row, const std::string& shown) {
  return row.kind == Row::Kind::Slider ? std::to_string(ToInt32(shown) * row.scale) : shown;
}

}  // namespace orven
