// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractItemView>
#include <QCompleter>
#include <QTest>

#include "gui/greetings/creator_window.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(CreatorWindow, TheHelperIsStartedListsItsVoicesAndSpeaksTheText) {
  EXPECT_THAT(world.shell.started, ElementsAre(testing::Pair("\"/home/orven/TTS.exe\" -gc", 2)));
  EXPECT_THAT(world.uDat.checked, testing::Each(7));
  EXPECT_EQ(Sent(), "GVC:");
  EXPECT_EQ(window->SelectedVoice(), -1);
  for (const char* message : {"GVCS:", "DONE:GVCS:", "gvcs:Carl", "GVCS:Anna\r\nBen, slow"})
    world.uDat.Say(message);
  auto& voices = Get<QComboBox>("VoiceCB");
  EXPECT_EQ(voices.itemText(0) + u'|' + voices.itemText(1), u"Anna|Ben, slow");
  EXPECT_TRUE(voices.count() == 2 && window->SelectedVoice() == 0);

  ChooseTab(1);
  EXPECT_TRUE(Visible("Frame2") && !Visible("Frame1"));
  EXPECT_EQ(Focused(), "txtTTS");
  Do("SpeakBtn cmdCreateGreeting");
  EXPECT_EQ(Sent(), "") << "there is no text";
  auto& text = Get<QPlainTextEdit>("txtTTS");
  QTest::keyClicks(&text, "Hi");
  QTest::keyClick(&text, Qt::Key_Return);
  text.insertPlainText(QString::fromUtf8("Say: שלום 🎉"));
  QTest::keyClick(&text, Qt::Key_Tab);
  EXPECT_EQ(Focused(), "VoiceCB") << "Return is a new line, Tab leaves";
  voices.setCurrentIndex(1);
  Set({{"RateSldr", "-7"}});
  Do("SpeakBtn StopBtn");
  EXPECT_EQ(Sent(), "SVC:1|SRT:-7|Say:Hi\nSay: שלום 🎉|Stp:");
}

TEST_F(CreatorWindow, AVoiceIsFoundByAnyPartOfItsDescription) {
  world.uDat.Say("GVCS:English (America)\r\nFrench (France)\r\nFrench (Belgium)\r\nHebrew");
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
  EXPECT_TRUE(!found.isVisible() && window->SelectedVoice() == 2);
  type("BREW");
  QTest::keyClick(&found, Qt::Key_Return);
  EXPECT_EQ(window->SelectedVoice(), 3) << "the first match";
  type("klingon");
  QTest::keyClick(&voices, Qt::Key_Return);
  ExpectShown({{"VoiceCB", "Hebrew"}});
  EXPECT_EQ(window->SelectedVoice(), 3);
  Set({{"txtTTS", "Hi"}});
  type("belg");
  Click("SpeakBtn");
  EXPECT_THAT(world.uDat.sent, Contains("SVC:2")) << "what was typed counts";
  EXPECT_THAT(world.dialogs.informations, IsEmpty()) << "Return is the list's, not the window's";
}

TEST_F(CreatorWindow, WithoutASpeechEngineTheTabIsRefused) {
  world.registry.Delete(RegistryRoot::ClassesRoot, "SAPI.SpVoice", "");
  Open();
  bool old_frame = false;
  world.dialogs.while_open = [&] { old_frame = Visible("Frame1") && !Visible("Frame2"); };
  ChooseTab(1);
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Please Install SAPI 5.1 From Microsoft"));
  EXPECT_TRUE(old_frame && Visible("Frame1") && world.shell.started.size() == 1);
}

TEST_F(CreatorWindow, AHelperThatDoesNotStartAnswerOrLiveIsLogged) {
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "TTS.exe"); };
  Open();
  EXPECT_TRUE(world.Logged("ErrLoadTTS 53 File not found: TTS.exe"));
  ChooseTab(1);
  EXPECT_TRUE(Visible("Frame1"));

  world.shell.before_start = [] {};
  Open(false);
  EXPECT_THAT(world.uDat.checked, ElementsAre(7, 7, 7));
  world.RunFor(1ms);
  EXPECT_TRUE(world.Logged("TTS: the speech helper does not answer"));
  ChooseTab(1);
  EXPECT_TRUE(Visible("Frame2"));
  Set({{"txtTTS", "Hello"}});
  Do("SpeakBtn StopBtn cmdCreateGreeting");
  EXPECT_EQ(Sent(), "");

  Open();
  world.RunFor(11s);
  EXPECT_TRUE(world.Logged("TTS: the speech helper does not report its voices"));
  Set({{"txtTTS", "Hello"}});
  Click("cmdCreateGreeting");
  world.uDat.Die();
  EXPECT_TRUE(world.Logged("TTS: the speech helper has ended"));
  EXPECT_TRUE(
      world.Logged("TTS: the speech helper made no greeting of the text: there is no " + speech_file));
}

