// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/desktop/qt_shell.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <QWindow>
#include <iostream>
#include <sstream>
#include <tuple>

#include "adapters/desktop/desktop_system.h"
#include "adapters/desktop/qt_dialogs.h"
#include "support/scratch_folder.h"

namespace orven {
namespace {

constexpr int kTraySize = 22;  // pixels

NotifyIconData Record(std::string tip, NotifyIconPicture picture = NotifyIconPicture::MainWindow) {
  NotifyIconData data;
  data.icon = picture;
  data.tip = std::move(tip);
  data.tip.resize(NotifyIconData::kTipCharacters);
  return data;
}

/// Opens nothing, and keeps what was to be opened.
class Opener : public QObject {
  Q_OBJECT
 public:
  Q_INVOKABLE void Take(const QUrl& address) { addresses << address.toString(); }
  QStringList addresses;
};

class QtShellTest : public ::testing::Test {
 protected:
  static QIcon Red() {
    QPixmap pixmap(kTraySize, kTraySize);
    pixmap.fill(Qt::red);
    return pixmap;
  }
  /// The middle of the tray's picture.
  QColor Shown() {
    return shell_.Icon()->icon().pixmap(kTraySize).toImage().pixelColor(kTraySize / 2, kTraySize / 2);
  }

  QtShell shell_{Red()};
};

TEST_F(QtShellTest, TheIconIsAddedOnceAndThenChanged) {
  EXPECT_FALSE(shell_.NotifyIcon(NotifyRequest::Modify, Record("early"))) << "there is nothing to change";
  EXPECT_TRUE(shell_.NotifyIcon(NotifyRequest::Add, Record("ORVEN - Calls:3  New:1")));
  EXPECT_EQ(shell_.Icon()->toolTip(), "ORVEN - Calls:3  New:1") << "up to the first NUL";
  EXPECT_EQ(Shown(), Qt::red);

  const auto blank = Record("ORVEN - Calls:4  New:2", NotifyIconPicture::PicSysTryNothing);
  EXPECT_FALSE(shell_.NotifyIcon(NotifyRequest::Add, blank)) << "it is there already";
  EXPECT_EQ(Shown(), Qt::red);
  EXPECT_TRUE(shell_.NotifyIcon(NotifyRequest::Modify, blank));
  EXPECT_EQ(shell_.Icon()->toolTip(), "ORVEN - Calls:4  New:2");
  EXPECT_EQ(shell_.Icon()->icon().actualSize({kTraySize, kTraySize}), QSize(kTraySize, kTraySize));
  EXPECT_EQ(Shown().alpha(), 0);
  EXPECT_FALSE(shell_.HasNotificationArea()) << "a tray that cannot be seen";
}

TEST_F(QtShellTest, ClicksBecomeMouseMessages) {
  emit shell_.Icon()->activated(QSystemTrayIcon::Trigger);  // nobody listens yet
  std::vector<double> messages;
  shell_.SetMouseHandler([&](double x, double twips_per_pixel) { messages.push_back(x / twips_per_pixel); });
  for (const auto reason : {QSystemTrayIcon::Trigger, QSystemTrayIcon::DoubleClick,
                            QSystemTrayIcon::MiddleClick, QSystemTrayIcon::Unknown, QSystemTrayIcon::Context})
    emit shell_.Icon()->activated(reason);
  EXPECT_EQ(messages, (std::vector<double>{514, 517}));
}

TEST_F(QtShellTest, OpensExistingFilesAndWebAddressesOnly) {
  const test::ScratchFolder folder;
  const std::string page = folder / "index #1.htm";
  test::PutFile(page, "");
  Opener opener;
  const QStringList schemes{"file", "http", "https", "ftp", "mailto"};
  for (const auto& scheme : schemes) QDesktopServices::setUrlHandler(scheme, &opener, "Take");
  for (const std::string& target : {page, std::string("https://example.org/greetings?a=1")})
    EXPECT_TRUE(shell_.Open(target)) << target;
  for (const std::string& target :
       {folder / "missing.htm", folder / "", std::string("index.htm"), "file://" + page})
    EXPECT_FALSE(shell_.Open(target)) << target;
  for (const char* target : {"ftp://example.org/", "mailto:a@example.org", "https://", "http:example",
                             "https://exa mple.org/", "", "javascript:1"})
    EXPECT_FALSE(shell_.Open(target)) << target;
  EXPECT_EQ(opener.addresses, (QStringList{QUrl::fromLocalFile(QString::fromStdString(page)).toString(),
                                           "https://example.org/greetings?a=1"}));
  for (const auto& scheme : schemes) QDesktopServices::unsetUrlHandler(scheme);
}

TEST(QtMouse, KnowsWhichButtonIsDown) {
  QWidget window;
  window.show();
  for (const auto& [button, down, up] : {std::tuple(Qt::LeftButton, kLeftButton, kRightButton),
                                         {Qt::RightButton, kRightButton, kLeftButton}}) {
    QTest::mousePress(window.windowHandle(), button);
    EXPECT_TRUE(QtMouse().IsDown(down) && !QtMouse().IsDown(up));
    QTest::mouseRelease(window.windowHandle(), button);
    EXPECT_FALSE(QtMouse().IsDown(down));
  }
}

TEST(QtDialogs, WithoutADisplayTextsGoToTheOutputAndAnswersAreSafe) {
  std::ostringstream output;
  QtDialogs dialogs(HasDisplay(), output);
  EXPECT_FALSE(dialogs.Confirm("Delete Call ?", QuestionIcon::Question));
  EXPECT_EQ(dialogs.SaveAs("Save", "", "a.wav"), std::nullopt);
  EXPECT_EQ(dialogs.OpenFile("Add Sound", ""), std::nullopt);
  EXPECT_EQ(output.str(),
            "ORVEN: Delete Call ? (no display to ask on: No)\n"
            "ORVEN: Save: a.wav (no display to ask on: cancelled)\n"
            "ORVEN: Add Sound (no display to ask on: cancelled)\n");
}

TEST(QtDialogs, AConfirmationIsYesOnlyForYes) {
  QtDialogs dialogs(true, std::cerr);
  const auto answer = [&](QMessageBox::StandardButton button) {
    QTimer::singleShot(0, QApplication::instance(), [button] {  // runs once the box is open
      auto& box = dynamic_cast<QMessageBox&>(*QApplication::activeModalWidget());
      EXPECT_EQ(box.textFormat(), Qt::PlainText) << "a caller's name is no markup";
      box.button(button) == nullptr ? void(box.close()) : box.button(button)->click();
    });
    return dialogs.Confirm("Delete <b>Call</b> ?", QuestionIcon::None);
  };
  EXPECT_TRUE(answer(QMessageBox::Yes));
  EXPECT_FALSE(answer(QMessageBox::No));
  EXPECT_FALSE(answer(QMessageBox::NoButton)) << "closed";
}

}  // namespace
}  // namespace orven

#include "qt_shell_test.moc"
