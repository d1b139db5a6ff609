// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/audio/audio_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <utility>

#include "adapters/files/disk_files.h"
#include "platform/wave.h"

namespace orven {
namespace {

/// Frames decoded at once: few enough that stopping a play never waits long for them.
constexpr double kMostFrames = 2048;

constexpr std::size_t kAhead = kSampleRate;            ///< decoded ahead at most: one second
constexpr std::size_t kRefillBelow = kSampleRate / 2;  ///< decode again below half a second
constexpr std::size_t kDecodeChunk = kSampleRate / 10;
static_assert(kDecodeChunk % kBlockSamples == 0, "so that only the end of a file gives a partial block");

constexpr float kFullScale = 32768.0F;

std::int16_t ToSample(float value) {
  const float scaled = std::clamp(value * kFullScale, -kFullScale, kFullScale - 1);
  return static_cast<std::int16_t>(std::lrintf(scaled));
}

/// A readable descriptor of a regular file, or -1 and `result`. O_NONBLOCK, because opening a named pipe
/// would wait for its writer.
int OpenRegular(const std::string& path, std::int32_t& result) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) {
    result = errno == ENOENT || errno == ENOTDIR ? kWaveFileNotFound : kWaveFileUnreadable;
    return -1;
  }
  struct stat status {};
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) return descriptor;
  close(descriptor);
  result = kWaveFileUnreadable;
  return -1;
}

}  // namespace

std::int32_t OpenAudioFile(const std::string& path, AudioFile& file, SF_INFO& info) {
  std::int32_t result = kWaveOk;
  const int descriptor = OpenRegular(PathInAnyCase(path), result);
  if (descriptor < 0) return result;
  info = SF_INFO{};
  file.reset(sf_open_fd(descriptor, SFM_READ, &info, SF_TRUE));  // closes it when it fails, too
  if (!file || info.samplerate <= 0 || info.channels <= 0 || info.frames < 0) return kWaveFileUnreadable;
  return kWaveOk;
}

std::int32_t TelephoneDecoder::Open(const std::string& path, std::unique_ptr<TelephoneDecoder>& decoder) {
  AudioFile file;
  SF_INFO info;
  if (const auto result = OpenAudioFile(path, file, info); result != kWaveOk) return result;
  std::unique_ptr<TelephoneDecoder> opened(new TelephoneDecoder(std::move(file), info));
  if (!opened->resampler_.Valid()) return kWaveBadFormat;
  decoder = std::move(opened);
  return kWaveOk;
}

TelephoneDecoder::TelephoneDecoder(AudioFile file, const SF_INFO& info)
    : file_(std::move(file)),
      channels_(static_cast<std::size_t>(info.channels)),
      frames_in_file_(info.frames),
      rate_(info.samplerate),
      seekable_(info.seekable != 0),
      resampler_(info.samplerate, kSampleRate) {}

std::chrono::milliseconds TelephoneDecoder::Length() const {
  return std::chrono::milliseconds(frames_in_file_ * 1000 / rate_);
}

bool TelephoneDecoder::SkipTo(std::chrono::milliseconds position) {
  return sf_seek(file_.get(), position.count() * rate_ / 1000, SEEK_SET) >= 0;
}

std::size_t TelephoneDecoder::Read(std::span<std::int16_t> out) {
  std::size_t done = 0;
  while (done < out.size()) {
    if (resampled_.empty()) {
      if (file_ended_) break;
      ReadPiece(out.size() - done);
    }
    const std::size_t count = std::min(resampled_.size(), out.size() - done);
    std::transform(resampled_.begin(), resampled_.begin() + static_cast<std::ptrdiff_t>(count),
                   out.begin() + static_cast<std::ptrdiff_t>(done), ToSample);
    resampled_ = resampled_.subspan(count);
    done += count;
  }
  return done;
}

