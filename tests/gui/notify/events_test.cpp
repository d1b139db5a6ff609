// SPDX-License-Identifier: GPL-3.0-or-later
#include <tuple>

#include "base/runtime_error.h"
#include "gui/window_test.h"
#include "notify/frmEvents.h"
#include "support/world.h"

namespace orven::test {
namespace {

/// The dialog in a running program whose library has the sounds "idle.wav" and "ring.wav".
class EventsWindow : public WindowTest {
 protected:
  EventsWindow() { world.Start().RunFor(1s); }  // the beep of the open line is over
  void Open(int tab = 0) {
    window = std::make_unique<frmEvents>(dialog, tab, nullptr);
    Show(*window);
  }
  bool Checked(const char* box) { return Get<QCheckBox>(box).isChecked(); }
  void Check(const char* box, bool on = true) { Get<QCheckBox>(box).setChecked(on); }
  void Choose(const char* list, const char* entry) { Get<QComboBox>(list).setCurrentText(entry); }
  /// The sounds of a list, with brackets around the selected one.
  std::string Sounds(const char* list) {
    const auto& box = Get<QComboBox>(list);
    std::string sounds;
    for (int i = 0; i < box.count(); ++i) {
      const auto name = box.itemText(i).toStdString();
      sounds += (i == 0 ? "" : " ") + (i == box.currentIndex() ? "[" + name + "]" : name);
    }
    return sounds;
  }
  void ExpectSounds(const std::string& call, const std::string& message) {
    EXPECT_EQ(Sounds("CmbPlayWhenCall"), call);
    EXPECT_EQ(Sounds("CmbPlayWhenMessage"), message);
  }
  void Add(const char* button, const std::string& path) {
    world.files.Put(path, "added");
    world.dialogs.open_file = path;
    Click(button);
  }

