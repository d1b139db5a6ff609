// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "platform/background.h"
#include "platform/files.h"

namespace orven {

/// How far a move of the messages has come.
struct RelocationProgress {
  std::size_t done = 0;
  std::size_t total = 0;
};

/// Moves message files from one folder to another, one after the other in the background, and overwrites
/// nothing. Every file is in exactly one of the two folders at any time a person can look, also after a
/// failure; one that a killed program left in both is there once when it is done. When its owner lets go of
/// it, it stops after the file that it is at. User-interface thread.
class MessageRelocation : public std::enable_shared_from_this<MessageRelocation> {
 public:
  struct Ports {
    Files& files;
    Background& background;
    SystemLog& log;
  };

  /// Folders end in a separator.
  struct Folders {
    std::string from;
    std::string to;
    bool from_needed = false;  ///< without the old folder nothing begins, or it would pass for empty
  };

  struct Outcome {
    std::string refusal;              ///< why nothing was moved; empty when the new folder can be used
    std::vector<std::string> stayed;  ///< messages that are in the old folder still
  };

  /// The messages' names at this moment; a call that ends meanwhile adds to them. Throws when the records
  /// cannot be read.
  using Names = std::function<std::vector<std::string>()>;
  /// Comes before the first message moves. False when the move cannot be remembered: then none does.
  using Begin = std::function<bool()>;
  using Done = std::function<void(const Outcome& outcome)>;

  MessageRelocation(Ports ports, Folders folders, Names names, Begin begin, Done done)
      : ports_(ports),
        folders_(std::move(folders)),
        names_(std::move(names)),
        begin_(std::move(begin)),
        done_(std::move(done)) {}

  /// Looks whether the new folder can be written, then moves. `done` comes once, later, in the same task
  /// in which the last name has been looked for: no message can be filed between the two.
  void Start();

  RelocationProgress Progress() const { return {tried_.size() - waiting_.size(), tried_.size()}; }

 private:
  struct Trial;

  void Tried(const Trial& trial, const std::exception_ptr& failure);
  void MoveNext();
  void Moved(const std::string& name, bool gone, const std::exception_ptr& failure);
  bool CollectNames();

  Ports ports_;
  Folders folders_;
  Names names_;
  Begin begin_;
  Done done_;
  std::set<std::string> tried_;      ///< every name that was ever in the line
  std::deque<std::string> waiting_;  ///< the line
  Outcome outcome_;
};

}  // namespace orven