/// Reads the part of the file that about `samples` of telephone audio need. A damaged floating-point file may
/// hold NaN or infinity: they become silence here, before they spread through the resampler's filter.
void TelephoneDecoder::ReadPiece(std::size_t samples) {
  const double wanted = static_cast<double>(samples) * rate_ / kSampleRate;
  const auto frames = static_cast<std::size_t>(std::clamp(std::ceil(wanted), 1.0, kMostFrames));
  frames_.resize(frames * channels_);
  const sf_count_t got = sf_readf_float(file_.get(), frames_.data(), static_cast<sf_count_t>(frames));
  mono_.resize(static_cast<std::size_t>(std::max<sf_count_t>(got, 0)));
  for (std::size_t i = 0; i < mono_.size(); ++i) {
    float sum = 0;
    for (std::size_t channel = 0; channel < channels_; ++channel) sum += frames_[i * channels_ + channel];
    mono_[i] = std::isfinite(sum) ? sum / static_cast<float>(channels_) : 0.0F;
  }
  file_ended_ = mono_.empty();
  resampled_ = resampler_.Process(mono_, file_ended_);
}

FileSource::FileSource(std::unique_ptr<TelephoneDecoder> decoder, std::chrono::milliseconds start,
                       std::function<void()> on_ended)
    : decoder_(std::move(decoder)), start_(start), on_ended_(std::move(on_ended)), ring_(kAhead) {
  // A caller waits for the first sound; starting a thread takes longer than decoding it.
  if (start_.count() == 0) more_ = DecodeChunk();
  thread_ = std::thread([this] { Decode(); });
}

FileSource::~FileSource() {
  Cancel();
  thread_.join();
}

void FileSource::WhenReady(std::function<void()> on_ready) {
  const std::lock_guard lock(mutex_);
  if (ready_) return on_ready();
  on_ready_ = std::move(on_ready);
}

void FileSource::TellReady() {
  const std::lock_guard lock(mutex_);
  ready_ = true;
  if (const auto tell = std::exchange(on_ready_, nullptr)) tell();
}

void FileSource::Cancel() {
  {
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    on_ready_ = nullptr;
  }
  WakeDecoder();
}

void FileSource::Gone() {
  cancelled_ = true;
  WakeDecoder();
  on_ended_();
}

/// Neither waits nor takes a lock.
void FileSource::WakeDecoder() {
  refill_ = 1;
  refill_.notify_one();
}

bool FileSource::Read(std::span<std::int16_t> block) {
  const bool all = decoded_all_.load(std::memory_order_acquire);  // before Size: then Size is final
  const std::size_t stock = ring_.Size();
  if (stock == 0 && all) {
    on_ended_();
    return false;
  }
  const std::size_t count = std::min(stock, block.size());
  ring_.Pop(block.first(count));
  std::fill(block.begin() + static_cast<std::ptrdiff_t>(count), block.end(), std::int16_t{0});
  samples_played_ += static_cast<std::int64_t>(count);
  if (!all && ring_.Size() < kRefillBelow) WakeDecoder();
  return true;
}

std::chrono::milliseconds FileSource::Position() const {
  return start_ + std::chrono::milliseconds(samples_played_ * 1000 / kSampleRate);
}

void FileSource::Decode() {
  if (start_.count() != 0) more_ = decoder_->SkipTo(start_);
  while (more_ && WaitForRoom()) more_ = DecodeChunk();
  decoder_.reset();
  decoded_all_.store(true, std::memory_order_release);
}

/// False after the last chunk.
bool FileSource::DecodeChunk() {
  std::array<std::int16_t, kDecodeChunk> chunk;
  const std::size_t count = decoder_->Read(chunk);
  ring_.Push(std::span(chunk).first(count));
  TellReady();
  return count == chunk.size();
}

/// True when a chunk fits, false when the play was cancelled.
bool FileSource::WaitForRoom() {
  if (ring_.Room() >= kDecodeChunk) return !cancelled_;
  for (;;) {
    refill_ = 0;  // before the checks: what changes after them ends the wait
    if (cancelled_) return false;
    if (ring_.Size() < kRefillBelow) return true;
    refill_.wait(0);
  }
}

}  // namespace orven
