// SPDX-License-Identifier: GPL-3.0-or-later
#include "setup/setup_steps.h"

#include "platform/telephone_lines.h"

namespace orven {
namespace {

/// The greeting that is delivered with the program.
constexpr const char* kDeliveredGreeting = "Default";

/// The setting that a finished page leaves.
const char* NameOf(SetupPage page) {
  switch (page) {
    case SetupPage::Telephone: return "SetupTelephone";
    case SetupPage::Greeting: return "SetupGreeting";
    case SetupPage::Away: return "SetupAway";
    case SetupPage::Ready: break;
  }
  return "SetupReady";
}

}  // namespace

void SetupSteps::Finish(SetupPage page) {
  if (!Finished(page)) store_.Set(NameOf(page), "1");
}

bool SetupSteps::Finished(SetupPage page) const {
  return store_.Value(NameOf(page)) == "1";
}

bool SetupSteps::HasOwnLine() const {
  for (std::int32_t index = 0; index < Tapi1_.GetNumDevs(); ++index) {
    DeviceCapabilities device;
    Tapi1_.GetDevCaps(index, device);
    if (device.device_name != kFirstLine) return true;
  }
  return false;
}

SetupOffers SetupSteps::Offers() const {
  return {.telephone = !HasOwnLine() && !Finished(SetupPage::Telephone),
          .greeting = settings_.Greeting == kDeliveredGreeting && !Finished(SetupPage::Greeting),
          .password = !Finished(SetupPage::Away)};
}

}  // namespace orven
