// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever lies where a sound file should: it is measured, drawn, played and entered in the middle. And what
// a recording is at any moment can be played.
// Links: orven_audio
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "adapters/audio/audio_file.h"
#include "adapters/audio/file_wave_control.h"
#include "adapters/audio/growing_file.h"
#include "adapters/audio/waveform_reader.h"
#include "fuzz/input.h"

namespace {

using namespace orven;
using namespace orven::fuzz;

/// More of a file is not listened to: a few bytes at 32 a second are minutes.
constexpr std::size_t kEnough = 20 * kSampleRate;

/// A file without a disk.
class MemoryFile {
 public:
  explicit MemoryFile(Bytes content) : descriptor_(memfd_create("sound", MFD_CLOEXEC)) {
    Require(descriptor_ >= 0 &&
            write(descriptor_, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

/// Tasks of any thread, waited for.
class Loop : public EventLoop {
 public:
  void Post(Task task) override {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    posted_.notify_one();
  }
  void After(std::chrono::milliseconds /*delay*/, Task /*task*/) override { std::abort(); }
  std::unique_ptr<Timer> MakeTimer(Task /*tick*/) override { std::abort(); }

  void RunUntil(const auto& done) {
    while (!done()) {
      std::unique_lock lock(mutex_);
      Require(posted_.wait_for(lock, std::chrono::seconds(9), [this] { return !tasks_.empty(); }));
      const auto tasks = std::exchange(tasks_, {});
      lock.unlock();
      for (const auto& task : tasks) task();
    }
  }

 private:
  std::mutex mutex_;
  std::condition_variable posted_;
  std::vector<Task> tasks_;
};

/// A sound card that takes blocks as fast as they come.
class Card : public AudioDevice, public AudioDevices {
 public:
  std::int32_t StartPlay(AudioSource& source) override {
    source_ = &source;
    return kWaveOk;
  }
  void StopPlay() override { source_ = nullptr; }
  std::int32_t StartRecord(AudioSink& /*sink*/) override { return kWaveNoDevice; }
  void StopRecord() override {}
  AudioDevice* Find(std::int32_t /*number*/) override { return this; }

  /// False at the end.
  bool Pull() {
    std::array<std::int16_t, kBlockSamples> block;
    if (source_ == nullptr || !source_->Read(block)) return false;
    std::this_thread::yield();
    return true;
  }

 private:
  AudioSource* source_ = nullptr;
};

/// How many samples there are to the end, as a telephone hears them, or to where it is enough.
std::size_t Decoded(TelephoneDecoder& decoder) {
  std::array<std::int16_t, 800> chunk;
  std::size_t samples = 0;
  for (std::size_t got = chunk.size(); got == chunk.size() && samples < kEnough; samples += got) {
    got = decoder.Read(chunk);
    Require(got <= chunk.size());
  }
  return samples;
}

void Decode(const std::string& path, std::uint8_t place) {
  std::unique_ptr<TelephoneDecoder> decoder;
  const std::int32_t result = TelephoneDecoder::Open(path, decoder);
  Require((result == kWaveOk) == (decoder != nullptr));
  Require(result == kWaveOk || result == kWaveFileUnreadable || result == kWaveBadFormat);
  if (result != kWaveOk) return;
  const auto length = decoder->Length();
  Require(length.count() >= 0);
  const std::size_t whole = Decoded(*decoder);
  Require(TelephoneDecoder::Open(path, decoder) == kWaveOk);
  if (!decoder->CanSkip() || !decoder->SkipTo(length * place / 255)) return;
  Require(Decoded(*decoder) <= whole + kSampleRate || whole >= kEnough);
}

/// The picture, and the playing, which seeks once.
void Show(const std::string& path, std::uint8_t place) {
  Loop loop;
  Card card;
  FileWaveControl control(loop, card, "/nowhere");
  const double length = control.FileLength(path);
  Require(length >= 0 || length == -1);
  std::optional<Waveform> drawn;
  FileWaveformReader reader(loop);
  reader.Request(path, [&drawn](const Waveform& waveform) { drawn = waveform; });
  loop.RunUntil([&drawn] { return drawn.has_value(); });
  Require(drawn->length.count() >= 0 &&
          drawn->peaks.size() <= static_cast<std::size_t>(FileWaveformReader::kPeaks));
  for (const float peak : drawn->peaks) Require(peak >= 0 && peak <= 1);
  Require(length > 0 || drawn->peaks.empty());
  if (control.PlayFile(path, 0) != kWaveOk) return;
  Require(length >= 0);
  for (int block = 0; block < 4 && card.Pull(); ++block) Require(control.Position().count() >= 0);
  control.Seek(
      std::chrono::milliseconds(static_cast<std::int64_t>(std::min(length, 1e6) * 1000 * place / 200)));
  for (int block = 0; block < 4 && card.Pull();) ++block;
  control.StopPlay();
}

/// Every state of the file in which a recording grows is a sound file, with what its header counts.
void Record(Choices choices) {
  const WaveFormat format{choices.Below(2) == 0 ? kWaveFormatPcm : kWaveFormatMuLaw, 1, 0, kSampleRate};
  const int bytes_a_sample = format.tag == kWaveFormatPcm ? 2 : 1;
  WaveImage image({format.tag, 1, 8 * bytes_a_sample, kSampleRate});
  std::vector<std::uint8_t> on_disk;
  std::size_t samples = 0;
  while (choices.Any()) {
    const Bytes piece = choices.Piece();
    std::vector<std::int16_t> block(piece.size());
    std::transform(piece.begin(), piece.end(), block.begin(),
                   [](std::uint8_t byte) { return static_cast<std::int16_t>(byte << 8); });
    image.Append(block);
    const auto now = image.Bytes();
    // The new sound is there, some of it, and the header not yet.
    const std::size_t news = now.size() - on_disk.size();
    const std::size_t cut = on_disk.empty() ? news : choices.Below(news + 1);
    const bool header_too = cut == news;
    for (const std::byte byte : now.subspan(on_disk.size(), cut))
      on_disk.push_back(static_cast<std::uint8_t>(byte));
    if (header_too) {
      std::transform(image.Header().begin(), image.Header().end(), on_disk.begin(),
                     [](std::byte byte) { return static_cast<std::uint8_t>(byte); });
      samples += block.size();
    }
    const MemoryFile file(on_disk);
    Loop loop;
    Card card;
    const double length = FileWaveControl(loop, card, "").FileLength(file.Path());
    Require(length * kSampleRate >= static_cast<double>(samples));
    if (!header_too) return;
  }
}

}  // namespace

/// A file, whose last byte is the place where it is entered; what begins with "rec" is recorded.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes input(data, size);
  if (size == 0) return 0;
  if (TextOf(input.first(std::min<std::size_t>(size, 3))) == "rec") {
    Record(Choices(input.subspan(3)));
    return 0;
  }
  const MemoryFile file(input);
  Decode(file.Path(), input.back());
  Show(file.Path(), input.back());
  return 0;
}
