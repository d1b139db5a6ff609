// SPDX-License-Identifier: GPL-3.0-or-later
// The emulated modem notices what a real one would not take, and has its faults: else the driver's tests
// would prove nothing. An independent answering machine (mgetty_test.py) proves the rest of it.
#include <gmock/gmock.h>

#include "adapters/line/sim/virtual_time.h"
#include "modem_emulator/modem_emulator.h"

namespace orven::test {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

const std::string kOk = "\r\nOK\r\n";

struct Host {
  explicit Host(const char* profile, const ModemFaults& faults = {})
      : modem(*FindModemProfile(profile), faults, time, time,
              [this](auto bytes) { got.append(bytes.begin(), bytes.end()); }) {}
  /// What the modem says in the next 400 ms.
  std::string Send(const std::string& bytes) {
    got.clear();
    modem.FromHost(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    time.RunFor(milliseconds(400));
    return got;
  }
  std::string Ask(const std::string& command) { return Send("AT" + command + "\r"); }

  VirtualTime time{Clock::WallTime{}};
  std::string got;
  ModemEmulator modem;
};

TEST(EmulatedModem, ComplainsOfWhatARealOneWouldNotTake) {
  Host host("conexant");
  EXPECT_EQ(host.Ask("I3"), "ATI3\r\r\nCX930xx VOICE MODEM\r\n" + kOk);
  for (const char* wrong : {"+VCID=3", "+VCID=1,1", "+NONE", "!", "S0=256", "+FCLASS=2.0", "+VLS=1"})
    EXPECT_THAT(host.Ask(wrong), EndsWith("\r\nERROR\r\n")) << wrong;
  host.Send("AT\rAT\r");
  for (const char* command : {"E0+FCLASS=8;+VSM=1,8000", "+VLS=1", "+VTX"}) host.Ask(command);
  EXPECT_EQ(host.Send(std::string(800, 'x')), "\x10u");
  host.Send(std::string(800, 'x') + "\x10y" + std::string(host.modem.Room() + 900, 'x'));
  EXPECT_EQ(host.Send(std::string("\x10\0\x10\x18\x10\x03", 6)), kOk);
  host.Ask("+VRX");
  host.Send("x");
  const auto& complaints = host.modem.Complaints();
  EXPECT_THAT(complaints,
              testing::IsSupersetOf({HasSubstr("outside voice mode"), HasSubstr("middle of an answer"),
                                     HasSubstr("underrun"), HasSubstr("unshielded 0x10"), HasSubstr("full"),
                                     HasSubstr("while the modem receives")}));
}

TEST(EmulatedModem, HasFaults) {
  ModemFaults faults;
  faults.answer_does_not_take = faults.stale_ok = faults.tripled_keys = faults.no_hang_up_code = true;
  faults.ring_inside_a_reply = faults.refuses_off_hook_in_ring = true;
  faults.stops_needed = 3;
  Host host("conexant", faults);
  EXPECT_THAT(host.Ask("E0+FCLASS=8;+VSM=?"), HasSubstr("\r\nRING\r\n\r\n129,\"IMA"));
  host.modem.Ring();
  EXPECT_THAT(host.Ask("+VLS=1"), EndsWith("\r\nERROR\r\n"));
  host.time.RunFor(milliseconds(2000));
  EXPECT_EQ(host.Ask("+VLS=1"), kOk);
  EXPECT_FALSE(host.modem.OffHook());
  host.Ask("+VLS=1");
  EXPECT_TRUE(host.modem.OffHook());
  host.modem.Press('#');
  EXPECT_EQ(host.Send(""), "\x10#\x10#\x10#");
  host.Ask("+VRX");
  EXPECT_THAT(host.Send("\x10!\x10!"), testing::Not(HasSubstr(kOk)));
  EXPECT_THAT(host.Send("\x10!"), EndsWith("\x10\x03" + kOk + kOk));
  host.modem.HangUp();
  host.time.RunFor(milliseconds(5000));
  host.modem.Wedge();
  EXPECT_EQ(host.Ask(""), "") << "neither an answer, nor a code for the hang-up before";
}

}  // namespace
}  // namespace orven::test
