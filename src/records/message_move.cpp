// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/message_move.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/runtime_error.h"
#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

constexpr auto kRoot = RegistryRoot::LocalMachine;

/// Setting: the folder that messages are being moved to, until the move is complete.
constexpr const char* kMoveUnderWay = "MassagesPathNext";

/// Moving is a part of browsing for a folder, so its errors are logged under that command's label.
constexpr const char* kLabel = "ErrcmdBrowsMessagesPath ";

/// The maximum number of messages that the box names when some stayed behind; the log names them all.
constexpr std::size_t kNamedInBox = 10;

Words RefusalText(const std::string& folder, Words reason) {
  return Words("The messages cannot be moved to %1\n\n%2\n\nNothing was changed.")
      .Arg(folder)
      .Arg(std::move(reason));
}

Words BrokenOffText(const std::string& from, const std::string& to, Words reason) {
  return Words(
             "The move of the messages to %1 was interrupted and cannot continue.\n\n%2\n\n"
             "Messages that were moved are in %1\nThe others are in %3\n\n"
             "The move continues when the program starts and both folders exist, or when you choose %1 in "
             "the options again.")
      .Arg(to)
      .Arg(std::move(reason))
      .Arg(from);
}

Words StayedText(const std::string& folder, const std::vector<std::string>& names) {
  std::string named;
  for (std::size_t i = 0; i < std::min(names.size(), kNamedInBox); ++i) named += "\n" + names[i];
  auto text = Words("These messages could not be moved. They are still in %1\n%2").Arg(folder).Arg(named);
  if (names.size() <= kNamedInBox) return text;
  const auto rest = static_cast<std::int64_t>(names.size() - kNamedInBox);
  return Words("%1\nand %2 more, which the system log names").Arg(std::move(text)).Arg(rest);
}

void Log(SystemLog& log, const std::exception_ptr& failure) {
  const ErrorTrap trap(log, kLabel);
  trap([&] { std::rethrow_exception(failure); });
}

/// A name that is unused in both folders.
std::string FreeName(const Files& files, const std::string& from, const std::string& to) {
  const std::string name = ".orven-test";
  std::string free = name;
  for (int number = 2; files.Exists(from + free) || files.Exists(to + free); ++number) {
    free = name + std::to_string(number);
  }
  return free;
}

/// Writes a file into `to`; throws when that fails. True when both paths lead to one folder.
bool TryFolder(Files& files, const std::string& from, const std::string& to) {
  const auto name = FreeName(files, from, to);
  files.Append(to + name, "");
  const bool same = files.Exists(from + name);
  ErrorTrap::Silent()([&] { files.Delete(to + name); });  // an empty file that stays does no harm
  return same;
}

/// Throws when the message is not in `to` afterwards; `gone` is then true if it is not in `from` either.
void MoveMessage(Files& files, const std::string& from, const std::string& to, bool& gone) {
  try {
    files.Rename(from, to);
  } catch (...) {
    gone = !files.Exists(from);
    // An earlier move may have brought it there, or have stopped between copying and deleting.
    if (!files.Exists(to) || (!gone && !SameContent(files, from, to))) throw;
    if (!gone) files.Delete(from);
  }
}

}  // namespace

void MessageMove::Begin(const std::string& folder) {
  if (move_ || !MayLeave(folder)) return;
  if (folder != parts_.folders.Serving()) return Try(folder, false);
  parts_.folders.Moved(folder);
  StoreEnd();
}

std::string MessageMove::Interrupted() const {
  const auto folder = GetRegValue(parts_.registry, kRoot, kSettingsKey, kMoveUnderWay);
  return folder == kNotFound ? "" : folder;
}

void MessageMove::GoOn() {
  const auto folder = Interrupted();
  if (folder.empty() || folder == parts_.folders.Serving()) return;
  parts_.folders.SetNext(folder);
  Try(folder, true);
}

std::optional<RelocationProgress> MessageMove::Relocating() const {
  if (!move_) return std::nullopt;
  return RelocationProgress{move_->known.size() - move_->waiting.size(), move_->known.size()};
}

bool MessageMove::MayLeave(const std::string& folder) {
  const auto next = parts_.folders.Next();
  if (next.empty() || next == folder) return true;
  const bool left = parts_.dialogs.Confirm(
      Words("The move of the messages to %1 was interrupted. Messages that are there already stay there and "
            "cannot be played any more. To take them along, choose %1 first.\n\n"
            "Leave them there, and store the messages in %2 ?")
          .Arg(next)
          .Arg(folder));
  if (left) parts_.log.WriteSystem("Messages were left in " + next);
  return left;
}

