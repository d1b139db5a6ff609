// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QClipboard>
#include <QCompleter>
#include <QMimeData>
#include <QTest>
#include <QTimer>

#include "base/runtime_error.h"
#include "greetings/frmGreetC.h"
#include "support/world.h"

namespace orven::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// The creator's window over its engine in a running program with a speech engine.
class CreatorWindow : public testing::Test {
 protected:
  CreatorWindow() {
    world.registry.Write(RegistryRoot::ClassesRoot, "SAPI.SpVoice", std::array{RegString("", "SpVoice")});
    world.Start().RunFor(1s);
    window.Attach(engine);
  }
  void Open() {
    window.show();
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !world.shell.started.empty(); })) << "it loads by itself";
    world.uDat.Say("GVCS:English (America)\r\nFrench (France)\r\nFrench (Belgium)\r\nHebrew");
    world.uDat.TakeSent();
  }
  template <class Control>
  Control& Get(const char* name) {
    auto* control = window.findChild<Control*>(QString::fromLatin1(name));
    if (control == nullptr) throw std::runtime_error(name);
    return *control;
  }
  void Click(const char* button) { Get<QPushButton>(button).click(); }
  void Type(const char* text) { Get<QPlainTextEdit>("txtTTS").setPlainText(QString::fromUtf8(text)); }
  void Name(const char* name) { Get<QLineEdit>("txtGreetingName").setText(QString::fromUtf8(name)); }
  void Choose(int tab) { Get<QTabWidget>("TabStrip1").setCurrentIndex(tab); }
  bool Shows(const char* control) { return Get<QWidget>(control).isVisible(); }
  std::string Focused() { return window.focusWidget()->objectName().toStdString(); }
  std::vector<std::string> EnabledButtons() {
    std::vector<std::string> enabled;
    for (const char* name :
         {"cmdRec", "cmdStopRec", "cmdPlay", "cmdStopPlay", "cmdCreateGreeting", "cmdOK"}) {
      if (Get<QPushButton>(name).isEnabled()) enabled.emplace_back(name);
    }
    return enabled;
  }
  std::size_t Unloads() const { return std::size_t(std::ranges::count(world.uDat.sent, "ULD:")); }
  bool IsGreeting(const std::string& name) const {
    return world.files.Exists(std::string(World::kHome) + "/Greets/" + name + ".wav");
  }

  World world;
  std::vector<std::string> saved;
  frmGreetC window{nullptr};
  GreetingCreator engine{
      world.Machine().ForGreetingCreator([this](const std::string& name) { saved.push_back(name); }), window};
};

TEST_F(CreatorWindow, HasItsControlsOnTheirTabsAndNoShortcutTwice) {
  EXPECT_EQ(window.windowTitle(), u"Greeting Creator");
  EXPECT_EQ(window.windowModality(), Qt::WindowModal);
  for (const char* name : {"cmdRec", "cmdStopRec", "lblRec", "ProgressBarRec", "prgLevel", "cmdPlay",
                           "cmdStopPlay", "lblPlay", "ProgressBar1"}) {
    EXPECT_TRUE(Get<QWidget>("Frame1").isAncestorOf(&Get<QWidget>(name))) << name;
  }
  for (const char* name : {"txtTTS", "VoiceCB", "RateSldr", "SpeakBtn", "StopBtn", "cmdCreateGreeting"}) {
    EXPECT_TRUE(Get<QWidget>("Frame2").isAncestorOf(&Get<QWidget>(name))) << name;
  }
  std::vector<QString> texts{Get<QTabWidget>("TabStrip1").tabText(0),
                             Get<QTabWidget>("TabStrip1").tabText(1)};
  for (const auto* button : window.findChildren<QPushButton*>()) texts.push_back(button->text());
  for (const auto* label : window.findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) texts.push_back(label->text());
  }
  std::set<QChar> letters;
  std::set<std::string> captions;
  for (auto text : texts) {
    const auto mark = text.indexOf(u'&');
    EXPECT_TRUE(mark < 0 || letters.insert(text[mark + 1].toUpper()).second) << text.toStdString();
    captions.insert(text.remove(u'&').toStdString());
  }
  for (const char* caption : {"Speaker", "Text To Speech", "Start Play", "Stop Play", "Create Greeting",
                              "Greeting Name", "OK", "Cancel"}) {
    EXPECT_THAT(captions, Contains(caption));
  }
}

