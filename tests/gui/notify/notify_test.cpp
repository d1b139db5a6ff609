// SPDX-License-Identifier: GPL-3.0-or-later

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "notify/frmEvents.h"
#include "notify/frmMSG.h"

namespace orven::test {
namespace {

/// The events dialog in a running program whose sound folder has "idle.wav" and "ring.wav".
class EventsWindow : public WindowTest {
 protected:
  EventsWindow() {
    world.Start().RunFor(1s);  // until the beep of the open line has ended
    Open();
  }
  void Open(int tab = 0) {
    window = std::make_unique<frmEvents>(dialog, tab, nullptr);
    Show(*window);
  }
  /// Returns the sounds of both lists, with the selected ones in brackets.
  std::string Sounds() {
    std::string sounds;
    for (const char* list : {"CmbPlayWhenCall", "CmbPlayWhenMessage"}) {
      for (const auto& item : Items(list)) {
        const auto name = item.substr(0, item.find('.'));
        sounds += item == Shown(list) ? "[" + name + "] " : name + " ";
      }
      sounds += "| ";
    }
    return sounds;
  }
  void Add(const char* button, const std::string& path) {
    world.files.Put(path, "added");
    world.dialogs.chosen = path;
    Click(button);
  }

  AnsweringMachine& machine = world.Machine();
  Settings& settings = machine.settings;
  const std::string library = std::string(World::kHome) + "/Sound/";
  EventsDialog dialog{{settings, machine.store, machine.home, world.files, machine.sounds, machine.player,
                       world.dialogs, machine.caller_view}};
  std::unique_ptr<frmEvents> window;
};

TEST_F(EventsWindow, ToolbarsPlayAddAndDeleteSoundsAndBothListsFollow) {
  Open(2);
  EXPECT_EQ(Get<QTabWidget>("TabStrip1").currentIndex(), 2) << "the requested tab";
  Click("tlbrPlayWhenMessage.Play");
  EXPECT_EQ(world.WavePlay.played.back().first, library + "idle.wav");
  Click("tlbrPlayWhenMessage.Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  Click("tlbrPlayWhenCall.Add");
  EXPECT_EQ(world.dialogs.chooser[1], std::string("wav (*.wav)\0*.wav\0", 18));
  EXPECT_EQ(Sounds(), "idle [ring] | [idle] ring | ") << "no file was chosen";
  Add("tlbrPlayWhenCall.Add", "/home/anna/horn.wav");
  EXPECT_EQ(Sounds(), "[horn] idle ring | horn [idle] ring | ");
  Add("tlbrPlayWhenMessage.Add", "/home/anna/ring.wav");
  EXPECT_EQ(Sounds(), "[horn] idle ring | horn idle [ring] | ");
  EXPECT_EQ(world.files.Content(library + "ring.wav"), "added") << "replaces the sound of the same name";
  Click("tlbrPlayWhenMessage.Delete");
  EXPECT_EQ(Sounds(), "[horn] idle | horn idle | ");
  Do("CmbPlayWhenMessage=horn.wav tlbrPlayWhenCall.Delete");
  EXPECT_EQ(Sounds(), "idle | idle | ");
  EXPECT_FALSE(world.files.Exists(library + "horn.wav"));

  const auto played = world.WavePlay.played.size();
  Do("tlbrPlayWhenCall.Play tlbrPlayWhenCall.Delete");
  EXPECT_EQ(world.WavePlay.played.size(), played) << "nothing is selected";
  Set({{"CmbPlayWhenMessage", "idle.wav"}});
  world.files.before_write = [](const std::string&) { throw RuntimeError(ErrorNumber::PermissionDenied); };
  Add("tlbrPlayWhenCall.Add", "/home/anna/lost.wav");
  Click("tlbrPlayWhenMessage.Delete");
  EXPECT_EQ(Sounds(), "idle | idle | ");
}

TEST_F(EventsWindow, TestOpensTheCallerViewAsChosenAndCancelKeepsOnlyTheSeconds) {
  const auto& view = world.views.caller_view;
  Do("chkCloseCVAfter=true chkViewDet=true cmbCloseCVAfter=20");
  ExpectStored({{"CloseCallerView", "20"}});
  Do("cmdTestViewer 20s 500ms");
  EXPECT_TRUE(view.open && view.name.empty());
  world.RunFor(1s);
  EXPECT_FALSE(view.open);
  Click("cmdCancel");
  EXPECT_EQ(std::pair(settings.CloseCallerView, settings.ViewDetails),
            std::pair(std::int16_t{20}, std::int16_t{0}));
  ExpectStored({{"cCloseCallerView", "0"}});
}

class RecordedClicks : public CallerViewClicks {
 public:
  std::string all;
  void AnswerNow() override { all += "answer "; }
  void Drop() override { all += "drop "; }
  void DoNothing() override { all += "nothing "; }
  void Close() override { all += "close "; }
};

class CallerViewWindowTest : public WindowTest {
 protected:
  CallerViewWindowTest() {
    view.SetClicks(&clicks);
    Show(view);
    view.Load();
  }

  QWidget main_window;
  RecordedClicks clicks;
  frmMSG view{main_window};
};

TEST_F(CallerViewWindowTest, SlidesDownAtTheTopCentreInRoundedPixels) {
  EXPECT_EQ(view.Height(), view.height() * 15);
  view.Unload();
  EXPECT_FALSE(view.isVisible());
  view.MoveTo(-view.Height());
  view.Load();
  const auto screen = main_window.screen()->geometry();
  EXPECT_LE(std::abs(view.geometry().center().x() - screen.center().x()), 1);
  EXPECT_EQ(view.y(), screen.top() - view.height()) << "just above the edge";
  // 15 twips are a pixel; halves are rounded to even.
  for (const auto& [twips, pixels] : {std::pair(-22, -1), std::pair(-23, -2), std::pair(-7, 0)}) {
    view.MoveTo(twips);
    EXPECT_EQ(view.y(), screen.top() + pixels) << twips;
  }
}

TEST_F(CallerViewWindowTest, ShowsTheCallAndIsEmptyForTheNext) {
  const std::string hostile = "<b>Anna</b> &amp; " + std::string(300, 'x');
  auto call = Call::Offered(1, "11/21/2026", "09:10:11", "");
  call.caller_name = hostile;
  call.caller_number = "555-0134";
  call.message_path = "/home/orven/Messages/a.wav";
  view.ShowCall(call);
  view.ShowStatus(Words("New Call"));
  view.ShowRing(Words("Ring : 3"));
  EXPECT_EQ(Get<QLabel>("lblCallerName").textFormat(), Qt::PlainText);
  const Values texts = {{"lblCallerName", hostile},
                        {"lblCallerNumber", "555-0134"},
                        {"lblCallDate", "11/21/2026"},
                        {"lblTime", "09:10:11"},
                        {"lblStatus", "New Call"},
                        {"lblMsgRingNum", "Ring : 3"},
                        {"lblMessagePath", "/home/orven/Messages/a.wav"}};
  ExpectShown(texts);
  ExpectTidy(view);
  for (const auto& [label, tip] : {std::pair("lblCallerNumber", ""), {"lblCallerName", "&lt;b&gt;Anna"}}) {
    QHelpEvent event(QEvent::ToolTip, {}, {});
    QApplication::sendEvent(&Get(label), &event);
    EXPECT_EQ(QToolTip::text().left(13), tip);
  }
  view.ShowCommands(CallerCommands::WithoutAnswer);
  EXPECT_TRUE(Visible("lblDrop") && !Visible("lblAmswerMode"));
  view.ShowCommands(CallerCommands::None);
  EXPECT_FALSE(Visible("Picture3") || Visible("lblDrop") || Visible("lblDoNothing"));
  view.Unload();
  view.Load();
  for (const auto& [name, text] : texts) ExpectShown({{name, ""}});
  EXPECT_TRUE(Visible("lblDrop"));
}

TEST_F(CallerViewWindowTest, ReportsClicks) {
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
  for (const char* name : {"lblAmswerMode", "Picture3", "lblDrop", "Picture4", "lblDoNothing", "Picture2",
                           "lblMsgFrom", "Image2"}) {
    const auto& label = Get(name);  // the click goes to the window, and must reach the tile below the label
    QTest::mouseClick(view.windowHandle(), Qt::LeftButton, {}, label.mapTo(&view, label.rect().center()));
  }
  QTest::mouseClick(&Get("lblDrop"), Qt::RightButton);
  QTest::mouseRelease(&Get("lblDrop"), Qt::LeftButton);
  QTest::mouseClick(&Get("lblCallerName"), Qt::LeftButton);
  QCloseEvent close;
  QSpontaneKeyEvent::setSpontaneous(&close);  // as if the desktop closed the window
  qApp->notify(&view, &close);
  EXPECT_TRUE(view.close());
  EXPECT_EQ(clicks.all, "answer answer drop drop nothing nothing close close close ");
}

}  // namespace
}  // namespace orven::test
