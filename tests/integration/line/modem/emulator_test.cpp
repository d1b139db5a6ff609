// SPDX-License-Identifier: GPL-3.0-or-later
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "integration/line/modem/emulator_host.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kOk = "\r\nOK\r\n";
const std::string kError = "\r\nERROR\r\n";
const std::string kConnect = "\r\nCONNECT\r\n";

std::string Shielded(const std::string& bytes) {
  std::string out;
  for (const char byte : bytes) out.append(byte == '\x10' ? 2 : 1, byte);
  return out;
}

std::string Unshielded(const std::string& bytes) {
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\x10')
      out += "\x10", i += 1, out.append(bytes[i] == '\x1A' ? 1 : 0, '\x10');
    else
      out += bytes[i];
  }
  return out;
}

std::string Text(const std::vector<std::uint8_t>& bytes) {
  return {bytes.begin(), bytes.end()};
}

std::string Noise(std::size_t count) {
  std::minstd_rand random(1);
  std::string bytes;
  while (bytes.size() < count) bytes += static_cast<char>(random() >> 8);
  return bytes;
}

std::vector<std::int16_t> Sine(double hertz, std::size_t count) {
  std::vector<std::int16_t> samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = static_cast<std::int16_t>(8000 * std::sin(2 * M_PI * hertz * static_cast<double>(i) / 8000));
  }
  return samples;
}

int Crossings(std::span<const std::int16_t> samples) {
  int count = 0;
  for (std::size_t i = 1; i < samples.size(); ++i) count += samples[i - 1] < 0 && samples[i] >= 0 ? 1 : 0;
  return count;
}

TEST(EmulatedModem, SpeaksHayes) {
  Host host("conexant");
  EXPECT_EQ(host.Ask("I3"), "ATI3\r\r\nCX930xx VOICE MODEM\r\n" + kOk);
  host.Ask("E0");
  host.Send("A/");
  EXPECT_EQ(host.Wait(milliseconds(150)), kOk);
  EXPECT_EQ(host.Ask("S0=3 S0?"), "\r\n003\r\n" + kOk);
  EXPECT_EQ(host.Ask("+VCID=2;+VCID?;+VCID=?;M0"), "\r\n2\r\n\r\n(0-2)\r\n" + kOk);
  for (const char* wrong : {"+VCID=3", "+VCID=1,1", "+NONE", "!", "S0=256", "I17", "+FCLASS=2.0"}) {
    EXPECT_EQ(host.Ask(wrong), kError) << wrong;
  }
  EXPECT_EQ(host.Ask("V0"), "0\r");
  EXPECT_EQ(host.Ask("+VLS=1"), "4\r");
  EXPECT_EQ(host.Ask("V1Q1"), "");
  EXPECT_EQ(host.Ask("Z"), kOk);
  EXPECT_EQ(host.Ask(""), "AT\r" + kOk);
  EXPECT_THAT(host.modem.Complaints(), ElementsAre("+VLS outside voice mode"));
  host.Send("AT\rAT\r");
  host.Wait(milliseconds(150));
  EXPECT_THAT(host.modem.Complaints().back(), HasSubstr("in the middle of an answer"));
}

