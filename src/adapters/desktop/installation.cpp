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

void AddProblem(SeedReport& report, const QString& path, const QString& reason) {
  report.problems.push_back(QStringLiteral("\"%1\": %2").arg(path, reason).toStdString());
}

/// Copies a file from `assets` to the same place in `folder`; the copy appears complete or not at all.
void CopyWhole(const QString& folder, const QString& assets, const QString& name, SeedReport& report) {
  const QString target = folder + u'/' + name;
  QFile source(assets + u'/' + name);
  if (!source.open(QIODevice::ReadOnly)) return AddProblem(report, source.fileName(), source.errorString());
  const QByteArray content = source.readAll();
  if (source.error() != QFile::NoError) return AddProblem(report, source.fileName(), source.errorString());
  QSaveFile copy(target);  // a temporary file, then fsync and rename
  if (!copy.open(QIODevice::WriteOnly)) return AddProblem(report, target, copy.errorString());
  copy.write(content);  // commit reports a failure
  if (!copy.commit()) return AddProblem(report, target, copy.errorString());
  report.copied.push_back(name.toStdString());
}

/// Fills an application folder.
class Seeding {
 public:
  Seeding(const QString& folder, const QString& assets, bool first_start)
      : folder_(folder), assets_(assets), first_start_(first_start) {}

  SeedReport Run() {
    const QStringList wanted = WantedFiles();
    MakeFolders();
    for (const QString& name : wanted) CopyMissing(name);
    if (assets_.isEmpty()) {
      Problem(folder_,
              QStringLiteral("there is nothing to copy into it: the installed assets were not found"));
    }
    return report_;
  }

 private:
  /// The files to have, present or not. To be called before the folders are made.
  QStringList WantedFiles() const {
    if (assets_.isEmpty()) return {};
    QStringList names = {QStringLiteral("beep.wav")};
    for (const char* name : kSoundFolders) {
      const QString sounds = u'/' + QString::fromLatin1(name);
      if (!first_start_ && QFile::exists(folder_ + sounds)) continue;
      for (const QString& wav : WavNames(assets_ + sounds)) names << QString::fromLatin1(name) + u'/' + wav;
    }
    return names;
  }

  void MakeFolders() {
    for (const char* name : kFolders) {
      const QString path = folder_ + u'/' + QString::fromLatin1(name);
      if (!QDir().mkpath(path)) Problem(path, QStringLiteral("cannot make this folder"));
    }
  }

  void CopyMissing(const QString& name) {
    if (!QFile::exists(folder_ + u'/' + name)) CopyWhole(folder_, assets_, name, report_);
  }

  void Problem(const QString& path, const QString& reason) { AddProblem(report_, path, reason); }

  QString folder_;
  QString assets_;
  bool first_start_;
  SeedReport report_;
};

bool SameContent(const QString& one, const QString& other) {
  QFile first(one);
  QFile second(other);
  return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly) &&
         first.size() == second.size() && first.readAll() == second.readAll();
}

/// Updates the help, folder by folder.
class HelpRefresh {
 public:
  HelpRefresh(const QString& folder, const QString& assets) : folder_(folder), assets_(assets) {}

  SeedReport Run() {
    const QString help = QStringLiteral("Help");
    if (!assets_.isEmpty() && QDir(assets_ + u'/' + help).exists()) Refresh(help);
    return report_;
  }

 private:
  void Refresh(const QString& name) {
    const QDir there(assets_ + u'/' + name);
    const QDir here(folder_ + u'/' + name);
    if (!QDir().mkpath(here.path()))
      return AddProblem(report_, here.path(), QStringLiteral("cannot make this folder"));
    const auto wanted = there.entryList(QDir::Files);
    for (const QString& file : wanted) {
      const QString path = name + u'/' + file;
      if (!SameContent(there.filePath(file), here.filePath(file))) CopyWhole(folder_, assets_, path, report_);
    }
    const auto present = here.entryList(QDir::Files);
    for (const QString& file : present) {
      if (!wanted.contains(file)) QFile::remove(here.filePath(file));
    }
    const auto folders = there.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& below : folders) Refresh(name + u'/' + below);
  }

  QString folder_;
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

SeedReport RefreshHelp(const std::string& folder, const std::string& assets) {
  return HelpRefresh(QString::fromStdString(folder), QString::fromStdString(assets)).Run();
}

std::string MakeApplicationFolder(const std::string& folder) {
  const QString path = QString::fromStdString(folder);
  if (QDir(path).exists()) return {};
  if (!QDir().mkpath(path)) return "\"" + folder + "\": cannot make this folder";
  QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  return {};
}

SeedReport SeedApplicationFolder(const std::string& folder, const std::string& assets, bool first_start) {
  return Seeding(QString::fromStdString(folder), QString::fromStdString(assets), first_start).Run();
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