TEST_F(CreatorWindow, TakeIsRecordedPlayedAndSavedByReturn) {
  Open();
  EXPECT_EQ(Focused(), "cmdRec");
  EXPECT_THAT(EnabledButtons(), ElementsAre("cmdRec", "cmdCreateGreeting", "cmdOK"));
  world.loud = 250;
  Click("cmdRec");
  EXPECT_EQ(Focused(), "cmdStopRec") << "Space ends what Space has begun";
  const auto place = Get<QLabel>("lblRec").geometry();
  EXPECT_TRUE(Shows("lblRec"));
  world.RunFor(1s);
  QApplication::processEvents();
  EXPECT_FALSE(Shows("lblRec"));
  EXPECT_EQ(Get<QLabel>("lblRec").geometry(), place);
  EXPECT_EQ(Get<QProgressBar>("prgLevel").value(), 250);
  world.RunFor(61s);
  EXPECT_EQ(Get<QProgressBar>("ProgressBarRec").value(), 62);
  EXPECT_EQ(Get<QProgressBar>("ProgressBarRec").text(), u"1:02");
  Click("cmdStopRec");
  EXPECT_THAT(EnabledButtons(), ElementsAre("cmdRec", "cmdPlay", "cmdCreateGreeting", "cmdOK"));
  EXPECT_FALSE(Shows("lblRec"));
  world.take_waveforms.done({{0.5F}, 62s});
  EXPECT_EQ(Get<QLabel>("lblPlay").text(), u"0:00 / 1:02");
  EXPECT_EQ(Get<QLabel>("lblState").text(), u"From the microphone, 1:02");

  Click("cmdPlay");
  world.RunFor(5050ms);
  EXPECT_EQ(Get<QProgressBar>("ProgressBar1").value(), 5000);
  EXPECT_EQ(Get<QLabel>("lblPlay").text(), u"0:05 / 1:02");
  Click("cmdStopPlay");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  EXPECT_EQ(Get<QProgressBar>("ProgressBar1").value(), 0);
  EXPECT_EQ(Focused(), "cmdPlay");

  Name(" 🎉 חופש\n");
  Get<QLineEdit>("txtGreetingName").setFocus();
  QTest::keyClick(&Get<QLineEdit>("txtGreetingName"), Qt::Key_Return);
  EXPECT_FALSE(Get<QPushButton>("cmdOK").isEnabled());
  world.RunFor(1ms);
  EXPECT_THAT(saved, ElementsAre("🎉 חופש"));
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(window.result(), QDialog::Accepted);
  EXPECT_EQ(Unloads(), 1U);
}

TEST_F(CreatorWindow, TextIsSpokenAndMadeAGreeting) {
  Open();
  Choose(1);
  EXPECT_TRUE(Shows("Frame2") && !Shows("Frame1"));
  EXPECT_EQ(Focused(), "txtTTS");
  auto& text = Get<QPlainTextEdit>("txtTTS");
  QTest::keyClicks(&text, "Hi");
  QTest::keyClick(&text, Qt::Key_Return);
  text.insertPlainText(QString::fromUtf8("שלום 🎉"));
  QTest::keyClick(&text, Qt::Key_Tab);
  EXPECT_EQ(Focused(), "VoiceCB") << "Return is a new line, Tab leaves";
  Get<QComboBox>("VoiceCB").setCurrentIndex(1);
  Get<QSlider>("RateSldr").setValue(-7);
  Click("SpeakBtn");
  Click("StopBtn");
  EXPECT_THAT(world.uDat.TakeSent(), ElementsAre("SVC:1", "SRT:-7", "Say:Hi\nשלום 🎉", "Stp:"));
  Click("cmdCreateGreeting");
  EXPECT_THAT(world.uDat.TakeSent(), Contains("STW:Hi\nשלום 🎉"));
}

TEST_F(CreatorWindow, VoiceIsFoundByAnyPartOfItsDescription) {
  auto& voices = Get<QComboBox>("VoiceCB");
  EXPECT_EQ(window.SelectedVoice(), -1);
  Open();
  Choose(1);
  EXPECT_EQ(voices.count(), 4);
  EXPECT_EQ(window.SelectedVoice(), 0);
  auto& found = *voices.completer()->popup();
  const auto type = [&](const char* part) {
    voices.setFocus();
    voices.lineEdit()->selectAll();
    QTest::keyClicks(&voices, QString::fromLatin1(part));
  };
  type("fr");
  EXPECT_EQ(found.model()->rowCount(), 2);
  QTest::keyClick(&found, Qt::Key_Down);
  QTest::keyClick(&found, Qt::Key_Down);
  QTest::keyClick(&found, Qt::Key_Return);
  EXPECT_FALSE(found.isVisible());
  EXPECT_EQ(window.SelectedVoice(), 2);
  type("BREW");
  QTest::keyClick(&found, Qt::Key_Return);
  EXPECT_EQ(window.SelectedVoice(), 3) << "the first that was found";
  type("klingon");
  QTest::keyClick(&voices, Qt::Key_Return);
  EXPECT_EQ(voices.currentText(), u"Hebrew");
  EXPECT_EQ(window.SelectedVoice(), 3);
  Type("Hi");
  type("belg");
  Click("SpeakBtn");
  EXPECT_THAT(world.uDat.sent, Contains("SVC:2")) << "what was typed counts";
  EXPECT_THAT(world.dialogs.informations, IsEmpty()) << "Return is the list's, not the window's";
}