/// Starts a move if the new folder can be written. With `old_needed` the old folder must be there too, or it
/// would be taken for an empty one.
void MessageMove::Try(const std::string& folder, bool old_needed) {
  if (move_) return;
  move_ = std::make_unique<Move>(Move{parts_.folders.Serving(), folder, {}, {}, {}});
  const auto same = std::make_shared<bool>(false);
  parts_.background.Run(
      [&files = parts_.files, from = move_->from, folder, old_needed, same] {
        *same = TryFolder(files, from, folder);
        if (old_needed) files.List(from, ".orven-test");
      },
      Bound([this, same](const std::exception_ptr& failure) { Tried(*same, failure); }));
}

void MessageMove::Tried(bool same_folder, const std::exception_ptr& failure) {
  if (failure) {
    Log(parts_.log, failure);
    return Refuse(ReasonOf(failure));
  }
  if (same_folder) return End();
  if (const auto reason = ReasonAgainst(); !reason.Empty()) return Refuse(reason);
  parts_.folders.SetNext(move_->to);
  MoveNext();
}

/// Why the first message must not move; empty when it may.
Words MessageMove::ReasonAgainst() {
  if (!CollectNames()) return Words("The calls cannot be read");
  if (Store(kMoveUnderWay, move_->to)) return {};
  return Words("The settings cannot be stored; the system log has the details.");
}

bool MessageMove::CollectNames() {
  const ErrorTrap trap(parts_.log, kLabel);
  return trap([&] {
    for (auto& name : parts_.filing.MessageNames()) {
      if (move_->known.insert(name).second) move_->waiting.push_back(std::move(name));
    }
  });
}

void MessageMove::MoveNext() {
  // A call may have left a message in the old folder meanwhile. The move ends in the same task in which the
  // last name was looked for: no message can be filed between the two.
  if (move_->waiting.empty()) CollectNames();
  if (move_->waiting.empty()) return End();
  const auto& name = move_->waiting.front();
  const auto gone = std::make_shared<bool>(false);
  parts_.background.Run([&files = parts_.files, from = move_->from + name, to = move_->to + name,
                         gone] { MoveMessage(files, from, to, *gone); },
                        Bound([this, gone](const std::exception_ptr& failure) { Moved(*gone, failure); }));
}

void MessageMove::Moved(bool gone, const std::exception_ptr& failure) {
  const auto name = move_->waiting.front();
  move_->waiting.pop_front();
  if (failure) {
    Log(parts_.log, failure);
    parts_.log.WriteSystem((gone ? "Message is missing: " : "Message stayed behind: ") + move_->from + name);
    if (!gone) move_->stayed.push_back(name);
  }
  MoveNext();
}

void MessageMove::Refuse(const Words& reason) {
  const auto move = std::exchange(move_, nullptr);
  const bool broken_off = move->to == parts_.folders.Next();
  parts_.dialogs.Information(broken_off ? BrokenOffText(move->from, move->to, reason)
                                        : RefusalText(move->to, reason));
}

void MessageMove::End() {
  const auto move = std::exchange(move_, nullptr);
  parts_.settings.MassagesPath = move->to;
  parts_.folders.Moved(move->to);
  StoreEnd();
  if (!move->stayed.empty()) parts_.dialogs.Information(StayedText(move->from, move->stayed));
}

bool MessageMove::Store(const std::string& name, const std::string& folder) {
  return parts_.registry.Write(kRoot, kSettingsKey, std::array{RegString(name, folder)});
}

void MessageMove::StoreEnd() {
  const auto& folder = parts_.folders.Serving();
  if (Store("MassagesPath", folder))
    return DeleteRegValue(parts_.registry, kRoot, kSettingsKey, kMoveUnderWay);
  parts_.dialogs.Information(
      Words("The messages are in %1\n\nThis could not be stored; the system log has the details. "
            "It will be stored at the next start if the settings can be written then.")
          .Arg(folder));
}

/// `done`, which runs only while this object lives.
Background::Done MessageMove::Bound(std::function<void(const std::exception_ptr& failure)> done) const {
  return [alive = std::weak_ptr<int>(alive_), done = std::move(done)](const std::exception_ptr& failure) {
    if (!alive.expired()) done(failure);
  };
}

}  // namespace orven
