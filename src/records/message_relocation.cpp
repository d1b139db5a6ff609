// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_relocation.h"

#include "core/error_trap.h"
#include "records/message_files.h"

namespace orven {
namespace {

/// Moving belongs to browsing for a folder, and is logged under its name.
constexpr const char* kLabel = "ErrcmdBrowsMessagesPath ";

std::string Reason(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "unknown";
  }
}

void Log(SystemLog& log, const std::exception_ptr& failure) {
  const ErrorTrap trap(log, kLabel);
  trap([&] { std::rethrow_exception(failure); });
}

/// A name that no file has in either folder.
std::string FreeName(const Files& files, const MessageRelocation::Folders& folders) {
  const std::string name = ".orven-test";
  std::string free = name;
  for (int number = 2; files.Exists(folders.from + free) || files.Exists(folders.to + free); ++number) {
    free = name + std::to_string(number);
  }
  return free;
}

}  // namespace

/// What writing a file into the new folder has shown.
struct MessageRelocation::Trial {
  bool same_folder = false;  ///< both paths lead to one folder
};

void MessageRelocation::Start() {
  const auto trial = std::make_shared<Trial>();
  ports_.background.Run(
      [&files = ports_.files, folders = folders_, trial] {
        const auto name = FreeName(files, folders);
        files.Append(folders.to + name, "");
        trial->same_folder = files.Exists(folders.from + name);
        const auto trap = ErrorTrap::Silent();  // an empty file too many harms nobody
        trap([&] { files.Delete(folders.to + name); });
        if (folders.from_needed) files.List(folders.from, name);
      },
      [weak = weak_from_this(), trial](const std::exception_ptr& failure) {
        if (const auto self = weak.lock()) self->Tried(*trial, failure);
      });
}

void MessageRelocation::Tried(const Trial& trial, const std::exception_ptr& failure) {
  if (failure) {
    Log(ports_.log, failure);
    outcome_.refusal = Reason(failure);
    return done_(outcome_);
  }
  if (trial.same_folder) return done_(outcome_);
  if (!CollectNames()) {
    outcome_.refusal = "The calls cannot be read";
    return done_(outcome_);
  }
  if (!begin_()) {
    outcome_.refusal = "The settings cannot be stored; the system log tells more.";
    return done_(outcome_);
  }
  MoveNext();
}

bool MessageRelocation::CollectNames() {
  const ErrorTrap trap(ports_.log, kLabel);
  return trap([&] {
    for (auto& name : names_()) {
      if (tried_.insert(name).second) waiting_.push_back(std::move(name));
    }
  });
}

void MessageRelocation::MoveNext() {
  // A call may have left a message in the old folder meanwhile.
  if (waiting_.empty()) CollectNames();
  if (waiting_.empty()) return done_(outcome_);
  const auto name = waiting_.front();
  const auto gone = std::make_shared<bool>(false);
  ports_.background.Run(
      [&files = ports_.files, from = folders_.from + name, to = folders_.to + name, gone] {
        try {
          files.Rename(from, to);
        } catch (...) {
          *gone = !files.Exists(from);
          // An earlier move may have brought it there, or have broken off between copying and deleting.
          if (!files.Exists(to) || (!*gone && !SameContent(files, from, to))) throw;
          if (!*gone) files.Delete(from);
        }
      },
      [weak = weak_from_this(), name, gone](const std::exception_ptr& failure) {
        if (const auto self = weak.lock()) self->Moved(name, *gone, failure);
      });
}

void MessageRelocation::Moved(const std::string& name, bool gone, const std::exception_ptr& failure) {
  waiting_.pop_front();
  if (failure) {
    Log(ports_.log, failure);
    ports_.log.WriteSystem((gone ? "Message is missing: " : "Message stayed behind: ") + folders_.from +
                           name);
    if (!gone) outcome_.stayed.push_back(name);
  }
  MoveNext();
}

}  // namespace orven
