// SPDX-License-Identifier: GPL-3.0-or-later
#include "greetings/speech_link.h"

#include <chrono>
#include <utility>

#include "core/error_trap.h"
#include "core/mdlReg.h"

namespace orven {
namespace {

using std::chrono_literals::operator""s;

/// Seconds that a helper may take to connect.
constexpr std::int32_t kWaitForHelper = 7;

/// Far more than a helper needs to list its voices, even on a busy machine.
constexpr auto kVoicesLimit = 10s;

constexpr std::int32_t kMinimizedWithFocus = 2;

constexpr std::string_view kVoices = "GVCS:";
constexpr std::string_view kLineEnd = "\r\n";

std::vector<std::string> Split(std::string_view text) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    const auto end = text.find(kLineEnd);
    pieces.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + kLineEnd.size());
  }
  return pieces;
}

using std::chrono_literals::operator""ms;

constexpr auto kLookEvery = 200ms;

/// Far more than a helper needs: it synthesises a minute of speech (1000 characters) in less than a second.
constexpr std::chrono::milliseconds kLimit = 10s;
constexpr std::chrono::milliseconds kLimitPerKilobyte = 1s;

}  // namespace

SpeechLink::SpeechLink(Ports ports, SystemLog& log, const ApplicationFolder& home,
                       SpeechLinkListener& listener)
    : ports_(ports), log_(log), home_(home), listener_(listener) {
  ports_.uDat.SetEvents(this);
}

SpeechLink::~SpeechLink() {
  Unload();
  ports_.uDat.SetEvents(nullptr);
}

void SpeechLink::Load() {
  if (!Installed() || !StartHelper()) return;
  speechAvailable = true;
  if (!Up()) Up();
  // During the wait the window may have been closed or the program ended.
  if (unloaded_) return;
  if (!Up()) return ReportNoAnswer();
  ports_.uDat.Send("GVC:");
  ExpectVoices();
}

bool SpeechLink::Installed() {
  return GetRegValue(ports_.registry, RegistryRoot::ClassesRoot, "SAPI.SpVoice", "") != kNotFound;
}

bool SpeechLink::StartHelper() {
  const ErrorTrap trap(log_, "ErrLoadTTS ");
  // In quotes, because the folder may contain blanks. A quote in it cannot be escaped; the shell then
  // searches for the helper by name.
  const auto folder = home_.Path();
  const bool quotable = folder.find('"') == std::string::npos;
  const auto program = quotable ? "\"" + folder + "/TTS.exe\"" : std::string("TTS.exe");
  return trap([&] { ports_.shell.Run(program + " -gc", kMinimizedWithFocus); });
}

void SpeechLink::ReportNoAnswer() {
  ports_.loop.Post(lifeline_.Bind([this] {
    if (!unloaded_) log_.WriteSystem("TTS: the speech helper does not answer");
  }));
}

void SpeechLink::ExpectVoices() {
  ports_.loop.After(kVoicesLimit, lifeline_.Bind([this] {
    if (!voices_arrived_ && !unloaded_) log_.WriteSystem("TTS: the speech helper does not report its voices");
  }));
}

bool SpeechLink::Up() {
  return !unloaded_ && ports_.uDat.OpenCheck(kWaitForHelper);
}

void SpeechLink::Tell(Manner manner) {
  ports_.uDat.Send("SVC:" + std::to_string(manner.voice));
  ports_.uDat.Send("SRT:" + std::to_string(manner.rate));
  manner_ = manner;
}

void SpeechLink::Speak(const std::string& text, Manner manner) {
  if (text.empty() || !Up()) return;
  Tell(manner);
  if (!ports_.uDat.Send("Say:" + text))
    log_.WriteSystem("TTS: the text was not accepted; it may be too long");
}

void SpeechLink::Stop() {
  if (Up()) ports_.uDat.Send("Stp:");
}

bool SpeechLink::MakeFile(const std::string& path, const std::string& text, Manner manner) {
  // The voice may have been changed since the last Speak; -1 means that none was chosen.
  if (manner != manner_ && manner != Manner{-1, manner_.rate}) Tell(manner);
  ports_.uDat.Send("SFS:" + path);
  const bool sent = ports_.uDat.Send("STW:" + text);
  if (!sent) log_.WriteSystem("TTS: the text was not accepted; it may be too long");
  return sent;
}

void SpeechLink::Unload() {
  if (unloaded_) return;
  if (Up()) ports_.uDat.Send("ULD:");
  unloaded_ = true;
  ports_.uDat.Close();
}

void SpeechLink::DataArrival(const std::string& text) {
  if (!text.starts_with(kVoices)) return;
  voices_arrived_ = true;
  listener_.VoicesArrived(Split(std::string_view(text).substr(kVoices.size())));
}

void SpeechLink::LinkLost() {
  log_.WriteSystem("TTS: the speech helper has ended");
  listener_.HelperLost();
}

SpeechTake::SpeechTake(Parts parts) : parts_(parts), TimerSpeech(parts.loop.MakeTimer([this] { Look(); })) {}

bool SpeechTake::Make(const std::string& text, SpeechLink::Manner manner, Done done) {
  Forget();
  // An old file must not be taken for the new take.
  const auto trap = ErrorTrap::Silent();
  trap([&] { parts_.files.Delete(Path()); });
  if (!parts_.link.MakeFile(Path(), text, manner)) return false;
  done_ = std::move(done);
  constexpr std::size_t kKilobyte = 1024;
  deadline_ = parts_.clock.Uptime() + kLimit + kLimitPerKilobyte * (text.size() / kKilobyte);
  TimerSpeech->Start(kLookEvery);
  return true;
}

void SpeechTake::Look() {
  if (parts_.files.Exists(Path())) return End(true);
  if (parts_.clock.Uptime() >= deadline_) GiveUp();
}

void SpeechTake::GiveUp() {
  if (!Pending()) return;
  if (parts_.files.Exists(Path())) return End(true);
  parts_.log.WriteSystem("TTS: the speech helper made no greeting from the text: there is no " + Path());
  End(false);
}

bool SpeechTake::Unchanged() const {
  Clock::WallTime written;
  const auto trap = ErrorTrap::Silent();
  // If the file was deleted, the copy will report it.
  return !trap([&] { written = parts_.files.LastModified(Path()); }) || written == written_;
}

void SpeechTake::End(bool there) {
  Forget();
  const auto trap = ErrorTrap::Silent();
  trap([&] {
    if (there) written_ = parts_.files.LastModified(Path());
  });
  std::exchange(done_, nullptr)(there);
}

}  // namespace orven
