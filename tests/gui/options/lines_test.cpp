// SPDX-License-Identifier: GPL-3.0-or-later
// The lines dialog over its engine, driven by object names.
#include <QTest>

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "options/frmLineEdit.h"
#include "options/frmLines.h"
#include "support/scripted_lines.h"
#include "support/world.h"

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
    lines.configured.lines = {home, modem};
    lines.states = {{"Home", "Registering"}};
  }
  void Open() {
    auto& machine = world.Machine();
    engine = std::make_unique<LinesDialog>(LinesDialog::Parts{lines, world.dialogs, machine.log,
                                                              machine.store, machine.settings,
                                                              [this] { return ++used, !call_up; }});
    window = std::make_unique<frmLines>(*engine, nullptr);
    Show(*window);
  }
  void Type(const char* field, const char* text) const {
    Get<QLineEdit>(field).setText(QString::fromUtf8(text));
  }
  std::string Text(const char* label) const { return Get<QLabel>(label).text().toStdString(); }
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

  World world;
  ScriptedLines lines;
  int used = 0;
  bool call_up = false;
  std::unique_ptr<LinesDialog> engine;
  std::unique_ptr<frmLines> window;
};

TEST_F(LinesWindow, ShowsTheLinesAndTheirStateAsItChanges) {
  lines.configured.complaints = {"lines.ini:3: something is wrong"};
  Open();
  ASSERT_EQ(List().topLevelItemCount(), 2);
  EXPECT_EQ(Row(0), "Home|SIP account|100@192.168.1.1|Registering");
  EXPECT_EQ(Row(1), "Old modem|Modem|/dev/gone|Off");
  EXPECT_EQ(Text("lblComplaints"), "lines.ini:3: something is wrong");
  lines.states["Home"] = "Registered";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Row(0).ends_with("|Registered"); }));
  EXPECT_TRUE(List().topLevelItem(0)->isSelected()) << "the selection stays";
}

TEST_F(LinesWindow, EnterInTheListOpensTheLineAndStoresNothing) {
  Open();
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
  EXPECT_FALSE(Get<QPushButton>("cmdTest").isDefault() || Get<QPushButton>("cmdOK").isDefault());
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_TRUE(window->isVisible() && used == 0);
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_TRUE(!window->isVisible() && window->result() == QDialog::Rejected);
}

TEST_F(LinesWindow, ALineIsAddedAndBadInputIsNamedBelowItsField) {
  Open();
  InEditor("cmdAdd", [&] {
    const auto& fault = Get<QLabel>("lblFault");
    Type("txtName", "Home");
    Click("cmdOK");
    EXPECT_THAT(Text("lblFault"), HasSubstr("Another line"));
    Type("txtName", "Büro");
    EXPECT_FALSE(fault.isVisible());
    Type("txtUser", "7");
    lines.fault =
        "A sentence so long that it takes several lines, however wide the window is made. It says "
        "what is wrong, and what would be right instead, and it is read to its end.";
    Click("cmdOK");
    EXPECT_EQ(Text("lblFault"), lines.fault);
    EXPECT_EQ(Focused(), "txtServer");
    QTest::qWait(0);
    EXPECT_GT(fault.y(), Get<QLineEdit>("txtServer").y());
    EXPECT_LT(fault.y(), Get<QLineEdit>("txtUser").y());
    EXPECT_GE(fault.height(), fault.heightForWidth(fault.width())) << "the text is cut";
    Type("txtServer", " pbx.example.org ");
    Type("txtPassword", " x");
    Click("cmdOK");
    EXPECT_EQ(Focused(), "txtPassword");
    const auto& password = Get<QLineEdit>("txtPassword");
    EXPECT_EQ(password.echoMode(), QLineEdit::Password);
    Click("chkShowPassword");
    EXPECT_EQ(password.echoMode(), QLineEdit::Normal);
    Type("txtPassword", "x y");
    Get<QComboBox>("cmbTransport").setCurrentIndex(3);
    Get<QSpinBox>("spnRing").setValue(61);
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
  Open();
  InEditor("cmdEdit", [&] {
    EXPECT_FALSE(Get<QComboBox>("cmbKind").isEnabled());
    EXPECT_EQ(Get<QLineEdit>("txtPassword").text(), u"secret");
    Type("txtName", "House");
    Click("cmdOK");
  });
  call_up = true;
  Click("cmdOK");
  EXPECT_EQ(world.registry.Text("ModemName"), "House");
  EXPECT_EQ(lines.configured.lines[0].srtp, "yes") << "what was written by hand stays";
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("when it is over")));
}

