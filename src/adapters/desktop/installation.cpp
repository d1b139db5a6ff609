// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/installation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace orven {
namespace {

constexpr std::array<const char*, 4> kFolders = {"Greets", "Sound", "Log", "Messages"};
constexpr std::array<const char*, 2> kSoundFolders = {"Greets", "Sound"};

QString Absolute(const QString& path) {
  return QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

QStringList WavNames(const QString& folder) {
  return QDir(folder).entryList({QStringLiteral("*.wav")}, QDir::Files | QDir::Hidden, QDir::Name);
}

bool SameContent(const QString& one, const QString& other) {
  QFile first(one);
  QFile second(other);
  return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly) &&
         first.size() == second.size() && first.readAll() == second.readAll();
}

/// Copies assets into an application folder. Names are relative to both.
class Installer {
 public:
  Installer(const std::string& folder, Assets assets)
      : folder_(QString::fromStdString(folder)),
        installed_(std::move(assets)),
        assets_(QString::fromStdString(installed_.folder)) {}

  SeedReport Seed(bool first_start) {
    const QStringList wanted = WantedFiles(first_start);
    for (const char* name : kFolders) MakeFolder(QString::fromLatin1(name));
    for (const QString& name : wanted) {
      if (!QFile::exists(folder_ + u'/' + name)) Copy(name);
    }
    if (assets_.isEmpty()) {
      Problem(folder_,
              QStringLiteral("there is nothing to copy into it: the installed assets were not found"));
    }
    return report_;
  }

  SeedReport RefreshHelp() {
    const QString help = QStringLiteral("Help");
    if (!assets_.isEmpty() && QDir(assets_ + u'/' + help).exists()) Refresh(help);
    return report_;
  }

 private:
  /// The files to have, present or not. To be called before the folders are made.
  QStringList WantedFiles(bool first_start) const {
    if (assets_.isEmpty()) return {};
    QStringList names = {QStringLiteral("beep.wav")};
    for (const char* name : kSoundFolders) {
      const QString sounds = u'/' + QString::fromLatin1(name);
      if (!first_start && QFile::exists(folder_ + sounds)) continue;
      for (const QString& wav : WavNames(assets_ + sounds)) names << QString::fromLatin1(name) + u'/' + wav;
    }
    return names;
  }

  /// Makes a folder equal to its asset, with those below it.
  void Refresh(const QString& name) {
    if (!MakeFolder(name)) return;
    const QDir there(assets_ + u'/' + name);
    const QDir here(folder_ + u'/' + name);
    const auto wanted = there.entryList(QDir::Files);
    for (const QString& file : wanted) {
      if (!SameContent(Asset(name + u'/' + file), here.filePath(file))) Copy(name + u'/' + file);
    }
    for (const QString& file : here.entryList(QDir::Files)) {
      if (!wanted.contains(file)) QFile::remove(here.filePath(file));
    }
    const auto folders = there.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& below : folders) Refresh(name + u'/' + below);
  }

  bool MakeFolder(const QString& name) {
    const QString path = folder_ + u'/' + name;
    if (QDir().mkpath(path)) return true;
    Problem(path, QStringLiteral("cannot make this folder"));
    return false;
  }

  /// The copy appears complete or not at all.
  void Copy(const QString& name) {
    QFile source(Asset(name));
    if (!source.open(QIODevice::ReadOnly)) return Problem(source.fileName(), source.errorString());
    const QByteArray content = source.readAll();
    if (source.error() != QFile::NoError) return Problem(source.fileName(), source.errorString());
    QSaveFile copy(folder_ + u'/' + name);  // a temporary file, then fsync and rename
    if (!copy.open(QIODevice::WriteOnly)) return Problem(copy.fileName(), copy.errorString());
    copy.write(content);  // commit reports a failure
    if (!copy.commit()) return Problem(copy.fileName(), copy.errorString());
    report_.copied.push_back(name.toStdString());
  }

  void Problem(const QString& path, const QString& reason) {
    report_.problems.push_back(QStringLiteral("\"%1\": %2").arg(path, reason).toStdString());
  }

  QString Asset(const QString& name) const {
    return QString::fromStdString(installed_.PathOf(name.toStdString()));
  }

  QString folder_;
  Assets installed_;
  QString assets_;
  SeedReport report_;
};

}  // namespace

FolderHints ProcessFolderHints() {
  return FolderHints{qEnvironmentVariable("ORVEN_HOME").toStdString(),
                     QCoreApplication::applicationDirPath().toStdString(),
                     qEnvironmentVariable("XDG_DATA_HOME").toStdString(), QDir::homePath().toStdString()};
}

std::string FindApplicationFolder(const FolderHints& hints) {
  if (!hints.orven_home.empty()) return Absolute(QString::fromStdString(hints.orven_home)).toStdString();
  const QString beside = QString::fromStdString(hints.executable_folder);
  if (!beside.isEmpty() && QFile::exists(beside + QStringLiteral("/beep.wav"))) {
    return Absolute(beside).toStdString();
  }
  const QString data = QString::fromStdString(hints.data_home);
  const QString base = QDir::isAbsolutePath(data)
                           ? data
                           : QString::fromStdString(hints.home) + QStringLiteral("/.local/share");
  return Absolute(base + QStringLiteral("/orven")).toStdString();
}

std::string FindAssets(const std::string& executable_folder) {
  // A build has bin/ and share/; an installation has the programs in lib/orven/.
  for (const char* share : {"/../share/orven", "/../../share/orven"}) {
    const QString folder = Absolute(QString::fromStdString(executable_folder + share));
    if (QFile::exists(folder + QStringLiteral("/beep.wav"))) return folder.toStdString();
  }
  return {};
}

std::string Assets::PathOf(const std::string& name) const {
  const auto own = folder + '/' + language + '/' + name;
  return QFile::exists(QString::fromStdString(own)) ? own : folder + '/' + name;
}

SeedReport RefreshHelp(const std::string& folder, const Assets& assets) {
  return Installer(folder, assets).RefreshHelp();
}

std::string MakeApplicationFolder(const std::string& folder) {
  const QString path = QString::fromStdString(folder);
  if (QDir(path).exists()) return {};
  if (!QDir().mkpath(path)) return "\"" + folder + "\": cannot make this folder";
  QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  return {};
}

SeedReport SeedApplicationFolder(const std::string& folder, const Assets& assets, bool first_start) {
  return Installer(folder, assets).Seed(first_start);
}

namespace {

constexpr auto kDataFolder = QLatin1String("espeak-ng-data");

/// Every voice needs this file.
bool HoldsData(const QDir& folder) {
  return QFileInfo(folder.filePath(QStringLiteral("phontab"))).isFile();
}

/// The folder that the engine prefers, if it exists: then it looks nowhere else.
std::optional<QDir> ChosenFolder() {
  const QString variable = qEnvironmentVariable("ESPEAK_DATA_PATH");
  const QDir chosen(variable);
  if (!variable.isEmpty() && chosen.exists())
    return chosen.exists(kDataFolder) ? QDir(chosen.filePath(kDataFolder)) : chosen;
  if (QDir::home().exists(kDataFolder)) return QDir(QDir::home().filePath(kDataFolder));
  return std::nullopt;
}

/// Whether a package has installed the data. The folder depends on how the engine was built.
bool HeldBySystem() {
  QStringList places = {QStringLiteral("/usr/share"), QStringLiteral("/usr/local/share")};
  for (const QString& libraries : {QStringLiteral("/usr/lib"), QStringLiteral("/usr/local/lib")}) {
    places << libraries;
    // One folder for each architecture.
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
