// SPDX-License-Identifier: GPL-3.0-or-later
#include "programs/TTS/speech_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/durable_file.h"
#include "base/paths.h"

namespace orven {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRandom = "XXXXXX";  // mkostemp(3)

/// The sizes in a WAV file are 32-bit numbers (RIFF); its headers need far less than this.
constexpr std::uint64_t kMostSamples = (0xFFFFFFFFU - 4096U) / sizeof(std::int16_t);

std::string HiddenPrefix(const std::string& path) {
  return "." + fs::path(path).filename().string() + ".tts-";
}

/// Permissions of a new file. The process's mask can be read only by setting it, so this is done once.
mode_t NewFileMode() {
  static const mode_t mask = [] {
    const mode_t old = ::umask(0);
    ::umask(old);
    return old;
  }();
  return 0666 & ~mask;
}

}  // namespace

SpeechFile::SpeechFile(std::string path, int sample_rate) : path_(std::move(path)) {
  hidden_path_ = FolderOf(path_) + "/" + HiddenPrefix(path_) + std::string(kRandom);
  const int number = ::mkostemp(hidden_path_.data(), O_CLOEXEC);
  if (number < 0) {
    hidden_path_.clear();
    throw FileFailure(errno, path_);
  }
  file_.emplace(number, path_);
  SF_INFO info{};
  info.samplerate = sample_rate;
  info.channels = 1;
  info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
  audio_.reset(sf_open_fd(number, SFM_WRITE, &info, SF_FALSE));
  if (audio_) return;
  ::unlink(hidden_path_.c_str());
  Fail(sf_strerror(nullptr));
}

SpeechFile::~SpeechFile() {
  audio_.reset();
  if (!hidden_path_.empty()) ::unlink(hidden_path_.c_str());
}

void SpeechFile::Write(std::span<const std::int16_t> samples) {
  samples_ += samples.size();
  if (samples_ > kMostSamples) Fail("the speech is too long for a wave file");
  heard_ = heard_ || std::any_of(samples.begin(), samples.end(), [](std::int16_t one) { return one != 0; });
  errno = 0;
  const auto count = static_cast<sf_count_t>(samples.size());
  if (sf_write_short(audio_.get(), samples.data(), count) == count) return;
  if (errno != 0) throw FileFailure(errno, path_);
  Fail(sf_strerror(audio_.get()));
}

void SpeechFile::Finish() {
  if (!heard_) Fail("the text produced no speech");
  errno = 0;
  if (sf_close(audio_.release()) != SF_ERR_NO_ERROR) throw FileFailure(errno, path_);
  if (::fchmod(file_->Number(), NewFileMode()) != 0) throw FileFailure(errno, path_);
  file_->Sync();
  file_->Close();
}

void SpeechFile::Appear() {
  if (::rename(hidden_path_.c_str(), path_.c_str()) != 0) throw FileFailure(errno, path_);
  hidden_path_.clear();
  Descriptor(FolderOf(path_), O_RDONLY | O_DIRECTORY).Sync();
}

void SpeechFile::Fail(const std::string& reason) const {
  throw std::runtime_error(path_ + ": " + reason);
}

void RemoveLeftovers(const std::string& path) {
  const std::string prefix = HiddenPrefix(path);
  std::error_code error;
  for (fs::directory_iterator entry(FolderOf(path), error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.size() != prefix.size() + kRandom.size() || !name.starts_with(prefix)) continue;
    std::error_code ignored;
    fs::remove(entry->path(), ignored);
  }
}

void RemoveSpeechFile(const std::string& path) {
  // Hidden files first: so a file that another helper is finishing cannot appear after the older one is
  // removed.
  RemoveLeftovers(path);
  if (::unlink(path.c_str()) != 0 && errno != ENOENT) throw FileFailure(errno, path);
}

}  // namespace orven
