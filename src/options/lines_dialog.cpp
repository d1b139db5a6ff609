// SPDX-License-Identifier: GPL-3.0-or-later
#include "options/lines_dialog.h"

#include <algorithm>
#include <utility>

#include "base/runtime_error.h"
#include "core/error_trap.h"

namespace orven {
namespace {

constexpr const char* kFirstName = "Telephone";

Words KindOf(const TelephoneLine& line) {
  switch (line.kind) {
    case LineKind::Sip: return line.server.empty() ? Tr("SIP, direct calls") : Tr("SIP account");
    case LineKind::Modem: return Tr("Modem");
    case LineKind::Sim: return Tr("Simulation");
  }
  return {};
}

std::string AddressOf(const TelephoneLine& line) {
  if (line.kind == LineKind::Modem) return line.port;
  if (line.kind == LineKind::Sim) return line.script;
  return line.server.empty() ? line.listen : line.user + '@' + line.server;
}

}  // namespace

LinesDialog::LinesDialog(Parts parts) : parts_(std::move(parts)) {
  const ErrorTrap trap(parts_.log, "ErrLoadLines->");
  trap([&] {
    auto configured = parts_.lines.Read();
    complaints_ = std::move(configured.complaints);
    for (auto& line : configured.lines) lines_.push_back({line, line.name});
  });
  stored_ = lines_;
}

LinesDialog::~LinesDialog() {
  CancelTest();
}

LinesDialog::Row LinesDialog::RowAt(std::size_t index) const {
  const auto& line = At(index);
  return {line.name, KindOf(line), AddressOf(line), parts_.lines.State(line)};
}

bool LinesDialog::HasName(const std::string& name) const {
  return std::ranges::any_of(lines_, [&](const Entry& entry) { return entry.line.name == name; });
}

TelephoneLine LinesDialog::NewLine() const {
  TelephoneLine line;
  line.transport = "auto";  // most providers' names say how they are reached
  line.name = kFirstName;
  for (int number = 2; HasName(line.name); ++number) {
    line.name = std::string(kFirstName) + ' ' + std::to_string(number);
  }
  return line;
}

std::optional<LineFault> LinesDialog::Check(const TelephoneLine& line,
                                            std::optional<std::size_t> index) const {
  const bool renamed = !index || At(*index).name != line.name;
  // Names must be unique, because the chosen line is stored by its name.
  if (renamed && HasName(line.name)) {
    return LineFault{"txtName", Words("Another line has this name: expected a unique name.")};
  }
  return parts_.lines.Check(line);
}

void LinesDialog::Put(const TelephoneLine& line, std::optional<std::size_t> index) {
  if (index) {
    lines_.at(*index).line = line;
  } else {
    lines_.push_back({line, ""});
  }
}

bool LinesDialog::Remove(std::size_t index) {
  if (!parts_.dialogs.Confirm(Words("Remove the line \"%1\" ?").Arg(At(index).name))) return false;
  lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

void LinesDialog::Test(const TelephoneLine& line, TelephoneLines::TestDone done) const {
  parts_.lines.Test(line, std::move(done));
}

bool LinesDialog::Ok() {
  if (lines_ == stored_) return true;
  std::vector<TelephoneLine> lines;
  for (const auto& entry : lines_) lines.push_back(entry.line);
  const ErrorTrap trap(parts_.log, "ErrSaveLines->");
  Words problem;
  const bool stored = trap([&] {
    try {
      parts_.lines.Store(lines);
    } catch (const std::exception& error) {
      problem = ReasonOf(error);
      throw;
    }
  });
  if (!stored) {
    parts_.dialogs.Information(Words("The telephone lines could not be stored.\r\n%1").Arg(problem));
    return false;
  }
  parts_.log.WriteSystem("Telephone lines changed");
  for (const auto& entry : lines_) {
    if (entry.known_as.empty()) added_ = entry.line.name;
  }
  KeepChosen();
  trap([&] { UseChanged(); });
  return true;
}

/// A chosen line that was renamed stays chosen.
void LinesDialog::KeepChosen() {
  const auto chosen = std::ranges::find_if(lines_, [&](const Entry& entry) {
    return !entry.known_as.empty() && entry.known_as == parts_.settings.ModemName;
  });
  if (chosen == lines_.end() || chosen->line.name == chosen->known_as) return;
  parts_.settings.ModemName = chosen->line.name;
  parts_.store.Set("ModemName", chosen->line.name);
}

void LinesDialog::UseChanged() {
  if (!parts_.use_changed) {
    parts_.dialogs.Information(Words("The changed lines are used from the next start on."));
  } else if (!parts_.use_changed()) {
    parts_.dialogs.Information(Words("A call is in progress. The changed lines are used when it is over."));
  }
}

}  // namespace orven
