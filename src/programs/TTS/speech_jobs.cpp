// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/speech_jobs.h"

#include <unistd.h>

#include <exception>
#include <utility>

#include "programs/TTS/speech_file.h"

namespace orven {
void Report(const std::string& text) {
  const std::string line = "TTS: " + text + "\n";
  // There is no other place to report a failure.
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

SpeechJobs::SpeechJobs(SpeechEngine& engine, SpokenAudio& audio) : engine_(engine), audio_(audio) {}

SpeechJobs::~SpeechJobs() {
  audio_.CutOff();
  AbandonFiles([](const File&) { return true; });
  worker_.Stop();
}

void SpeechJobs::Add(Worker::Task job) {
  const bool added = worker_.Post([job = std::move(job)] {
    try {
      job();
    } catch (const std::exception& failure) {
      Report(failure.what());
    }
  });
  if (!added) Report("no thread can be started");
}

void SpeechJobs::Say(Utterance utterance, SpokenAudio::Ticket ticket) {
  Add([this, utterance = std::move(utterance), ticket] {
    const auto write = [&](std::span<const std::int16_t> samples) { return audio_.Write(ticket, samples); };
    if (!write({})) return;
    try {
      engine_.Speak(utterance, write);
    } catch (...) {
      audio_.Finish(ticket);
      throw;
    }
    audio_.Finish(ticket);
  });
}

void SpeechJobs::Write(Utterance utterance, std::string path) {
  const auto file = std::make_shared<File>();
  file->path = std::move(path);
  std::erase_if(files_, [](const auto& made) { return made.expired(); });
  files_.push_back(file);
  Add([this, utterance = std::move(utterance), file] { Make(utterance, *file); });
}

void SpeechJobs::AbandonFile(const std::string& path) {
  AbandonFiles([&path](const File& file) { return file.path == path; });
}

/// Queued files stay in the queue and are skipped.
void SpeechJobs::AbandonFiles(const std::function<bool(const File&)>& which) {
  for (const auto& one : files_) {
    const auto file = one.lock();
    if (!file || !which(*file)) continue;
    const std::lock_guard lock(file->mutex);
    file->abandoned = true;
  }
}

void SpeechJobs::WhenFilesAreMade(const std::function<void()>& done) {
  if (!worker_.Post(done)) done();
}

void SpeechJobs::Make(const Utterance& utterance, File& file) {
  if (file.abandoned) return;
  SpeechFile audio_file(file.path, engine_.SampleRate());
  engine_.Speak(utterance, [&](std::span<const std::int16_t> samples) {
    if (file.abandoned) return false;
    audio_file.Write(samples);
    return true;
  });
  if (file.abandoned) return;
  audio_file.Finish();
  const std::lock_guard lock(file.mutex);
  if (!file.abandoned) audio_file.Appear();
}

}  // namespace orven
