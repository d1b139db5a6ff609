// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/runtime_error.h"

namespace orven {

Words ReasonOf(const std::exception& failure) {
  std::string text = failure.what();
  const auto* const statement = dynamic_cast<const RuntimeError*>(&failure);
  if (statement == nullptr) return text;
  const Words description = DescriptionOf(static_cast<ErrorNumber>(statement->Number()));
  const auto length = description.Text().size();
  if (text.size() <= length) return description;
  return Words("%1: %2").Arg(description).Arg(text.substr(length + kBeforeDetail.size()));
}

Words ReasonOf(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const std::exception& reason) {
    return ReasonOf(reason);
  } catch (...) {
    return Words("unknown");
  }
}

}  // namespace orven
