// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/words.h"

#include <utility>

namespace orven {

Words&& Words::Arg(Words value) && {
  arguments_.push_back(std::move(value));
  return std::move(*this);
}

Words&& Words::Arg(std::int64_t value) && {
  return std::move(*this).Arg(Words(std::to_string(value)));
}

std::string Words::English() const {
  std::vector<std::string> arguments;
  for (const auto& argument : arguments_) arguments.push_back(argument.English());
  return literal_ ? WithArguments(text_, arguments) : text_;
}

std::string WithArguments(std::string_view text, const std::vector<std::string>& arguments) {
  std::string whole;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::size_t place = text[at] == '%' && at + 1 < text.size() ? text[at + 1] - '1' : arguments.size();
    if (place >= arguments.size()) {
      whole += text[at];
      continue;
    }
    whole += arguments[place];
    ++at;
  }
  return whole;
}

}  // namespace orven
