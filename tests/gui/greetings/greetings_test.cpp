// SPDX-License-Identifier: GPL-3.0-or-later

#include "base/runtime_error.h"
#include "greetings/frmGreetC.h"
#include "gui/window_test.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The greeting creator's window with its engine, in a running program with a speech engine.
class CreatorWindow : public WindowTest {
 protected:
  CreatorWindow() {
    world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
    world.Start().RunFor(1s);  // until the beep of the open line has ended
    Open();
  }
  /// Opens a new window with a new speech helper.
  void Open(bool helper_answers = true) {
    engine.reset();
    world.uDat = {};
    world.uDat.up = helper_answers;
    window = std::make_unique<frmGreetC>(nullptr);
    engine = std::make_unique<GreetingCreator>(
        world.Machine().ForGreetingCreator([this](const std::string& name) { saved.push_back(name); }),
        *window);
    window->Attach(*engine);
    Show(*window);
    QApplication::processEvents();
  }
  void ChooseTab(int tab) { Get<QTabWidget>("TabStrip1").setCurrentIndex(tab); }
  /// Returns the enabled buttons in the order of use.
  std::string Buttons() {
    std::string enabled;
    for (const char* name :
         {"cmdRec", "cmdStopRec", "cmdPlay", "cmdStopPlay", "cmdCreateGreeting", "cmdOK"}) {
      if (Enabled(name)) enabled += std::string(enabled.empty() ? "" : " ") + name;
    }
    return enabled;
  }
  /// Returns the messages sent to the helper since the last call, separated by "|".
  std::string Sent() {
    std::string all;
    for (const auto& message : std::exchange(world.uDat.sent, {})) all += (all.empty() ? "" : "|") + message;
    return all;
  }
  /// Makes the helper write each requested file from now on.
  void MakeFiles(std::chrono::milliseconds after) {
    world.uDat.on_message = [this, after](const std::string& message) {
      if (message.starts_with("STW:"))
        world.time.After(after, [this] { world.files.Put(speech_file, TimedWave::Sound(3s)); });
    };
  }
  std::string Saved(const std::string& name) const { return world.files.Content(greetings + name + ".wav"); }

  const std::string greetings = std::string(World::kHome) + "/Greets/";
  const std::string speaker_file = std::string(World::kHome) + "/spktmp.wav";
  const std::string speech_file = std::string(World::kHome) + "/ttstmp.wav";
  std::vector<std::string> saved;
  std::unique_ptr<frmGreetC> window;
  std::unique_ptr<GreetingCreator> engine;
};

