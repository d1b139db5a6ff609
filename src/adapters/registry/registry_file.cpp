// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/registry/registry_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "adapters/files/disk_files.h"
#include "base/durable_file.h"

namespace orven {

namespace {

/// Only its owner may read the file: it holds the password of remote access.
constexpr unsigned kOwnerOnly = 0600;

/// The last complete version.
constexpr const char* kBackup = ".bak";

/// The coarsest time stamp of a usual file system (FAT): a file changed less than this ago may change
/// again without its stamp showing it.
constexpr std::chrono::seconds kStampGrain{2};

std::string WholeKey(RegistryRoot root, const std::string& key) {
  switch (root) {
    case RegistryRoot::LocalMachine: return "HKEY_LOCAL_MACHINE\\" + key;
    case RegistryRoot::CurrentUser: return "HKEY_CURRENT_USER\\" + key;
    case RegistryRoot::ClassesRoot: return "HKEY_CLASSES_ROOT\\" + key;
  }
  return key;
}

std::chrono::nanoseconds TimeOf(const timespec& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::string NameOf(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

void ReportFaults(const RegistryDocument& document, const std::string& path, const RegistryReport& report) {
  for (const RegistryFault& fault : document.Faults()) {
    report(NameOf(path) + ":" + std::to_string(fault.number) + ": " + fault.text);
  }
}

}  // namespace

RegistryFile::RegistryFile(std::string path, RegistryReport report)
    : path_(std::move(path)), report_(std::move(report)) {}

bool RegistryFile::KeyExists(RegistryRoot root, const std::string& key) {
  Refresh();
  return document_.HasKey(WholeKey(root, key));
}

std::optional<RegistryValue> RegistryFile::Query(RegistryRoot root, const std::string& key,
                                                 const std::string& name) {
  Refresh();
  const RegistryValue* value = document_.Find(WholeKey(root, key), name);
  return value == nullptr ? std::nullopt : std::optional(*value);
}

bool RegistryFile::Write(RegistryRoot root, const std::string& key,
                         std::span<const NamedRegistryValue> values) {
  Refresh();
  const std::string whole = WholeKey(root, key);
  const bool stored = std::all_of(values.begin(), values.end(), [&](const NamedRegistryValue& value) {
    const RegistryValue* existing = document_.Find(whole, value.name);
    return existing != nullptr && *existing == value.value;
  });
  if (writable_ && !filled_ && stored && document_.HasKey(whole)) return true;
  RegistryDocument changed = document_;
  return changed.Set(whole, values) && Store(changed);
}

bool RegistryFile::Delete(RegistryRoot root, const std::string& key, const std::string& name) {
  Refresh();
  RegistryDocument changed = document_;
  return changed.Remove(WholeKey(root, key), name) && Store(changed);
}

void RegistryFile::Refresh() {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) {
    const int error = errno;
    if (error == ENOENT) return BecomeAbsent();
    BecomeEmpty(false);
    return ReportOnce("cannot be read: " + std::string(FileFailure(error, path_).what()));
  }
  const Stamp stamp{status.st_dev, status.st_ino, status.st_size, TimeOf(status.st_mtim),
                    TimeOf(status.st_ctim)};
  if (stamp == stamp_) return;
  if (S_ISREG(status.st_mode)) {
    Load(stamp);
  } else {
    BecomeEmpty(false);
    ReportOnce("cannot be read: " + path_ + " is not a file");
  }
}

void RegistryFile::Load(const Stamp& stamp) {
  std::string content;
  try {
    content = DiskFiles().Read(path_);
  } catch (const RuntimeError& error) {
    BecomeEmpty(false);
    ReportOnce(std::string("cannot be read: ") + error.what());
    return;
  }
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  stamp_ = now - stamp.changed > kStampGrain ? std::optional(stamp) : std::nullopt;
  writable_ = true;
  if (content_ != content) {
    last_problem_.clear();
    Use(std::move(content));
    ReportFaults(document_, path_, report_);
    UpdateBackup();
  }
}

void RegistryFile::Use(std::string content) {
  document_ = RegistryDocument(content);
  content_ = std::move(content);
  damaged_kept_ = false;
  filled_ = false;
}

/// Takes missing values from the backup: a file that was truncated at a line's end, or has a changed letter
/// in a key, is not recognisable as damaged. A file that lacks nothing becomes the new backup.
void RegistryFile::UpdateBackup() {
  std::optional<std::string> backup;
  try {
    backup = DiskFiles().Read(path_ + kBackup);
  } catch (const RuntimeError&) {
    backup.reset();
  }
  if (backup == content_) return;
  const std::size_t count = backup ? document_.FillFrom(RegistryDocument(*backup)) : 0;
  filled_ = count > 0;
  if (filled_) {
    report_(NameOf(path_) + ": " + std::to_string(count) + " values that are missing are taken from " +
            NameOf(path_ + kBackup));
  } else if (document_.Faults().empty() && !document_.IsEmpty()) {
    WriteBackup();
  }
}

void RegistryFile::WriteBackup() {
  try {
    ReplaceFile(path_ + kBackup, *content_, kOwnerOnly);
  } catch (const RuntimeError& error) {
    ReportOnce(std::string("no copy of it can be kept: ") + error.what());
  }
}

void RegistryFile::BecomeAbsent() {
  if (!content_ && filled_) return;
  BecomeEmpty(true);
  UpdateBackup();
}

void RegistryFile::BecomeEmpty(bool writable) {
  document_ = {};
  filled_ = false;
  content_.reset();
  stamp_.reset();
  writable_ = writable;
}

bool RegistryFile::Store(const RegistryDocument& changed) {
  if (!writable_) return false;
  std::string text = changed.Text();
  try {
    KeepDamaged();
    ReplaceFile(path_, text, kOwnerOnly);
  } catch (const RuntimeError& error) {
    ReportOnce(std::string("cannot be written: ") + error.what());
    return false;
  }
  Use(std::move(text));
  stamp_.reset();
  last_problem_.clear();
  WriteBackup();
  return true;
}

// A copy, not a rename: a crash between the two steps must not leave the program without settings.
void RegistryFile::KeepDamaged() {
  if (document_.Faults().empty() || !content_ || damaged_kept_) return;
  const std::string aside = NameToSetAside(path_, "damaged");
  CreateFile(aside, *content_, kOwnerOnly);
  damaged_kept_ = true;
  damaged_file_ = NameOf(aside);
  report_(NameOf(path_) + ": the damaged file is kept as " + NameOf(aside));
}

void RegistryFile::ReportOnce(const std::string& problem) {
  if (problem == last_problem_) return;
  last_problem_ = problem;
  report_(NameOf(path_) + ": " + problem);
}

}  // namespace orven
