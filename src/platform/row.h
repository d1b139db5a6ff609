// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace orven {

/// One value that a person can choose: its name and its control. Texts are translated where they are shown.
struct Row {
  /// How a person sees and chooses a value.
  enum class Kind {
    None,    ///< not at all
    ByHand,  ///< with a control that the window makes itself
    Check,   ///< a check box; its values are "1" and "0"
    Text,
    Secret,  ///< a text that is hidden
    Number,  ///< an editable list of whole numbers
    Entry,   ///< an editable list of texts
    List,    ///< a list of texts
    Choice,  ///< a list; its value is the entry's place, from 0
    Slider,
  };

  std::string_view name;  ///< as stored
  Kind kind = Kind::None;
  const char* control = "";  ///< object name
  int page = 0;              ///< the dialog's page, from 0
  const char* label = "";    ///< of a check box: its caption; else the text before the control
  const char* purpose = "";  ///< for screen readers, and with the range the tool tip of a number
  const char* tip = "";      ///< tool tip
  const char* unit = "";     ///< the text after the control
  int least = 0;             ///< of a number or slider; only the control knows this limit
  int most = 0;              ///< so is this; of a text: its longest length, 0 for any
  int scale = 1;             ///< what is stored for one step of a slider
  std::span<const char* const> items = {};  ///< of a list; empty: the window fills it
  const char* first = nullptr;              ///< what the first start stores; null: nothing
};

/// What is chosen in a dialog: the values by their rows' names. One that is missing is not chosen; its
/// setting keeps what it holds.
struct Choices : std::map<std::string, std::string, std::less<>> {
  /// Empty when nothing is chosen.
  std::string Text(std::string_view name) const {
    const auto found = find(name);
    return found == end() ? std::string() : found->second;
  }
  bool On(std::string_view name) const { return Text(name) == "1"; }
};

}  // namespace orven
