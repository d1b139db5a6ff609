// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdlib>
#include <string>
#include <thread>

#include "integration/line/sip/sip_line_test.h"
#include "integration/line/sip/test_audio.h"
#include "support/scratch_folder.h"

namespace orven::test {

/// The content of a WAV file: 16 bits, mono, 8000 samples a second.
inline std::string Wave(const Samples& samples) {
  const auto little = [](std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
  };
  const std::size_t size = samples.size() * 2;
  return "RIFF" + little(36 + size, 4) + "WAVEfmt " + little(16, 4) + little(1, 2) + little(1, 2) +
         little(8000, 4) + little(16000, 4) + little(2, 2) + little(16, 2) + "data" + little(size, 4) +
         std::string(reinterpret_cast<const char*>(samples.data()), size);
}

/// A line that other telephone programs call.
class SipPeersTest : public SipLineTest {
 protected:
  /// Answers the call that comes and records it.
  void Answer() {
    ASSERT_TRUE(events.Wait("Ring 1 1"));
    ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
    line->Answer(1, 1);
    ASSERT_TRUE(events.Wait("Connected 1"));
    line->MonitorDigits(1, true);
  }

  /// Runs another telephone program, which ends well and within 30 s.
  std::jthread Run(const std::string& command) const {
    const std::string output = folder / "output";
    return std::jthread([=] {
      EXPECT_EQ(std::system(("timeout 30 " + command + " </dev/null >" + output + " 2>&1").c_str()), 0)
          << ContentOf(output);
    });
  }

  /// Baresip as "Desk" calls `callee`: it speaks what is in "spoken.wav" and ends after 8 s. `account` and
  /// `config` are further parameters and settings.
  std::jthread RunBaresip(const std::string& callee, const std::string& account = "",
                          const std::string& config = "") const {
    const std::string own = "127.0.0.1:" + std::to_string(FreePort());
    PutFile(folder / "config", "sip_listen " + own + "\nnet_interface 127.0.0.1\naudio_source aufile," +
                                   (folder / "spoken.wav") + R"(
audio_player aufile,/dev/null
audio_alert aufile,/dev/null
ausrc_srate 8000
auplay_srate 8000
module_path /usr/lib/baresip/modules
module g711.so
module aufile.so
module_tmp account.so
module_app menu.so
)" + config);
    PutFile(folder / "accounts",
            "\"Desk\" <sip:5557777@" + own + ">;regint=0;audio_codecs=PCMU/8000/1" + account + "\n");
    PutFile(folder / "contacts", "");
    return Run("baresip -t 8 -f " + (folder / "") + " -e '/dial " + callee + "'");
  }

  ScratchFolder folder;
  KeptSound recorded;
};

}  // namespace orven::test
