// SPDX-License-Identifier: GPL-3.0-or-later
// Calls by telephones that nobody here wrote: sipp and baresip.
#include <unistd.h>

#include <cstdlib>

#include "adapters/line/sip/g711.h"
#include "integration/line/sip/sip_line_test.h"
#include "integration/line/sip/test_audio.h"
#include "support/scratch_folder.h"

namespace orven::test {
namespace {

/// A call over TCP with A-law. Sipp echoes all sound; after 1.5 s it presses keys.
constexpr const char* kScenario = R"(<?xml version="1.0" encoding="ISO-8859-1" ?>
<scenario name="call"><send><![CDATA[

INVITE sip:line@[remote_ip]:[remote_port] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
From: "Sipp" <sip:sipp@[local_ip]:[local_port]>;tag=[call_number]
To: <sip:line@[remote_ip]:[remote_port]>
Call-ID: [call_id]
CSeq: 1 INVITE
Contact: <sip:sipp@[local_ip]:[local_port];transport=[transport]>
Content-Type: application/sdp
Content-Length: [len]

v=0
o=user1 53655765 2353687637 IN IP[local_ip_type] [local_ip]
s=-
c=IN IP[media_ip_type] [media_ip]
t=0 0
m=audio [media_port] RTP/AVP 8 96
a=rtpmap:96 telephone-event/8000
]]></send>
<recv response="100" optional="true"></recv><recv response="180" optional="true"></recv>
<recv response="200" rrs="true"></recv>
<send><![CDATA[

ACK [next_url] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
[last_From:]
[last_To:]
Call-ID: [call_id]
CSeq: 1 ACK
Content-Length: 0

]]></send>
<pause milliseconds="1500"/>
<nop><action><exec play_dtmf="12#"/></action></nop>
<pause milliseconds="2500"/>
<send><![CDATA[

BYE [next_url] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
[last_From:]
[last_To:]
Call-ID: [call_id]
CSeq: 2 BYE
Content-Length: 0

]]></send><recv response="200"></recv></scenario>
)";

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

  ScratchFolder folder;
  KeptSound recorded;
};

TEST_F(SipPeersTest, SippHearsSpeaksPressesKeysAndHangsUp) {
  if (!std::filesystem::exists("/usr/bin/sipp") || ::geteuid() != 0) {
    GTEST_SKIP() << "sipp is not installed, or may not send keys (only root may)";
  }
  settings.listen = "0.0.0.0:" + std::to_string(port);  // sipp follows the address that the answer names
  OpenLine();
  PutFile(folder / "call.xml", kScenario);
  std::jthread sipp = Run("sipp 127.0.0.1:" + std::to_string(port) + " -sf " + (folder / "call.xml") +
                          " -m 1 -nostdin -rtp_echo -t t1 -i 127.0.0.1 -p " + std::to_string(FreePort()) +
                          " -mp " + std::to_string(FreePort() & 0xFFFE));
  const Samples spoken = Decode(Codec::kALaw, NoiseBytes(50, 5));
  GivenSound played(spoken);
  Answer();
  ASSERT_EQ(line->Audio().StartPlay(played), 0);
  EXPECT_TRUE(events.Wait("Idle 1", std::chrono::seconds(20)));
  sipp.join();
  EXPECT_GE(recorded.BlocksOf(spoken), 46U);
  EXPECT_EQ(events.Digits(), "12#");
}

std::string Wave(const Samples& samples) {
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

TEST_F(SipPeersTest, BaresipCallsSpeaksAndIsHungUp) {
  if (!std::filesystem::exists("/usr/bin/baresip")) GTEST_SKIP() << "baresip is not installed";
  OpenLine();
  const Samples spoken = Decode(Codec::kMuLaw, NoiseBytes(75, 6));
  PutFile(folder / "spoken.wav", Wave(spoken));
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
)");
  PutFile(folder / "accounts", "\"Desk\" <sip:5557777@" + own + ">;regint=0;audio_codecs=PCMU/8000/1\n");
  PutFile(folder / "contacts", "");
  const std::jthread baresip =
      Run("baresip -t 5 -f " + (folder / "") + " -e '/dial sip:line@127.0.0.1:" + std::to_string(port) + "'");
  Answer();
  EXPECT_EQ(events.All()[1], "CallerId 1 Desk|5557777");
  ASSERT_TRUE(recorded.WaitFor(14'000));
  line->Drop(1, 2);
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_GE(recorded.BlocksOf(spoken), 65U);
}

}  // namespace
}  // namespace orven::test
