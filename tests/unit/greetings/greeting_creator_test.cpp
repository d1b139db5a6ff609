// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/greeting_creator.h"

#include <gmock/gmock.h>

#include "platform/runtime_error.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// The creator's window, by what it was told and what a person has entered.
class RecordingCreatorView : public GreetingCreatorView {
 public:
  CreatorTab tab = CreatorTab::Speaker;
  CreatorButtons buttons;
  bool label = false, closed = false;
  std::int32_t seconds = -1, level = -1, voice = 0, rate = 0;
  std::chrono::milliseconds position{0};
  std::size_t peaks = 0;
  std::string state, text, name;
  std::vector<std::string> voices;

  void SelectTab(CreatorTab selected) override { tab = selected; }
  void ShowButtons(const CreatorButtons& enabled) override { buttons = enabled; }
  void ShowRecLabel(bool on) override { label = on; }
  void ShowRecProgress(std::int32_t recorded) override { seconds = recorded; }
  void ShowLevel(std::int32_t shown) override { level = shown; }
  void ShowPlayProgress(std::chrono::milliseconds at, std::chrono::milliseconds /*length*/) override {
    position = at;
  }
  void ShowWaveform(const Waveform& waveform) override { peaks = waveform.peaks.size(); }
  void ShowState(const std::string& line) override { state = line; }
  void AddVoices(const std::vector<std::string>& added) override {
    voices.insert(voices.end(), added.begin(), added.end());
  }
  std::int32_t SelectedVoice() const override { return voices.empty() ? -1 : voice; }
  std::int32_t Rate() const override { return rate; }
  std::string Text() const override { return text; }
  void ClearText() override { text.clear(); }
  std::string GreetingName() const override { return name; }
  void Close() override { closed = true; }
};

/// A creator that is about to open in a running program with a speech engine.
class Creator : public testing::Test {
 protected:
  Creator() {
    InstallEngine();
    world.Start().RunFor(1s);  // the beep of the open line is over
    Open();
  }

  void InstallEngine() {
    world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
  }
  void Open() {
    creator.reset();  // one opening after the other
    creator = std::make_unique<GreetingCreator>(
        world.Machine().ForGreetingCreator([this](const std::string& name) { saved.push_back(name); }), view);
  }
  void Load() {
    creator->Load();
    world.uDat.TakeSent();
  }
  void RecordFor(std::chrono::milliseconds length) {
    creator->Record();
    world.RunFor(length);
    creator->StopRecord();
  }
  /// The helper writes what it is asked for.
  void MakeFiles(std::chrono::milliseconds after = 0ms) {
    world.uDat.on_message = [this, after](const std::string& message) {
      if (message.starts_with("STW:"))
        world.time.After(after, [this] { world.files.Put(speech_file, TimedWave::Sound(3s)); });
    };
  }
  std::string InGreets(const std::string& name) const {
    return std::string(World::kHome) + "/Greets/" + name;
  }

  const std::string speaker_file = std::string(World::kHome) + "/spktmp.wav";
  const std::string speech_file = std::string(World::kHome) + "/ttstmp.wav";
  World world;
  RecordingCreatorView view;
  std::vector<std::string> saved;
  std::unique_ptr<GreetingCreator> creator;
};

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

TEST_F(Creator, WindowThatIsClosedWhileTheHelperIsAwaitedAsksForNothingMore) {
  world.uDat.up = false;
  world.uDat.while_waiting = [this] {
    creator->Unload();
    world.uDat.up = true;  // it comes all the same
  };
  creator->Load();
  creator->Record();
  creator->Save();
  EXPECT_THAT(world.uDat.sent, IsEmpty());
  EXPECT_FALSE(world.Wave1.IsRecording());
}

