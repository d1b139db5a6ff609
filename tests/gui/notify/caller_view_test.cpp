// SPDX-License-Identifier: GPL-3.0-or-later
#include <QLabel>
#include <QTest>

#include "gui/window_test.h"
#include "notify/frmMSG.h"

namespace orven::test {
namespace {

class RecordedClicks : public CallerViewClicks {
 public:
  std::vector<std::string> clicks;
  void AnswerNow() override { clicks.emplace_back("answer"); }
  void Drop() override { clicks.emplace_back("drop"); }
  void DoNothing() override { clicks.emplace_back("nothing"); }
  void Close() override { clicks.emplace_back("close"); }
};

class CallerViewWindowTest : public WindowTest {
 protected:
  CallerViewWindowTest() {
    view.SetClicks(&clicks);
    Show(view);
    view.Load();
  }
  std::string Text(const char* name) { return Get<QLabel>(name).text().toStdString(); }

  QWidget main_window;
  RecordedClicks clicks;
  frmMSG view{main_window};
};

TEST_F(CallerViewWindowTest, StaysOnTopWithoutFocusAtTheTopCentreInRoundedPixels) {
  const auto flags = view.windowFlags();
  EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint) && flags.testFlag(Qt::FramelessWindowHint) &&
              flags.testFlag(Qt::WindowDoesNotAcceptFocus));
  EXPECT_TRUE(view.testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_EQ(view.windowTitle(), u"ORVEN");
  EXPECT_EQ(view.Height(), view.height() * 15);
  view.Unload();
  EXPECT_FALSE(view.isVisible());
  view.MoveTo(-view.Height());
  view.Load();
  const auto screen = main_window.screen()->geometry();
  EXPECT_LE(std::abs(view.geometry().center().x() - screen.center().x()), 1);
  EXPECT_EQ(view.y(), screen.top() - view.height()) << "just above the edge";
  // Halves are rounded to even.
  const std::pair<std::int32_t, int> places[] = {{-22, -1}, {-23, -2}, {-60, -4}, {0, 0}, {-7, 0}, {-8, -1}};
  for (const auto& [twips, pixels] : places) {
    view.MoveTo(twips);
    EXPECT_EQ(view.y(), screen.top() + pixels) << twips;
  }
}

TEST_F(CallerViewWindowTest, ShowsTheCallAndIsEmptyForTheNext) {
  const std::pair<const char*, const char*> captions[] = {
      {"Label5", "Cllaer Name : "},    {"Label4", "Cllaer Number :"}, {"Label3", "Date : "},
      {"Label2", "Time : "},           {"lblDrop", "Drop Call"},      {"lblDoNothing", "Do Nothing"},
      {"lblAmswerMode", "Answer Now"}, {"lblMsgFrom", "ORVEN"}};
  for (const auto& [name, text] : captions) EXPECT_EQ(Text(name), text);
  for (const char* name : {"Picture2", "Picture3", "Picture4", "Image2"}) {
    EXPECT_FALSE(Get<QLabel>(name).pixmap(Qt::ReturnByValue).isNull()) << name;
  }
  EXPECT_EQ(Get("lblCallerName").font().family(), u"Arial");
  const std::string hostile = "<b>Anna</b> &amp; " + std::string(300, 'x');
  view.ShowCaller(hostile, "555-0134");
  view.ShowTime("11/21/2026", "09:10:11");
  view.ShowStatus("New Call");
  view.ShowRing("Ring : 3");
  view.ShowMessagePath("/home/orven/Messages/a.wav");
  EXPECT_EQ(Get<QLabel>("lblCallerName").textFormat(), Qt::PlainText);
  const std::pair<const char*, std::string> texts[] = {{"lblCallerName", hostile},
                                                       {"lblCallerNumber", "555-0134"},
                                                       {"lblCallDate", "11/21/2026"},
                                                       {"lblTime", "09:10:11"},
                                                       {"lblStatus", "New Call"},
                                                       {"lblMsgRingNum", "Ring : 3"},
                                                       {"lblMessagePath", "/home/orven/Messages/a.wav"}};
  for (const auto& [name, text] : texts) EXPECT_EQ(Text(name), text);
  view.ShowCommands(CallerCommands::WithoutAnswer);
  EXPECT_TRUE(Shows("lblDrop") && !Shows("lblAmswerMode"));
  view.ShowCommands(CallerCommands::None);
  for (const char* name : {"Picture3", "lblDrop", "lblDoNothing"}) EXPECT_FALSE(Shows(name)) << name;
  view.Unload();
  view.Load();
  for (const auto& [name, text] : texts) EXPECT_EQ(Text(name), "") << name;
  EXPECT_TRUE(Shows("lblDrop"));
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
  EXPECT_THAT(clicks.clicks, testing::ElementsAre("answer", "answer", "drop", "drop", "nothing", "nothing",
                                                  "close", "close"));
}

}  // namespace
}  // namespace orven::test
