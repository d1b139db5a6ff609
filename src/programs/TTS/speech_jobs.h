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
/// Writes one line to standard error with one call. Any thread.
void Report(const std::string& text);

/// The thread that synthesises all speech, one text after the other. Operations return at once; a failure is
/// one line on standard error. Qt's main thread.
class SpeechJobs {
 public:
  /// Both outlive this object. Only its thread uses the engine.
  SpeechJobs(SpeechEngine& engine, SpokenAudio& audio);

  /// Abandons all jobs and waits for the thread, which ends after the current piece of speech.
  ~SpeechJobs();
  SpeechJobs(const SpeechJobs&) = delete;
  SpeechJobs& operator=(const SpeechJobs&) = delete;

  /// Speaks into the SpokenAudio that issued `ticket`, after the files that are queued.
  void Say(Utterance utterance, SpokenAudio::Ticket ticket);

  /// Drops all queued texts; the one being spoken ends when the audio is cut off.
  void ForgetSpeech();

  /// Speaks into the file at `path`.
  void Write(Utterance utterance, std::string path);

  /// Abandons the files at `path` that are being written or queued: none of them appears after this.
  void AbandonFile(const std::string& path);

  /// Calls `done` once on the thread, when all files are written; at once when there are none.
  void WhenFilesAreMade(std::function<void()> done);

 private:
  struct Speech {
    Utterance utterance;
    SpokenAudio::Ticket ticket;
  };
  struct File {
    Utterance utterance;
    std::string path;
    std::mutex mutex;  ///< held while the file gets its name
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
  std::deque<Job> jobs_;  ///< the first is in progress
  bool ending_ = false;
  std::function<void()> when_made_;
  std::thread thread_;
};

}  // namespace orven
