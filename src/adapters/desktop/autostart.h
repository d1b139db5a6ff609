// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace orven {

/// The contents of an installation's autostart entry. Texts are absolute paths, UTF-8.
struct AutostartSource {
  /// The file that the desktop reads: orven.desktop in the folder autostart of $XDG_CONFIG_HOME.
  std::string file;
  std::string program;
  std::string application_folder;
  /// The program finds that folder only by $ORVEN_HOME.
  bool folder_by_environment = false;
};

/// The entry's file for this user (XDG base directories).
std::string AutostartFile();

/// A command line as the value of the Exec key: arguments are quoted where necessary and per cent signs
/// doubled (freedesktop.org, Desktop Entry 1.5, "The Exec key"). The escapes that every value needs, of
/// backslashes and line ends, are still missing.
std::string ExecCommand(const std::vector<std::string>& arguments);

/// The file by which the desktop starts a program at login (freedesktop.org, Desktop Application Autostart
/// 0.5).
///
/// The user's changes to it stay, including a changed command; an unchanged command is updated when the
/// program moves to another folder. A file that is not a desktop entry is set aside. Failures throw
/// RuntimeError with the path in the text. Any one thread.
class AutostartEntry {
 public:
  enum class State {
    Absent,    ///< no file, or one that cannot be read
    Foreign,   ///< it starts the program in another application folder, which exists
    Disabled,  ///< switched off by the user or in the desktop's settings
    Enabled,
  };

  explicit AutostartEntry(AutostartSource source) : source_(std::move(source)) {}

  State Look() const;

  const std::string& Program() const { return source_.program; }

  /// Makes the program start at login, whatever the entry's state is.
  void Enable();

  /// Removes the entry, unless it is Foreign.
  void Remove();

 private:
  AutostartSource source_;
};

/// A registry whose value "ORVEN" under the key of the programs that start with the system (LocalMachine,
/// SOFTWARE\Microsoft\Windows\CurrentVersion\Run) is also the desktop's autostart entry. The value is stored
/// in the registry below, too, but exists only while the desktop starts the program, so that a check box that
/// shows it is right even if another program has changed the entry.
///
/// Writing the value makes the entry. An entry that is disabled or foreign stays as it is at a first start
/// (the key SOFTWARE\ORVEN does not exist yet): only the user may change that, by checking the box. Deleting
/// the value removes the entry, even if no value was stored; a disabled or foreign entry stays, and if the
/// entry cannot be removed, so does the value. Failures of the entry are reported; writing still succeeds if
/// the registry below has stored the value. User-interface thread.
class AutostartRegistry final : public Registry {
 public:
  /// `stored` outlives this object. `report` takes a sentence for the log and must not call the registry.
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
