// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>

#include "adapters/desktop/autostart_entry.h"
#include "platform/registry.h"

namespace orven {

/// A registry whose value "ORVEN" under the key of the programs that start with the system (LocalMachine,
/// SOFTWARE\Microsoft\Windows\CurrentVersion\Run) is also the desktop's autostart entry. It is stored below
/// like every other value, and is there as long as the desktop starts the program, and only then: a check box
/// that shows it tells the truth, whoever changed the entry.
///
/// Writing it makes the entry. One that is switched off, or starts the program in another application folder,
/// stays as it is at a first start (no key SOFTWARE\ORVEN is there yet): only a person who checks the box
/// may undo what he chose. Deleting the value removes the entry, also when no value was stored; one that does
/// not start this program is left alone, and when it cannot be removed the value stays. What fails at the
/// entry is reported; writing succeeds all the same when the registry below could store the value.
/// User-interface thread.
class AutostartRegistry final : public Registry {
 public:
  /// `stored` outlives this object. `report` takes one sentence for the log; it must not call the registry.
  AutostartRegistry(Registry& stored, AutostartSource source, std::function<void(const std::string&)> report)
      : stored_(stored), entry_(std::move(source)), report_(std::move(report)) {}

  bool KeyExists(RegistryRoot root, const std::string& key) override;
  std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                     const std::string& name) override;
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override;
  bool Delete(RegistryRoot root, const std::string& key, const std::string& name) override;

 private:
  bool Attempt(const char* what, const std::function<void()>& change);

  Registry& stored_;
  AutostartEntry entry_;
  std::function<void(const std::string&)> report_;
};

}  // namespace orven
