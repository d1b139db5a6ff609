// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>
#include <QTimer>

#include "gui/greetings/creator_window.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(CreatorWindow, ATakeIsRecordedPlayedAndSavedByReturn) {
  world.Machine().settings.Sound = 4;
  Open();
  EXPECT_EQ(Focused(), "cmdRec");
  EXPECT_EQ(Buttons(), "cmdRec cmdCreateGreeting cmdOK");
  Set({{"txtTTS", "typed before"}});
  world.loud = 250;
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdRec"); }),
              ElementsAre("Start RecMessage[Device:4 1, 1, 16, 8000]->OK"));
  EXPECT_EQ(world.Wave1.recorded.back(), (WaveFormat{1, 1, 16, 8000}));
  EXPECT_EQ(world.Wave1.record_folder, World::kHome);
  EXPECT_EQ(window->Text(), "");
  EXPECT_EQ(Focused(), "cmdStopRec") << "Space stops what Space has started";
  EXPECT_EQ(Buttons(), "cmdStopRec cmdCreateGreeting cmdOK");
  for (const bool shown : {true, false, true}) {
    EXPECT_EQ(Visible("lblRec"), shown) << "it blinks";
    world.RunFor(1s);
  }
  EXPECT_EQ(Get<QProgressBar>("prgLevel").value(), 250);
  world.RunFor(59s);
  ExpectShown({{"ProgressBarRec", "1:02"}});
  Click("cmdStopRec");
  EXPECT_EQ(Buttons(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  EXPECT_TRUE(!Visible("lblRec") && Get<QProgressBar>("prgLevel").value() == 0);
  EXPECT_EQ(world.take_waveforms.path, speaker_file);
  world.take_waveforms.done({{0.5F}, 62s});
  ExpectShown({{"lblPlay", "0:00 / 1:02"}, {"lblState", "From the microphone, 1:02"}});

  Click("cmdPlay");
  EXPECT_EQ(world.WavePlay.played.back(), (TimedWave::Played{speaker_file, 4}));
  EXPECT_EQ(Buttons(), "cmdStopPlay cmdCreateGreeting cmdOK");
  world.RunFor(5050ms);
  EXPECT_EQ(Get<QProgressBar>("ProgressBar1").value(), 5000);
  ExpectShown({{"lblPlay", "0:05 / 1:02"}});
  Click("cmdStopPlay");
  EXPECT_TRUE(!world.WavePlay.IsPlaying() && Get<QProgressBar>("ProgressBar1").value() == 0);
  EXPECT_EQ(Focused(), "cmdPlay");
  Do("cmdPlay 63s");
  EXPECT_TRUE(Enabled("cmdPlay")) << "the take has ended";

  Set({{"txtGreetingName", "  🎉 חופש\n"}});
  Get("txtGreetingName").setFocus();
  const auto take = world.files.Content(speaker_file);
  QTest::keyClick(&Get("txtGreetingName"), Qt::Key_Return);
  EXPECT_EQ(Buttons(), "");
  world.RunFor(1ms);
  EXPECT_EQ(Saved("🎉 חופש"), take);
  EXPECT_FALSE(world.files.Exists(speaker_file));
  ExpectStored({{"Greeting", "🎉 חופש"}});
  EXPECT_EQ(world.views.selected_greeting, "🎉 חופש");
  EXPECT_THAT(saved, ElementsAre("🎉 חופש"));
  EXPECT_TRUE(!window->isVisible() && window->result() == QDialog::Accepted);
}

TEST_F(CreatorWindow, FailuresOfRecorderAndPlayerAreLogged) {
  Set({{"txtGreetingName", "Lost"}});
  world.Wave1.start_result = kWaveNoDevice;
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdRec"); }),
              ElementsAre("Error Start RecMessage[Device:0 1, 1, 16, 8000]->wave error 1"));
  EXPECT_EQ(Buttons(), "cmdRec cmdCreateGreeting cmdOK");
  world.Wave1.start_result = kWaveOk;
  world.Wave1.stop_result = kWaveDiskFull;
  EXPECT_THAT(world.LoggedBy([this] { Do("cmdRec 1s cmdStopRec"); }),
              Contains("ErrStopRecGreet 9 wave error 9"));
  Do("cmdOK 1ms");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message"));
  world.Wave1.stop_result = kWaveOk;
  Do("cmdRec 0ms cmdStopRec cmdOK 1ms");
  EXPECT_THAT(world.dialogs.informations, SizeIs(2)) << "an empty file is no greeting";
  Do("cmdRec 1s cmdStopRec");
  world.WavePlay.play_result = kWaveFileNotFound;
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdPlay"); }),
              ElementsAre("Error Start Play[Device:0]->/home/orven/Greets/spktmp.wav wave error 4"));
  world.WavePlay.play_result = kWaveOk;
  world.WavePlay.PlayFile(greetings + "Hello.wav", 0);
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdPlay"); }), IsEmpty()) << "the player is busy";
}