TEST_F(Creator, TakeFromTheMicrophoneIsRecordedPlayedAndSaved) {
  world.Machine().settings.Sound = 4;
  Load();
  view.text = "typed before";
  world.loud = 700;
  EXPECT_THAT(world.LoggedBy([this] { creator->Record(); }),
              ElementsAre("Start RecMessage[Device:4 1, 1, 16, 8000]->OK"));
  EXPECT_EQ(world.Wave1.recorded.back(), (WaveFormat{1, 1, 16, 8000}));
  EXPECT_EQ(world.Wave1.record_folder, World::kHome);
  EXPECT_EQ(view.text, "");
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdRec = false, .cmdStopRec = true, .cmdPlay = false}));
  std::vector<bool> labels;
  for (int second = 0; second < 3; ++second, world.RunFor(1s)) labels.push_back(view.label);
  EXPECT_THAT(labels, ElementsAre(true, false, true)) << "it blinks";
  EXPECT_EQ(view.seconds, 3);
  EXPECT_EQ(view.level, 700);

  creator->StopRecord();
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_EQ(view.level, 0);
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true}));
  EXPECT_EQ(world.take_waveforms.path, speaker_file);
  world.take_waveforms.done({{0.5F, 1.0F}, 3s});
  EXPECT_EQ(view.peaks, 2U);

  creator->Play();
  EXPECT_EQ(world.WavePlay.played.back(), (TimedWave::Played{speaker_file, 4}));
  EXPECT_TRUE(world.Logged("Start Play:OK"));
  EXPECT_TRUE(view.buttons.cmdStopPlay && !view.buttons.cmdPlay && !view.buttons.cmdRec);
  world.RunFor(1050ms);
  EXPECT_EQ(view.position, 1000ms);
  world.RunFor(5s);
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true})) << "it has ended";
  creator->Play();
  creator->StopPlay();
  EXPECT_FALSE(world.WavePlay.IsPlaying());

  view.name = "  On holiday ";
  const auto sound = world.files.Content(speaker_file);
  creator->Save();
  world.RunFor(1ms);
  EXPECT_EQ(world.files.Content(InGreets("On holiday.wav")), sound);
  EXPECT_EQ(world.registry.Text("Greeting"), "On holiday");
  EXPECT_EQ(world.shared.greeting_file, "On holiday.wav");
  EXPECT_THAT(world.views.greetings, ElementsAre("Hello", "On holiday"));
  EXPECT_EQ(world.views.selected_greeting, "On holiday");
  EXPECT_THAT(saved, ElementsAre("On holiday"));
  EXPECT_FALSE(world.files.Exists(speaker_file));
  EXPECT_TRUE(view.closed);
}

