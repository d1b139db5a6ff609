// SPDX-License-Identifier: GPL-3.0-or-later
#include <csignal>
#include <iostream>
#include <span>
#include <string_view>

#include "programs/TTS/helper.h"

namespace {

constexpr const char* kUsage =
    "usage: TTS -gc        the speech helper; started by the answering machine\n"
    "       TTS -w FILE    speaks the text on standard input into a sound file\n";
constexpr int kUsageError = 2;

}  // namespace

int main(int count, char** arguments) {
  // A file that may grow no further is a failed write with a reason, not the end of the process.
  std::signal(SIGXFSZ, SIG_IGN);
  const std::span<char*> words(arguments, static_cast<std::size_t>(count));
  if (words.size() == 2 && std::string_view(words[1]) == "-gc") return orven::RunHelper(count, arguments);
  if (words.size() == 3 && std::string_view(words[1]) == "-w") return orven::SpeakIntoFile(words[2]);
  std::cerr << kUsage;
  return kUsageError;
}