TEST(EmulatedModem, PassesSoundBitByBit) {
  for (const auto& [profile, format, bytes] :
       {std::tuple{"lucent", "129,8000", 2}, {"softmodem", "131,8000", 1}}) {
    Host host(profile);
    host.Answer(format);
    EXPECT_EQ(host.Ask("+VTX"), kConnect);
    const auto sound = Noise(static_cast<std::size_t>(800 * bytes));
    host.Send(Shielded(sound) + "\x10\x03");
    EXPECT_EQ(host.Wait(milliseconds(95)), "") << "the answer came before the sound was over";
    EXPECT_EQ(host.Wait(milliseconds(150)), kOk);
    EXPECT_EQ(Text(host.modem.PlayedBytes()), sound);

    EXPECT_EQ(host.Ask("+VRX").substr(0, kConnect.size()), kConnect);
    auto received = host.got.substr(kConnect.size());
    host.modem.Say(Sine(700, 8000));
    received += host.Wait(seconds(2));
    host.Send("\x10!");
    received += host.Wait(milliseconds(250));
    const auto end = received.rfind("\x10\x03");
    ASSERT_NE(end, std::string::npos);
    EXPECT_THAT(received.substr(end + 2), testing::AnyOf(kOk, "\r\nVCON\r\n"));
    EXPECT_EQ(Unshielded(received.substr(0, end)), Text(host.modem.SentBytes()));
    EXPECT_NEAR(static_cast<double>(host.modem.SentBytes().size()) / bytes, 17'000, 800);
    EXPECT_THAT(host.modem.Complaints(), IsEmpty());
  }
}

TEST(EmulatedModem, KeepsPitchAndLengthAtOtherRates) {
  for (const auto& [profile, format, rate] : {std::tuple{"conexant", "1,8000", 8000},
                                              {"softmodem", "130,7200", 7200},
                                              {"lucent", "128,11025", 11025}}) {
    Host host(profile);
    host.Answer(format);
    host.Ask("+VTX");
    std::string tone;
    for (int i = 0; i < rate / 4; ++i)
      tone += static_cast<char>(128 + 90 * std::sin(2 * M_PI * 500 * i / rate));
    host.Send(Shielded(tone) + "\x10\x03");
    host.Wait(milliseconds(500));
    EXPECT_NEAR(Crossings(host.modem.Heard()), 125, 2) << profile;

    host.Ask("+VRX");
    host.modem.Say(Sine(500, 8000));
    host.Wait(milliseconds(1000));
    std::vector<std::int16_t> sent;
    for (const auto byte : host.modem.SentBytes())
      sent.push_back(static_cast<std::int16_t>((byte - 128) * 256));
    EXPECT_NEAR(Crossings(sent), 480, 25) << profile;
    EXPECT_THAT(host.modem.Complaints(), IsEmpty());
  }
}

TEST(EmulatedModem, ComplainsOfBadPlayback) {
  Host host("conexant");
  host.Answer("1,8000");
  host.Ask("+VTX");
  host.Send(std::string(800, 'x'));
  EXPECT_EQ(host.Wait(milliseconds(300)), "\x10u");
  host.Send(std::string(800, 'x') + "\x10y");
  host.Send(std::string(host.modem.Room() + 1, 'x'));
  EXPECT_THAT(host.modem.Complaints(),
              ElementsAre(HasSubstr("underrun"), HasSubstr("unshielded"), HasSubstr("full")));
  host.Send(std::string("\x10\0\x10\x18\x10\x03", 6));
  EXPECT_EQ(host.Wait(milliseconds(200)), kOk) << "cancelled at once, and answered once";
  EXPECT_LE(host.modem.PlayedBytes().size(), 820u);
  EXPECT_EQ(host.Ask("+VLS=0"), kOk);
  EXPECT_EQ(host.Ask("+VTX"), kError) << "on-hook";
  EXPECT_EQ(host.Ask("+VRX"), kError);
}

TEST(EmulatedModem, RingsAndIdentifies) {
  Host host("silabs");
  host.Ask("E0+VCID=1");
  host.modem.Ring();
  EXPECT_EQ(host.Wait(milliseconds(100)), "\r\nRING\r\n");
  host.modem.CallerIdLine("NMBR=1");
  EXPECT_EQ(host.Wait(milliseconds(100)), "\r\nNMBR=1\r\n");
  host.Ask("+FCLASS=8");
  host.modem.Ring();
  EXPECT_EQ(host.Wait(milliseconds(100)), "\x10R");
  host.modem.CallerIdLine("NMBR=1");
  EXPECT_EQ(host.Wait(milliseconds(100)), "\x10XNMBR=1\r\n\x10.");
  host.Ask("+VCID=0");
  host.modem.CallerIdLine("NMBR=1");
  EXPECT_EQ(host.Wait(milliseconds(100)), "");
}

TEST(EmulatedModem, TellsKeysSilenceAndHangUp) {
  Host host("v253");
  host.Answer("1,8000");
  host.modem.Press('5');
  host.modem.Press('#');
  EXPECT_EQ(host.Wait(milliseconds(500)),
            "\x10/\x10"
            "5\x10"
            "5\x10~\x10/\x10#\x10#\x10~");
  Host plain("lucent");
  plain.Answer("128,8000");
  plain.modem.Press('5');
  EXPECT_EQ(plain.Wait(milliseconds(500)),
            "\x10"
            "5");

  host.Ask("+VSD=128,10");
  host.Ask("+VRX");
  EXPECT_THAT(host.Wait(milliseconds(1100)), HasSubstr("\x10s"));
  host.modem.Say(Sine(700, 4000));
  EXPECT_THAT(host.Wait(milliseconds(1700)), HasSubstr("\x10q"));
  host.modem.HangUp();
  const auto end = host.Wait(seconds(3));
  EXPECT_LT(end.find("\x10l"), end.find("\x10"
                                        "b"));
}

TEST(EmulatedModem, HasFaults) {
  ModemFaults faults;
  faults.answer_does_not_take = faults.stale_ok = faults.tripled_keys = faults.no_hang_up_code = true;
  faults.stops_needed = 3;
  Host host("conexant", faults);
  host.Answer("1,8000");
  EXPECT_FALSE(host.modem.OffHook());
  host.Ask("+VLS=1");
  EXPECT_TRUE(host.modem.OffHook());
  host.modem.Press('7');
  EXPECT_EQ(host.Wait(milliseconds(400)),
            "\x10"
            "7\x10"
            "7\x10"
            "7");
  host.Ask("+VRX");
  host.Send("\x10!\x10!");
  EXPECT_THAT(host.Wait(milliseconds(300)), testing::Not(HasSubstr(kOk)));
  host.Send("\x10!");
  EXPECT_THAT(host.Wait(milliseconds(400)), testing::EndsWith("\x10\x03" + kOk + kOk));
  host.modem.HangUp();
  EXPECT_EQ(host.Wait(seconds(5)), "");
  host.modem.Wedge();
  EXPECT_EQ(host.Ask(""), "");
  host.modem.Wake();
  EXPECT_EQ(host.Ask(""), kOk);
  host.modem.PowerCycle();
  EXPECT_FALSE(host.modem.OffHook());
  EXPECT_EQ(host.Ask("+FCLASS?"), "AT+FCLASS?\r\r\n0\r\n" + kOk);

  ModemFaults ringing;
  ringing.ring_inside_a_reply = ringing.refuses_off_hook_in_ring = true;
  Host other("silabs", ringing);
  other.Ask("E0+FCLASS=8");
  EXPECT_THAT(other.Ask("+VSM=?"), HasSubstr("\r\nRING\r\n\r\n0,\"SIGNED"));
  other.modem.Ring();
  EXPECT_THAT(other.Ask("+VLS=1"), testing::EndsWith(kError));
  other.Wait(seconds(2));
  EXPECT_EQ(other.Ask("+VLS=1"), kOk);
}

}  // namespace
}  // namespace orven::test
