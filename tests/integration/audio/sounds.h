// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "integration/audio/test_device.h"

namespace orven::testing {

/// A folder that is deleted with everything in it.
class TempFolder {
 public:
  /// Below `parent`, or the system's folder for temporary files.
  explicit TempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string Path() const { return path_.string(); }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

  /// Names in it that end in `suffix`.
  std::vector<std::string> Names(const std::string& suffix = "") const;

 private:
  std::filesystem::path path_;
};

/// A sine of amplitude 0..1 of full scale.
std::vector<float> Sine(int rate, double frequency, double amplitude, double seconds);

/// Random samples, never a whole block of silence; the same for the same `seed`.
Samples Noise(std::size_t count, unsigned seed = 1);

/// `samples` as mu-law can express them.
Samples ThroughMuLaw(const Samples& samples);

/// Writes a sound file; `format` as libsndfile's SF_INFO. All channels carry the same.
void WriteSound(const std::string& path, int format, int rate, int channels, const std::vector<float>& mono);
void WriteSound(const std::string& path, int format, const Samples& samples);

/// What sox reads in the file; nothing when it does not take it for a sound file.
std::optional<Samples> ReadWithSox(const std::string& path);

/// What libsndfile reads in it. A file that is still growing may be read.
std::optional<Samples> ReadWithSndfile(const std::string& path);

/// A property of a sound file as `soxi` prints it, for instance "-e" for the encoding.
std::string Soxi(const std::string& property, const std::string& path);

void WriteText(const std::string& path, const std::string& text);

/// How well `samples` (8000 a second) are the sine of `frequency`, whatever its phase.
struct SineFit {
  double amplitude = 0;  ///< of full scale
  double snr = 0;        ///< dB: the sine against everything else
};
SineFit FitSine(const Samples& samples, double frequency);

}  // namespace orven::testing
