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

TEST_F(CreatorWindow, HasItsCaptionsAndEachShortcutOnce) {
  Open();
  EXPECT_EQ(window->windowTitle(), u"Greeting Creator");
  EXPECT_EQ(window->windowModality(), Qt::WindowModal);
  const auto& tabs = Get<QTabWidget>("TabStrip1");
  auto captions = tabs.tabText(0) + u'|' + tabs.tabText(1);
  for (const char* name : {"cmdRec", "cmdStopRec", "cmdPlay", "cmdStopPlay", "SpeakBtn", "StopBtn",
                           "cmdCreateGreeting", "cmdOK", "cmdCancel"}) {
    captions += u'|' + Get<QPushButton>(name).text();
  }
  for (const auto* label : window->findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) captions += u'|' + label->text();
  }
  EXPECT_EQ(
      captions.toStdString(),
      "&Speaker|&Text To Speech|&Record|St&op|Start &Play|Stop Pla&y|Spea&k|Stop Speakin&g|&Create Greeting|"
      "OK|Cancel|Te&xt:|&Voice:|Rat&e:|Greeting &Name");
}

TEST_F(CreatorWindow, ATakeIsRecordedPlayedAndSavedByReturn) {
  world.Machine().settings.Sound = 4;
  Open();
  EXPECT_EQ(Focused(), "cmdRec");
  EXPECT_EQ(Enabled(), "cmdRec cmdCreateGreeting cmdOK");
  Type("typed before");
  world.loud = 250;
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdRec"); }),
              ElementsAre("Start RecMessage[Device:4 1, 1, 16, 8000]->OK"));
  EXPECT_EQ(world.Wave1.recorded.back(), (WaveFormat{1, 1, 16, 8000}));
  EXPECT_EQ(world.Wave1.record_folder, World::kHome);
  EXPECT_EQ(window->Text(), "");
  EXPECT_EQ(Focused(), "cmdStopRec") << "Space stops what Space has started";
  EXPECT_EQ(Enabled(), "cmdStopRec cmdCreateGreeting cmdOK");
  const auto place = Get("lblRec").geometry();
  for (const bool shown : {true, false, true}) {
    EXPECT_EQ(Shows("lblRec"), shown) << "it blinks";
    world.RunFor(1s);
  }
  QApplication::processEvents();
  EXPECT_EQ(Get("lblRec").geometry(), place);
  EXPECT_EQ(Value("prgLevel"), 250);
  world.RunFor(59s);
  EXPECT_EQ(Value("ProgressBarRec"), 62);
  EXPECT_EQ(Get<QProgressBar>("ProgressBarRec").text(), u"1:02");
  Click("cmdStopRec");
  EXPECT_EQ(Enabled(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  EXPECT_FALSE(Shows("lblRec"));
  EXPECT_EQ(Value("prgLevel"), 0);
  EXPECT_EQ(world.take_waveforms.path, speaker_file);
  world.take_waveforms.done({{0.5F}, 62s});
  EXPECT_EQ(Text("lblPlay"), "0:00 / 1:02");
  EXPECT_EQ(Text("lblState"), "From the microphone, 1:02");

  Click("cmdPlay");
  EXPECT_EQ(world.WavePlay.played.back(), (TimedWave::Played{speaker_file, 4}));
  EXPECT_TRUE(world.Logged("Start Play:OK"));
  EXPECT_EQ(Enabled(), "cmdStopPlay cmdCreateGreeting cmdOK");
  world.RunFor(5050ms);
  EXPECT_EQ(Value("ProgressBar1"), 5000);
  EXPECT_EQ(Text("lblPlay"), "0:05 / 1:02");
  Click("cmdStopPlay");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  EXPECT_EQ(Value("ProgressBar1"), 0);
  EXPECT_EQ(Focused(), "cmdPlay");
  Do("cmdPlay 63s");
  EXPECT_TRUE(Get("cmdPlay").isEnabled()) << "the take has ended";

  Name("  🎉 חופש\n");
  Get("txtGreetingName").setFocus();
  const auto take = world.files.Content(speaker_file);
  QTest::keyClick(&Get("txtGreetingName"), Qt::Key_Return);
  EXPECT_EQ(Enabled(), "");
  world.RunFor(1ms);
  EXPECT_EQ(world.files.Content(Greeting("🎉 חופש")), take);
  EXPECT_FALSE(world.files.Exists(speaker_file));
  EXPECT_EQ(world.registry.Text("Greeting"), "🎉 חופש");
  EXPECT_EQ(world.shared.greeting_file, "🎉 חופש.wav");
  EXPECT_EQ(world.views.selected_greeting, "🎉 חופש");
  EXPECT_THAT(saved, ElementsAre("🎉 חופש"));
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(window->result(), QDialog::Accepted);
  EXPECT_EQ(std::ranges::count(world.uDat.sent, "ULD:"), 1);
}

TEST_F(CreatorWindow, FailuresOfRecorderAndPlayerAreLogged) {
  Open();
  Name("Lost");
  world.Wave1.start_result = kWaveNoDevice;
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdRec"); }),
              ElementsAre("Error Start RecMessage[Device:0 1, 1, 16, 8000]->wave error 1"));
  EXPECT_EQ(Enabled(), "cmdRec cmdCreateGreeting cmdOK");
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
  world.WavePlay.PlayFile(Greeting("Hello"), 0);
  EXPECT_THAT(world.LoggedBy([this] { Click("cmdPlay"); }), IsEmpty()) << "the player is busy";
}

