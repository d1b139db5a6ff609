// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLabel>
#include <QTest>

#include "gui/window_test.h"
#include "notify/frmMSG.h"

namespace orven::test {
namespace {

class RecordedClicks : public CallerViewClicks {
 public:
  std::string all;
  void AnswerNow() override { all += "answer "; }
  void Drop() override { all += "drop "; }
  void DoNothing() override { all += "nothing "; }
  void Close() override { all += "close "; }
};

class CallerViewWindowTest : public WindowTest {
 protected:
  CallerViewWindowTest() {
    view.SetClicks(&clicks);
    Show(view);
    view.Load();
  }

  QWidget main_window;
  RecordedClicks clicks;
  frmMSG view{main_window};
};

TEST_F(CallerViewWindowTest, StaysOnTopWithoutFocusAtTheTopCentreInRoundedPixels) {
  for (const auto flag : {Qt::WindowStaysOnTopHint, Qt::FramelessWindowHint, Qt::WindowDoesNotAcceptFocus})
    EXPECT_TRUE(view.windowFlags().testFlag(flag)) << flag;
  EXPECT_TRUE(view.testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_EQ(view.Height(), view.height() * 15);
  view.Unload();
  EXPECT_FALSE(view.isVisible());
  view.MoveTo(-view.Height());
  view.Load();
  const auto screen = main_window.screen()->geometry();
  EXPECT_LE(std::abs(view.geometry().center().x() - screen.center().x()), 1);
  EXPECT_EQ(view.y(), screen.top() - view.height()) << "just above the edge";
  // Halves are rounded to even.
  for (const auto& [twips, pixels] : {std::pair(-22, -1), std::pair(-23, -2), std::pair(-7, 0)}) {
    view.MoveTo(twips);
    EXPECT_EQ(view.y(), screen.top() + pixels) << twips;
  }
}

TEST_F(CallerViewWindowTest, ShowsTheCallAndIsEmptyForTheNext) {
  ExpectShown({{"Label5", "Cllaer Name : "}, {"Label4", "Cllaer Number :"}, {"Label3", "Date : "}});
  ExpectShown({{"Label2", "Time : "}, {"lblDrop", "Drop Call"}, {"lblDoNothing", "Do Nothing"}});
  ExpectShown({{"lblAmswerMode", "Answer Now"}, {"lblMsgFrom", "ORVEN"}});
  for (const char* name : {"Picture2", "Picture3", "Picture4", "Image2"})
    EXPECT_FALSE(Get<QLabel>(name).pixmap(Qt::ReturnByValue).isNull()) << name;
  const std::string hostile = "<b>Anna</b> &amp; " + std::string(300, 'x');
  view.ShowCaller(hostile, "555-0134");
  view.ShowTime("11/21/2026", "09:10:11");
  view.ShowStatus("New Call");
  view.ShowRing("Ring : 3");
  view.ShowMessagePath("/home/orven/Messages/a.wav");
  EXPECT_EQ(Get<QLabel>("lblCallerName").textFormat(), Qt::PlainText);
  const Values texts = {{"lblCallerName", hostile},
                        {"lblCallerNumber", "555-0134"},
                        {"lblCallDate", "11/21/2026"},
                        {"lblTime", "09:10:11"},
                        {"lblStatus", "New Call"},
                        {"lblMsgRingNum", "Ring : 3"},
                        {"lblMessagePath", "/home/orven/Messages/a.wav"}};
  ExpectShown(texts);
  view.ShowCommands(CallerCommands::WithoutAnswer);
  EXPECT_TRUE(Visible("lblDrop") && !Visible("lblAmswerMode"));
  view.ShowCommands(CallerCommands::None);
  EXPECT_FALSE(Visible("Picture3") || Visible("lblDrop") || Visible("lblDoNothing"));
  view.Unload();
  view.Load();
  for (const auto& [name, text] : texts) ExpectShown({{name, ""}});
  EXPECT_TRUE(Visible("lblDrop"));
}

TEST_F(CallerViewWindowTest, ReportsClicks) {
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  for (const char* name : {"lblAmswerMode", "Picture3", "lblDrop", "Picture4", "lblDoNothing", "Picture2",
                           "lblMsgFrom", "Image2"}) {
    const auto& label = Get(name);  // a click on the screen must reach the tile below the label
    QTest::mouseClick(view.windowHandle(), Qt::LeftButton, {}, label.mapTo(&view, label.rect().center()));
  }
  QTest::mouseClick(&Get("lblDrop"), Qt::RightButton);
  QTest::mouseRelease(&Get("lblDrop"), Qt::LeftButton);
  QTest::mouseClick(&Get("lblCallerName"), Qt::LeftButton);
  EXPECT_EQ(clicks.all, "answer answer drop drop nothing nothing close close ");
}

}  // namespace
}  // namespace orven::test
