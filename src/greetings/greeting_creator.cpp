// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/greeting_creator.h"

#include <cmath>
#include <utility>

#include "base/text.h"
#include "core/error_trap.h"

namespace orven {
namespace {

using std::chrono::milliseconds;
using std::chrono_literals::operator""ms;

constexpr auto kTimerRecInterval = 1000ms;
constexpr auto kTimerPlayInterval = 100ms;
constexpr auto kLevelInterval = 50ms;  // smooth to the eye

constexpr const char* kNoEngine = Tr("Please Install SAPI 5.1 From Microsoft");
constexpr const char* kDeleteSpeech = Tr("This Will Delete 'Text To Speech' Recorded. \r\n Continue ?");
constexpr const char* kDeleteSpeaker = Tr("This Will Delete Speaker Recorded. \r\n Continue ?");

/// Only for the log line, which names the greetings folder although the take is elsewhere.
constexpr const char* kPlayedFile = "\\Greets\\spktmp.wav";

std::string MinutesAndSeconds(milliseconds length) {
  const auto seconds = std::chrono::round<std::chrono::seconds>(length).count();
  const auto rest = std::to_string(seconds % 60);
  return std::to_string(seconds / 60) + ":" + (rest.size() < 2 ? "0" : "") + rest;
}

constexpr const char* kBadName = Tr("Greeting name with ? \\ / | * < > : \" is not legal");

}  // namespace

GreetingCreator::GreetingCreator(Parts parts, GreetingCreatorView& view)
    : parts_(std::move(parts)),
      view_(view),
      link_(parts_.speech, parts_.log, parts_.home, *this),
      speech_({parts_.loop, parts_.clock, parts_.files, parts_.log, parts_.home, link_}),
      TimerRec(parts_.loop.MakeTimer([this] { FollowRecording(); })),
      TimerLevel(parts_.loop.MakeTimer([this] { view_.ShowLevel(parts_.microphone.Level()); })),
      TimerPlay(parts_.loop.MakeTimer([this] { FollowPlaying(); })) {
  parts_.microphone.SetInterrupted([this](bool kept) { LineTookOver(kept); });
}

GreetingCreator::~GreetingCreator() {
  Unload();
  parts_.microphone.SetInterrupted(nullptr);
}

void GreetingCreator::Load(CreatorTab first) {
  if (unloaded_) return;
  view_.SelectTab(CreatorTab::Speaker);
  ShowButtons();
  loading_ = false;
  sound_device_ = parts_.settings.Sound;
  link_.Load();
  if (first != CreatorTab::Speaker && !unloaded_) TabClick(first);
}

void GreetingCreator::TabClick(CreatorTab tab) {
  if (loading_) return;
  if (tab == CreatorTab::TextToSpeech && !link_.Available()) {
    parts_.dialogs.Information(Words(kNoEngine));
    tab = CreatorTab::Speaker;
  }
  view_.SelectTab(tab);
}

void GreetingCreator::VoicesArrived(const std::vector<std::string>& descriptions) {
  view_.AddVoices(descriptions);
}

void GreetingCreator::HelperLost() {
  speech_.GiveUp();
}

void GreetingCreator::ShowButtons() {
  const bool recording = parts_.microphone.Recording();
  const bool idle = !recording && !saving_;
  view_.ShowButtons({.cmdRec = idle && !playing_,
                     .cmdStopRec = recording && !saving_,
                     .cmdPlay = idle && speaker_take_ && !playing_,
                     .cmdStopPlay = playing_,
                     .cmdCreateGreeting = !saving_,
                     .cmdOK = !saving_});
}

/// True when there is no other take that would be lost, or the user agrees to lose it.
bool GreetingCreator::MayReplace(bool other_take, const char* question) {
  return !other_take || parts_.dialogs.Confirm(Words(question), QuestionIcon::Information);
}

void GreetingCreator::Record() {
  if (saving_ || unloaded_ || playing_ || parts_.microphone.Busy()) return;
  if (!MayReplace(speech_take_, kDeleteSpeech)) return;
  // While the question was open, a call may have been answered or the window closed.
  if (unloaded_ || parts_.microphone.Busy()) return;
  view_.ClearText();
  if (parts_.microphone.Start(sound_device_) != kWaveOk)
    return view_.ShowState(Words("Recording failed; see the system log"));
  speech_.Forget();
  speech_take_ = false;
  speaker_take_ = recorded_ = true;
  seconds_ = 0;
  view_.ShowRecProgress(0);
  TimerRec->Start(kTimerRecInterval);
  TimerLevel->Start(kLevelInterval);
  view_.ShowRecLabel(rec_label_ = true);
  parts_.waveforms.Cancel();
  view_.ShowWaveform({});
  view_.ShowState(Words("Recording from the microphone"));
  ShowButtons();
}

void GreetingCreator::FollowRecording() {
  view_.ShowRecProgress(++seconds_);
  view_.ShowRecLabel(rec_label_ = !rec_label_);
}

void GreetingCreator::StopRecord() {
  if (parts_.microphone.Recording()) RecordingEnded(parts_.microphone.Stop() == kWaveOk);
}

void GreetingCreator::RecordingEnded(bool kept) {
  TimerRec->Stop();
  TimerLevel->Stop();
  view_.ShowLevel(0);
  view_.ShowRecLabel(rec_label_ = false);
  if (kept) ShowTake(parts_.microphone.Path(), Words("From the microphone, %1"));
  // A microphone that was unplugged or muted leaves an empty file.
  speaker_take_ = recorded_ = kept && take_length_ > 0ms;
  if (!kept) view_.ShowState(Words("The recording could not be stored; see the system log"));
  if (kept && !recorded_) view_.ShowState(Words("Nothing came from the microphone; see the system log"));
  ShowButtons();
}

void GreetingCreator::LineTookOver(bool kept) {
  RecordingEnded(kept);
  if (recorded_)
    view_.ShowState(Words("A call was answered and ended the recording. The part before it is kept."));
}

void GreetingCreator::ShowTake(const std::string& path, Words state) {
  take_length_ = milliseconds(std::llround(std::max(0.0, parts_.WavePlay.FileLength(path)) * 1000));
  view_.ShowState(std::move(state).Arg(MinutesAndSeconds(take_length_)));
  parts_.waveforms.Request(path, [this](const Waveform& waveform) { view_.ShowWaveform(waveform); });
}

void GreetingCreator::Play() {
  if (saving_ || parts_.player.IsPlaying()) return;
  auto& wave = parts_.WavePlay;
  const auto result = wave.PlayFile(parts_.microphone.Path(), sound_device_);
  if (result != kWaveOk) {
    parts_.log.WriteSystem("Error Start Play[Device:" + std::to_string(sound_device_) + "]->" +
                           parts_.home.Path(kPlayedFile) + " " + wave.PlayErrorText(result));
    return;
  }
  parts_.log.WriteSystem("Start Play:" + wave.PlayErrorText(result));
  playing_ = true;
  view_.ShowPlayProgress(0ms, take_length_);
  TimerPlay->Start(kTimerPlayInterval);
  ShowButtons();
}

void GreetingCreator::FollowPlaying() {
  if (!parts_.player.IsPlaying()) return EndPlaying();
  view_.ShowPlayProgress(parts_.WavePlay.Position(), take_length_);
}

void GreetingCreator::StopPlay() {
  if (parts_.player.IsPlaying()) parts_.player.Stop();
  EndPlaying();
}

void GreetingCreator::EndPlaying() {
  TimerPlay->Stop();
  playing_ = false;
  view_.ShowPlayProgress(0ms, 0ms);
  ShowButtons();
}

void GreetingCreator::Speak() {
  link_.Speak(view_.Text(), view_.Manner());
}

void GreetingCreator::StopSpeaking() {
  link_.Stop();
}

void GreetingCreator::CreateGreeting() {
  const auto text = view_.Text();
  if (saving_ || text.empty() || !link_.Up()) return;
  if (!MayReplace(speaker_take_, kDeleteSpeaker)) return;
  if (unloaded_) return;
  StopPlay();
  StopRecord();
  view_.ShowRecProgress(0);
  parts_.waveforms.Cancel();
  view_.ShowWaveform({});
  speaker_take_ = false;
  speech_take_ = recorded_ = speech_.Make(text, view_.Manner(), [this](bool there) { SpeechDone(there); });
  view_.ShowState(speech_take_ ? Words("The greeting is being made from the text") : Words());
  ShowButtons();
}

void GreetingCreator::SpeechDone(bool there) {
  speech_take_ = recorded_ = there;
  if (there) {
    ShowTake(speech_.Path(), Words("From the text, %1"));
  } else {
    view_.ShowState(
        Words("No greeting could be made from the text. Does it have words, and is there room on the disk?"));
  }
  if (!saving_) return;
  if (there) return Copy();
  saving_ = false;
  ShowButtons();
}

void GreetingCreator::Save() {
  if (saving_ || unloaded_) return;
  const auto name = view_.GreetingName();
  if (!recorded_) return parts_.dialogs.Information(Words("Empty Message"));
  if (name.empty()) return parts_.dialogs.Information(Words("Enter Greeting Name"));
  if (!IsLegalGreetingName(name)) return parts_.dialogs.Information(Words(kBadName));
  StopRecord();
  if (!recorded_) return;
  name_ = std::string(Trimmed(name, " "));
  saving_ = true;
  ShowButtons();
  if (speech_.Pending())
    return view_.ShowState(Words("The greeting will be saved as soon as it is made from the text"));
  if (!speech_take_ || speech_.Unchanged()) return Copy();
  // The helper of an earlier window was slow and has just written its file over this one.
  recorded_ = speech_take_ = saving_ = false;
  view_.ShowState(Words("The take was replaced; please create the greeting again"));
  ShowButtons();
}

std::string GreetingCreator::TakePath() const {
  return speech_take_ ? speech_.Path() : parts_.microphone.Path();
}

/// From now on the greeting is saved even if the window is closed.
void GreetingCreator::Copy() {
  const auto source = TakePath();
  const auto done = std::make_shared<bool>();
  const auto finish = [name = name_, source, done, saved = parts_.saved, &log = parts_.log,
                       &files = parts_.files](const std::exception_ptr& failure) {
    const ErrorTrap trap(log, "ErrSaveGreeting ");
    *done = trap([&] {
      if (failure) std::rethrow_exception(failure);
    });
    if (!*done) return;
    trap([&] { saved(name); });
    trap([&] { files.Delete(source); });
  };
  parts_.background.Run(
      [library = parts_.library, name = name_, source] { library.Add(name, source); },
      [finish, show = lifeline_.Bind([this, done] { Copied(*done); })](const std::exception_ptr& failure) {
        finish(failure);
        show();
      });
}

void GreetingCreator::Copied(bool done) {
  saving_ = false;
  if (done) return view_.Close();
  view_.ShowState(Words("The greeting could not be saved; see the system log"));
  ShowButtons();
}

void GreetingCreator::Unload() {
  if (unloaded_) return;
  unloaded_ = true;
  if (parts_.player.IsPlaying()) parts_.player.Stop();
  if (parts_.microphone.Recording()) parts_.microphone.Stop();
  for (const auto* timer : {&TimerRec, &TimerLevel, &TimerPlay}) (*timer)->Stop();
  speech_.Forget();
  parts_.waveforms.Cancel();
  link_.Unload();
}

}  // namespace orven