TEST_F(CreatorWindow, AGreetingOfATextIsSavedWhenTheHelperIsDone) {
  Sent();
  world.files.Put(speech_file, "an older one");
  MakeFiles(5s);
  Set({{"txtTTS", "Nobody is here."}, {"txtGreetingName", "Typed"}, {"RateSldr", "5"}});
  Click("cmdCreateGreeting");
  EXPECT_EQ(Sent(), "SVC:-1|SRT:5|SFS:" + speech_file + "|STW:Nobody is here.");
  Do("cmdOK 4s");
  EXPECT_EQ(Buttons(), "") << "it waits for the file";
  world.RunFor(2s);
  EXPECT_EQ(Saved("Typed"), TimedWave::Sound(3s));
  EXPECT_FALSE(world.files.Exists(speech_file) || window->isVisible());

  Open();
  world.uDat.Say("GVCS:Anna\r\nBen");
  Sent();
  Get<QComboBox>("VoiceCB").setCurrentIndex(1);
  Set({{"txtTTS", "Hello"}});
  for (const std::string manner : {"SVC:1|SRT:0|", ""}) {
    Click("cmdCreateGreeting");
    EXPECT_EQ(Sent(), manner + "SFS:" + speech_file + "|STW:Hello");
  }
}

TEST_F(CreatorWindow, GivesUpAfterTheTimeThatTheTextMayTake) {
  Set({{"txtTTS", std::string(5000, 'x')}, {"txtGreetingName", "Never"}});
  Do("cmdCreateGreeting cmdOK 13s");
  EXPECT_EQ(Buttons(), "");
  world.RunFor(2s);
  EXPECT_TRUE(window->isVisible() && Enabled("cmdOK"));
  EXPECT_TRUE(
      world.Logged("TTS: the speech helper made no greeting of the text: there is no " + speech_file));
  EXPECT_THAT(world.files.Names(greetings), ElementsAre("Hello.wav"));
  world.uDat.takes = false;
  Click("cmdCreateGreeting");
  EXPECT_TRUE(world.Logged("TTS: the text was not taken, it may be too long"));
  Do("cmdOK 1ms");
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message"));
}

TEST_F(CreatorWindow, ATakeThatAnEarlierHelperReplacedIsNotSaved) {
  MakeFiles(0ms);
  Set({{"txtTTS", "Hello"}, {"txtGreetingName", "Hello"}});
  Do("cmdCreateGreeting 1s");
  world.files.Put(speech_file, TimedWave::Sound(9s));
  Do("cmdOK 1s");
  EXPECT_THAT(Shown("lblState"), testing::HasSubstr("create the greeting again"));
  Do("cmdCreateGreeting 1s cmdOK 1s");
  EXPECT_EQ(Saved("Hello"), TimedWave::Sound(3s));
}

TEST_F(CreatorWindow, ATakeOfTheOtherKindIsGivenUpOnlyWhenAskedFor) {
  Sent();
  MakeFiles(0ms);
  Do("cmdRec 1s cmdStopRec");
  Set({{"txtTTS", "Hello"}});
  Click("cmdCreateGreeting");
  EXPECT_THAT(world.dialogs.questions, ElementsAre("This Will Delete Speaker Recorded. \r\n Continue ?"));
  EXPECT_EQ(world.dialogs.question_icon, QuestionIcon::Information);
  EXPECT_EQ(Sent(), "");
  world.dialogs.yes = true;
  Click("cmdRec");
  Set({{"txtTTS", "Hello"}});
  Click("cmdCreateGreeting");
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_EQ(Buttons(), "cmdRec cmdCreateGreeting cmdOK") << "Play is for the microphone";
  world.RunFor(1s);
  world.dialogs.yes = false;
  Click("cmdRec");
  EXPECT_EQ(world.dialogs.questions.back(), "This Will Delete 'Text To Speech' Recorded. \r\n Continue ?");
  EXPECT_FALSE(world.Wave1.IsRecording());
  Set({{"txtGreetingName", "Speech"}});
  Do("cmdOK 1ms");
  EXPECT_EQ(Saved("Speech"), TimedWave::Sound(3s));
}

}  // namespace
}  // namespace orven::test
