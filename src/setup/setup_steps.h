// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/settings.h"
#include "core/settings_store.h"
#include "telephony/telephony_control.h"

namespace orven {

/// The pages of the set-up assistant, in their order.
enum class SetupPage { Telephone, Greeting, Away, Ready };

/// What a person has still to do before the machine answers as he likes: what an empty call list offers.
struct SetupOffers {
  bool telephone = false;
  bool greeting = false;
  bool password = false;

  bool operator==(const SetupOffers&) const = default;
};

/// Remembers which pages of the set-up assistant are done. User-interface thread.
class SetupSteps {
 public:
  SetupSteps(SettingsStore& store, const Settings& settings, TelephonyControl& Tapi1)
      : store_(store), settings_(settings), Tapi1_(Tapi1) {}

  /// The page has been finished in the assistant.
  void Finish(SetupPage page);

  /// What is neither finished there nor done in another way: a line other than that of a fresh installation
  /// is configured, a greeting other than the delivered one is chosen.
  SetupOffers Offers() const;

 private:
  bool HasOwnLine() const;
  bool Finished(SetupPage page) const;

  SettingsStore& store_;
  const Settings& settings_;
  TelephonyControl& Tapi1_;
};

}  // namespace orven