TEST_F(CreatorWindow, ATakeIsRecordedPlayedAndSavedByReturn) {
  world.Machine().settings.Sound = 4;
  Open();
  world.Wave1.SetLevel(250);
  EXPECT_THAT(Do("@cmdRec txtTTS=typed cmdRec @cmdStopRec"),
              ElementsAre("Start RecMessage[Device:4 1, 1, 16, 8000]->OK"));
  EXPECT_EQ(window->Text(), "");
  EXPECT_EQ(Buttons(), "cmdStopRec cmdCreateGreeting cmdOK");
  world.RunFor(1s);
  EXPECT_FALSE(Visible("lblRec")) << "it blinks";
  EXPECT_EQ(Get<QProgressBar>("prgLevel").value(), 250);
  Do("61s ProgressBarRec:1:02 cmdStopRec");
  EXPECT_EQ(Buttons(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  EXPECT_TRUE(!Visible("lblRec") && Get<QProgressBar>("prgLevel").value() == 0);
  world.take_waveforms.done({{0.5F}, 62s});
  ExpectShown({{"lblPlay", "0:00 / 1:02"}, {"lblState", "From the microphone, 1:02"}});

  Click("cmdPlay");
  EXPECT_EQ(world.WavePlay.played.back(), (TimedWave::Played{speaker_file, 4}));
  EXPECT_EQ(Buttons(), "cmdStopPlay cmdCreateGreeting cmdOK");
  world.RunFor(5050ms);
  EXPECT_EQ(Get<QProgressBar>("ProgressBar1").value(), 5000);
  ExpectShown({{"lblPlay", "0:05 / 1:02"}});
  Do("cmdStopPlay @cmdPlay");
  EXPECT_TRUE(!world.WavePlay.IsPlaying() && Get<QProgressBar>("ProgressBar1").value() == 0);
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
  EXPECT_THAT(saved, ElementsAre("🎉 חופש"));
  EXPECT_TRUE(!window->isVisible() && window->result() == QDialog::Accepted);
}

TEST_F(CreatorWindow, FailuresOfRecorderAndPlayerAreLogged) {
  world.Wave1.start_result = kWaveNoDevice;
  EXPECT_THAT(Do("txtGreetingName=Lost cmdRec"),
              ElementsAre("Error Start RecMessage[Device:0 1, 1, 16, 8000]->wave error 1"));
  world.Wave1.start_result = kWaveOk;
  world.Wave1.stop_result = kWaveDiskFull;
  EXPECT_THAT(Do("cmdRec 1s cmdStopRec cmdOK 1ms"), Contains("ErrStopRecGreet 9 wave error 9"));
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message"));
  world.Wave1.stop_result = kWaveOk;
  Do("cmdRec 0ms cmdStopRec cmdOK 1ms");
  EXPECT_EQ(world.dialogs.informations.size(), 2U) << "an empty file is no greeting";
  Do("cmdRec 1s cmdStopRec");
  world.WavePlay.play_result = kWaveFileNotFound;
  EXPECT_THAT(Do("cmdPlay"),
              ElementsAre("Error Start Play[Device:0]->/home/orven/Greets/spktmp.wav wave error 4"));
}

TEST_F(CreatorWindow, AnAnsweredCallEndsTheTakeAndIsRecordedWhole) {
  Click("cmdRec");
  world.line->Offer();
  world.RunFor(1s);
  world.HangUp();
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the call was not answered";
  world.CallAndWaitForAnswer();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_THAT(Shown("lblState"), HasSubstr("A call was answered"));
  EXPECT_EQ(Buttons(), "cmdRec cmdPlay cmdCreateGreeting cmdOK");
  Click("cmdRec");
  EXPECT_FALSE(world.Wave1.IsRecording()) << "the caller's message may begin at any moment";
  world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
  world.Talk();
  Do("txtGreetingName=Between cmdOK 5s");
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the caller's recording";
  world.HangUp();
  EXPECT_EQ(world.Wave1.last_recorded_path, world.messages + world.CurrentCall().message_file_name);
}

TEST_F(CreatorWindow, NamesAreCheckedAndAGreetingThatCannotBeStoredChangesNothing) {
  Do("cmdRec 1s cmdStopRec cmdOK 1ms");
  for (const char forbidden : std::string("?*:><|\\/\""))
    Do(std::string("txtGreetingName=a") + forbidden + " cmdOK 1ms");
  EXPECT_EQ(world.dialogs.informations.front(), "Enter Greeting Name");
  EXPECT_THAT(world.dialogs.informations,
              Contains("Greeting name with ? \\ / | * < > : \" is not legal").Times(9));
  Do("cmdRec 1s txtGreetingName=Hello");
  const auto old = Saved("Hello");
  world.files.before_write = [this](const std::string& path) {
    if (path == greetings + "Hello.wav") throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Get("cmdOK").setFocus();
  EXPECT_THAT(Do("cmdOK 1ms @txtGreetingName"),
              Contains(HasSubstr("ErrSaveGreeting 70 Permission denied: " + greetings)));
  EXPECT_EQ(Saved("Hello"), old);
  EXPECT_TRUE(world.files.Exists(speaker_file) && window->isVisible()) << "the take is not lost";
  world.files.before_write = [](const std::string&) {};
  Click("cmdOK");
  engine.reset();
  world.RunFor(1ms);
  EXPECT_NE(Saved("Hello"), old) << "a copy that has begun is finished after the window is closed";
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
  EXPECT_TRUE(world.ended && world.files.Exists(speaker_file));
}

TEST_F(CreatorWindow, CanBeClosedDuringTheWaitForTheHelper) {
  engine.reset();
  frmGreetC opened(nullptr);
  GreetingCreator creator(world.Machine().ForGreetingCreator(nullptr), opened);
  opened.Attach(creator);
  world.uDat = {};
  world.uDat.up = false;
  world.uDat.while_waiting = [&] {
    EXPECT_TRUE(opened.findChild<QPushButton*>(QStringLiteral("cmdRec"))->isEnabled());
    opened.reject();
    QApplication::processEvents();
  };
  opened.exec();
  EXPECT_TRUE(world.uDat.closed && Sent().empty() && !opened.isVisible());
  EXPECT_FALSE(world.Logged("TTS: the speech helper does not answer"));
}

TEST_F(CreatorWindow, TheHelperIsStartedListsItsVoicesAndSpeaksTheText) {
  EXPECT_THAT(world.shell.started, ElementsAre(testing::Pair("\"/home/orven/TTS.exe\" -gc", 2)));
  EXPECT_EQ(Sent(), "GVC:");
  for (const char* message : {"GVCS:", "DONE:GVCS:", "gvcs:Carl", "GVCS:Anna\r\nBen, slow"})
    world.uDat.Say(message);
  EXPECT_THAT(Items("VoiceCB"), ElementsAre("Anna", "Ben, slow"));

  ChooseTab(1);
  ExpectTidy(*window);
  EXPECT_TRUE(Visible("Frame2") && !Visible("Frame1") && Focused() == "txtTTS");
  Do("VoiceCB:Anna SpeakBtn cmdCreateGreeting");
  EXPECT_EQ(Sent(), "") << "there is no text";
  auto& text = Get<QPlainTextEdit>("txtTTS");
  QTest::keyClicks(&text, "Hi");
  QTest::keyClick(&text, Qt::Key_Return);
  text.insertPlainText(QString::fromUtf8("Say: שלום 🎉"));
  QTest::keyClick(&text, Qt::Key_Tab);
  EXPECT_EQ(Focused(), "VoiceCB") << "Return is a new line, Tab leaves";
  Set({{"VoiceCB", "Ben, slow"}});
  EXPECT_THAT(Do("RateSldr=-7 SpeakBtn StopBtn cmdCreateGreeting 1ms"), testing::IsEmpty());
  EXPECT_EQ(Sent(), "SVC:1|SRT:-7|Say:Hi\nSay: שלום 🎉|Stp:|SFS:" + speech_file + "|STW:Hi\nSay: שלום 🎉");
}

TEST_F(CreatorWindow, AVoiceIsFoundByAnyPartOfItsDescription) {
  world.uDat.Say("GVCS:English (America)\r\nFrench (France)\r\nFrench (Belgium)");
  ChooseTab(1);
  auto& voices = Get<QComboBox>("VoiceCB");
  auto& found = *voices.completer()->popup();
  const auto type = [&](const char* part) {
    voices.setFocus();
    voices.lineEdit()->selectAll();
    QTest::keyClicks(&voices, QString::fromLatin1(part));
  };
  type("fr");
  EXPECT_EQ(found.model()->rowCount(), 2);
  for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return}) QTest::keyClick(&found, key);
  EXPECT_TRUE(!found.isVisible() && window->Manner().voice == 2);
  Set({{"txtTTS", "Hi"}});
  type("belg");
  Do("SpeakBtn");
  EXPECT_THAT(world.uDat.sent, Contains("SVC:2")) << "the typed text selects the voice";
  EXPECT_THAT(world.dialogs.informations, testing::IsEmpty()) << "Return went to the list, not to the window";
}

TEST_F(CreatorWindow, AMissingSpeechEngineAndAHelperThatDoesNotStartAnswerOrLiveAreReported) {
  world.registry.Delete(RegistryRoot::ClassesRoot, "SAPI.SpVoice", "");
  Open();
  world.dialogs.while_open = [&] { EXPECT_TRUE(Visible("Frame1") && !Visible("Frame2")); };
  ChooseTab(1);
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Please Install SAPI 5.1 From Microsoft"));
  EXPECT_TRUE(Visible("Frame1") && world.shell.started.size() == 1);
  world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "TTS.exe"); };
  Open();
  ChooseTab(1);
  EXPECT_TRUE(world.Logged("ErrLoadTTS 53 File not found: TTS.exe") && Visible("Frame1"));
  world.shell.before_start = [] {};
  Open(false);
  EXPECT_THAT(world.uDat.checked, ElementsAre(7, 7, 7));
  EXPECT_THAT(Do("1ms"), ElementsAre("TTS: the speech helper does not answer"));
  Do("txtTTS=Hello SpeakBtn StopBtn cmdCreateGreeting");
  EXPECT_EQ(Sent(), "");
  Open();
  EXPECT_THAT(Do("11s txtTTS=Hello cmdCreateGreeting"),
              ElementsAre("TTS: the speech helper does not report its voices"));
  EXPECT_THAT(
      world.LoggedBy([this] { world.uDat.Die(); }),
      ElementsAre("TTS: the speech helper has ended",
                  "TTS: the speech helper made no greeting from the text: there is no " + speech_file));
  EXPECT_THAT(world.LoggedBy([this] { world.uDat.Die(); }), testing::SizeIs(1))
      << "no greeting was being made";
}

