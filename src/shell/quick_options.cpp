// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/quick_options.h"

#include "base/conversions.h"
#include "core/error_trap.h"

namespace orven {
namespace {

/// Both the record check box and the ring box have always logged under this name.
constexpr const char* kLabel = "ErrchkRecMessage ";

}  // namespace

void QuickOptions::SetRecordMessage(bool on) {
  const ErrorTrap trap(log_, kLabel);
  shared_.record_messages = on;
  settings_.RecordMessage = on ? 1 : 0;
  trap([&] { store_.Set("RecordMessage", on ? "1" : "0"); });
}

void QuickOptions::SetRings(const std::string& text) {
  const ErrorTrap trap(log_, kLabel);
  trap([&] {
    const auto count = ToInt16(text);
    store_.Set("NumOfRing", text);
    settings_.NumOfRing = count;
    shared_.num_of_ring = count;
  });
}

void QuickOptions::SetGreeting(const std::string& name) {
  const auto trap = ErrorTrap::Silent();
  settings_.Greeting = name;
  shared_.greeting_file = name + ".wav";
  trap([&] { store_.Set("Greeting", name); });
}

}  // namespace orven
