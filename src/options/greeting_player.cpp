// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/greeting_player.h"

#include <algorithm>

#include "core/error_trap.h"

namespace orven {

GreetingList GreetingPlayer::Fill(const std::string& selected) const {
  GreetingList list;
  const auto trap = ErrorTrap::Silent();
  trap([&] { list.names = parts_.library.Names(); });
  if (!list.names.empty()) list.selected = list.names.front();
  if (std::ranges::count(list.names, selected) > 0) list.selected = selected;
  return list;
}

void GreetingPlayer::ButtonClick(const std::string& key, GreetingList& list) {
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (key == "Play") parts_.sounds.PlayWave(parts_.library.PathOf(list.selected));
    if (key == "Stop") parts_.player.Stop();
    if (key == "Add") Add(list);
    if (key == "Delete") Delete(list);
  });
}

void GreetingPlayer::Add(GreetingList& list) {
  // What the creator has saved is the default greeting now, and storing the list must not take that back.
  const auto saved = parts_.add();
  list = Fill(saved.value_or(list.selected));
}

void GreetingPlayer::Delete(GreetingList& list) {
  if (list.names.size() == 1) return parts_.dialogs.Information("Can't Delete Last Greeting.");
  const auto name = list.selected;
  if (!parts_.dialogs.Confirm("Delete " + name + " ?")) return;
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (!name.empty()) parts_.library.Delete(name);
  });
  list = Fill();
  trap([&] { parts_.refill_main(); });
  trap([&] { parts_.choose_default(list.selected); });
}

}  // namespace orven
