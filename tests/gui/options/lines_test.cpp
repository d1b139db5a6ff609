// SPDX-License-Identifier: GPL-3.0-or-later
// The lines dialog over its engine, driven by object names.
#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include "base/runtime_error.h"
#include "options/frmLineEdit.h"
#include "options/frmLines.h"
#include "support/scripted_lines.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

template <class Control>
Control& In(QWidget& window, const char* name) {
  auto* control = window.findChild<Control*>(QString::fromLatin1(name));
  if (control == nullptr) throw std::runtime_error(name);
  return *control;
}

void Click(QWidget& window, const char* button) {
  In<QAbstractButton>(window, button).click();
}

void Type(QWidget& window, const char* field, const char* text) {
  In<QLineEdit>(window, field).setText(QString::fromUtf8(text));
}

class LinesWindow : public testing::Test {
 protected:
  LinesWindow() {
    TelephoneLine home;
    home.name = "Home";
    home.server = "192.168.1.1";
    home.user = "100";
    home.password = "secret";
    home.transport = "udp";
    home.srtp = "yes";
    home.ring_seconds = 5;
    home.origin = 1;
    TelephoneLine modem;
    modem.name = "Old modem";
    modem.kind = LineKind::Modem;
    modem.port = "/dev/gone";
    modem.origin = 8;
    lines.configured.lines = {home, modem};
    lines.states = {{"Home", "Registering"}};
    lines.ports = {{"/dev/serial/by-id/usb-Modem", "usb-Modem (ttyACM0)"}};
  }
  void Open() {
    auto& machine = world.Machine();
    engine = std::make_unique<LinesDialog>(
        LinesDialog::Parts{lines, world.dialogs, machine.log, machine.store, machine.settings, [this] {
                             ++used;
                             return !call_up;
                           }});
    window = std::make_unique<frmLines>(*engine, nullptr);
    window->show();
  }
  QTreeWidget& List() { return In<QTreeWidget>(*window, "lvwLines"); }
  QString Cell(int row, int column) { return List().topLevelItem(row)->text(column); }
  std::string Result(QWidget& in) { return In<QLabel>(in, "lblTestResult").text().toStdString(); }

  /// Clicks the button that opens the window of one line, does `act` there, and comes back when it closes.
  template <class Act>
  void InEditor(const char* button, Act act) {
    bool was_there = false;
    QTimer::singleShot(0, [&] {
      auto* editor = QApplication::activeModalWidget();
      was_there = editor != nullptr && editor->objectName() == u"frmLineEdit";
      if (!was_there) return;
      act(*editor);
      EXPECT_FALSE(editor->isVisible()) << "it was to close";
      editor->close();
    });
    Click(*window, button);
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
  EXPECT_EQ(Cell(0, 0) + u'|' + Cell(0, 1) + u'|' + Cell(0, 2) + u'|' + Cell(0, 3),
            u"Home|SIP account|100@192.168.1.1|Registering");
  EXPECT_EQ(Cell(1, 2), u"/dev/gone");
  EXPECT_EQ(In<QLabel>(*window, "lblComplaints").text(), u"lines.ini:3: something is wrong");
  lines.states["Home"] = "Registered";
  EXPECT_TRUE(QTest::qWaitFor([&] { return Cell(0, 3) == u"Registered"; }));
  EXPECT_TRUE(List().topLevelItem(0)->isSelected()) << "showing the state took the selection away";
}

TEST_F(LinesWindow, EnterInTheListOpensTheLineAndStoresNothing) {
  Open();
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
  EXPECT_FALSE(In<QPushButton>(*window, "cmdTest").isDefault()) << "Enter does not press it";
  QTest::keyClick(&List(), Qt::Key_Return);
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(used, 0);
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_EQ(window->result(), QDialog::Rejected);
}

TEST_F(LinesWindow, ALineIsAddedBadInputIsNamedAtItsField) {
  Open();
  InEditor("cmdAdd", [&](QWidget& editor) {
    Type(editor, "txtName", "Home");
    Click(editor, "cmdOK");
    EXPECT_THAT(In<QLabel>(editor, "lblFault").text().toStdString(), HasSubstr("Another line"));
    Type(editor, "txtName", "Büro");
    EXPECT_FALSE(In<QLabel>(editor, "lblFault").isVisible());
    Type(editor, "txtUser", "7");
    Click(editor, "cmdOK");
    auto& fault = In<QLabel>(editor, "lblFault");
    EXPECT_EQ(fault.text(), u"The server is missing.");
    EXPECT_EQ(editor.focusWidget()->objectName(), u"txtServer");
    QTest::qWait(0);
    EXPECT_GT(fault.y(), In<QLineEdit>(editor, "txtServer").y());
    EXPECT_LT(fault.y(), In<QLineEdit>(editor, "txtUser").y());
    lines.fault =
        "A sentence so long that it takes several lines, however wide the window is made. It says "
        "what is wrong, and what would be right instead, and it is read to its end.";
    Click(editor, "cmdOK");
    QTest::qWait(0);
    EXPECT_GT(fault.height(), 2 * fault.fontMetrics().height());
    EXPECT_GE(fault.height(), fault.heightForWidth(fault.width())) << "the text is cut";
    Type(editor, "txtServer", " pbx.example.org ");
    Type(editor, "txtPassword", " x");
    Click(editor, "cmdOK");
    EXPECT_EQ(editor.focusWidget()->objectName(), u"txtPassword");
    EXPECT_EQ(In<QLineEdit>(editor, "txtPassword").echoMode(), QLineEdit::Password);
    Click(editor, "chkShowPassword");
    EXPECT_EQ(In<QLineEdit>(editor, "txtPassword").echoMode(), QLineEdit::Normal);
    Type(editor, "txtPassword", "x y");
    In<QComboBox>(editor, "cmbTransport").setCurrentIndex(3);
    In<QSpinBox>(editor, "spnRing").setValue(61);
    Click(editor, "cmdOK");
  });
  EXPECT_EQ(Cell(2, 2), u"7@pbx.example.org");
  EXPECT_TRUE(List().topLevelItem(2)->isSelected());
  EXPECT_THAT(lines.configured.lines, SizeIs(2)) << "nothing is stored before OK";
  Click(*window, "cmdOK");
  ASSERT_THAT(lines.configured.lines, SizeIs(3));
  const auto& added = lines.configured.lines[2];
  EXPECT_EQ(added.name + "|" + added.password + "|" + added.transport + "|" + added.srtp, "Büro|x y|tls|no");
  EXPECT_EQ(added.ring_seconds, 60);
  EXPECT_EQ(used, 1);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(LinesWindow, AChosenLineKeepsItsPlaceUnderAnotherName) {
  world.Machine().settings.ModemName = "Home";
  Open();
  InEditor("cmdEdit", [&](QWidget& editor) {
    EXPECT_FALSE(In<QComboBox>(editor, "cmbKind").isEnabled());
    EXPECT_EQ(In<QLineEdit>(editor, "txtPassword").text(), u"secret");
    Type(editor, "txtName", "House");
    Click(editor, "cmdOK");
  });
  call_up = true;
  Click(*window, "cmdOK");
  EXPECT_EQ(world.registry.Text("ModemName"), "House");
  EXPECT_EQ(lines.configured.lines[0].srtp, "yes") << "what was written by hand stays";
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("when it is over")));
}

