// SPDX-License-Identifier: GPL-3.0-or-later
// How the program uses the desktop: the tray icon, files, other programs, dialogs.
#include "adapters/desktop/qt_shell.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <QTest>
#include <QtWidgets>
#include <sstream>

#include "actions/actions_engine.h"
#include "adapters/desktop/command_line.h"
#include "adapters/desktop/desktop_system.h"
#include "adapters/desktop/qt_dialogs.h"
#include "base/runtime_error.h"
#include "base/text.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// Records the addresses to be opened and opens nothing.
class Opener : public QObject {
  Q_OBJECT
 public:
  Q_INVOKABLE void Take(const QUrl& address) { addresses << address.toString(); }
  QStringList addresses;
};

struct QtShellTest : testing::Test {
  /// Writes a shell script whose output goes to the file "out".
  std::string Program(const std::string& name, const std::string& script) {
    PutFile(folder / name,
            "#!/bin/sh\n{ " + script + "; } > \"$0.new\"\ncd \"${0%/*}\"; mv \"$0.new\" out\n");
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    return folder / name;
  }
  std::string OutputOf(const std::string& command, const Environment& added = {}) {
    shell.Run(command, 2, added);
    EXPECT_TRUE(QTest::qWaitFor([&] { return folder.Count("out") == 1; }, 20'000)) << command;
    const auto output = ContentOf(folder / "out");
    std::filesystem::remove(folder / "out");
    return output;
  }

  ScratchFolder folder;
  QtShell shell{{}};
};

TEST_F(QtShellTest, TheIconIsAddedOnceAndItsTipFollows) {
  EXPECT_FALSE(shell.NotifyIcon(NotifyRequest::Modify, {})) << "there is no icon to change";
  EXPECT_TRUE(shell.NotifyIcon(NotifyRequest::Add, {}));
  EXPECT_FALSE(shell.NotifyIcon(NotifyRequest::Add, {}));
  NotifyIconData data;
  data.tip = std::string("ORVEN - Calls:4  New:2").append(9, '\0');
  EXPECT_TRUE(shell.NotifyIcon(NotifyRequest::Modify, data));
  EXPECT_EQ(shell.Icon()->toolTip(), "ORVEN - Calls:4  New:2");
}

TEST_F(QtShellTest, OpensExistingFilesOnly) {
  const auto page = folder / "index #1.htm";
  PutFile(page, "");
  Opener opener;
  QDesktopServices::setUrlHandler("file", &opener, "Take");
  EXPECT_TRUE(shell.Open(page));
  for (const auto& target : {folder / "missing.htm", folder / "", std::string("index.htm"), "file://" + page})
    EXPECT_FALSE(shell.Open(target)) << target;
  EXPECT_EQ(opener.addresses, QStringList{QUrl::fromLocalFile(QString::fromStdString(page)).toString()});
  QDesktopServices::unsetUrlHandler("file");
}

TEST(CommandLine, IsSplitAtBlanksOutsideQuotes) {
  const std::pair<const char*, std::vector<std::string>> rows[] = {
      {"  play  \"a b\" c\td ", {"play", "a b", "c", "d"}},
      {"x \"\" y", {"x", "", "y"}},
      {"a\"b c\"d 'e f' \\g", {"ab cd", "'e", "f'", "\\g"}},
      {"a \"b c", {"a", "b c"}}};
  for (const auto& [line, parts] : rows) EXPECT_EQ(SplitCommandLine(line), parts) << line;
}

TEST_F(QtShellTest, NoCallerNameBreaksOutOfItsQuotesAndNoSocketIsInherited) {
  const int line = ::socket(AF_INET, SOCK_DGRAM, 0);  // without close-on-exec, as libraries open them
  const auto program = Program("tell", "printf '%s\\n' \"$@\" \"$ORVEN_NAME\"; ls -l /proc/$$/fd | grep -c socket:");
  for (const char* name :
       {"Anna Garden", "", "$(touch evil)", "`touch evil`", "a & touch evil", "x\" \"--evil",
        "'; touch evil; '", "\\", "--help", "a\nb", "> evil", "*", "%s%n", "Zoë 😀", "<NUMBER>"}) {
    const auto clean = CleanCallerText(name);
    auto command = "\"" + program + "\" \"<NAME>\" last";
    EXPECT_EQ(OutputOf(SubstituteParameters(command, {clean, "555", "", "", ""}), {{"ORVEN_NAME", clean}}),
              clean + "\nlast\n" + clean + "\n0\n");
    EXPECT_EQ(folder.Count("evil"), 0U) << name;
  }
  ::close(line);
}

TEST_F(QtShellTest, AHelperIsStartedUnderItsAliasAndAFailedStartNamesTheProgram) {
  shell.SetHelper("TTS.exe", [this] { return HelperStart{folder / "helper", {{"CHANNEL", "a path"}}}; });
  PutFile(folder / "text", "no program");
  const std::tuple<std::string, int, std::string> rows[] = {{"\"\"", 5, ""},
                                                            {"/nowhere/program x", 53, "/nowhere/program"},
                                                            {"nothing-in-path", 53, "nothing"},
                                                            {folder / "text", 70, folder / "text"},
                                                            {folder / "TTS.exe", 53, folder / "helper"}};
  for (const auto& [command, number, named] : rows) {
    try {
      shell.Run(command, 2, {});
      ADD_FAILURE() << command;
    } catch (const RuntimeError& error) {
      EXPECT_TRUE(error.Number() == number && std::string(error.what()).find(named) != std::string::npos)
          << error.what();
    }
  }
  for (const auto& [file, output] : {std::pair{"helper", "-gc a path"}, {"TTS.exe", "-gc "}}) {
    Program(file, "printf '%s %s' \"$1\" \"$CHANNEL\"");
    EXPECT_EQ(OutputOf("\"" + (folder / "TTS.exe") + "\" -gc"), output);
  }
}

TEST(QtDialogs, WithoutADisplayTextsGoToTheOutputAndAnswersAreSafe) {
  std::ostringstream output;
  QtDialogs dialogs(&Words::English, HasDisplay(), output);
  EXPECT_FALSE(dialogs.Confirm(Words("Delete Call ?"), QuestionIcon::Question) ||
               dialogs.SaveAs(Words("Save"), "", "a.wav") || dialogs.OpenFile(Words("Add Sound"), ""));
  EXPECT_EQ(output.str(),
            "ORVEN: Delete Call ? (answered No: there is no display)\n"
            "ORVEN: Save: a.wav (cancelled: there is no display)\n"
            "ORVEN: Add Sound (cancelled: there is no display)\n");
}

/// Calls `act` with the next dialog box once it is open.
template <class Box>
void WhenOpen(std::function<void(Box&)> act) {
  QTimer::singleShot(0, qApp, [act] { act(dynamic_cast<Box&>(*QApplication::activeModalWidget())); });
}

TEST(QtDialogs, AConfirmationOpensOverTheTopmostDialogAndIsYesOnlyForYes) {
  QMainWindow window;
  QDialog dialog(&window);
  window.show();
  dialog.open();
  for (const auto button : {QMessageBox::Yes, QMessageBox::No, QMessageBox::NoButton}) {
    WhenOpen<QMessageBox>([&](auto& box) {
      EXPECT_EQ(box.textFormat(), Qt::PlainText) << "a caller's name is not markup";
      EXPECT_EQ(box.parentWidget(), &dialog);
      box.button(button) == nullptr ? void(box.close()) : box.button(button)->click();
    });
    EXPECT_EQ(QtDialogs(&Words::English, true).Confirm(Words("Delete <b>a</b> ?"), QuestionIcon::None),
              button == QMessageBox::Yes);
  }
}

TEST(QtDialogs, FilesAreFilteredAndTheLastFolderIsOpenedAgain) {
  const ScratchFolder folder;
  QtDialogs dialogs(&Words::English, true);
  QString seen;
  const auto choose = [&](const char* name) {
    WhenOpen<QFileDialog>([&, name](auto& box) {
      seen = box.windowTitle() + u'|' + box.selectedFiles().join(u' ') + u'|' + box.nameFilters().join(u'|');
      box.selectFile(QString::fromStdString(folder / name));
      QMetaObject::invokeMethod(&box, *name == 0 ? "reject" : "accept");
    });
  };
  const std::string filter("wav (*.wav)\0*.wav\0Sounds\0*.wav;*.mp3\0", 36);
  for (const char* name : {"sub/a", "b"}) {
    choose(name);
    std::filesystem::create_directory(folder / "sub");
    EXPECT_EQ(dialogs.SaveAs(Words("Save As"), filter, "c.wav"), folder / name + ".wav");
  }
  EXPECT_EQ(seen.toStdString(), "Save As|" + folder / "sub/c.wav" + "|wav (*.wav)|Sounds (*.wav *.mp3)");
  choose("sub");
  EXPECT_EQ(dialogs.BrowseFolder(Words("Messages"), folder / ""), folder / "sub");
  choose("");
  EXPECT_EQ(dialogs.OpenFile(Words("Add Sound"), filter), std::nullopt);
}

}  // namespace
}  // namespace orven::test

#include "qt_shell_test.moc"
