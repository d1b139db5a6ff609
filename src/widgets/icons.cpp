// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/icons.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>

/// Resources of a static library are not registered automatically.
static void RegisterPictures() {
  Q_INIT_RESOURCE(orven_icons);
}

namespace orven {
namespace {

constexpr int kDarkBelow = 128;  // HSL lightness, 0 to 255

bool IsInstalled(const QString& theme) {
  const auto folders = QIcon::themeSearchPaths();
  return std::any_of(folders.begin(), folders.end(), [&](const QString& folder) {
    return QFile::exists(folder + u'/' + theme + QStringLiteral("/index.theme"));
  });
}

/// Some platform plugins of Qt do not know where a desktop keeps its icons.
void AddSearchPaths() {
  auto paths = QIcon::themeSearchPaths();
  const auto shared = QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QStringLiteral("icons"),
                                                QStandardPaths::LocateDirectory);
  for (const auto& path : shared) {
    if (!paths.contains(path)) paths.append(path);
  }
  QIcon::setThemeSearchPaths(paths);
}

}  // namespace

void UseIconTheme(const QPalette& palette) {
  AddSearchPaths();
  const bool dark = palette.color(QPalette::Window).lightness() < kDarkBelow;
  const QString theme = dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze");
  if (QIcon::themeName() != theme && IsInstalled(theme)) QIcon::setThemeName(theme);
}

QIcon ThemeIcon(const char* name) {
  return QIcon::fromTheme(QString::fromLatin1(name));
}

QIcon OwnPicture(const QString& name) {
  RegisterPictures();
  return QIcon(QStringLiteral(":/icons/") + name + QStringLiteral(".svg"));
}

QIcon ProgramIcon() {
  return OwnPicture(QStringLiteral("orven"));
}

}  // namespace orven