TEST_F(LinesWindow, AModemsPortIsChosenFromThoseFoundAndOneThatIsGoneStays) {
  Open();
  List().setCurrentItem(List().topLevelItem(1));
  InEditor("cmdEdit", [&](QWidget& editor) {
    auto& port = In<QComboBox>(editor, "cmbPort");
    EXPECT_EQ(port.currentText(), u"/dev/gone");
    EXPECT_FALSE(In<QLineEdit>(editor, "txtServer").isVisible());
    lines.ports.push_back({"/dev/ttyUSB0", "/dev/ttyUSB0"});
    Click(editor, "cmdFindPorts");
    EXPECT_EQ(port.currentText(), u"/dev/gone");
    port.setCurrentIndex(port.findText(QStringLiteral("/dev/ttyUSB0")));
    QTest::keyClick(&In<QPushButton>(editor, "cmdTest"), Qt::Key_Return);
    ASSERT_THAT(lines.tested, SizeIs(1));
    EXPECT_EQ(lines.tested[0].port, "/dev/ttyUSB0");
    lines.done({false, "Nothing answers."});
    EXPECT_EQ(Result(editor), "Nothing answers.");
    Type(editor, "txtName", "New modem");
    EXPECT_EQ(Result(editor), "") << "that was another line";
    Click(editor, "cmdOK");
  });
  EXPECT_EQ(Cell(1, 2), u"/dev/ttyUSB0");
}

TEST_F(LinesWindow, ATestSaysWhatIsWrongCanBeStoppedAndEndsWithTheWindow) {
  Open();
  Click(*window, "cmdTest");
  ASSERT_THAT(lines.tested, SizeIs(1));
  EXPECT_EQ(lines.tested[0].name, "Home");
  EXPECT_EQ(Result(*window), "Testing…");
  lines.done({false, "The password is wrong."});
  EXPECT_EQ(Result(*window), "The password is wrong.");
  Click(*window, "cmdTest");
  Click(*window, "cmdTest");
  EXPECT_EQ(lines.done, nullptr) << "the second click stops it";
  Click(*window, "cmdTest");
  List().setCurrentItem(List().topLevelItem(1));
  EXPECT_EQ(lines.done, nullptr) << "a result would be shown beside another line";
  Click(*window, "cmdTest");
  window.reset();
  EXPECT_EQ(lines.done, nullptr);
}

TEST_F(LinesWindow, RemoveAsksCancelStoresNothingAndAFailureKeepsTheWindow) {
  Open();
  Click(*window, "cmdRemove");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("Remove the line \"Home\" ?"));
  EXPECT_EQ(List().topLevelItemCount(), 2);
  world.dialogs.yes = true;
  Click(*window, "cmdRemove");
  Click(*window, "cmdRemove");
  EXPECT_EQ(List().topLevelItemCount(), 0);
  for (const char* button : {"cmdEdit", "cmdRemove", "cmdTest"}) {
    EXPECT_FALSE(In<QAbstractButton>(*window, button).isEnabled()) << button;
  }
  lines.before_store = [] { throw RuntimeError(ErrorNumber::DiskFull, "lines.ini"); };
  Click(*window, "cmdOK");
  EXPECT_TRUE(window->isVisible());
  EXPECT_THAT(world.dialogs.informations, ElementsAre(HasSubstr("Disk full: lines.ini")));
  EXPECT_EQ(used, 0);
  Click(*window, "cmdCancel");
  EXPECT_THAT(lines.configured.lines, SizeIs(2));
  lines.before_store = [] { FAIL() << "nothing was changed"; };
  Open();
  Click(*window, "cmdOK");
  EXPECT_EQ(used, 0);
}

}  // namespace
}  // namespace orven::test
