// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/paths.h"
#include "core/activity_log.h"
#include "core/settings.h"
#include "greetings/greeting_library.h"
#include "greetings/microphone_take.h"
#include "greetings/speech_link.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/event_loop.h"
#include "platform/files.h"
#include "platform/wave.h"
#include "records/call_store.h"

namespace orven {

/// The tabs of the greeting creator, with their fixed numbers.
enum class CreatorTab { Speaker = 1, TextToSpeech = 2 };

/// Which buttons of the greeting creator are enabled.
struct CreatorButtons {
  bool cmdRec = true;
  bool cmdStopRec = false;
  bool cmdPlay = false;
  bool cmdStopPlay = false;
  bool cmdCreateGreeting = true;
  bool cmdOK = true;
};

/// The window `frmGreetC` as the engine sees it. Setting a control raises no event.
class GreetingCreatorView {
 public:
  virtual ~GreetingCreatorView() = default;

  /// Selects the tab and shows its frame: `Frame1` or `Frame2`.
  virtual void SelectTab(CreatorTab tab) noexcept = 0;

  virtual void ShowButtons(const CreatorButtons& buttons) noexcept = 0;

  /// Shows or hides `lblRec`.
  virtual void ShowRecLabel(bool on) noexcept = 0;
  /// `ProgressBarRec`: seconds recorded, without an upper limit.
  virtual void ShowRecProgress(std::int32_t seconds) noexcept = 0;
  /// Level of the microphone in thousandths of full scale (0 to 1000).
  virtual void ShowLevel(std::int32_t level) noexcept = 0;

  /// `ProgressBar1` and `lblPlay`: position and length of the take that plays; both 0 when none does.
  virtual void ShowPlayProgress(std::chrono::milliseconds position,
                                std::chrono::milliseconds length) noexcept = 0;

  /// The take's waveform; one without peaks clears the picture.
  virtual void ShowWaveform(const Waveform& waveform) noexcept = 0;

  /// One line about the take; may be empty.
  virtual void ShowState(const Words& text) noexcept = 0;

  /// `VoiceCB`: appends the voices and selects the first entry.
  virtual void AddVoices(const std::vector<std::string>& descriptions) noexcept = 0;
  /// The voice (0-based; -1 for none) and `RateSldr`: -10 (slow) to 10 (fast).
  virtual SpeechLink::Manner Manner() const noexcept = 0;

  /// `txtTTS`, with "\n" between lines.
  virtual std::string Text() const noexcept = 0;
  virtual void ClearText() noexcept = 0;

  /// `txtGreetingName`.
  virtual std::string GreetingName() const noexcept = 0;

  /// Closes the window.
  virtual void Close() noexcept = 0;
};

/// The rules of the greeting creator `frmGreetC`: records a take or synthesises a text, plays it, and saves
/// it atomically as the default greeting. One object for each opening of the window. User-interface thread.
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
    const ApplicationFolder& home;
    /// The greeting `name` was saved; it becomes the default. May be called after the creator is destroyed.
    std::function<void(const std::string& name)> saved;
  };

  GreetingCreator(Parts parts, GreetingCreatorView& view);
  ~GreetingCreator() override;
  GreetingCreator(const GreetingCreator&) = delete;
  GreetingCreator& operator=(const GreetingCreator&) = delete;

  /// The window is shown: reads the sound device and starts the speech helper. Runs the event loop while it
  /// waits for the helper, then shows the tab `first`; the object must live until this returns.
  void Load(CreatorTab first = CreatorTab::Speaker);

  /// A tab was chosen.
  void TabClick(CreatorTab tab);

  void Record();          ///< `cmdRec`
  void StopRecord();      ///< `cmdStopRec`
  void Play();            ///< `cmdPlay`
  void StopPlay();        ///< `cmdStopPlay`
  void Speak();           ///< `SpeakBtn`
  void StopSpeaking();    ///< `StopBtn`
  void CreateGreeting();  ///< `cmdCreateGreeting`
  void Save();            ///< `cmdOK`; closes the view when the greeting is saved, which may be later

  /// The window closes: stops playing and recording, and ends the helper. A copy in progress is completed.
  /// Calls after the first do nothing.
  void Unload();

 private:
  void VoicesArrived(const std::vector<std::string>& descriptions) override;
  void HelperLost() override;

  void ShowButtons();
  void ShowTake(const std::string& path, Words state);
  bool MayReplace(bool other_take, const char* question);
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
  std::int32_t seconds_ = 0;  ///< recorded so far

  bool saving_ = false;  ///< all other commands are disabled
  std::string name_;     ///< of the greeting that is being saved
  bool unloaded_ = false;
  Lifeline lifeline_;
};

}  // namespace orven
