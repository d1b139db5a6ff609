// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "adapters/registry/registry_document.h"
#include "platform/registry.h"

namespace orven {

/// Takes one line about a settings file for the log, for example
/// `registry.reg:12: the text has no closing quote`. It must not call the registry.
using RegistryReport = std::function<void(const std::string&)>;

/// The registry as one text file in the format of Windows' registry exports.
///
/// Each operation checks whether another process changed the file (inode, times, size) and reads it again if
/// so. Damaged lines are reported once per content; the others are used. The last complete version is kept
/// next to the file as "<name>.bak": values that the file lacks are taken from it, with a report, also when
/// the file is missing; Delete() removes a value from both. Before the first write a damaged file is kept as
/// "<name>.damaged-20261121T041530". A file that cannot be read is reported, reads as empty, and is never
/// written. A write replaces the file atomically and durably, readable by its owner only (mode 0600: it holds
/// a password); a write that changes nothing leaves the file alone. Text that is not UTF-8 is preserved.
/// User-interface thread.
class RegistryFile final : public Registry {
 public:
  RegistryFile(std::string path, RegistryReport report);

  bool KeyExists(RegistryRoot root, const std::string& key) override;
  std::optional<RegistryValue> Query(RegistryRoot root, const std::string& key,
                                     const std::string& name) override;

  /// False also for a name that the format cannot represent (line ends, zero bytes, invalid UTF-8).
  bool Write(RegistryRoot root, const std::string& key, std::span<const NamedRegistryValue> values) override;
  bool Delete(RegistryRoot root, const std::string& key, const std::string& name) override;

  /// The name of the damaged file that this object has replaced last; empty when there was none.
  const std::string& DamagedFile() const { return damaged_file_; }

 private:
  /// Identifies a state of the file.
  struct Stamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::chrono::nanoseconds modified{0};
    std::chrono::nanoseconds changed{0};
    bool operator==(const Stamp&) const = default;
  };

  void Refresh();
  void Load(const Stamp& stamp);
  void Use(std::string content);
  void BecomeAbsent();
  void BecomeEmpty(bool writable);
  bool Store(const RegistryDocument& changed);
  void UpdateBackup();
  void WriteBackup();
  void KeepDamaged();
  void ReportOnce(const std::string& problem);

  std::string path_;
  RegistryReport report_;
  RegistryDocument document_;
  std::optional<std::string> content_;  ///< of the file; nothing when it is absent or unreadable
  std::optional<Stamp> stamp_;          ///< of `content_`; nothing when it must be read again
  bool writable_ = true;
  bool damaged_kept_ = false;  ///< this content's damaged file has been set aside already
  bool filled_ = false;        ///< `document_` has values of the backup, which are not stored yet
  std::string damaged_file_;
  std::string last_problem_;
};

}  // namespace orven
