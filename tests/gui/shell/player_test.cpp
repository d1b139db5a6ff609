// SPDX-License-Identifier: GPL-3.0-or-later
// The player of the main window: its buttons, slider and picture.
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
  bool TimesBecome(const char* text) {
    return QTest::qWaitFor([&] { return desk.Get<QLabel>("lblTimes").text() == QLatin1String(text); });
  }
  bool SliderIsDisabled() {
    return QTest::qWaitFor([&] { return !slider.isEnabled(); });
  }
  double Position() { return double(desk.WavePlay.Position().count()); }

  Desk desk;
  QSlider& slider = desk.Get<QSlider>("Slider1");
};

TEST_F(Player, EveryPlayAndStopCommandPressesTheButton) {
  for (const auto& [play, stop] : {std::pair("mnuPlay", "mnuStop"), std::pair("mnuRCPlay", "mnuTCStop")}) {
    EXPECT_FALSE(slider.isEnabled());
    desk.Do(play);
    EXPECT_EQ(desk.card.Hear(), 100) << play;
    EXPECT_TRUE(slider.isEnabled());
    desk.Do(stop);
    EXPECT_FALSE(desk.card.Plays()) << stop;
  }
}

TEST_F(Player, ACallWithoutAMessageIsSkippedAndTheSliderEndsWithTheMessage) {
  desk.Do("mnuNext");
  desk.Do("ToolBarPlayer.Play");
  EXPECT_EQ(desk.card.Hear(), 300);
  EXPECT_EQ(desk.SelectedRow(), 3);
  desk.card.PlayToEnd();
  EXPECT_TRUE(SliderIsDisabled());
  EXPECT_EQ(slider.value(), 0);
}

TEST_F(Player, SliderAndPictureFollowAndSeek) {
  ASSERT_TRUE(TimesBecome("0:00 / 0:02"));
  desk.Do("ToolBarPlayer.Play");
  auto& picture = desk.Get<QWidget>("Waveform");
  ASSERT_TRUE(QTest::qWaitFor([&] { return picture.cursor().shape() == Qt::PointingHandCursor; }));
  QTest::mouseClick(&picture, Qt::LeftButton, {}, picture.rect().center());
  EXPECT_TRUE(TimesBecome("0:01 / 0:02"));
  EXPECT_NEAR(slider.value(), 50, 1);
  EXPECT_NEAR(Position(), 1000, 40);
  QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() / 4, slider.height() / 2});
  EXPECT_NEAR(Position(), 500, 60);
  QTest::keyClick(&slider, Qt::Key_End);
  EXPECT_GE(Position(), 1900);
}

TEST_F(Player, AHeldSliderStaysUntilItIsLetGo) {
  desk.Do("ToolBarPlayer.Play");
  const QPoint at(slider.width() * 3 / 4, slider.height() / 2);
  QTest::mousePress(&slider, Qt::LeftButton, {}, at);
  desk.window.ShowSlider(3);
  EXPECT_NEAR(slider.value(), 75, 2);
  EXPECT_LT(Position(), 1000);
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, at);
  EXPECT_NEAR(Position(), 1500, 60);
  QTest::mousePress(&slider, Qt::LeftButton, {}, at);
  desk.card.PlayToEnd();
  EXPECT_TRUE(SliderIsDisabled());
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, at);
  EXPECT_FALSE(desk.card.Plays());
}

TEST_F(Player, AMissingOrDamagedMessageIsLoggedByItsName) {
  desk.files.Delete(desk.MessagePath("Anna"));
  PutFile(desk.MessagePath("Cleo"), "");
  for (const auto& [row, name] : {std::pair(1, "Anna"), std::pair(3, "Cleo")}) {
    desk.ClickRow(row);
    desk.Do("ToolBarPlayer.Play");
    EXPECT_TRUE(desk.Logged(desk.MessagePath(name)));
    EXPECT_FALSE(desk.card.Plays() || slider.isEnabled());
    EXPECT_TRUE(desk.IsRead(row));
  }
}

TEST(PlayerPicture, ShowsPeaksAndWhatHasBeenPlayed) {
  WaveformWidget picture(nullptr);
  picture.resize(300, picture.height());
  const auto pixel = [&](int x) { return picture.grab().toImage().pixelColor(x, 20); };
  const auto height = [&](int x) {
    const auto image = picture.grab().toImage();
    int coloured = 0;
    for (int y = 0; y < image.height(); ++y)
      coloured += image.pixelColor(x, y) != picture.palette().color(QPalette::Window) ? 1 : 0;
    return coloured;
  };
  EXPECT_EQ(height(100), 1);
  Waveform waveform{std::vector<float>(100, 0.0F), std::chrono::seconds(10)};
  std::fill(waveform.peaks.begin() + 50, waveform.peaks.end(), 1.0F);
  picture.ShowWaveform(waveform);
  EXPECT_EQ(height(60), 1);
  EXPECT_GE(height(240), picture.height() - 2);
  const auto played = pixel(240), unplayed = pixel(288);
  picture.ShowProgress(std::chrono::seconds(9), std::chrono::seconds(10));
  EXPECT_NE(pixel(240), played);
  EXPECT_EQ(pixel(288), unplayed);
}

}  // namespace
}  // namespace orven::test
