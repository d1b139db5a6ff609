// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

#include "base/words.h"

namespace orven {

/// The icon of a question box.
enum class QuestionIcon { Question, Information, None };

/// Message boxes and file dialogs, for the user, in his language. Without a display the text goes to
/// standard error in English, and the answer is the safe one (no, cancelled). User-interface thread.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  /// A plain message box.
  virtual void Message(const Words& text) = 0;

  /// A message box in the information style.
  virtual void Information(const Words& text) = 0;

  /// A question with Yes and No; true is Yes.
  virtual bool Confirm(const Words& text, QuestionIcon icon = QuestionIcon::Question) = 0;

  /// Save As: `filter` is "description NUL pattern NUL". The chosen path, or nothing when cancelled.
  virtual std::optional<std::string> SaveAs(const Words& title, const std::string& filter,
                                            const std::string& suggested_name) = 0;

  /// Open: one existing file that matches `filter` (as above). Its path, or nothing when cancelled.
  virtual std::optional<std::string> OpenFile(const Words& title, const std::string& filter) = 0;

  /// Browse for an existing folder, starting at `present`. Its path, without a separator at the end unless it
  /// is the root; empty when cancelled.
  virtual std::string BrowseFolder(const Words& title, const std::string& present) = 0;
};

}  // namespace orven
