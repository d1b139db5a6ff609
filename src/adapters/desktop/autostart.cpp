// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/autostart.h"

#include <glib.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/durable_file.h"
#include "base/paths.h"
#include "base/runtime_error.h"
#include "base/text.h"

namespace orven {
namespace {

namespace fs = std::filesystem;

constexpr const char* kGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* kExec = G_KEY_FILE_DESKTOP_KEY_EXEC;
constexpr const char* kProgram = G_KEY_FILE_DESKTOP_KEY_TRY_EXEC;  ///< without it the desktop skips the entry
constexpr const char* kHidden = G_KEY_FILE_DESKTOP_KEY_HIDDEN;
constexpr const char* kSwitch = "X-GNOME-Autostart-enabled";
constexpr const char* kHome = "X-ORVEN-Home";  ///< the application folder that the entry belongs to

/// The entry has no secrets.
constexpr unsigned kMode = 0644;

struct Deleter {
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
  void operator()(GError* error) const { g_error_free(error); }
  void operator()(gchar* text) const { g_free(text); }
};
using KeyFile = std::unique_ptr<GKeyFile, Deleter>;
using Text = std::unique_ptr<gchar, Deleter>;

enum class Found { Entry, Nothing, Rubbish };

Found Load(GKeyFile* entry, const std::string& path) {
  constexpr auto kEverything =
      static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
  GError* failure = nullptr;
  if (g_key_file_load_from_file(entry, path.c_str(), kEverything, &failure) != FALSE) {
    return g_key_file_has_group(entry, kGroup) != FALSE ? Found::Entry : Found::Rubbish;
  }
  const std::unique_ptr<GError, Deleter> error(failure);
  if (g_error_matches(failure, G_FILE_ERROR, G_FILE_ERROR_NOENT) != FALSE) return Found::Nothing;
  if (failure->domain == G_KEY_FILE_ERROR) return Found::Rubbish;
  throw RuntimeError(ErrorNumber::PathAccessError, path + " (" + failure->message + ")");
}

std::optional<std::string> Value(GKeyFile* entry, const char* key) {
  const Text text(g_key_file_get_string(entry, kGroup, key, nullptr));
  return text ? std::optional<std::string>(text.get()) : std::nullopt;
}

void Set(GKeyFile* entry, const char* key, const std::string& value) {
  g_key_file_set_string(entry, kGroup, key, value.c_str());
}

std::string Content(GKeyFile* entry) {
  gsize size = 0;
  const Text text(g_key_file_to_data(entry, &size, nullptr));
  return {text.get(), size};
}

bool IsOff(GKeyFile* entry) {
  return Value(entry, kHidden) == "true" || Value(entry, kSwitch) == "false";
}

std::string HomeOf(GKeyFile* entry, const AutostartSource& source) {
  return Value(entry, kHome).value_or(source.application_folder);
}

bool IsOthers(GKeyFile* entry, const AutostartSource& source) {
  const std::string home = HomeOf(entry, source);
  std::error_code error;
  return home != source.application_folder && fs::exists(home, error);
}

std::string Command(const AutostartSource& source, const std::string& program, bool by_environment) {
  if (!by_environment) return ExecCommand({program, "-st"});
  return ExecCommand({"env", "ORVEN_HOME=" + source.application_folder, program, "-st"});
}

/// Whether the user has changed the command. The command of a removed installation does not count.
bool HasOwnCommand(GKeyFile* entry, const AutostartSource& source) {
  if (HomeOf(entry, source) != source.application_folder) return false;
  const auto command = Value(entry, kExec);
  const auto program = Value(entry, kProgram).value_or(source.program);
  return command && command != Command(source, program, true) && command != Command(source, program, false);
}

void SetCommand(GKeyFile* entry, const AutostartSource& source) {
  Set(entry, kExec, Command(source, source.program, source.folder_by_environment));
  Set(entry, kProgram, source.program);
  Set(entry, kHome, source.application_folder);
}

void SetFacts(GKeyFile* entry) {
  Set(entry, "Type", "Application");
  Set(entry, "Name", "ORVEN");
  Set(entry, "Comment", "Answers the telephone and records messages");
  Set(entry, "Icon", "orven");
  Set(entry, "Terminal", "false");
}

void SwitchOn(GKeyFile* entry) {
  g_key_file_remove_key(entry, kGroup, kHidden, nullptr);
  g_key_file_remove_key(entry, kGroup, kSwitch, nullptr);
}

}  // namespace

std::string AutostartFile() {
  // XDG base directories: a relative value is ignored.
  const char* chosen = g_getenv("XDG_CONFIG_HOME");
  const std::string base = chosen != nullptr && g_path_is_absolute(chosen) != FALSE
                               ? std::string(chosen)
                               : std::string(g_get_home_dir()) + "/.config";
  return base + "/autostart/orven.desktop";
}

std::string ExecCommand(const std::vector<std::string>& arguments) {
  constexpr std::string_view kReserved = " \t\n\"'\\><~|&;$*?#()`";
  constexpr std::string_view kEscaped = "\"`$\\";
  std::string command;
  for (const std::string& argument : arguments) {
    const bool quoted = argument.empty() || argument.find_first_of(kReserved) != argument.npos;
    if (!command.empty()) command += ' ';
    if (quoted) command += '"';
    for (const char letter : argument) {
      if (kEscaped.find(letter) != kEscaped.npos) command += '\\';
      if (letter == '%') command += '%';
      command += letter;
    }
    if (quoted) command += '"';
  }
  return command;
}

AutostartEntry::State AutostartEntry::Look() const {
  const KeyFile entry(g_key_file_new());
  try {
    if (Load(entry.get(), source_.file) != Found::Entry) return State::Absent;
  } catch (const RuntimeError&) {
    return State::Absent;
  }
  if (IsOthers(entry.get(), source_)) return State::Foreign;
  return IsOff(entry.get()) ? State::Disabled : State::Enabled;
}

void AutostartEntry::Enable() {
  KeyFile entry(g_key_file_new());
  const Found found = Load(entry.get(), source_.file);
  if (found == Found::Rubbish) {
    RenameKeeping(source_.file, NameToSetAside(source_.file, "damaged"));
    entry.reset(g_key_file_new());
  }
  const std::string before = Content(entry.get());
  if (found != Found::Entry) SetFacts(entry.get());
  if (!HasOwnCommand(entry.get(), source_)) SetCommand(entry.get(), source_);
  SwitchOn(entry.get());
  const std::string after = Content(entry.get());
  if (after == before) return;
  std::error_code error;
  fs::create_directories(FolderOf(source_.file), error);
  if (error) throw FileFailure(error.value(), FolderOf(source_.file));
  ReplaceFile(source_.file, after, kMode);
}

void AutostartEntry::Remove() {
  const KeyFile entry(g_key_file_new());
  if (Load(entry.get(), source_.file) != Found::Entry || IsOthers(entry.get(), source_)) return;
  // Removes only the link itself if it is one.
  std::error_code error;
  if (!fs::remove(source_.file, error) && error) throw FileFailure(error.value(), source_.file);
}

namespace {

constexpr std::string_view kRunKey = "software\\microsoft\\windows\\currentversion\\run";
constexpr std::string_view kValueName = "orven";
constexpr const char* kSettingsKey = "SOFTWARE\\ORVEN";

/// Keys and names compare without regard to the case of ASCII letters.
bool IsAutostart(RegistryRoot root, std::string_view key, std::string_view name) {
  return root == RegistryRoot::LocalMachine && Lower(key) == kRunKey && Lower(name) == kValueName;
}

}  // namespace

bool AutostartRegistry::KeyExists(RegistryRoot root, const std::string& key) {
  return stored_.KeyExists(root, key);
}

std::optional<RegistryValue> AutostartRegistry::Query(RegistryRoot root, const std::string& key,
                                                      const std::string& name) {
  if (!IsAutostart(root, key, name)) return stored_.Query(root, key, name);
  if (entry_.Look() != AutostartEntry::State::Enabled) return std::nullopt;
  if (auto stored = stored_.Query(root, key, name)) return stored;
  return RegistryValue{.data = entry_.Program() + " -st" + '\0'};
}

bool AutostartRegistry::Write(RegistryRoot root, const std::string& key,
                              std::span<const NamedRegistryValue> values) {
  const auto autostart = std::find_if(values.begin(), values.end(),
                                      [&](const auto& value) { return IsAutostart(root, key, value.name); });
  if (autostart == values.end()) return stored_.Write(root, key, values);
  const bool first_start = !stored_.KeyExists(RegistryRoot::LocalMachine, kSettingsKey);
  if (!stored_.Write(root, key, values)) return false;
  Attempt("written", [&] {
    const auto state = entry_.Look();
    const bool chosen_otherwise =
        state == AutostartEntry::State::Disabled || state == AutostartEntry::State::Foreign;
    if (!first_start || !chosen_otherwise) entry_.Enable();
  });
  return true;
}

bool AutostartRegistry::Delete(RegistryRoot root, const std::string& key, const std::string& name) {
  if (!IsAutostart(root, key, name)) return stored_.Delete(root, key, name);
  const auto state = entry_.Look();
  if (state == AutostartEntry::State::Disabled || state == AutostartEntry::State::Foreign) return false;
  if (!Attempt("removed", [this] { entry_.Remove(); })) return false;
  return stored_.Delete(root, key, name) || state == AutostartEntry::State::Enabled;
}

bool AutostartRegistry::Attempt(const char* what, const std::function<void()>& change) {
  try {
    change();
    return true;
  } catch (const std::exception& failure) {
    report_(std::string("The autostart entry cannot be ") + what + ": " + failure.what());
    return false;
  }
}

}  // namespace orven
