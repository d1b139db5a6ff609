// SPDX-License-Identifier: GPL-3.0-or-later
#include <gtest/gtest.h>

#include <QLabel>
#include <QSignalSpy>
#include <QSlider>

#include "support/desk/desk.h"

namespace orven::test {
namespace {

/// Newest first: a message, a call without one, a message.
class Player : public testing::Test {
 protected:
  Player() {
    desk.File({{"Cleo", 300}, {"Ben"}, {"Anna", 100}});
    desk.Start();
    desk.ClickRow(1);
  }
  QSlider& Slider1() { return desk.Get<QSlider>("Slider1"); }
  QString Times() { return desk.Get<QLabel>("lblTimes").text(); }
  bool TimesBecome(const char* text) {
    return QTest::qWaitFor([&] { return Times() == QLatin1String(text); });
  }
  Desk desk;
};

TEST_F(Player, EveryPlayAndStopCommandPressesTheButton) {
  EXPECT_FALSE(Slider1().isEnabled());
  for (const auto& [play, stop] : {std::pair("mnuPlay", "mnuStop"), std::pair("mnuRCPlay", "mnuTCStop")}) {
    desk.Choose(play);
    EXPECT_EQ(desk.card.Hear(), 100) << play;
    EXPECT_TRUE(Slider1().isEnabled());
    desk.Choose(stop);
    EXPECT_FALSE(desk.card.Plays()) << stop;
    EXPECT_FALSE(Slider1().isEnabled());
  }
}

TEST_F(Player, CallsWithoutAMessageAreReadAndSkipped) {
  desk.ClickRow(2, Qt::RightButton);
  desk.Get<QMenu>("mnuNoMessageRightClick").hide();
  desk.Press("ToolBarPlayer.Play");
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_EQ(desk.SelectedRow(), 3);
  EXPECT_TRUE(desk.IsRead(2) && desk.IsRead(3));
  desk.card.PlayToEnd();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !Slider1().isEnabled(); }));
  EXPECT_EQ(Slider1().value(), 0);
}

TEST_F(Player, SliderAndPictureFollowAndSeek) {
  ASSERT_TRUE(TimesBecome("0:00 / 0:02"));
  desk.Press("ToolBarPlayer.Play");
  auto& picture = desk.Get<QWidget>("Waveform");
  ASSERT_TRUE(QTest::qWaitFor([&] { return picture.cursor().shape() == Qt::PointingHandCursor; }));
  QTest::mouseClick(&picture, Qt::LeftButton, {}, picture.rect().center());
  EXPECT_TRUE(TimesBecome("0:01 / 0:02"));
  EXPECT_NEAR(Slider1().value(), 50, 1);
  EXPECT_NEAR(double(desk.WavePlay.Position().count()), 1000, 40);

  QTest::mouseClick(&Slider1(), Qt::LeftButton, {}, {Slider1().width() / 4, Slider1().height() / 2});
  EXPECT_NEAR(double(desk.WavePlay.Position().count()), 500, 60);
  QTest::keyClick(&Slider1(), Qt::Key_End);
  EXPECT_GE(desk.WavePlay.Position().count(), 1900);
}

TEST_F(Player, AHeldSliderStaysUntilItIsLetGo) {
  desk.Press("ToolBarPlayer.Play");
  const QPoint at(Slider1().width() * 3 / 4, Slider1().height() / 2);
  QTest::mousePress(&Slider1(), Qt::LeftButton, {}, at);
  desk.window.ShowSlider(3);
  EXPECT_NEAR(Slider1().value(), 75, 2);
  EXPECT_LT(desk.WavePlay.Position().count(), 1000);
  QTest::mouseRelease(&Slider1(), Qt::LeftButton, {}, at);
  EXPECT_NEAR(double(desk.WavePlay.Position().count()), 1500, 60);

  QTest::mousePress(&Slider1(), Qt::LeftButton, {}, at);
  desk.card.PlayToEnd();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !Slider1().isEnabled(); }));
  QTest::mouseRelease(&Slider1(), Qt::LeftButton, {}, at);
  EXPECT_FALSE(desk.card.Plays());
}

TEST_F(Player, MessagesThatCannotBePlayedAreLoggedAndNothingElse) {
  desk.files.Delete(desk.MessagePath("Anna"));
  PutFile(desk.MessagePath("Cleo"), "");
  for (const int row : {1, 3}) {
    desk.ClickRow(row);
    desk.Press("ToolBarPlayer.Play");
    EXPECT_TRUE(desk.Logged(desk.MessagePath(row == 1 ? "Anna" : "Cleo"))) << "the log names the file";
    EXPECT_FALSE(desk.card.Plays());
    EXPECT_FALSE(Slider1().isEnabled());
    EXPECT_TRUE(desk.IsRead(row));
  }
}

TEST(PlayerPicture, ShowsPeaksAndWhatHasBeenPlayed) {
  WaveformWidget picture(nullptr);
  picture.resize(300, picture.height());
  const auto colours = [&](int x) {
    const auto image = picture.grab().toImage();
    int coloured = 0;
    for (int y = 0; y < image.height(); ++y) {
      coloured += image.pixelColor(x, y) != picture.palette().color(QPalette::Window) ? 1 : 0;
    }
    return coloured;
  };
  EXPECT_EQ(colours(100), 1);
  Waveform waveform;
  for (int i = 0; i < 100; ++i) waveform.peaks.push_back(i < 50 ? 0.0F : 1.0F);
  waveform.length = std::chrono::seconds(10);
  picture.ShowWaveform(waveform);
  EXPECT_EQ(colours(60), 1);
  EXPECT_GE(colours(240), picture.height() - 2);
  const auto before = picture.grab().toImage();
  picture.ShowProgress(std::chrono::seconds(9), std::chrono::seconds(10));
  EXPECT_NE(picture.grab().toImage().pixelColor(240, 20), before.pixelColor(240, 20));
  EXPECT_EQ(picture.grab().toImage().pixelColor(288, 20), before.pixelColor(288, 20));
}

}  // namespace
}  // namespace orven::test
