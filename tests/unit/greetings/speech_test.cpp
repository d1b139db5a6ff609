// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit/greetings/creator_fixture.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST_F(Creator, HelperIsStartedAndItsVoicesAreListed) {
  creator->Load();
  EXPECT_THAT(world.shell.started,
              ElementsAre(std::pair<std::string, std::int32_t>("\"/home/orven/TTS.exe\" -gc", 2)));
  EXPECT_THAT(world.uDat.checked, testing::Each(7));
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("GVC:"));
  world.uDat.Say("GVCS:");
  EXPECT_THAT(view.voices, IsEmpty());
  world.uDat.Say("DONE:GVCS:");
  world.uDat.Say("gvcs:Nobody");
  world.uDat.Say("GVCS:Anna\r\nBen, slow");
  EXPECT_THAT(view.voices, ElementsAre("Anna", "Ben, slow"));

  view.voice = 1;
  view.rate = -3;
  creator->Speak();
  EXPECT_THAT(world.uDat.TakeSent(), IsEmpty()) << "there is no text";
  view.text = "Hello.\nThis is Say: שלום";
  creator->Speak();
  creator->StopSpeaking();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SVC:1", "SRT:-3", "Say:" + view.text, "Stp:"));
  creator->Unload();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("ULD:"));
  EXPECT_TRUE(world.uDat.closed);
}

TEST_F(Creator, WithoutAnEngineNoHelperIsStartedAndTheTabStaysClosed) {
  world.registry.Delete(RegistryRoot::ClassesRoot, "SAPI.SpVoice", "");
  creator->TabClick(CreatorTab::TextToSpeech);
  EXPECT_THAT(world.dialogs.informations, IsEmpty()) << "the tabs are still being built";
  creator->Load();
  EXPECT_THAT(world.shell.started, IsEmpty());
  creator->TabClick(CreatorTab::TextToSpeech);
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Please Install SAPI 5.1 From Microsoft"));
  EXPECT_EQ(view.tab, CreatorTab::Speaker);
}

TEST_F(Creator, HelperThatDoesNotStartAnswerOrLiveIsLoggedAndTheRestGoesOn) {
  world.shell.before_start = [] { throw RuntimeError(ErrorNumber::FileNotFound, "TTS.exe"); };
  creator->Load();
  EXPECT_TRUE(world.Logged("ErrLoadTTS 53 File not found: TTS.exe"));
  creator->TabClick(CreatorTab::TextToSpeech);
  EXPECT_EQ(view.tab, CreatorTab::Speaker);

  world.shell.before_start = [] {};
  Open();
  world.uDat.up = false;
  world.uDat.checked.clear();
  world.uDat.sent.clear();
  creator->Load();
  EXPECT_THAT(world.uDat.checked, ElementsAre(7, 7, 7));
  world.RunFor(1ms);
  EXPECT_TRUE(world.Logged("TTS: the speech helper does not answer"));
  creator->TabClick(CreatorTab::TextToSpeech);
  EXPECT_EQ(view.tab, CreatorTab::TextToSpeech);
  view.text = "Hello";
  creator->Speak();
  creator->StopSpeaking();
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.sent, IsEmpty());
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, Contains("Empty Message"));

  Open();
  world.uDat.up = true;
  creator->Load();
  world.RunFor(11s);
  EXPECT_TRUE(world.Logged("TTS: the speech helper does not tell its voices"));
  creator->CreateGreeting();
  world.uDat.Die();
  EXPECT_TRUE(world.Logged("TTS: the speech helper is gone"));
  EXPECT_TRUE(
      world.Logged("TTS: the speech helper made no greeting of the text: there is no " + speech_file));
  RecordFor(2s);
  EXPECT_TRUE(world.files.Exists(speaker_file));
}

TEST_F(Creator, GreetingIsMadeOfATextAndSavedWhenTheHelperIsDone) {
  Load();
  world.files.Put(speech_file, "an older one");
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.sent, IsEmpty()) << "there is no text";
  view.text = "Nobody is here.";
  view.name = "Typed";
  MakeFiles(5s);
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SFS:" + speech_file, "STW:Nobody is here."));
  creator->Save();
  world.RunFor(4s);
  EXPECT_FALSE(view.closed || view.buttons.cmdOK) << "it waits for the file";
  world.RunFor(2s);
  EXPECT_EQ(world.files.Content(InGreets("Typed.wav")), TimedWave::Sound(3s));
  EXPECT_FALSE(world.files.Exists(speech_file));
  EXPECT_TRUE(view.closed);
}

TEST_F(Creator, GreetingIsMadeInTheVoiceThatIsChosen) {
  Load();
  view.text = "Hello";
  view.rate = 5;
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SVC:-1", "SRT:5", "SFS:" + speech_file, "STW:Hello"));
  view.rate = 0;
  world.uDat.Say("GVCS:Anna\r\nBen");
  view.text = "Hello";
  view.voice = 1;
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SVC:1", "SRT:0", "SFS:" + speech_file, "STW:Hello"));
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SFS:" + speech_file, "STW:Hello"));
}

TEST_F(Creator, FileThatNeverComesIsGivenUp) {
  Load();
  view.text = std::string(5000, 'x');
  view.name = "Never";
  creator->CreateGreeting();
  creator->Save();
  world.RunFor(13s);
  EXPECT_FALSE(view.buttons.cmdOK);
  world.RunFor(2s);
  EXPECT_TRUE(view.buttons.cmdOK);
  EXPECT_TRUE(
      world.Logged("TTS: the speech helper made no greeting of the text: there is no " + speech_file));
  EXPECT_FALSE(world.files.Exists(InGreets("Never.wav")));
  EXPECT_EQ(world.registry.Text("Greeting"), "Hello");
  EXPECT_FALSE(view.closed);

  world.uDat.takes = false;
  creator->CreateGreeting();
  EXPECT_TRUE(world.Logged("TTS: the text was not taken, it may be too long"));
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message"));
}

TEST_F(Creator, TakeThatAnEarlierHelperReplacedIsNotSaved) {
  Load();
  MakeFiles();
  view.text = "Hello";
  view.name = "Hello";
  creator->CreateGreeting();
  world.RunFor(1s);
  world.files.Put(speech_file, TimedWave::Sound(9s));
  creator->Save();
  world.RunFor(1s);
  EXPECT_FALSE(view.closed);
  EXPECT_THAT(view.state, HasSubstr("create the greeting again"));
  creator->CreateGreeting();
  world.RunFor(1s);
  creator->Save();
  world.RunFor(1s);
  EXPECT_EQ(world.files.Content(InGreets("Hello.wav")), TimedWave::Sound(3s));
}

}  // namespace
}  // namespace orven::test
