// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/greeting_library.h"

namespace orven {

std::vector<std::string> GreetingLibrary::Names() const {
  constexpr std::size_t kExtension = 4;  // ".wav"
  auto names = files_.List(Folder(), "*.wav");
  for (auto& name : names) name.resize(name.size() - kExtension);
  return names;
}

bool IsLegalGreetingName(std::string_view name) {
  return name.find_first_of("?*:><|\\/\"") == std::string_view::npos;
}

}  // namespace orven
