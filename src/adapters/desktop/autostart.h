// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace orven {

/// What the autostart entry of one installation is made of. Texts are absolute paths, UTF-8.
struct AutostartSource {
  /// The file that the desktop reads: orven.desktop in the folder autostart of $XDG_CONFIG_HOME.
  std::string file;
  std::string program;
  std::string application_folder;
  /// Whether the program finds that folder only by $ORVEN_HOME.
  bool folder_by_environment = false;
};

/// Where the desktop of this process's user looks for the entry (XDG base directories).
std::string AutostartFile();

/// A command with its arguments as a value of the Exec key: each argument quoted where it needs to be, and
/// its per cent signs doubled (the freedesktop.org Desktop Entry format 1.5, "The Exec key"). Backslashes and
/// line ends are not escaped yet as those of every value are.
std::string ExecCommand(const std::vector<std::string>& arguments);

/// The file by which the desktop starts a program at login (freedesktop.org, Desktop Application Autostart
/// 0.5).
///
/// What a person changed in it stays, his own command as well; while the command is still the one that was
/// written here, it follows the program to another place. A file that is no desktop entry is set aside.
/// Failures throw RuntimeError with the path in the text. Any one thread.
class AutostartEntry {
 public:
  enum class State {
    Absent,    ///< no file, or one that cannot be read
    Foreign,   ///< it starts the program in another application folder, which is still there
    Disabled,  ///< a person, or the settings of the desktop, switched it off
    Enabled,
  };

  explicit AutostartEntry(AutostartSource source) : source_(std::move(source)) {}

  State Look() const;

  const std::string& Program() const { return source_.program; }

  /// Makes the program start at login, whatever the state was.
  void Enable();

  /// Removes the entry, unless it is Foreign.
  void Remove();

 private:
  AutostartSource source_;
};

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