TEST_F(Creator, FailuresOfRecorderAndPlayerAreLogged) {
  Load();
  world.Wave1.start_result = kWaveNoDevice;
  EXPECT_THAT(world.LoggedBy([this] { creator->Record(); }),
              ElementsAre("Error Start RecMessage[Device:0 1, 1, 16, 8000]->wave error 1"));
  EXPECT_EQ(view.buttons, CreatorButtons{});
  world.Wave1.start_result = kWaveOk;
  world.Wave1.stop_result = kWaveDiskFull;
  creator->Record();
  EXPECT_THAT(world.LoggedBy([this] { creator->StopRecord(); }), ElementsAre("ErrStopRecGreet wave error 9"));
  view.name = "Lost";
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Empty Message")) << "no older take passes for it";

  world.Wave1.stop_result = kWaveOk;
  RecordFor(0ms);
  creator->Save();
  EXPECT_THAT(world.dialogs.informations, SizeIs(2)) << "a file without sound is no greeting";
  RecordFor(1s);
  world.WavePlay.play_result = kWaveFileNotFound;
  EXPECT_THAT(world.LoggedBy([this] { creator->Play(); }),
              ElementsAre("Error Start Play[Device:0]->/home/orven/Greets/spktmp.wav wave error 4"));
  world.WavePlay.play_result = kWaveOk;
  world.WavePlay.PlayFile(InGreets("Hello.wav"), 0);
  EXPECT_THAT(world.LoggedBy([this] { creator->Play(); }), IsEmpty()) << "the player is busy";
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

TEST_F(Creator, GreetingWhoseCopyHasBegunIsSavedThoughTheWindowCloses) {
  Load();
  RecordFor(1s);
  view.name = "Closed";
  creator->Save();
  creator.reset();
  world.RunFor(1ms);
  EXPECT_TRUE(world.files.Exists(InGreets("Closed.wav")));
  EXPECT_EQ(world.registry.Text("Greeting"), "Closed");
  EXPECT_EQ(world.views.selected_greeting, "Closed");
  EXPECT_FALSE(world.files.Exists(speaker_file));
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

TEST_F(Creator, TakeOfTheOtherKindIsGivenUpOnlyWhenAskedFor) {
  Load();
  MakeFiles();
  view.text = "Hello";
  RecordFor(1s);
  view.text = "Hello";
  creator->CreateGreeting();
  EXPECT_THAT(world.dialogs.questions, ElementsAre("This Will Delete Speaker Recorded. \r\n Continue ?"));
  EXPECT_EQ(world.dialogs.question_icon, QuestionIcon::Information);
  EXPECT_THAT(world.uDat.sent, IsEmpty());
  world.dialogs.yes = true;
  creator->Record();
  creator->CreateGreeting();
  EXPECT_THAT(world.uDat.sent, IsEmpty()) << "recording has cleared the text";
  view.text = "Hello";
  creator->CreateGreeting();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_FALSE(view.buttons.cmdPlay) << "what it plays is the microphone's";
  world.RunFor(1s);

  world.dialogs.yes = false;
  world.dialogs.questions.clear();
  creator->Record();
  EXPECT_THAT(world.dialogs.questions,
              ElementsAre("This Will Delete 'Text To Speech' Recorded. \r\n Continue ?"));
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_EQ(view.text, "Hello");
  view.name = "Speech";
  creator->Save();
  world.RunFor(1s);
  EXPECT_EQ(world.files.Content(InGreets("Speech.wav")), TimedWave::Sound(3s));
}

TEST_F(Creator, NamesAreChecked) {
  Load();
  RecordFor(1s);
  creator->Save();
  for (const char forbidden : std::string("?*:><|\\/\"")) {
    view.name = std::string("a") + forbidden;
    creator->Save();
  }
  const std::string refusal = "Greeting name with ? \\ / | * < > : \" is not legal";
  EXPECT_THAT(world.dialogs.informations, SizeIs(10));
  EXPECT_EQ(world.dialogs.informations.front(), "Enter Greeting Name");
  EXPECT_THAT(world.dialogs.informations, testing::Contains(refusal).Times(9));
  EXPECT_FALSE(view.closed);

  view.name = "   ";
  creator->Save();
  world.RunFor(1ms);
  EXPECT_TRUE(world.files.Exists(InGreets(".wav")));
  EXPECT_EQ(world.registry.Text("Greeting"), "");
}

TEST_F(Creator, GreetingThatCannotBeStoredChangesNothing) {
  Load();
  RecordFor(1s);
  view.name = "Hello";
  const auto old = world.files.Content(InGreets("Hello.wav"));
  world.files.before_write = [this](const std::string& path) {
    if (path == InGreets("Hello.wav")) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  creator->Save();
  world.RunFor(1ms);
  EXPECT_TRUE(world.Logged("ErrSaveGreeting 70 Permission denied: " + InGreets("Hello.wav")));
  EXPECT_EQ(world.files.Content(InGreets("Hello.wav")), old);
  EXPECT_TRUE(world.files.Exists(speaker_file)) << "the take is not lost";
  EXPECT_FALSE(view.closed);
  world.files.before_write = [](const std::string&) {};
  creator->Save();
  world.RunFor(1ms);
  EXPECT_NE(world.files.Content(InGreets("Hello.wav")), old);
  EXPECT_TRUE(view.closed);
}

TEST_F(Creator, AnsweredCallEndsTheTakeAndIsRecordedWhole) {
  Load();
  creator->Record();
  world.line->Offer();
  world.RunFor(1s);
  world.line->HangUp();
  world.RunFor(1s);
  EXPECT_TRUE(world.Wave1.IsRecording()) << "a call that nobody answered";
  EXPECT_EQ(world.database.RecordCount(), 1);
  EXPECT_FALSE(world.Logged("Record Message OK"));

  world.CallAndWaitForAnswer();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(view.state, HasSubstr("A call was answered"));
  EXPECT_EQ(view.buttons, (CreatorButtons{.cmdPlay = true}));
  creator->Record();
  EXPECT_FALSE(world.Wave1.IsRecording()) << "the caller's message may begin at any moment";
  world.time.RunUntil([this] { return world.Wave1.IsRecording(); }, 60s);
  world.Talk();
  EXPECT_EQ(world.Wave1.record_folder, world.messages);
  creator->StopRecord();
  view.name = "Between";
  creator->Save();
  creator->Unload();
  EXPECT_TRUE(world.Wave1.IsRecording()) << "the caller's recording";
  world.RunFor(5s);
  world.HangUp();
  EXPECT_EQ(world.Wave1.last_recorded_path, world.messages + world.CurrentCall().message_file_name);
}

TEST_F(Creator, CancelAndExitKeepWhatWasRecorded) {
  Load();
  creator->Record();
  world.RunFor(2s);
  creator->Unload();
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_TRUE(world.files.Exists(speaker_file));
  EXPECT_THAT(world.files.Names(std::string(World::kHome) + "/Greets/"), ElementsAre("Hello.wav"));

  Open();
  Load();
  creator->Record();
  world.window->Exit();
  EXPECT_TRUE(world.ended);
  EXPECT_EQ(world.Wave1.takes, 2);
  EXPECT_EQ(world.Wave1.written, 0);
  EXPECT_THAT(world.files.Names(world.messages), IsEmpty());
}

}  // namespace
}  // namespace orven::test