TEST_F(CreatorWindow, AnAnsweredCallEndsTheTakeAndIsRecordedWhole) {
  Click("cmdRec");
  world.line->Offer();
  world.RunFor(1s);
  world.HangUp();
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the call was not answered";
  world.CallAndWaitForAnswer();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_THAT(Shown("lblState"), testing::HasSubstr("A call was answered"));
  EXPECT_EQ(Buttons(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  Click("cmdRec");
  EXPECT_FALSE(world.Wave1.IsRecording()) << "the caller's message may begin at any moment";
  world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
  world.Talk();
  Set({{"txtGreetingName", "Between"}});
  Do("cmdOK 5s");
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the caller's recording";
  world.HangUp();
  EXPECT_EQ(world.Wave1.last_recorded_path, world.messages + world.CurrentCall().message_file_name);
}

TEST_F(CreatorWindow, NamesAreCheckedAndAGreetingThatCannotBeStoredChangesNothing) {
  Do("cmdRec 1s cmdStopRec cmdOK 1ms");
  for (const char forbidden : std::string("?*:><|\\/\"")) {
    Set({{"txtGreetingName", std::string("a") + forbidden}});
    Do("cmdOK 1ms");
  }
  EXPECT_EQ(world.dialogs.informations.front(), "Enter Greeting Name");
  EXPECT_THAT(world.dialogs.informations,
              Contains("Greeting name with ? \\ / | * < > : \" is not legal").Times(9));
  Do("cmdRec 1s");
  Set({{"txtGreetingName", "Hello"}});
  const auto old = Saved("Hello");
  world.files.before_write = [this](const std::string& path) {
    if (path == greetings + "Hello.wav") throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Get("cmdOK").setFocus();
  Do("cmdOK 1ms");
  EXPECT_TRUE(world.Logged("ErrSaveGreeting 70 Permission denied: " + greetings + "Hello.wav"));
  EXPECT_EQ(Saved("Hello"), old);
  EXPECT_TRUE(world.files.Exists(speaker_file)) << "the take is not lost";
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(Focused(), "txtGreetingName") << "the next Return must not press Cancel";
  world.files.before_write = [](const std::string&) {};
  Click("cmdOK");
  engine.reset();
  world.RunFor(1ms);
  EXPECT_NE(Saved("Hello"), old) << "a copy that has begun survives the window";
  ExpectStored({{"Greeting", "Hello"}});
  EXPECT_FALSE(world.files.Exists(speaker_file));
}

TEST_F(CreatorWindow, ClosingEndsAndKeepsTheTakeAndEndsTheHelperOnce) {
  const std::function<void()> ways[] = {[this] { QTest::keyClick(window.get(), Qt::Key_Escape); },
                                        [this] { window->close(); }, [this] { window->hide(); },
                                        [this] { world.window->Exit(); }};
  for (const auto& close : ways) {
    Open();
    Do("cmdRec 2s");
    close();
    window->close();
    EXPECT_FALSE(window->isVisible() || world.Wave1.IsRecording());
    EXPECT_EQ(std::ranges::count(world.uDat.sent, "ULD:"), 1);
  }
  EXPECT_TRUE(world.ended);
  EXPECT_EQ(world.Wave1.takes, 4);
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(world.files.Names(greetings), ElementsAre("Hello.wav"));
  EXPECT_THAT(world.files.Names(world.messages), IsEmpty());
}

TEST_F(CreatorWindow, CanBeClosedAndTheProgramEndedDuringTheWaitForTheHelper) {
  engine.reset();
  for (const bool quit : {false, true}) {
    frmGreetC opened(nullptr);
    GreetingCreator creator(world.Machine().ForGreetingCreator(nullptr), opened);
    opened.Attach(creator);
    bool usable = false;
    world.uDat.up = world.uDat.closed = false;
    world.uDat.sent.clear();
    world.uDat.while_waiting = [&] {
      world.uDat.while_waiting = [] {};
      usable = opened.findChild<QPushButton*>(QStringLiteral("cmdRec"))->isEnabled();
      quit ? QCoreApplication::exit() : opened.reject();
      QApplication::processEvents();
    };
    QTimer::singleShot(0, &opened, [&] {
      opened.exec();
      EXPECT_TRUE(world.uDat.closed);
      QCoreApplication::exit();
    });
    QApplication::exec();
    EXPECT_TRUE(usable);
    EXPECT_EQ(opened.isVisible(), quit) << "the end of the program takes it away";
    EXPECT_EQ(Sent(), "");
    EXPECT_FALSE(world.Logged("TTS: the speech helper does not answer"));
  }
}

}  // namespace
}  // namespace orven::test
