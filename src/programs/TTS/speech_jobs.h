// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "base/worker.h"
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

  /// Speaks into the SpokenAudio that issued `ticket`, after the files that are queued; not at all when the
  /// audio is cut off before that.
  void Say(Utterance utterance, SpokenAudio::Ticket ticket);

  /// Speaks into the file at `path`.
  void Write(Utterance utterance, std::string path);

  /// Abandons the files at `path` that are being written or queued: none of them appears after this.
  void AbandonFile(const std::string& path);

  /// Calls `done` once on the thread, when all files are written; nothing is added after this.
  void WhenFilesAreMade(const std::function<void()>& done);

 private:
  /// A file that is queued or being written.
  struct File {
    std::string path;
    std::mutex mutex;  ///< held while the file gets its name
    std::atomic<bool> abandoned{false};
  };

  void Add(Worker::Task job);
  void Make(const Utterance& utterance, File& file);
  void AbandonFiles(const std::function<bool(const File&)>& which);

  SpeechEngine& engine_;
  SpokenAudio& audio_;
  std::vector<std::weak_ptr<File>> files_;
  Worker worker_{Worker::AtStop::Drop};
};

}  // namespace orven
