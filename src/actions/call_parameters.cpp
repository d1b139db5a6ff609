// SPDX-License-Identifier: GPL-3.0-or-later
#include "actions/call_parameters.h"

#include <string_view>

#include "core/conversions.h"

namespace orven {
namespace {

void Fill(std::string& text, std::string_view placeholder, const std::string& value) {
  const auto found = text.find(placeholder);
  if (found == std::string::npos) return;
  NarrowToInt16(static_cast<std::int64_t>(found) + 1);
  text.replace(found, placeholder.size(), value);
}

}  // namespace

std::string SubstituteParameters(std::string& text, const CallParameters& call) {
  Fill(text, "<NUMBER>", call.number);
  Fill(text, "<NAME>", call.name);
  Fill(text, "<MESSAGE_PATH>", call.message_path);
  Fill(text, "<DATE>", call.date);
  Fill(text, "<TIME>", call.time);
  return text;
}

}  // namespace orven
