// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/application_folder.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orven {
namespace {

class ApplicationFolderTest : public ::testing::Test {
 protected:
  std::string Path(const char* name) const { return root_.filePath(name).toStdString(); }

  void Write(const QString& name, const QByteArray& content) const {
    const QString path = root_.filePath(name);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
  }

  std::string Read(const char* name) const {
    QFile file(root_.filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(missing)";
  }

  void WriteAssets() const {
    Write("assets/beep.wav", "beep");
    Write("assets/Greets/Default.wav", "hello");
    Write("assets/Sound/Ring.wav", "ring");
    Write("assets/Sound/notes.txt", "not a sound");
  }

  /// Every file and folder below the application folder "app", sorted, folders with a slash.
  std::string AppContent() const {
    QStringList names;
    const QDir app(root_.filePath("app"));
    for (const QFileInfo& entry : app.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)) {
      if (!entry.isDir()) {
        names << entry.fileName();
        continue;
      }
      names << entry.fileName() + u'/';
      for (const QString& name : QDir(entry.filePath()).entryList(QDir::Files | QDir::Hidden)) {
        names << entry.fileName() + u'/' + name;
      }
    }
    names.sort();
    return names.join(u' ').toStdString();
  }

  QTemporaryDir root_;
};

TEST_F(ApplicationFolderTest, IsTheFirstOfOrvenHomeTheProgramsFolderAndTheDataFolder) {
  Write("portable/beep.wav", "");
  const FolderHints all{Path("home//"), Path("portable"), Path("data"), Path("user")};
  EXPECT_EQ(FindApplicationFolder(all), Path("home"));
  EXPECT_EQ(FindApplicationFolder({"", all.executable_folder, all.data_home, all.home}), Path("portable"));
  EXPECT_EQ(FindApplicationFolder({"", Path("bin"), all.data_home, all.home}), Path("data/orven"));
  EXPECT_EQ(FindApplicationFolder({"", Path("bin"), "relative", all.home}), Path("user/.local/share/orven"));
  EXPECT_EQ(FindApplicationFolder({"some/where", "", "", ""}),
            QDir::currentPath().toStdString() + "/some/where");
}

TEST_F(ApplicationFolderTest, AssetsAreFoundFromAnInstalledAndFromABuiltProgram) {
  Write("usr/share/orven/beep.wav", "");
  Write("tree/assets/beep.wav", "");
  EXPECT_EQ(FindAssets(Path("usr/bin")), Path("usr/share/orven"));
  EXPECT_EQ(FindAssets(Path("tree/build/dev/bin")), Path("tree/assets"));
  EXPECT_EQ(FindAssets(Path("elsewhere/a/b/c/bin")), "");
}

TEST_F(ApplicationFolderTest, AFirstStartMakesTheFoldersAndCopiesTheAssets) {
  WriteAssets();
  EXPECT_EQ(MakeApplicationFolder(Path("app")), "");
  const SeedReport report = SeedApplicationFolder(Path("app"), Path("assets"), true);
  EXPECT_EQ(AppContent(), "Greets/ Greets/Default.wav Log/ Messages/ Sound/ Sound/Ring.wav beep.wav");
  EXPECT_EQ(Read("app/Greets/Default.wav"), "hello");
  EXPECT_EQ(report.copied, (std::vector<std::string>{"beep.wav", "Greets/Default.wav", "Sound/Ring.wav"}));
  EXPECT_TRUE(report.problems.empty());
  const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  EXPECT_EQ(QFile::permissions(root_.filePath("app")) & others, QFile::Permissions());
}

TEST_F(ApplicationFolderTest, KeepsWhatTheUserHasAndDoesNotBringBackWhatHeDeleted) {
  WriteAssets();
  Write("app/beep.wav", "my own beep");
  Write("app/Greets/Mine.wav", "it is me");
  const SeedReport report = SeedApplicationFolder(Path("app"), Path("assets"), false);
  EXPECT_EQ(AppContent(), "Greets/ Greets/Mine.wav Log/ Messages/ Sound/ Sound/Ring.wav beep.wav");
  EXPECT_EQ(Read("app/beep.wav"), "my own beep");
  EXPECT_EQ(report.copied, std::vector<std::string>{"Sound/Ring.wav"});
}

TEST_F(ApplicationFolderTest, AnUnfinishedFirstStartIsFinishedByTheNext) {
  WriteAssets();
  Write("assets/Sound/Message.wav", "message");
  Write("app/Sound/Message.wav", "message");
  SeedApplicationFolder(Path("app"), Path("assets"), true);
  EXPECT_EQ(Read("app/Sound/Ring.wav"), "ring");
}

TEST_F(ApplicationFolderTest, AFailureNamesTheFileAndTheRestIsStillDone) {
  WriteAssets();
  Write("app/Greets", "a file where a folder belongs");
  const SeedReport report = SeedApplicationFolder(Path("app"), Path("assets"), true);
  ASSERT_EQ(report.problems.size(), 2U);
  EXPECT_EQ(report.problems[0].find("\"" + Path("app/Greets") + "\": "), 0U) << report.problems[0];
  EXPECT_EQ(report.problems[1].find("\"" + Path("app/Greets/Default.wav") + "\": "), 0U)
      << report.problems[1];
  EXPECT_EQ(Read("app/Sound/Ring.wav"), "ring");
  EXPECT_EQ(Read("app/beep.wav"), "beep");

  const SeedReport without = SeedApplicationFolder(Path("bare"), "", true);
  EXPECT_EQ(without.problems.size(), 1U);
  EXPECT_TRUE(QDir(root_.filePath("bare/Messages")).exists());
  EXPECT_EQ(MakeApplicationFolder(Path("app/beep.wav/x")),
            "\"" + Path("app/beep.wav/x") + "\": cannot make this folder");
}

}  // namespace
}  // namespace orven
