// SPDX-License-Identifier: GPL-3.0-or-later
// Calls by telephones that nobody here wrote: sipp.
#include <unistd.h>

#include "adapters/line/sip/g711.h"
#include "integration/line/sip/sip_peers_test.h"

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

}  // namespace
}  // namespace orven::test
