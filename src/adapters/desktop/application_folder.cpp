// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <array>

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

/// One filling of one application folder.
class Seeding {
 public:
  Seeding(const QString& folder, const QString& assets, bool first_start)
      : folder_(folder), assets_(assets), first_start_(first_start) {}

  SeedReport Run() {
    const QStringList wanted = WantedFiles();
    MakeFolders();
    for (const QString& name : wanted) CopyMissing(name);
    if (assets_.isEmpty()) {
      Problem(folder_, QStringLiteral("nothing to fill it from, the installed assets were not found"));
    }
    return report_;
  }

 private:
  /// The files that belong here now, present or not; decided before the folders are made.
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
    const QString target = folder_ + u'/' + name;
    if (QFile::exists(target)) return;
    QFile source(assets_ + u'/' + name);
    if (!source.open(QIODevice::ReadOnly)) return Problem(source.fileName(), source.errorString());
    const QByteArray content = source.readAll();
    if (source.error() != QFile::NoError) return Problem(source.fileName(), source.errorString());
    QSaveFile copy(target);  // a temporary file beside it, then fsync and rename
    if (!copy.open(QIODevice::WriteOnly)) return Problem(target, copy.errorString());
    copy.write(content);  // commit reports what fails here
    if (!copy.commit()) return Problem(target, copy.errorString());
    report_.copied.push_back(name.toStdString());
  }

  void Problem(const QString& path, const QString& reason) {
    report_.problems.push_back(QStringLiteral("\"%1\": %2").arg(path, reason).toStdString());
  }

  QString folder_;
  QString assets_;
  bool first_start_;
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
  // Beside bin/ in a build folder; in an installation the programs have lib/orven/ to themselves.
  for (const char* share : {"/../share/orven", "/../../share/orven"}) {
    const QString folder = Absolute(QString::fromStdString(executable_folder + share));
    if (QFile::exists(folder + QStringLiteral("/beep.wav"))) return folder.toStdString();
  }
  return {};
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

}  // namespace orven
