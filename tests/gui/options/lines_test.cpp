// SPDX-License-Identifier: GPL-3.0-or-later
// The lines dialog over its engine, driven by object names.
#include <QTest>

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "options/frmLineEdit.h"
#include "options/frmLines.h"
#include "support/scripted_lines.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class LinesWindow : public WindowTest {
 protected:
  LinesWindow() {
    TelephoneLine home, modem;
    std::tie(home.name, home.server, home.user, home.password, home.srtp, home.origin) =
        std::tuple("Home", "192.168.1.1", "100", "secret", "yes", 1);
    std::tie(modem.name, modem.kind, modem.port, modem.origin) =
        std::tuple("Old modem", LineKind::Modem, "/dev/gone", 8);
    lines.configured = {{home, modem}, {"lines.ini:3: something is wrong"}};
    lines.states = {{"Home", "Registering"}};
    Open();
  }
  void Open() {
    auto& machine = world.Machine();
    engine = std::make_unique<LinesDialog>(LinesDialog::Parts{lines, world.dialogs, machine.log,
                                                              machine.store, machine.settings,
                                                              [this] { return ++used, !call_up; }});
    window = std::make_unique<frmLines>(*engine, nullptr);
    Show(*window);
  }
  QTreeWidget& List() { return *window->findChild<QTreeWidget*>(); }
  std::string Row(int row) {
    QStringList cells;
    for (int column = 0; column < 4; ++column) cells << List().topLevelItem(row)->text(column);
    return cells.join(u'|').toStdString();
  }
  void Select(int row) { List().setCurrentItem(List().topLevelItem(row)); }

  /// Clicks the button that opens the window of one line, and does `act` there, which must close it.
  void InEditor(const char* button, const std::function<void()>& act) {
    bool was_there = false;
    QTimer::singleShot(0, [&] {
      auto* editor = QApplication::activeModalWidget();
      was_there = editor != nullptr && editor->objectName() == u"frmLineEdit";
      if (!was_there) return;
      Show(*editor);
      act();
      EXPECT_FALSE(editor->isVisible()) << "it should have closed";
      editor->close();
      Show(*window);
    });
    Click(button);
    EXPECT_TRUE(was_there);
  }

  ScriptedLines lines;
  int used = 0;
  bool call_up = false;
  std::unique_ptr<LinesDialog> engine;
  std::unique_ptr<frmLines> window;
};

TEST_F(LinesWindow, ShowsTheLinesAndTheirStateAsItChanges) {
  ASSERT_EQ(List().topLevelItemCount(), 2);
  EXPECT_EQ(Row(0), "Home|SIP account|100@192.168.1.1|Registering");
  EXPECT_EQ(Row(1), "Old modem|Modem|/dev/gone|Off");
  ExpectShown({{"lblComplaints", "lines.ini:3: something is wrong"}});
  lines.states["Home"] = "Registered";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Row(0).ends_with("|Registered"); }));
  EXPECT_TRUE(List().topLevelItem(0)->isSelected()) << "the selection stays";
  // Enter in the list opens the line and stores nothing.
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
  EXPECT_FALSE(Get<QPushButton>("cmdTest").isDefault() || Get<QPushButton>("cmdOK").isDefault());
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_TRUE(window->isVisible() && used == 0);
}

TEST_F(LinesWindow, ALineIsAddedAndBadInputIsNamedBelowItsField) {
  InEditor("cmdAdd", [&] {
    const auto& fault = Get<QLabel>("lblFault");
    Set({{"txtName", "Home"}});
    Click("cmdOK");
    EXPECT_THAT(Shown("lblFault"), HasSubstr("Another line"));
    Set({{"txtName", "Büro"}, {"txtUser", "7"}});
    EXPECT_FALSE(fault.isVisible());
    lines.fault =
        "A sentence so long that it takes several lines, however wide the window is made. It says "
        "what is wrong, and what would be right instead, and it is read to its end.";
    Click("cmdOK");
    ExpectShown({{"lblFault", lines.fault}});
    EXPECT_EQ(Focused(), "txtServer");
    QTest::qWait(0);
    EXPECT_GT(fault.y(), Get("txtServer").y());
    EXPECT_LT(fault.y(), Get("txtUser").y());
    EXPECT_GE(fault.height(), fault.heightForWidth(fault.width())) << "the text is cut";
    Set({{"txtServer", " pbx.example.org "}, {"txtPassword", " x"}});
    Click("cmdOK");
    EXPECT_EQ(Focused(), "txtPassword");
    const auto& password = Get<QLineEdit>("txtPassword");
    EXPECT_EQ(password.echoMode(), QLineEdit::Password);
    Click("chkShowPassword");
    EXPECT_EQ(password.echoMode(), QLineEdit::Normal);
    Set({{"txtPassword", "x y"}, {"spnRing", "61"}});
    Get<QComboBox>("cmbTransport").setCurrentIndex(3);
    Click("cmdOK");
  });
  EXPECT_EQ(Row(2), "Büro|SIP account|7@pbx.example.org|Off");
  EXPECT_TRUE(List().topLevelItem(2)->isSelected());
  EXPECT_THAT(lines.configured.lines, SizeIs(2)) << "nothing is stored before OK";
  Click("cmdOK");
  ASSERT_THAT(lines.configured.lines, SizeIs(3));
  const auto& added = lines.configured.lines[2];
  EXPECT_EQ(added.password + "|" + added.transport + "|" + added.srtp, "x y|tls|no");
  EXPECT_TRUE(added.ring_seconds == 60 && used == 1 && !window->isVisible());
}

