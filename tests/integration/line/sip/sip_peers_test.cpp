// SPDX-License-Identifier: GPL-3.0-or-later
// Calls by telephones that nobody here wrote: sipp and baresip.
#include <fstream>
#include <sstream>

#include "adapters/line/sip/g711.h"
#include "integration/line/sip/program.h"
#include "integration/line/sip/sip_line_test.h"
#include "integration/line/sip/test_audio.h"

namespace orven::test {
namespace {

constexpr const char* kSippHead = R"(<?xml version="1.0" encoding="ISO-8859-1" ?>
<scenario name="call"><send retrans="500"><![CDATA[

INVITE sip:line@[remote_ip]:[remote_port] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
From: "Sipp" <sip:sipp@[local_ip]:[local_port]>;tag=[pid]SIPpTag00[call_number]
To: <sip:line@[remote_ip]:[remote_port]>
Call-ID: [call_id]
CSeq: 1 INVITE
Contact: <sip:sipp@[local_ip]:[local_port];transport=[transport]>
Max-Forwards: 70
Content-Type: application/sdp
Content-Length: [len]

v=0
o=user1 53655765 2353687637 IN IP[local_ip_type] [local_ip]
s=-
c=IN IP[media_ip_type] [media_ip]
t=0 0
m=audio @PORT@ RTP/AVP @FORMATS@
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
Max-Forwards: 70
Content-Length: 0

]]></send>
)";

constexpr const char* kSippTail = R"(<send retrans="500"><![CDATA[

BYE [next_url] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
[last_From:]
[last_To:]
Call-ID: [call_id]
CSeq: 2 BYE
Max-Forwards: 70
Content-Length: 0

]]></send><recv response="200"></recv></scenario>
)";

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  return text.replace(text.find(what), what.size(), by);
}

class SipPeersTest : public SipLineTest {
 protected:
  /// Runs sipp with one call in which `actions` happen; answers it and records it.
  void RunSipp(const std::string& media_port, const std::string& formats, const std::string& actions,
               const std::string& transport) {
    const std::string head = Replaced(Replaced(kSippHead, "@PORT@", media_port), "@FORMATS@", formats);
    const std::string scenario = folder.Write("call.xml", head + actions + kSippTail);
    OpenLine();
    line->Audio().StartRecord(recorded);
    Program sipp({"sipp", "127.0.0.1:" + std::to_string(port), "-sf", scenario, "-m", "1", "-nostdin", "-i",
                  "127.0.0.1", "-p", std::to_string(FreePort()), "-mp", std::to_string(FreePort() & 0xFFFE),
                  "-t", transport, "-timeout", "20s"},
                 folder.Path("sipp.out"));
    ASSERT_TRUE(events.Wait("Ring 1 1"));
    line->Answer(1, 1);
    ASSERT_TRUE(events.Wait("Connected 1"));
    line->MonitorDigits(1, true);
    EXPECT_TRUE(events.Wait("Idle 1", std::chrono::seconds(20)));
    EXPECT_EQ(sipp.Wait(std::chrono::seconds(20)), 0);
  }

  TemporaryFolder folder;
  KeptSound recorded;
};

TEST_F(SipPeersTest, RecordsWhatSippSpeaksBitForBit) {
  if (!IsInstalled("sipp")) GTEST_SKIP() << "sipp is not installed";
  const auto spoken = NoiseBytes(50, 5);
  const std::string file = folder.Write("caller.ul", {spoken.begin(), spoken.end()});
  RunSipp("[rtpstream_audio_port]", "0",
          "<nop><action><exec rtp_stream=\"" + file +
              ",1,0,PCMU/8000\"/></action></nop><pause milliseconds=\"1300\"/>",
          "u1");
  EXPECT_GE(BlocksFound(Decode(Codec::kMuLaw, spoken), recorded.Samples()), 46U);
}

TEST_F(SipPeersTest, HearsTheKeysThatSippPressesOverTcp) {
  if (!IsInstalled("sipp") || ::geteuid() != 0) GTEST_SKIP() << "sipp sends keys only as root";
  RunSipp("[media_port]", "8 96",
          "<nop><action><exec play_dtmf=\"12#\"/></action></nop><pause milliseconds=\"2500\"/>", "t1");
  EXPECT_EQ(events.Digits(), "12#");
}

