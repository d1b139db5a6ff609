// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/speech_presence.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <optional>

namespace orven {
namespace {

constexpr auto kDataFolder = QLatin1String("espeak-ng-data");

/// The sound of every voice is made from this file.
bool HoldsData(const QDir& folder) {
  return QFileInfo(folder.filePath(QStringLiteral("phontab"))).isFile();
}

/// Where the engine looks first, as far as it is there: then it looks nowhere else.
std::optional<QDir> ChosenFolder() {
  const QString variable = qEnvironmentVariable("ESPEAK_DATA_PATH");
  const QDir chosen(variable);
  if (!variable.isEmpty() && chosen.exists())
    return chosen.exists(kDataFolder) ? QDir(chosen.filePath(kDataFolder)) : chosen;
  if (QDir::home().exists(kDataFolder)) return QDir(QDir::home().filePath(kDataFolder));
  return std::nullopt;
}

/// Whether packages have installed the data. The engine's own folder depends on how it was built.
bool HeldBySystem() {
  QStringList places = {QStringLiteral("/usr/share"), QStringLiteral("/usr/local/share")};
  for (const QString& libraries : {QStringLiteral("/usr/lib"), QStringLiteral("/usr/local/lib")}) {
    places << libraries;
    // One folder for each kind of processor.
    const QDir folder(libraries);
    for (const QString& name : folder.entryList({QStringLiteral("*-linux-*")}, QDir::Dirs)) {
      places << folder.filePath(name);
    }
  }
  return std::any_of(places.begin(), places.end(),
                     [](const QString& place) { return HoldsData(QDir(place).filePath(kDataFolder)); });
}

bool EngineInstalled() {
  const auto chosen = ChosenFolder();
  return chosen ? HoldsData(*chosen) : HeldBySystem();
}

}  // namespace

bool SpeechInstalled(const std::string& helper_path) {
  const QFileInfo helper(QString::fromStdString(helper_path));
  return helper.isFile() && helper.isExecutable() && EngineInstalled();
}

}  // namespace orven
