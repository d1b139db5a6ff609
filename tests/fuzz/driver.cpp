// SPDX-License-Identifier: GPL-3.0-or-later
// With libFuzzer: fuzzes the target that $ORVEN_FUZZ_TARGET names. Without: passes every input of the corpus,
// whose folder is the argument, to its target.
#include <cstdio>
#include <filesystem>

#include "fuzz/fuzz.h"
#include "support/scratch_folder.h"

#ifdef ORVEN_LIBFUZZER
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string name = std::getenv("ORVEN_FUZZ_TARGET");
  for (const auto& target : orven::fuzz::kTargets)
    if (target.name == name) target.run({data, size});
  return 0;
}
#else
int main(int /*count*/, char** arguments) {
  for (const auto& target : orven::fuzz::kTargets) {
    for (const auto& file :
         std::filesystem::directory_iterator(arguments[1] + ("/" + std::string(target.name)))) {
      std::printf("%s\n", file.path().c_str());
      std::fflush(stdout);  // the last line before an abort names the input
      const std::string input = orven::test::ContentOf(file.path());
      target.run({reinterpret_cast<const std::uint8_t*>(input.data()), input.size()});
    }
  }
}
#endif
