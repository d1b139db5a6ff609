// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/grown_recordings.h"

#include <algorithm>
#include <chrono>
#include <cstdint>

#include "core/error_trap.h"

namespace orven {
namespace {

constexpr std::string_view kGrownStart = ".recording-";
constexpr std::string_view kGrownEnd = ".wav.part";

/// Separates the message's name from the part that makes the recording's name unique.
constexpr char kOwnMark = '~';

// Offsets in the header of a WAV file (RIFF), whose numbers are little-endian.
constexpr std::size_t kSizeField = 4;
constexpr std::size_t kRiffSizePlace = 4;
constexpr std::size_t kFramePlace = 32;  ///< bytes per sample
constexpr std::size_t kFrameField = 2;
constexpr std::size_t kFactField = 8;  ///< number of samples, from the beginning of its chunk
constexpr std::size_t kShortestHeader = 44;

std::uint32_t NumberAt(const std::string& header, std::size_t place, std::size_t bytes) {
  std::uint32_t number = 0;
  for (auto byte = bytes; byte > 0; --byte) {
    number = number << 8U | static_cast<unsigned char>(header.at(place + byte - 1));
  }
  return number;
}

void SetSize(std::string& header, std::size_t place, std::uint64_t size) {
  for (std::size_t byte = 0; byte < kSizeField; ++byte) {
    header.at(place + byte) = static_cast<char>(size >> 8U * byte & 0xFFU);
  }
}

/// Position of the first audio byte; 0 when the file's header is not a recording's.
std::uint64_t AudioBegin(const Files& files, const std::string& path) {
  constexpr std::size_t kLongestHeader = 256;
  constexpr std::string_view kAudioFollows = "data";
  const auto found = files.ReadPart(path, 0, kLongestHeader).find(kAudioFollows);
  return found == std::string::npos ? 0 : found + kAudioFollows.size() + kSizeField;
}

}  // namespace

std::string RecordingName(const std::string& message_file_name, const Clock& clock) {
  const auto now = clock.Now().time_since_epoch();
  const auto fraction = now - std::chrono::floor<std::chrono::seconds>(now);
  return message_file_name.substr(0, message_file_name.rfind('.')) + kOwnMark +
         std::to_string(fraction.count());
}

std::string GrownRecording::Name() const {
  std::string_view name = file;
  if (!name.starts_with(kGrownStart)) return {};
  name.remove_prefix(kGrownStart.size());
  if (!name.ends_with(kGrownEnd)) return {};
  name.remove_suffix(kGrownEnd.size());
  for (int number = 0; number < 2; ++number) {
    const auto dash = name.rfind('-');
    if (dash == std::string_view::npos) return {};
    name = name.substr(0, dash);
  }
  return std::string(name);
}

std::string GrownRecording::MessageStem() const {
  const auto name = Name();
  return name.substr(0, name.rfind(kOwnMark));
}

bool IsBeginning(const Files& files, const std::string& part, const std::string& whole) {
  constexpr std::size_t kBlock = 1U << 16U;
  auto offset = AudioBegin(files, part);
  if (offset != AudioBegin(files, whole)) return false;
  for (;;) {
    const auto mine = files.ReadPart(part, offset, kBlock);
    if (mine.empty()) return true;
    const auto its = files.ReadPart(whole, offset, mine.size());
    const auto size = std::min(mine.size(), its.size());
    if (size == 0 || mine.compare(0, size, its, 0, size) != 0) return false;
    offset += size;
  }
}

std::string WithAllAudio(const Files& files, const std::string& path) {
  const auto begin = AudioBegin(files, path);
  if (begin == 0) return {};
  auto content = files.ReadPart(path, 0, begin);
  if (content.size() < kShortestHeader || !content.starts_with("RIFF")) return {};
  const std::uint32_t counted = NumberAt(content, begin - kSizeField, kSizeField);
  const std::uint32_t frame = NumberAt(content, kFramePlace, kFrameField);
  if (frame == 0 || files.ReadPart(path, begin + counted + frame - 1, 1).empty()) return {};
  content = files.Read(path);
  const auto size = (content.size() - begin) / frame * frame;
  SetSize(content, begin - kSizeField, size);
  SetSize(content, kRiffSizePlace, begin + size - kRiffSizePlace - kSizeField);
  // Formats other than PCM count their samples, too.
  const auto fact = content.substr(0, begin).find("fact");
  if (fact != std::string::npos && fact + kFactField + kSizeField < begin) {
    SetSize(content, fact + kFactField, size / frame);
  }
  return content;
}

void GrownRecordings::Look(const Files& files, const std::set<std::string>& folders) {
  by_name_.clear();
  closed_.clear();
  const auto pattern = std::string(kGrownStart) + "*" + std::string(kGrownEnd);
  for (const auto& folder : folders) {
    const auto look = [&] {
      for (auto& file : files.List(folder, pattern)) {
        GrownRecording grown{folder, std::move(file)};
        by_name_.emplace(grown.Name(), std::move(grown));
      }
    };
    if (!ErrorTrap::Silent()(look)) closed_.insert(folder);
  }
}

std::vector<GrownRecording> GrownRecordings::All() const {
  std::vector<GrownRecording> all;
  for (const auto& [name, grown] : by_name_) all.push_back(grown);
  return all;
}

std::vector<GrownRecording> GrownRecordings::Of(const std::string& recording) const {
  std::vector<GrownRecording> found;
  if (recording.empty()) return found;
  for (const auto& name : {recording, GrownRecording{{}, recording}.Name()}) {
    const auto [begin, end] = by_name_.equal_range(name);
    for (auto at = begin; at != end; ++at) {
      if (at->second.Is(recording)) found.push_back(at->second);
    }
  }
  return found;
}

}  // namespace orven