TEST_F(LinesWindow, AModemsPortIsChosenFromThoseFoundAndTheStoredOneStays) {
  Open();
  Select(1);
  InEditor("cmdEdit", [&] {
    auto& port = Get<QComboBox>("cmbPort");
    EXPECT_FALSE(Get<QLineEdit>("txtServer").isVisible());
    lines.ports = {{"/dev/ttyUSB0", "/dev/ttyUSB0"}};
    Click("cmdFindPorts");
    EXPECT_EQ(port.currentText(), u"/dev/gone");
    port.setCurrentIndex(port.findText("/dev/ttyUSB0"));
    QTest::keyClick(&Get("cmdTest"), Qt::Key_Return);
    ASSERT_THAT(lines.tested, SizeIs(1));
    EXPECT_EQ(lines.tested[0].port, "/dev/ttyUSB0");
    lines.done({false, "Nothing answers."});
    EXPECT_EQ(Text("lblTestResult"), "Nothing answers.");
    Type("txtName", "New modem");
    EXPECT_EQ(Text("lblTestResult"), "") << "it is another line now";
    Click("cmdOK");
  });
  EXPECT_EQ(Row(1), "New modem|Modem|/dev/ttyUSB0|Off");
}

TEST_F(LinesWindow, ATestTellsItsResultCanBeStoppedAndEndsWithTheWindow) {
  Open();
  const auto test = [&] { Click("cmdTest"); };
  test();
  EXPECT_EQ(lines.tested.at(0).name, "Home");
  EXPECT_EQ(Text("lblTestResult"), "Testing…");
  lines.done({false, "The password is wrong."});
  EXPECT_EQ(Text("lblTestResult"), "The password is wrong.");
  const std::pair<const char*, std::function<void()>> ends[] = {{"the second click", test},
                                                                {"another line", [&] { Select(1); }},
                                                                {"the window", [&] { window.reset(); }}};
  for (const auto& [what, end] : ends) {
    test();
    end();
    EXPECT_EQ(lines.done, nullptr) << what;
  }
}

TEST_F(LinesWindow, RemoveAsksCancelStoresNothingAndAFailureKeepsTheWindow) {
  Open();
  Click("cmdRemove");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Remove the line \"Home\" ?"));
  EXPECT_EQ(List().topLevelItemCount(), 2);
  world.dialogs.yes = true;
  for (int i = 0; i < 2; ++i) Click("cmdRemove");
  EXPECT_EQ(List().topLevelItemCount(), 0);
  for (const char* button : {"cmdEdit", "cmdRemove", "cmdTest"})
    EXPECT_FALSE(Get(button).isEnabled()) << button;
  lines.before_store = [] { throw RuntimeError(ErrorNumber::DiskFull, "lines.ini"); };
  Click("cmdOK");
  EXPECT_TRUE(window->isVisible());
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("Disk full: lines.ini")));
  Click("cmdCancel");
  EXPECT_THAT(lines.configured.lines, SizeIs(2));
  lines.before_store = [] { FAIL() << "nothing was changed"; };
  Open();
  Click("cmdOK");
  EXPECT_EQ(used, 0);
}

}  // namespace
}  // namespace orven::test