  World world;
  AnsweringMachine& machine = world.Machine();
  Settings& settings = machine.settings;
  const std::string library = std::string(World::kHome) + "/Sound/";
  EventsDialog dialog{{settings, machine.store, machine.shared, world.files, machine.sounds, machine.player,
                       world.dialogs, machine.caller_view}};
  std::unique_ptr<frmEvents> window;
};

TEST_F(EventsWindow, ShowsTheSettingsOnTheRequestedTab) {
  settings.cPlayInRing = settings.cPlayInIdle = settings.ViewDetails = settings.cCloseCallerView = 1;
  settings.PlayInIdle = "";
  settings.AnimationFast = 400;
  settings.CloseCallerView = 45;
  Open(1);
  auto& tabs = Get<QTabWidget>("TabStrip1");
  EXPECT_EQ(tabs.currentIndex(), 1);
  EXPECT_EQ(tabs.tabText(0) + u'|' + tabs.tabText(1) + u'|' + tabs.tabText(2),
            u"General|In Coming Call|Disconnect Call");
  ExpectSounds("idle.wav [ring.wav]", "idle.wav ring.wav");
  EXPECT_TRUE(Checked("chkPlayInCall") && Checked("chkViewDet") && Checked("chkCloseCVAfter"));
  EXPECT_FALSE(Checked("chkAnimation") || Checked("chkMsgInMsg") || Checked("chkOnlyIfGotMessage"));
  EXPECT_FALSE(Checked("chkPlayInMessage")) << "no sound is selected";
  EXPECT_EQ(Get<QSlider>("sldAnimationFast").value(), 100);
  EXPECT_EQ(Get<QComboBox>("cmbCloseCVAfter").currentIndex(), -1);
  Click("cmdOK");
  EXPECT_EQ(world.registry.Text("CloseCallerView"), "45") << "kept, though the list does not offer it";

  settings.PlayInRing = "gone.wav";
  Open();
  ExpectSounds("idle.wav ring.wav", "idle.wav ring.wav");
  EXPECT_TRUE(Checked("chkPlayInCall"));
}

TEST_F(EventsWindow, ToolbarsPlayAddAndDeleteSoundsAndBothListsFollow) {
  Open();
  Click("tlbrPlayWhenMessage.Play");
  EXPECT_EQ(world.WavePlay.played.back().path, library + "idle.wav");
  Click("tlbrPlayWhenMessage.Stop");
  EXPECT_FALSE(world.WavePlay.IsPlaying());
  Click("tlbrPlayWhenCall.Add");
  EXPECT_EQ(world.dialogs.open_title, "Add Sound");
  EXPECT_EQ(world.dialogs.open_filter, std::string("wav (*.wav)\0*.wav\0", 18));
  ExpectSounds("idle.wav [ring.wav]", "[idle.wav] ring.wav");
  Add("tlbrPlayWhenCall.Add", "/home/anna/horn.wav");
  ExpectSounds("[horn.wav] idle.wav ring.wav", "horn.wav [idle.wav] ring.wav");
  Add("tlbrPlayWhenMessage.Add", "/home/anna/ring.wav");
  ExpectSounds("[horn.wav] idle.wav ring.wav", "horn.wav idle.wav [ring.wav]");
  EXPECT_EQ(world.files.Content(library + "ring.wav"), "added") << "replaces the sound of the same name";
  Click("tlbrPlayWhenMessage.Delete");
  ExpectSounds("[horn.wav] idle.wav", "horn.wav idle.wav");
  Choose("CmbPlayWhenMessage", "horn.wav");
  Click("tlbrPlayWhenCall.Delete");
  ExpectSounds("idle.wav", "idle.wav");
  EXPECT_FALSE(world.files.Exists(library + "horn.wav"));

  const auto played = world.WavePlay.played.size();
  for (const char* button : {"tlbrPlayWhenCall.Play", "tlbrPlayWhenCall.Delete"}) Click(button);
  EXPECT_EQ(world.WavePlay.played.size(), played) << "nothing is selected";
  Choose("CmbPlayWhenMessage", "idle.wav");
  world.files.before_write = [](const std::string&) { throw RuntimeError(ErrorNumber::PermissionDenied); };
  Add("tlbrPlayWhenCall.Add", "/home/anna/lost.wav");
  Click("tlbrPlayWhenMessage.Delete");
  ExpectSounds("idle.wav", "idle.wav");
}

TEST_F(EventsWindow, TestOpensTheCallerViewAsChosenAndCancelKeepsOnlyTheSeconds) {
  Open();
  Check("chkCloseCVAfter");
  Check("chkViewDet");
  Choose("cmbCloseCVAfter", "20");
  EXPECT_EQ(world.registry.Text("CloseCallerView"), "20") << "stored at once";
  Click("cmdTestViewer");
  EXPECT_TRUE(world.views.caller_view.open);
  EXPECT_EQ(world.views.caller_view.name, "");
  world.RunFor(20s + 500ms);
  EXPECT_TRUE(world.views.caller_view.open);
  world.RunFor(1s);
  EXPECT_FALSE(world.views.caller_view.open);
  Click("cmdCancel");
  EXPECT_EQ(window->result(), QDialog::Rejected);
  EXPECT_EQ(settings.CloseCallerView, 20);
  EXPECT_EQ(settings.ViewDetails, 0);
  EXPECT_EQ(world.registry.Text("cCloseCallerView"), "0");
}

TEST_F(EventsWindow, OkStoresEverythingAndTheNextCallUsesIt) {
  Open();
  for (const char* box : {"chkPlayInCall", "chkAnimation", "chkMsgInMsg", "chkOnlyIfGotMessage"}) Check(box);
  Choose("CmbPlayWhenCall", "idle.wav");
  Get<QComboBox>("CmbPlayWhenMessage").setCurrentIndex(-1);
  Get<QSlider>("sldAnimationFast").setValue(70);
  Click("cmdOK");
  EXPECT_EQ(window->result(), QDialog::Accepted);
  const std::pair<const char*, const char*> stored[] = {
      {"cPlayInIdle", "0"},      {"PlayInIdle", ""},         {"ViewDetails", "0"},
      {"WhenMsgViewMsg", "1"},   {"PlayInRing", "idle.wav"}, {"cPlayInRing", "1"},
      {"cAnimation", "1"},       {"AnimationFast", "70"},    {"cCloseCallerView", "0"},
      {"CloseCallerView", "10"}, {"cOnlyIfGotMessage", "1"}};
  for (const auto& [name, text] : stored) EXPECT_EQ(world.registry.Text(name), text) << name;
  const auto fields = [](const Settings& s) {
    return std::tuple(s.PlayInRing, s.PlayInIdle, s.AnimationFast, s.cPlayInRing, s.cPlayInIdle,
                      s.ViewDetails, s.WhenMsgViewMsg, s.cAnimation, s.cCloseCallerView, s.CloseCallerView,
                      s.cOnlyIfGotMessage);
  };
  const auto held = fields(settings);
  settings = {};
  machine.store.GetMainEvents();
  EXPECT_EQ(held, fields(settings));
}

}  // namespace
}  // namespace orven::test