std::string Wave(const std::vector<std::int16_t>& samples) {
  const auto little = [](std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
    return text;
  };
  const auto size = static_cast<std::uint32_t>(samples.size() * 2);
  std::string wave = "RIFF" + little(36 + size, 4) + "WAVEfmt " + little(16, 4) + little(1, 2) +
                     little(1, 2) + little(8000, 4) + little(16000, 4) + little(2, 2) + little(16, 2) +
                     "data" + little(size, 4);
  for (const std::int16_t sample : samples) wave += little(static_cast<std::uint16_t>(sample), 2);
  return wave;
}

/// The telephone program baresip, remote-controlled.
class Baresip {
 public:
  Baresip(const TemporaryFolder& folder, const std::string& sound)
      : control_port_(FreePort()),
        program_((Configure(folder, sound, control_port_),
                  std::vector<std::string>{"baresip", "-f", folder.Path(".")}),
                 folder.Path("baresip.out")) {}

  void Command(const std::string& command, const std::string& parameters) {
    if (!control_) Connect();
    const std::string json = R"({"command":")" + command + R"(","params":")" + parameters + R"("})";
    if (control_) control_->Send(std::to_string(json.size()) + ":" + json + ",");
  }

 private:
  static void Configure(const TemporaryFolder& folder, const std::string& sound, std::uint16_t control_port) {
    const std::string own = "127.0.0.1:" + std::to_string(FreePort());
    folder.Write(
        "config",
        "sip_listen " + own +
            "\nnet_interface 127.0.0.1\naudio_player aufile,/dev/null\naudio_source aufile," + sound +
            "\naudio_alert aufile,/dev/null\nausrc_srate 8000\nauplay_srate 8000\n"
            "module_path /usr/lib/baresip/modules\nmodule g711.so\nmodule aufile.so\n"
            "module ctrl_tcp.so\nmodule_tmp account.so\nmodule_app menu.so\nctrl_tcp_listen 127.0.0.1:" +
            std::to_string(control_port) + "\n");
    folder.Write("accounts",
                 "\"Desk\" <sip:5557777@" + own + ">;regint=0;audio_codecs=PCMU/8000/1;dtmfmode=rtpevent\n");
    folder.Write("contacts", "");
  }

  void Connect() {
    for (int attempt = 0; attempt < 500 && !control_; ++attempt) {
      if (program_.Wait(milliseconds(20))) return;
      try {
        control_ = Socket::TcpTo(control_port_);
      } catch (const std::runtime_error&) {
        continue;  // it is still starting
      }
    }
  }

  std::uint16_t control_port_;
  Program program_;
  std::optional<Socket> control_;
};

TEST_F(SipPeersTest, BaresipCallsSpeaksPressesKeysAndHangsUp) {
  if (!IsInstalled("baresip")) GTEST_SKIP() << "baresip is not installed";
  OpenLine();
  const auto spoken = Decode(Codec::kMuLaw, NoiseBytes(75, 6));
  // Silence follows: when its file ends, baresip sends nothing any more, not even keys.
  auto file = spoken;
  file.resize(file.size() + std::size_t{30} * kSampleRate);
  Baresip baresip(folder, folder.Write("spoken.wav", Wave(file)));
  baresip.Command("dial", "sip:line@127.0.0.1:" + std::to_string(port));
  ASSERT_TRUE(events.Wait("Ring 1 1")) << std::ifstream(folder.Path("baresip.out")).rdbuf();
  EXPECT_EQ(events.All()[1], "CallerId 1 Desk|5557777");
  ASSERT_EQ(line->Audio().StartRecord(recorded), 0);
  line->Answer(1, 1);
  ASSERT_TRUE(events.Wait("Connected 1"));
  line->MonitorDigits(1, true);
  ASSERT_TRUE(recorded.WaitFor(14'000));
  for (const char* key : {"1", "1", "#"}) {
    const std::size_t before = events.Digits().size();
    baresip.Command("sndcode", key);
    ASSERT_TRUE(events.WaitForDigits(before + 1)) << key;
  }
  baresip.Command("hangup", "");
  ASSERT_TRUE(events.Wait("Idle 1"));
  EXPECT_EQ(events.Digits(), "11#");
  EXPECT_GE(BlocksFound(spoken, recorded.Samples()), 65U);
}

}  // namespace
}  // namespace orven::test
