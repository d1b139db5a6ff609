// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/translation.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QTranslator>
#include <string>
#include <vector>

/// Resources of a static library are not registered automatically.
static void RegisterTranslations() {
  Q_INIT_RESOURCE(orven_translations);
}

namespace orven {
namespace {

/// Adds the texts of one file. Returns their language: "de", or nothing when there is no such file.
QString Add(const QString& texts, const QString& language, const QString& folder) {
  auto* translator = new QTranslator(QCoreApplication::instance());  // NOLINT: the application owns it
  const QString name = texts + u'_' + QString(language).replace(u'-', u'_');
  if (!translator->load(name, folder, QStringLiteral("_"))) return {};  // "de_AT" or "de"
  QCoreApplication::installTranslator(translator);
  return QFileInfo(translator->filePath()).completeBaseName().mid(texts.size() + 1);
}

}  // namespace

std::string ShowIn(const QStringList& languages) {
  RegisterTranslations();
  const QString translations = QStringLiteral(":/translations");
  for (const QString& language : languages) {
    if (language.section(u'-', 0, 0) == u"en") break;
    const QString found = Add(QStringLiteral("orven"), language, translations);
    if (found.isEmpty()) continue;
    Add(QStringLiteral("words"), found, translations);
    Add(QStringLiteral("qtbase"), found, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return found.toStdString();
  }
  return "en";
}

QString Shown(const Words& words) {
  if (!words.IsLiteral()) return QString::fromStdString(words.Text());
  std::vector<std::string> arguments;
  for (const auto& argument : words.Arguments()) arguments.push_back(Shown(argument).toStdString());
  // Without a translation it returns what it was given.
  return QString::fromStdString(
      WithArguments(QCoreApplication::translate("Words", words.Text().c_str()).toStdString(), arguments));
}

}  // namespace orven