TEST_F(CreatorWindow, AnAnsweredCallEndsTheTakeAndIsRecordedWhole) {
  Open();
  Click("cmdRec");
  world.line->Offer();
  world.RunFor(1s);
  world.line->HangUp();
  world.RunFor(1s);
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the call was not answered";
  EXPECT_EQ(world.database.RecordCount(), 1);
  EXPECT_FALSE(world.Logged("Record Message OK"));

  world.CallAndWaitForAnswer();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(Text("lblState"), testing::HasSubstr("A call was answered"));
  EXPECT_EQ(Enabled(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  Click("cmdRec");
  EXPECT_FALSE(world.Wave1.IsRecording()) << "the caller's message may begin at any moment";
  world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
  world.Talk();
  EXPECT_EQ(world.Wave1.record_folder, world.messages);
  Name("Between");
  Do("cmdOK 1ms");
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the caller's recording";
  world.RunFor(5s);
  world.HangUp();
  EXPECT_EQ(world.Wave1.last_recorded_path, world.messages + world.CurrentCall().message_file_name);
}

TEST_F(CreatorWindow, NamesAreChecked) {
  Open();
  Do("cmdRec 1s cmdStopRec cmdOK 1ms");
  for (const char forbidden : std::string("?*:><|\\/\"")) {
    Name((std::string("a") + forbidden).c_str());
    Do("cmdOK 1ms");
  }
  const std::string refusal = "Greeting name with ? \\ / | * < > : \" is not legal";
  EXPECT_EQ(world.dialogs.informations.front(), "Enter Greeting Name");
  EXPECT_THAT(world.dialogs.informations, Contains(refusal).Times(9));
  EXPECT_TRUE(window->isVisible());
  Name("   ");
  Do("cmdOK 1ms");
  EXPECT_TRUE(world.files.Exists(Greeting("")));
  EXPECT_EQ(world.registry.Text("Greeting"), "");
}

TEST_F(CreatorWindow, AGreetingThatCannotBeStoredChangesNothing) {
  Open();
  Do("cmdRec 1s");
  Name("Hello");
  const auto old = world.files.Content(Greeting("Hello"));
  world.files.before_write = [this](const std::string& path) {
    if (path == Greeting("Hello")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Get("cmdOK").setFocus();
  Do("cmdOK 1ms");
  EXPECT_TRUE(world.Logged("ErrSaveGreeting 70 Permission denied: " + Greeting("Hello")));
  EXPECT_EQ(world.files.Content(Greeting("Hello")), old);
  EXPECT_TRUE(world.files.Exists(speaker_file)) << "the take is not lost";
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(Focused(), "txtGreetingName") << "the next Return must not press Cancel";
  world.files.before_write = [](const std::string&) {};
  Click("cmdOK");
  engine.reset();
  world.RunFor(1ms);
  EXPECT_NE(world.files.Content(Greeting("Hello")), old) << "a copy that has begun survives the window";
  EXPECT_EQ(world.registry.Text("Greeting"), "Hello");
  EXPECT_FALSE(world.files.Exists(speaker_file));
}

TEST_F(CreatorWindow, ClosingEndsAndKeepsTheTakeAndEndsTheHelperOnce) {
  const std::function<void()> ways[] = {
      [this] { Click("cmdCancel"); }, [this] { QTest::keyClick(window.get(), Qt::Key_Escape); },
      [this] { window->close(); }, [this] { window->hide(); }, [this] { world.window->Exit(); }};
  for (const auto& close : ways) {
    Open();
    Do("cmdRec 2s");
    close();
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(world.Wave1.IsRecording());
    EXPECT_EQ(std::ranges::count(world.uDat.sent, "ULD:"), 1);
  }
  EXPECT_TRUE(world.ended);
  EXPECT_EQ(world.Wave1.takes, 5);
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(world.files.Names(greetings), ElementsAre("Hello.wav"));
  EXPECT_THAT(world.files.Names(world.messages), IsEmpty());
}

TEST_F(CreatorWindow, CanBeClosedAndTheProgramEndedDuringTheWaitForTheHelper) {
  for (const bool quit : {false, true}) {
    frmGreetC opened(nullptr);
    GreetingCreator creator(world.Machine().ForGreetingCreator(nullptr), opened);
    opened.Attach(creator);
    bool usable = false;
    world.uDat.up = world.uDat.closed = false;
    world.uDat.while_waiting = [&] {
      world.uDat.while_waiting = [] {};
      usable = opened.findChild<QPushButton*>(QStringLiteral("cmdRec"))->isEnabled();
      if (quit) QCoreApplication::exit();
      if (!quit) opened.reject();
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