TEST_F(LinesWindow, TheChosenLineStaysChosenUnderAnotherName) {
  world.Machine().settings.ModemName = "Home";
  InEditor("cmdEdit", [&] {
    EXPECT_FALSE(Enabled("cmbKind"));
    ExpectShown({{"txtPassword", "secret"}});
    Set({{"txtName", "House"}});
    Click("cmdOK");
  });
  call_up = true;
  Click("cmdOK");
  ExpectStored({{"ModemName", "House"}});
  EXPECT_EQ(lines.configured.lines[0].srtp, "yes") << "what was written by hand stays";
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("when it is over")));
}

TEST_F(LinesWindow, AModemsPortIsChosenFromThoseFoundAndTheStoredOneStays) {
  Select(1);
  InEditor("cmdEdit", [&] {
    EXPECT_FALSE(Visible("txtServer"));
    lines.ports = {{"/dev/ttyUSB0", "/dev/ttyUSB0"}};
    Click("cmdFindPorts");
    ExpectShown({{"cmbPort", "/dev/gone"}});
    auto& port = Get<QComboBox>("cmbPort");
    port.setCurrentIndex(port.findText("/dev/ttyUSB0"));
    QTest::keyClick(&Get("cmdTest"), Qt::Key_Return);
    ASSERT_THAT(lines.tested, SizeIs(1));
    EXPECT_EQ(lines.tested[0].port, "/dev/ttyUSB0");
    lines.done({false, "Nothing answers."});
    ExpectShown({{"lblTestResult", "Nothing answers."}});
    Set({{"txtName", "New modem"}});
    ExpectShown({{"lblTestResult", ""}});
    Click("cmdOK");
  });
  EXPECT_EQ(Row(1), "New modem|Modem|/dev/ttyUSB0|Off");
}

TEST_F(LinesWindow, ATestTellsItsResultCanBeStoppedAndEndsWithTheWindow) {
  const auto test = [&] { Click("cmdTest"); };
  test();
  EXPECT_EQ(lines.tested.at(0).name, "Home");
  ExpectShown({{"lblTestResult", "Testing…"}});
  lines.done({false, "The password is wrong."});
  ExpectShown({{"lblTestResult", "The password is wrong."}});
  const std::function<void()> ends[] = {test, [&] { Select(1); }, [&] { window.reset(); }};
  for (const auto& end : ends) {
    test();
    end();
    EXPECT_EQ(lines.done, nullptr) << &end - ends;
  }
}

TEST_F(LinesWindow, RemoveAsksCancelStoresNothingAndAFailureKeepsTheWindow) {
  Click("cmdRemove");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Remove the line \"Home\" ?"));
  EXPECT_EQ(List().topLevelItemCount(), 2);
  world.dialogs.yes = true;
  for (int i = 0; i < 2; ++i) Click("cmdRemove");
  EXPECT_EQ(List().topLevelItemCount(), 0);
  EXPECT_FALSE(Enabled("cmdEdit") || Enabled("cmdRemove") || Enabled("cmdTest"));
  lines.before_store = [] { throw RuntimeError(ErrorNumber::DiskFull, "lines.ini"); };
  Click("cmdOK");
  EXPECT_TRUE(window->isVisible());
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("Disk full: lines.ini")));
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_TRUE(!window->isVisible() && window->result() == QDialog::Rejected);
  EXPECT_THAT(lines.configured.lines, SizeIs(2));
  lines.before_store = [] { FAIL() << "nothing was changed"; };
  Open();
  Click("cmdOK");
  EXPECT_EQ(used, 0);
}

}  // namespace
}  // namespace orven::test
