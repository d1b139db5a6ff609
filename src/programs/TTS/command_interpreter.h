// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/audio_device.h"
#include "programs/TTS/speech_engine.h"
#include "programs/TTS/speech_jobs.h"
#include "programs/TTS/spoken_audio.h"

namespace orven {

/// Executes the messages of the link: a command of four letters, then its argument. Qt's main thread; never
/// blocks.
class CommandInterpreter {
 public:
  struct Parts {
    SpeechJobs& jobs;
    SpokenAudio& audio;
    AudioDevice& card;  ///< where `audio` is played
  };
  struct Answers {
    std::function<void(const std::string& message)> reply;
    std::function<void()> unloaded;  ///< called once, on any thread: the helper may end
  };

  /// `voices` in the order shown to the user, at least one.
  CommandInterpreter(Parts parts, std::vector<Voice> voices, Answers answers);

  /// Ignores a message that is not a command or has an invalid argument.
  void Obey(std::string_view message);

  /// Whether the program requested the end: the link is no longer needed.
  bool Unloading() const { return unloading_; }

 private:
  void TellVoices(std::string_view);
  void SetVoice(std::string_view index);
  void SetRate(std::string_view rate);
  void Say(std::string_view text);
  void Stop(std::string_view);
  void SetFile(std::string_view path);
  void Write(std::string_view text);
  void Unload(std::string_view);
  Utterance MakeUtterance(std::string_view text) const;

  Parts parts_;
  std::vector<Voice> voices_;
  Answers answers_;
  std::size_t voice_ = 0;
  int rate_ = 0;
  std::string path_;  ///< where to write; empty before the first "SFS:"
  bool unloading_ = false;
};

}  // namespace orven
