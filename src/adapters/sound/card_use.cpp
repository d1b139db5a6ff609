// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/sound/card_use.h"

#include <pulse/context.h>
#include <pulse/operation.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

namespace orven {
namespace {

/// Telephone audio; the server converts it to what the device needs, and back.
constexpr pa_sample_spec kFormat{PA_SAMPLE_S16NE, kSampleRate, 1};

constexpr std::size_t kBlockBytes = kBlockSamples * sizeof(std::int16_t);

/// An unplugged device ends its stream: the server would move it to a device that the user did not choose.
constexpr auto kFlags = static_cast<pa_stream_flags_t>(PA_STREAM_ADJUST_LATENCY | PA_STREAM_DONT_MOVE);

constexpr std::uint32_t kServerDecides = static_cast<std::uint32_t>(-1);

/// From the source to the ear: a busy computer may be late by that much.
constexpr std::uint32_t kDelay = 10 * kBlockBytes;
constexpr std::uint32_t kLiveDelay = 2 * kBlockBytes;

/// Blocks read at once: what a source has ready when a play begins.
constexpr std::size_t kMostBlocks = 5;

}  // namespace

bool CardUse::Active() const {
  const std::lock_guard lock(mutex_);
  return active_;
}

std::chrono::milliseconds CardUse::SinceLastBlock() const {
  const std::lock_guard lock(mutex_);
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - last_block_);
}

bool CardUse::Stop() {
  const std::lock_guard lock(mutex_);
  return std::exchange(active_, false);
}

void CardUse::Fail(const std::string& problem) {
  const std::lock_guard lock(mutex_);
  if (!std::exchange(active_, false)) return;
  Gone();
  report_(problem);
}

void CardUse::Open(pa_context* context, const SoundDevice& device) {
  if (!Active()) return;
  device_ = device.description;
  stream_ = pa_stream_new(context, words_.doing, &kFormat, nullptr);
  if (stream_ == nullptr) return Fail(Sentence("could not be opened."));
  self_ = shared_from_this();
  pa_stream_set_state_callback(
      stream_, [](pa_stream*, void* self) { static_cast<CardUse*>(self)->StateChanged(); }, this);
  if (Connect(device.id.c_str()) < 0) Ended();
}

void CardUse::StateChanged() {
  const pa_stream_state_t state = pa_stream_get_state(stream_);
  if (state == PA_STREAM_CREATING) return;
  if (state != PA_STREAM_READY) return Ended();
  opened_ = true;
  if (!Active()) Close();
}

void CardUse::Ended() {
  const bool server = PA_CONTEXT_IS_GOOD(pa_context_get_state(pa_stream_get_context(stream_)));
  const std::string doing = std::string(" while it was ") + words_.doing;
  Fail(Sentence(!opened_ ? "could not be opened."
                : server ? "was disconnected" + doing + "."
                         : "stopped" + doing + "; perhaps the sound server ended."));
  pa_stream_set_state_callback(stream_, nullptr, nullptr);
  pa_stream_unref(std::exchange(stream_, nullptr));
  const auto last = std::move(self_);
}

/// While the server has not opened the stream yet this does nothing, and StateChanged closes it.
void CardUse::Close() {
  if (stream_ != nullptr) pa_stream_disconnect(stream_);
}

std::string CardUse::Sentence(const std::string& what) const {
  return std::string("The ") + words_.device + " \"" + device_ + "\" " + what;
}

int CardPlay::Connect(const char* device) {
  pa_stream_set_write_callback(
      Stream(), [](pa_stream*, std::size_t room, void* self) { static_cast<CardPlay*>(self)->Feed(room); },
      this);
  const pa_buffer_attr sizes{.maxlength = kServerDecides,
                             .tlength = live_ ? kLiveDelay : kDelay,
                             .prebuf = kBlockBytes,
                             .minreq = kBlockBytes / 2,
                             .fragsize = kServerDecides};
  return pa_stream_connect_playback(Stream(), device, &sizes, kFlags, nullptr, nullptr);
}

/// What is not written remains requested.
void CardPlay::Feed(std::size_t room) {
  std::array<std::int16_t, kBlockSamples> block;
  for (std::size_t blocks = std::min(room / kBlockBytes, kMostBlocks); blocks > 0; --blocks) {
    const auto more = Move([&](auto) { return source_.Read(block); });
    if (!more) return;
    if (!*more) return Drain();
    pa_stream_write(Stream(), block.data(), kBlockBytes, nullptr, 0, PA_SEEK_RELATIVE);
  }
}

void CardPlay::Drain() {
  const auto drained = [](pa_stream*, int, void* self) { static_cast<CardPlay*>(self)->Close(); };
  pa_operation* const operation = pa_stream_drain(Stream(), drained, this);
  if (operation == nullptr) return Close();
  pa_operation_unref(operation);
}

int CardTake::Connect(const char* device) {
  pa_stream_set_read_callback(
      Stream(), [](pa_stream*, std::size_t, void* self) { static_cast<CardTake*>(self)->Collect(); }, this);
  const pa_buffer_attr sizes{.maxlength = kServerDecides,
                             .tlength = kServerDecides,
                             .prebuf = kServerDecides,
                             .minreq = kServerDecides,
                             .fragsize = kBlockBytes};
  return pa_stream_connect_record(Stream(), device, &sizes, kFlags);
}

void CardTake::Collect() {
  const void* data = nullptr;
  std::size_t bytes = 0;
  while (pa_stream_peek(Stream(), &data, &bytes) == 0 && bytes > 0) {
    Append(static_cast<const std::byte*>(data), bytes);
    pa_stream_drop(Stream());
  }
}

/// No `data` is a hole, audio that the server has lost: silence.
void CardTake::Append(const std::byte* data, std::size_t bytes) {
  for (std::size_t done = 0; done < bytes;) {
    const std::size_t some = std::min(bytes - done, kBlockBytes - filled_);
    std::byte* const to = std::as_writable_bytes(std::span(block_)).data() + filled_;
    data == nullptr ? std::memset(to, 0, some) : std::memcpy(to, data + done, some);
    done += some;
    filled_ += some;
    if (filled_ < kBlockBytes) return;
    filled_ = 0;
    Move([this](auto now) {
      sink_.Hear(block_, now);
      sink_.Write(block_);
      return true;
    });
  }
}

}  // namespace orven
