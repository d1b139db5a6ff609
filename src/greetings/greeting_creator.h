// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/activity_log.h"
#include "core/settings.h"
#include "greetings/greeting_library.h"
#include "greetings/microphone_take.h"
#include "greetings/speech_link.h"
#include "platform/background.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "platform/waveform.h"
#include "records/call_store.h"

namespace orven {

/// The tabs of the greeting creator, with the numbers that they have always had.
enum class CreatorTab { Speaker = 1, TextToSpeech = 2 };

/// Which controls of the greeting creator can be used now.
struct CreatorButtons {
  bool cmdRec = true;
  bool cmdStopRec = false;
  bool cmdPlay = false;
  bool cmdStopPlay = false;
  bool cmdCreateGreeting = true;
  bool cmdOK = true;
  bool operator==(const CreatorButtons&) const = default;
};

/// The greeting creator's window `frmGreetC`, as the engine sees it. Setting anything through this calls
/// nothing back.
class GreetingCreatorView {
 public:
  virtual ~GreetingCreatorView() = default;

  /// Selects the tab and shows its frame: `Frame1` or `Frame2`.
  virtual void SelectTab(CreatorTab tab) = 0;

  virtual void ShowButtons(const CreatorButtons& buttons) = 0;

  /// Shows or hides `lblRec`.
  virtual void ShowRecLabel(bool on) = 0;
  /// `ProgressBarRec`: seconds that have been recorded; there is no highest number.
  virtual void ShowRecProgress(std::int32_t seconds) = 0;
  /// Level of the microphone in thousandths of full scale (0 to 1000).
  virtual void ShowLevel(std::int32_t level) = 0;

  /// `ProgressBar1` and `lblPlay`: how far the take has been played; both 0 when nothing plays.
  virtual void ShowPlayProgress(std::chrono::milliseconds position, std::chrono::milliseconds length) = 0;

  /// The take's picture; without peaks for none.
  virtual void ShowWaveform(const Waveform& waveform) = 0;

  /// One line about the take, for a person; may be empty.
  virtual void ShowState(const std::string& text) = 0;

  /// `VoiceCB`: adds the voices, and selects the first entry where there is one.
  virtual void AddVoices(const std::vector<std::string>& descriptions) = 0;
  /// 0-based; -1 for none.
  virtual std::int32_t SelectedVoice() const = 0;
  /// `RateSldr`: -10 (slow) to 10 (fast).
  virtual std::int32_t Rate() const = 0;

  /// `txtTTS`, with "\n" between lines.
  virtual std::string Text() const = 0;
  virtual void ClearText() = 0;

  /// `txtGreetingName`.
  virtual std::string GreetingName() const = 0;

  /// Closes the window.
  virtual void Close() = 0;
};

/// What the greeting creator `frmGreetC` does: makes a take from the microphone or from a text, plays it,
/// and saves it as the default greeting. One object an opening of the window. Handlers whose statements
/// fail go on; a greeting is saved whole or not at all. User-interface thread.
class GreetingCreator : private SpeechLinkListener {
 public:
  struct Parts {
    EventLoop& loop;
    const Clock& clock;
    Files& files;
    Background& background;
    Dialogs& dialogs;
    WaveControl& WavePlay;
    MessagePlayer& player;  ///< owns what `WavePlay` may be playing
    WaveformReader& waveforms;
    SystemLog& log;
    MicrophoneTake& microphone;
    SpeechLink::Ports speech;
    const GreetingLibrary& library;
    const Settings& settings;
    const SharedOptions& shared;
    /// A greeting `name` is there: the default now. May be called when the creator is gone.
    std::function<void(const std::string& name)> saved;
  };

  GreetingCreator(Parts parts, GreetingCreatorView& view);
  ~GreetingCreator() override;
  GreetingCreator(const GreetingCreator&) = delete;
  GreetingCreator& operator=(const GreetingCreator&) = delete;

  /// The window has been built and is shown: reads the sound device and starts the speech helper. Waits
  /// for the helper and runs the event loop meanwhile; the object must live until it returns.
  void Load();

  /// A person chose a tab.
  void TabClick(CreatorTab tab);

  void Record();          ///< `cmdRec`
  void StopRecord();      ///< `cmdStopRec`
  void Play();            ///< `cmdPlay`
  void StopPlay();        ///< `cmdStopPlay`
  void Speak();           ///< `SpeakBtn`
  void StopSpeaking();    ///< `StopBtn`
  void CreateGreeting();  ///< `cmdCreateGreeting`
  void Save();            ///< `cmdOK`; the view is closed once the greeting is saved, which may be later

  /// The window closes, whatever closed it: ends what the creator plays and records, and the helper. A
  /// greeting that is just being saved is saved all the same.
  /// Everything after the first call does nothing.
  void Unload();

 private:
  void VoicesArrived(const std::vector<std::string>& descriptions) override;
  void HelperLost() override;

  SpeechLink::Manner Manner() const { return {view_.SelectedVoice(), view_.Rate()}; }
  void ShowButtons();
  void ShowTake(const std::string& path, const char* kind);
  bool MayReplace(bool other_take, const char* question);
  void EndRecording();
  void RecordingEnded(bool kept);
  void LineTookOver(bool kept);
  void EndPlaying();
  void FollowRecording();
  void FollowPlaying();
  void SpeechDone(bool there);
  void Copy();
  void Copied(bool done);
  std::string TakePath() const;

  Parts parts_;
  GreetingCreatorView& view_;
  SpeechLink link_;
  SpeechTake speech_;
  std::unique_ptr<Timer> TimerRec;
  std::unique_ptr<Timer> TimerLevel;
  std::unique_ptr<Timer> TimerPlay;

  std::int32_t sound_device_ = 0;
  bool loading_ = true;
  bool recorded_ = false;      ///< a take exists that can be saved
  bool speaker_take_ = false;  ///< the take is a microphone recording
  bool speech_take_ = false;   ///< the take was made from a text
  bool playing_ = false;
  std::chrono::milliseconds take_length_{0};
  bool rec_label_ = false;
  std::int32_t seconds_ = 0;  ///< of the take that is being recorded

  bool saving_ = false;  ///< the greeting is on its way; nothing else happens meanwhile
  std::string name_;     ///< the greeting that is being saved
  bool unloaded_ = false;
  Lifeline lifeline_;
};

}  // namespace orven
