// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>

#include "programs/TTS/speech_engine.h"
#include "programs/TTS/spoken_audio.h"

namespace orven {
/// Writes one line to standard error, whole. Any thread.
void Report(const std::string& text);

/// The thread in which all speech is made, one text after the other. Every operation returns at once;
/// what fails is one line on standard error. Qt's main thread.
class SpeechJobs {
 public:
  /// Both outlive this object and are used by its thread only, the sound also by others.
  SpeechJobs(SpeechEngine& engine, SpokenAudio& audio);

  /// Abandons everything and waits for the thread, which ends with the present piece of speech.
  ~SpeechJobs();
  SpeechJobs(const SpeechJobs&) = delete;
  SpeechJobs& operator=(const SpeechJobs&) = delete;

  /// Speaks into the sound, which gave `ticket` for it. Waits for the files that are to be made.
  void Say(Utterance utterance, SpokenAudio::Ticket ticket);

  /// Forgets all texts to be said; the one being said ends when the sound is cut off.
  void ForgetSpeech();

  /// Speaks into the file at `path`.
  void Write(Utterance utterance, std::string path);

  /// Abandons the files at `path` that are being made or are to be made: none of them appears after this.
  void AbandonFile(const std::string& path);

  /// Calls `done` in the thread when all files have been made; at once when there is none. Once.
  void WhenFilesAreMade(std::function<void()> done);

 private:
  struct Speech {
    Utterance utterance;
    SpokenAudio::Ticket ticket;
  };
  struct File {
    Utterance utterance;
    std::string path;
    std::mutex mutex;  ///< held while the file appears
    bool abandoned = false;

    bool Abandoned() {
      const std::lock_guard lock(mutex);
      return abandoned;
    }
    void Abandon() {
      const std::lock_guard lock(mutex);
      abandoned = true;
    }
  };
  using Job = std::variant<Speech, std::shared_ptr<File>>;

  void Add(Job job);
  void Run();
  void Do(const Job& job);
  void Make(const Speech& speech);
  void Make(File& file);
  void AbandonFiles(const std::function<bool(const File&)>& which);

  SpeechEngine& engine_;
  SpokenAudio& audio_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<Job> jobs_;  ///< the first is being done
  bool ending_ = false;
  std::function<void()> when_made_;
  std::thread thread_;
};

}  // namespace orven
