// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orven {

/// What a command line may tell of a call.
struct CallParameters {
  std::string name;
  std::string number;
  std::string time;
  std::string date;
  std::string message_path;
};

/// Puts the values in place of "<NUMBER>", "<NAME>", "<MESSAGE_PATH>", "<DATE>" and "<TIME>", in this
/// order and of each the first occurrence only; a value that holds a later placeholder is filled in its
/// turn. Letter case counts. The result is written back into `text`, and returned. A placeholder that
/// begins beyond character 32767 throws RuntimeError 6 ("Overflow"); what was filled before stays.
std::string SubstituteParameters(std::string& text, const CallParameters& call);

}  // namespace orven
