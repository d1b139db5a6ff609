// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/speech_jobs.h"

#include <unistd.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "programs/TTS/speech_file.h"

namespace orven {
void Report(const std::string& text) {
  const std::string line = "TTS: " + text + "\n";
  // There is no other place to report a failure.
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

SpeechJobs::SpeechJobs(SpeechEngine& engine, SpokenAudio& audio)
    : engine_(engine), audio_(audio), thread_([this] { Run(); }) {}

SpeechJobs::~SpeechJobs() {
  audio_.CutOff();
  AbandonFiles([](const File&) { return true; });
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  wake_.notify_one();
  thread_.join();
}

void SpeechJobs::Say(Utterance utterance, SpokenAudio::Ticket ticket) {
  Add(Speech{std::move(utterance), ticket});
}

void SpeechJobs::Write(Utterance utterance, std::string path) {
  auto file = std::make_shared<File>();
  file->utterance = std::move(utterance);
  file->path = std::move(path);
  Add(std::move(file));
}

void SpeechJobs::Add(Job job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  wake_.notify_one();
}

void SpeechJobs::ForgetSpeech() {
  const std::lock_guard lock(mutex_);
  if (jobs_.empty()) return;
  jobs_.erase(std::remove_if(jobs_.begin() + 1, jobs_.end(),
                             [](const Job& job) { return std::holds_alternative<Speech>(job); }),
              jobs_.end());
}

void SpeechJobs::AbandonFile(const std::string& path) {
  AbandonFiles([&path](const File& file) { return file.path == path; });
}

/// Queued files stay in the queue and are skipped.
void SpeechJobs::AbandonFiles(const std::function<bool(const File&)>& which) {
  std::vector<std::shared_ptr<File>> files;
  {
    const std::lock_guard lock(mutex_);
    for (const Job& job : jobs_) {
      if (const auto* file = std::get_if<std::shared_ptr<File>>(&job)) files.push_back(*file);
    }
  }
  for (const auto& file : files) {
    if (which(*file)) file->Abandon();
  }
}

void SpeechJobs::WhenFilesAreMade(std::function<void()> done) {
  {
    const std::lock_guard lock(mutex_);
    when_made_ = std::move(done);
  }
  wake_.notify_one();
}

void SpeechJobs::Run() {
  std::unique_lock lock(mutex_);
  while (!ending_) {
    if (jobs_.empty() && when_made_) std::exchange(when_made_, nullptr)();
    wake_.wait(lock, [this] { return ending_ || when_made_ || !jobs_.empty(); });
    if (ending_ || jobs_.empty()) continue;
    // The job stays at the front while it is done; pushing to a deque does not move it.
    const Job& job = jobs_.front();
    lock.unlock();
    Do(job);
    lock.lock();
    jobs_.pop_front();
  }
}

void SpeechJobs::Do(const Job& job) {
  try {
    if (const auto* speech = std::get_if<Speech>(&job)) {
      Make(*speech);
    } else {
      Make(*std::get<std::shared_ptr<File>>(job));
    }
  } catch (const std::exception& failure) {
    Report(failure.what());
  }
}

void SpeechJobs::Make(const Speech& speech) {
  try {
    engine_.Speak(speech.utterance, [&](std::span<const std::int16_t> samples) {
      return audio_.Write(speech.ticket, samples);
    });
  } catch (...) {
    audio_.Finish(speech.ticket);
    throw;
  }
  audio_.Finish(speech.ticket);
}

void SpeechJobs::Make(File& file) {
  if (file.Abandoned()) return;
  SpeechFile audio_file(file.path, engine_.SampleRate());
  engine_.Speak(file.utterance, [&](std::span<const std::int16_t> samples) {
    if (file.Abandoned()) return false;
    audio_file.Write(samples);
    return true;
  });
  if (file.Abandoned()) return;
  audio_file.Finish();
  const std::lock_guard lock(file.mutex);
  if (!file.abandoned) audio_file.Appear();
}

}  // namespace orven