TEST_F(CreatorWindow, TabThatIsRefusedLeavesTheOldOne) {
  world.registry.Delete(RegistryRoot::ClassesRoot, "SAPI.SpVoice", "");
  window.show();
  bool old_frame = false;
  world.dialogs.while_open = [&] { old_frame = Shows("Frame1") && !Shows("Frame2"); };
  EXPECT_TRUE(QTest::qWaitFor([this] {
    Choose(1);
    return !world.dialogs.informations.empty();
  }));
  EXPECT_THAT(world.dialogs.informations, ElementsAre("Please Install SAPI 5.1 From Microsoft"));
  EXPECT_TRUE(old_frame && Shows("Frame1"));
  EXPECT_EQ(Get<QTabWidget>("TabStrip1").currentIndex(), 0);
}

TEST_F(CreatorWindow, AGreetingThatCannotBeStoredLeavesItOpen) {
  Open();
  Click("cmdRec");
  world.RunFor(1s);
  world.files.before_write = [](const std::string& path) {
    if (path.find("Greets") != std::string::npos) throw RuntimeError(ErrorNumber::PermissionDenied, path);
  };
  Name("Kept");
  Get<QPushButton>("cmdOK").setFocus();
  Click("cmdOK");
  world.RunFor(1ms);
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(Focused(), "txtGreetingName") << "the next Return must not be Cancel's";
  EXPECT_THAT(EnabledButtons(), Contains("cmdOK"));
}

TEST_F(CreatorWindow, LongTextsAreTakenAndStayReadable) {
  Open();
  Choose(1);
  auto& text = Get<QPlainTextEdit>("txtTTS");
  const auto pasted = QString(100, u'x').append(u' ').repeated(1000);
  auto mime = std::make_unique<QMimeData>();
  mime->setHtml(QStringLiteral("<b>no</b>"));
  mime->setText(pasted);
  QGuiApplication::clipboard()->setMimeData(mime.release());
  text.paste();
  EXPECT_EQ(window.Text(), pasted.toStdString());
  const auto width = window.width();
  window.ShowState(std::string(2000, 'w'));
  QApplication::processEvents();
  EXPECT_EQ(window.width(), width);
  EXPECT_EQ(Get<QLabel>("lblState").text().size(), 2000);
  window.ShowRecProgress(std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(Get<QProgressBar>("ProgressBarRec").text(), u"35791394:07");
}

using Way = std::function<void(frmGreetC&)>;
class CreatorClosing : public CreatorWindow,
                       public testing::WithParamInterface<std::pair<const char*, Way>> {};

TEST_P(CreatorClosing, EndsTheTakeAndTheHelperOnce) {
  Open();
  Click("cmdRec");
  GetParam().second(window);
  window.close();
  EXPECT_FALSE(window.isVisible());
  EXPECT_FALSE(world.Wave1.IsRecording());
  EXPECT_EQ(Unloads(), 1U);
  EXPECT_THAT(saved, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    By, CreatorClosing,
    testing::Values(
        std::pair<const char*, Way>(
            "Cancel", [](auto& window) { window.template findChild<QPushButton*>("cmdCancel")->click(); }),
        std::pair<const char*, Way>("Escape", [](auto& window) { QTest::keyClick(&window, Qt::Key_Escape); }),
        std::pair<const char*, Way>("CloseBox", [](auto& window) { window.close(); }),
        std::pair<const char*, Way>("Hiding", [](auto& window) { window.hide(); })),
    [](const auto& way) { return std::string(way.param.first); });

TEST_F(CreatorWindow, ClosedOrQuitWhileTheHelperIsAwaited) {
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
    EXPECT_THAT(world.uDat.sent, IsEmpty());
    EXPECT_FALSE(world.Logged("TTS: the speech helper does not answer"));
  }
}

}  // namespace
}  // namespace orven::test
