// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QApplication>
#include <QLabel>
#include <QTest>

#include "notify/frmMSG.h"

namespace orven::test {
namespace {

using testing::ElementsAre;

class RecordedClicks : public CallerViewClicks {
 public:
  std::vector<std::string> clicks;
  void AnswerNow() override { clicks.emplace_back("answer"); }
  void Drop() override { clicks.emplace_back("drop"); }
  void DoNothing() override { clicks.emplace_back("nothing"); }
  void Close() override { clicks.emplace_back("close"); }
};

class CallerViewWindowTest : public testing::Test {
 protected:
  CallerViewWindowTest() { view.SetClicks(&clicks); }

  QLabel& Get(const char* name) {
    auto* label = view.findChild<QLabel*>(QString::fromLatin1(name));
    if (label == nullptr) throw std::runtime_error(name);
    return *label;
  }
  std::string Text(const char* name) { return Get(name).text().toStdString(); }
  void Load() {
    view.Load();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  }
  /// A click that takes the way of a real one, through the desktop's window.
  void ClickOnScreen(const char* name) {
    auto& label = Get(name);
    QTest::mouseClick(view.windowHandle(), Qt::LeftButton, {}, label.mapTo(&view, label.rect().center()));
  }

  QWidget main_window;
  RecordedClicks clicks;
  frmMSG view{main_window};
};

TEST_F(CallerViewWindowTest, StandsAboveAllWindowsWithoutTheFocus) {
  const auto flags = view.windowFlags();
  EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint) && flags.testFlag(Qt::FramelessWindowHint) &&
              flags.testFlag(Qt::WindowDoesNotAcceptFocus));
  EXPECT_TRUE(view.testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_EQ(view.windowTitle(), u"ORVEN");
  Load();
  view.Unload();
  EXPECT_FALSE(view.isVisible());
}

TEST_F(CallerViewWindowTest, StandsAtTheMiddleOfTheUpperEdgeInRoundedPixels) {
  EXPECT_EQ(view.Height(), view.height() * 15);
  view.MoveTo(-view.Height());
  Load();
  const auto screen = main_window.screen()->geometry();
  EXPECT_LE(std::abs(view.geometry().center().x() - screen.center().x()), 1);
  EXPECT_EQ(view.y(), screen.top() - view.height()) << "just above the edge";
  // Halves go to the even neighbour.
  const std::pair<std::int32_t, int> places[] = {{-22, -1}, {-23, -2}, {-60, -4}, {0, 0}, {-7, 0}, {-8, -1}};
  for (const auto& [twips, pixels] : places) {
    view.MoveTo(twips);
    EXPECT_EQ(view.y(), screen.top() + pixels) << twips;
  }
}

TEST_F(CallerViewWindowTest, ShowsTheCallAndIsEmptyAgainForTheNext) {
  EXPECT_EQ(Text("Label5"), "Cllaer Name : ");
  EXPECT_EQ(Text("Label4"), "Cllaer Number :");
  EXPECT_EQ(Text("Label3"), "Date : ");
  EXPECT_EQ(Text("Label2"), "Time : ");
  EXPECT_EQ(Text("lblAmswerMode"), "Answer Now");
  EXPECT_EQ(Text("lblDrop"), "Drop Call");
  EXPECT_EQ(Text("lblDoNothing"), "Do Nothing");
  for (const char* name : {"Picture2", "Picture3", "Picture4", "Image2"}) {
    EXPECT_FALSE(Get(name).pixmap(Qt::ReturnByValue).isNull()) << name;
  }
  EXPECT_EQ(Get("lblCallerName").font().family(), u"Arial");
  EXPECT_EQ(Get("lblDrop").font().family(), u"Arial");
  Load();
  const std::string hostile = "<b>Anna</b> &amp; " + std::string(300, 'x');
  view.ShowCaller(hostile, "555-0134");
  view.ShowTime("11/21/2026", "09:10:11");
  view.ShowStatus("New Call");
  view.ShowRing("Ring : 3");
  view.ShowMessagePath("/home/orven/Messages/a.wav");
  EXPECT_EQ(Text("lblCallerName"), hostile) << "no markup";
  EXPECT_EQ(Get("lblCallerName").textFormat(), Qt::PlainText);
  EXPECT_EQ(Text("lblCallerNumber") + Text("lblCallDate") + Text("lblTime"), "555-013411/21/202609:10:11");
  EXPECT_EQ(Text("lblStatus") + Text("lblMsgRingNum") + Text("lblMessagePath"),
            "New CallRing : 3/home/orven/Messages/a.wav");
  view.ShowCommands(CallerCommands::WithoutAnswer);
  EXPECT_TRUE(Get("lblDrop").isVisible() && !Get("lblAmswerMode").isVisible());
  view.ShowCommands(CallerCommands::None);
  for (const char* name : {"lblAmswerMode", "Picture3", "lblDrop", "Picture4", "lblDoNothing", "Picture2"}) {
    EXPECT_FALSE(Get(name).isVisible()) << name;
  }
  EXPECT_TRUE(Get("lblCallerName").isVisible());
  view.Unload();
  Load();
  EXPECT_EQ(Text("lblCallerName") + Text("lblCallerNumber") + Text("lblStatus") + Text("lblMessagePath"), "");
  EXPECT_TRUE(Get("lblDrop").isVisible());
}

TEST_F(CallerViewWindowTest, ClicksAreHandedOver) {
  Load();
  for (const char* name : {"lblAmswerMode", "Picture3", "lblDrop", "Picture4", "lblDoNothing", "Picture2",
                           "lblMsgFrom", "Image2"}) {
    ClickOnScreen(name);
  }
  EXPECT_THAT(clicks.clicks,
              ElementsAre("answer", "answer", "drop", "drop", "nothing", "nothing", "close", "close"));
  QTest::mouseClick(&Get("lblDrop"), Qt::RightButton);
  QTest::mouseClick(&Get("lblCallerName"), Qt::LeftButton);
  EXPECT_EQ(clicks.clicks.size(), 8U);
}

}  // namespace
}  // namespace orven::test