TEST_F(CreatorWindow, AGreetingOfATextIsSavedWhenTheHelperIsDone) {
  Sent();
  world.files.Put(speech_file, "an older one");
  MakeFiles(5s);
  Do("txtTTS=Hi txtGreetingName=Typed RateSldr=5 cmdCreateGreeting");
  EXPECT_EQ(Sent(), "SVC:-1|SRT:5|SFS:" + speech_file + "|STW:Hi");
  world.RunFor(6s);
  world.files.Put(speech_file, TimedWave::Sound(9s));  // by the helper of an earlier window
  Do("cmdOK 1s");
  EXPECT_THAT(Shown("lblState"), HasSubstr("create the greeting again"));
  Do("cmdCreateGreeting cmdOK 4s");
  EXPECT_EQ(Buttons(), "") << "it waits for the file";
  world.RunFor(2s);
  EXPECT_EQ(Saved("Typed"), TimedWave::Sound(3s));
  EXPECT_FALSE(world.files.Exists(speech_file) || window->isVisible());
}

TEST_F(CreatorWindow, GivesUpAfterTheTimeAllowedForTheText) {
  Set({{"txtTTS", std::string(5000, 'x')}, {"txtGreetingName", "Never"}});
  Do("cmdCreateGreeting cmdOK 13s");
  EXPECT_EQ(Buttons(), "");
  world.RunFor(2s);
  EXPECT_TRUE(window->isVisible() && Enabled("cmdOK"));
  world.uDat.takes = false;
  EXPECT_THAT(Do("cmdCreateGreeting cmdOK 1ms"),
              Contains("TTS: the text was not accepted; it may be too long"));
}

TEST_F(CreatorWindow, ATakeOfTheOtherKindIsDiscardedOnlyAfterConfirmation) {
  Sent();
  MakeFiles(0ms);
  Do("cmdRec 1s cmdStopRec txtTTS=Hello cmdCreateGreeting");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("This Will Delete Speaker Recorded. \r\n Continue ?"));
  EXPECT_EQ(Sent(), "");
  world.dialogs.yes = true;
  Do("cmdRec 1s txtTTS=Hello cmdCreateGreeting");
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_EQ(Buttons(), "cmdRec cmdCreateGreeting cmdOK") << "only a take from the microphone can be played";
  world.RunFor(1s);
  world.dialogs.yes = false;
  Click("cmdRec");
  EXPECT_EQ(world.dialogs.questions.back(), "This Will Delete 'Text To Speech' Recorded. \r\n Continue ?");
  EXPECT_FALSE(world.Wave1.IsRecording());
  Do("txtGreetingName=Speech cmdOK 1ms");
  EXPECT_EQ(Saved("Speech"), TimedWave::Sound(3s));
}

}  // namespace
}  // namespace orven::test
