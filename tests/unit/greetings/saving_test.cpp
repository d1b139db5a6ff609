// SPDX-License-Identifier: GPL-3.0-or-later
#include "unit/greetings/creator_fixture.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

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

}  // namespace
}  // namespace orven::test
