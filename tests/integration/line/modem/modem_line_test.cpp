// SPDX-License-Identifier: GPL-3.0-or-later
// Calls on an emulated modem, from the first ring to on-hook. Each row of the table has a script and the
// events it must cause.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <regex>
#include <sstream>

#include "adapters/line/modem/modem_agent.h"
#include "adapters/line/sim/virtual_time.h"
#include "modem_emulator/modem_emulator.h"
#include "support/line_events.h"

namespace orven::test {
namespace {

using Samples = std::vector<std::int16_t>;
using std::chrono::milliseconds;

/// Returns noise with every value that a sample can have, including 0x10 in either byte.
Samples Noise(const std::string& blocks) {
  static unsigned seed = 1;
  Samples samples;
  for (int i = 0; i < std::stoi(blocks) * kBlockSamples; ++i) {
    seed = seed * 1'103'515'245U + 12'345U;
    samples.push_back(static_cast<std::int16_t>(static_cast<int>(seed >> 16U & 0x3FFFU) - 0x2000));
  }
  return samples;
}

/// Returns the modem of that name; "fax" has no voice mode, "adpcm" has no format that we support.
const ModemProfile& Profile(const std::string& name) {
  static auto changed = *FindModemProfile("conexant");
  if (name != "fax" && name != "adpcm") return *FindModemProfile(name);
  changed = *FindModemProfile("conexant");
  if (name == "fax") changed.classes = "0,1,2,80";
  if (name == "adpcm") changed.formats = {changed.formats[1]};
  return changed;
}

/// A modem line as the program uses it, on virtual time, with the modem's port, the user of the line, and the
/// source and the sink of its audio.
struct Story final : ModemLink, AudioSource, AudioSink {
  Story(const std::string& profile, const ModemFaults& faults)
      : linear(profile == "softmodem" || profile == "lucent"),
        modem(Profile(profile), faults, time, time, [this](auto bytes) { FromModem(bytes); }) {}

  std::optional<LinkProblem> Open(const std::string&, int, ModemLinkEvents& events) override {
    ++opened;
    if (!problem) host = &events;
    return problem;
  }
  void Close() override { host = nullptr; }
  bool SetRate(int bits) override {
    rate = bits;
    return true;
  }
  void Write(std::span<const std::uint8_t> bytes) override {
    if (rate > most_rate) return;
    if (echoes) FromModem(bytes);
    unsent.insert(unsent.end(), bytes.begin(), bytes.end());
    Send();
  }
  void DiscardUnsent() override { unsent.clear(); }
  std::size_t Unsent() const override { return unsent.size(); }
  void Unplug() {
    problem = {LinkProblem::Kind::Absent, "There is no such port"};
    if (host != nullptr) std::exchange(host, nullptr)->Lost();
  }
  void FromModem(std::span<const std::uint8_t> bytes) {
    const auto rest = bytes.subspan(std::min(std::exchange(lose, 0), bytes.size()));
    time.After(delay, [this, copy = std::vector(rest.begin(), rest.end())] {
      for (std::span<const std::uint8_t> left(copy); host != nullptr && !left.empty();) {
        piece = piece * 3 % 7;  // a port delivers pieces of any size
        const auto size = std::min(piece, left.size());
        host->Received(left.first(size));
        left = left.subspan(size);
      }
    });
  }
  /// Sends the unsent bytes; those that flow control holds back are sent later.
  void Send() {
    const auto end = unsent.begin() + std::ptrdiff_t(std::min(unsent.size(), modem.Room()));
    const std::vector<std::uint8_t> bytes(unsent.begin(), end);
    unsent.erase(unsent.begin(), end);
    if (!bytes.empty()) modem.FromHost(bytes);
    if (!unsent.empty()) time.After(milliseconds(1), [this] { Send(); });
  }

  void Tell(const std::string& text) { told += (told.empty() ? "" : ", ") + text; }

  bool Read(std::span<std::int16_t> block) override {
    if (given.size() - played < block.size()) return false;
    std::copy_n(given.begin() + std::ptrdiff_t(played), block.size(), block.begin());
    played += block.size();
    return true;
  }
  void Write(std::span<const std::int16_t> block) override {
    recorded.insert(recorded.end(), block.begin(), block.end());
  }
  /// Reports whether `whole` contains `part`. In 8-bit formats a sample may be off by one step.
  void TellWhether(const char* what, std::span<const std::int16_t> part, const Samples& whole) {
    const auto same = [this](int a, int b) { return std::abs(a - b) <= (linear ? 0 : 256); };
    const bool found = std::search(whole.begin(), whole.end(), part.begin(), part.end(), same) != whole.end();
    Tell((found ? "" : "not ") + std::string(what));
  }

  void Forget() {
    given.clear();
    recorded.clear();
    played = 0;
  }

  void Start(const std::string& port) {
    ModemLineSettings settings;
    settings.port = port == "any" ? kAnyPort : "/dev/modem";
    settings.find_ports = [this] { return std::vector<std::string>(problem ? 0 : ports, "/dev/ttyACM0"); };
    settings.report = [this](const std::string& text) { Tell(text); };
    settings.state_news = [this](const std::string& text) { state = text; };
    const auto sink = [this](const LineEvent& event) {
      if (event.kind == LineEvent::Kind::InCommingCall) call = event.call;
      Tell(ToText(event));
    };
    agent = std::make_unique<ModemAgent>(settings, ModemAgent::Ports{*this, time, time, audio, sink});
    if (const auto refused = agent->Start()) Tell(refused->log);
  }
  /// Plays a script such as "ring; 300; answer"; a number waits that many milliseconds.
  void Play(const std::string& script) {
    std::istringstream parts(script);
    for (std::string part; std::getline(parts >> std::ws, part, ';');) {
      const auto verb = part.substr(0, part.find(' '));
      if (std::isdigit(verb.front()) != 0) {
        time.RunFor(milliseconds(std::stoi(verb)));
      } else {
        steps.at(verb)(part.substr(std::min(part.size(), verb.size() + 1)));
      }
    }
  }
  void Until(const std::function<bool()>& done) {
    EXPECT_TRUE(time.RunUntil(done, std::chrono::minutes(1))) << told;
  }

  const std::map<std::string, std::function<void(const std::string&)>> steps = {
      {"start", [this](auto& port) { Start(port); }},
      {"ready",
       [this](auto& port) {
         Start(port);
         Until([this] { return state == kModemReady; });
         told.clear();
       }},
      {"ring", [this](auto&) { modem.Ring(); }},
      {"id", [this](auto& line) { modem.CallerIdLine(line); }},
      {"answer", [this](auto&) { agent->Answer(call, ++request); }},
      {"call",
       [this](auto&) {
         const auto before = told;
         Play("ring; 300; answer; 2000");
         told = before + (before.empty() ? "" : ", ") + told.substr(told.rfind("Connected "));
       }},
      {"monitor", [this](auto&) { agent->MonitorDigits(call, true); }},
      {"drop", [this](auto&) { agent->Drop(call, ++request); }},
      {"close",
       [this](auto&) {
         agent->Shutdown([this] { Tell("closed"); });
         time.RunFor(milliseconds(1500));
       }},
      {"play",
       [this](auto& blocks) {
         std::ranges::copy(Noise(blocks), std::back_inserter(given));
         EXPECT_EQ(audio.StartPlay(*this), 0);
         EXPECT_NE(audio.StartPlay(*this), 0);
       }},
      {"played", [this](auto&) { Until([this] { return !audio.Plays(); }); }},
      {"stop",
       [this](auto&) {
         audio.StopPlay();
         Forget();
         stopped = modem.PlayedBytes().size();
       }},
      {"record", [this](auto&) { EXPECT_EQ(audio.StartRecord(*this), 0); }},
      {"say", [this](auto& blocks) { modem.Say(spoken = Noise(blocks)); }},
      {"press", [this](auto& key) { modem.Press(key[0]); }},
      {"event", [this](auto& code) { modem.Event(code[0]); }},
      {"keys",  // as some modem reports them; a dot is a pause
       [this](auto& codes) {
         for (const char code : codes) {
           if (code != '.') FromModem(std::vector<std::uint8_t>{kDle, static_cast<std::uint8_t>(code)});
           time.RunFor(milliseconds(70));
         }
       }},
      {"busy", [this](auto&) { modem.HangUp(); }},
      {"dialtone", [this](auto&) { modem.HangUpToDialTone(); }},
      {"silence", [this](auto&) { modem.HangUpToSilence(); }},
      {"wedge", [this](auto&) { modem.Wedge(); }},
      {"wake", [this](auto&) { modem.Wake(); }},
      {"power", [this](auto&) { modem.PowerCycle(); }},
      {"unplug", [this](auto&) { Unplug(); }},
      {"plug", [this](auto&) { problem.reset(); }},
      {"refuse",
       [this](auto& kind) { problem.emplace(LinkProblem::Kind(std::stoi(kind)), "Refused " + kind); }},
      {"ports", [this](auto& count) { ports = std::stoul(count); }},
      {"slow", [this](auto&) { most_rate = kUsualRate; }},
      {"lose", [this](auto& bytes) { lose = std::stoul(bytes); }},
      {"delay", [this](auto& time_taken) { delay = milliseconds(std::stoi(time_taken)); }},
      {"echo", [this](auto&) { echoes = true; }},
      {"from", [this](auto& bytes) { FromModem(std::vector<std::uint8_t>(bytes.begin(), bytes.end())); }},
      {"offhook", [this](auto&) { Until([this] { return modem.OffHook(); }); }},
      // What a script can check.
      {"hook", [this](auto&) { Tell(modem.OffHook() ? "off-hook" : "on-hook"); }},
      {"heard",
       [this](auto& again) {
         TellWhether("heard", given, modem.Heard());
         if (!again.empty()) return;
         // The modem may play at most 100 ms of other audio after a stop.
         EXPECT_LT(modem.PlayedBytes().size() - stopped - given.size() * (linear ? 2 : 1), 1600U) << "excess";
         Forget();
       }},
      {"recorded",
       [this](auto&) {
         audio.StopRecord();
         TellWhether("recorded", std::span(spoken).first(8000), recorded);
       }},
      {"opened", [this](auto&) { Tell("opened " + std::to_string(std::exchange(opened, 0))); }},
      {"asked",
       [this](auto& what) { Tell("asked " + std::to_string(std::ranges::count(modem.Commands(), what))); }},
      {"complaints",
       [this](auto&) {
         for (const auto& text : modem.Complaints()) {
           if (text != "+VCID outside voice mode") Tell(text);  // some modems accept it only there
         }
         EXPECT_EQ(state, kModemReady);
       }},
  };

  VirtualTime time{{}};
  ModemLinkEvents* host = nullptr;
  CallNumber call = 0;  ///< the latest one
  std::deque<std::uint8_t> unsent;
  std::size_t piece = 1;  ///< the size of the latest piece from the modem
  std::size_t lose = 0;   ///< bytes to drop from the modem's next output
  milliseconds delay{0};  ///< of the modem's output
  bool echoes = false;    ///< sends back everything that the host sends
  std::optional<LinkProblem> problem;
  std::size_t ports = 1;
  int opened = 0, rate = 0, most_rate = kFastRate;
  std::string told, state;
  std::int32_t request = 0;
  Samples given, spoken, recorded;
  std::size_t played = 0;   ///< samples of `given`
  std::size_t stopped = 0;  ///< bytes played before the latest stop
  bool linear;
  ModemEmulator modem;
  LineAudio audio;
  std::unique_ptr<ModemAgent> agent;
};

struct Case {
  std::string name, profile;
  ModemFaults faults;
  std::string script, told;
};

Case Row(const char* name, const char* profile, std::string script, std::string told,
         ModemFaults faults = {}) {
  return {name, profile, faults, std::move(script), std::move(told)};
}

/// Returns a row with two complete calls.
Case WholeCalls(const char* name, const char* profile, const std::string& end, ModemFaults faults = {}) {
  const std::string script =
      "ring; 2500; id DATE = 1121; id NMBR = 5551234; id NAME = ANNA; 2500; ring; 300; answer; 3000; press "
      "1; 500;monitor; play 150; 1000; press 5; played; play 20; played; 300; record; 1500; say 200; 2000; "
      "press 5;press #; 3000; busy; 15000; hook; recorded; heard; 20000;";
  const std::string told =
      "Offered @, Ring @ 1, CallerId @ ANNA/5551234, Ring @ 2, Done @ 0, Connected @, Digit 5, Digit 5, "
      "Digit #, The call is over: " +
      end + ", Disconnected @, Idle @, on-hook, recorded, heard";
  const auto of = [&told](const char* call) { return std::regex_replace(told, std::regex("@"), call); };
  return Row(name, profile, "ready;" + script + script + "complaints", of("1") + ", " + of("2"), faults);
}

const std::string kSilent =
    "does not answer: switch it off and on, or unplug it and plug it in again, Trouble The modem does not "
    "answer, ";
const std::string kWorks = "The modem at /dev/modem works again, Trouble ";

const std::string kEndless(100'000, 'x');

// Every modem, every known fault of modems, and other things that can happen to a line.
const Case kCases[] = {
    WholeCalls("V253", "v253", "the loop was broken"),
    WholeCalls("Conexant", "conexant", "the busy tone"),
    WholeCalls("Softmodem", "softmodem", "the busy tone"),
    WholeCalls("Lucent", "lucent", "the busy tone"),
    WholeCalls("Silabs", "silabs", "the loop was broken"),
    WholeCalls("SilenceDetection", "softmodem", "the busy tone", {.ignores_silence_detection = true}),
    WholeCalls("NoHangUpCode", "softmodem", "the busy tone", {.no_hang_up_code = true}),
    WholeCalls("OffHookInRing", "softmodem", "the busy tone", {.refuses_off_hook_in_ring = true}),
    WholeCalls("AnswerDoesNotTake", "softmodem", "the busy tone", {.answer_does_not_take = true}),
    WholeCalls("StaleOk", "softmodem", "the busy tone", {.stale_ok = true}),
    WholeCalls("RingInsideAReply", "softmodem", "the busy tone", {.ring_inside_a_reply = true}),
    WholeCalls("TripledKeys", "softmodem", "the busy tone", {.tripled_keys = true}),
    WholeCalls("ThreeStops", "softmodem", "the busy tone", {.stops_needed = 3}),
    // A caller ID without a ring is not a call; one may come before the first ring.
    Row("CallersGiveUp", "conexant",
        "ready; id NMBR = 5550000; 30000; id NMBR = P; 300; ring; 5000; ring; 60000; ring; 20000",
        "Offered 1, CallerId 1 /, Ring 1 1, Ring 1 2, Idle 1, Offered 2, Ring 2 1, Idle 2"),
    // A double ring, slow rings, and a ring without a pause.
    Row("OddRings", "v253",
        "ready; from RING\r; 650; from RING\r; 2350; from RING\r; 6000; from RING\r; 8900; from RING\r; 900; "
        "from RING\r; "
        "900; from RING\r; 900; from RING\r; 900; from RING\r; 900; from RING\r; 20000",
        "Offered 1, Ring 1 1, Ring 1 2, Ring 1 3, Ring 1 4, Ring 1 5, Idle 1"),
    // Control characters in a line, then a line and a packet without an end: only they are lost.
    Row("Rubbish", "v253",
        "ready; from \x01 RI\x7FNG \t\r; 2400; from " + kEndless + "\rRING\r; 2400; from \x10X" + kEndless +
            "\rRING\r; 20000",
        "Offered 1, Ring 1 1, Ring 1 2, Ring 1 3, Idle 1"),
    // A key in brackets, held, without brackets, reported again behind its bracket; brackets without an end.
    Row("KeysOfAnyModem", "v253",
        "ready; call; monitor; keys /5~; 2000; keys /666666666666~; 2000; keys 777; 2000; keys /9~.9; 2000; "
        "keys /1~/1~; "
        "2000; keys 2..2..2; 2000; keys 1*#AD9; 2000; keys /5555.1111...............1111; 2000; keys /5/5/6",
        "Connected 1, Digit 5, Digit 6, Digit 7, Digit 9, Digit 1, Digit 1, Digit 2, Digit 2, Digit 2, Digit "
        "1, Digit *, Digit #, Digit A, Digit D, Digit 9, Digit 5, Digit 1, Digit 1, Digit 5, Digit 5, Digit "
        "6"),
    Row("StopsPlayingAtOnce", "lucent",
        "ready; call; play 500; 2000; stop; play 60; played; drop; 2000; heard",
        "Connected 1, Done 2 0, Idle 1, heard"),
    Row("LosesAByteAndIsUnplugged", "lucent",
        "ready; call; record; 2000; lose 3; 100; event o; 1000; say 100; 3000; unplug; 1; recorded; 10000; "
        "power; plug;10000; call",
        "Connected 1, Disconnected 1, Idle 1, The modem at /dev/modem was unplugged; it is used again when "
        "it is plugged in, Trouble The modem was unplugged, recorded, " +
            kWorks + ", Connected 2"),
    // A loop break right after the answer comes from the exchange. While we play, a tone may be our own.
    Row("EverySignOfTheEnd", "silabs",
        "ready; call; busy; 12000; call; dialtone; 12000; call; silence; 72000; call; event H; 9000; call; "
        "event l; 1000;event l; 9000; call; event K; 9000; call; play 900; 1000; event b; 4000; event b; "
        "100; hook; 2000; event d; 900",
        "Connected 1, The call is over: the busy tone, Disconnected 1, Idle 1, Connected 2, The call is "
        "over: the dial tone, Disconnected 2, Idle 2, Connected 3, The call is over: a minute of silence, "
        "Disconnected 3, Idle 3, Connected 4, The call is over: another telephone on the same line was "
        "picked up and has the call now, Disconnected 4, Idle 4, Connected 5, The call is over: the loop was "
        "broken, Disconnected 5, Idle 5, Connected 6, The call is over: the congestion tone, Disconnected 6, "
        "Idle 6, Connected 7, off-hook, The call is over: the dial tone, Disconnected 7, Idle 7",
        {.no_hang_up_code = true}),
    Row("AbsentThenSilentThenForbidden", "v253",
        "unplug; start any; wedge; plug; opened; 20000; opened; 20000; opened; 120000; opened; 60000; "
        "opened; wake;120000; refuse 2; start",
        "No modem is plugged in, Trouble No modem is plugged in, opened 0, The modem at /dev/ttyACM0 " +
            kSilent +
            "opened 2, opened 1, opened 4, opened 1, The modem at /dev/ttyACM0 is: 560, V.253 VOICE MODEM, "
            "GENERIC, The modem at /dev/ttyACM0 works again, Trouble , Refused 2"),
    // Switched off and on; stuck while idle, while receiving, while playing, and right after the answer.
    Row("Stuck", "conexant",
        "ready; power; 120000; asked +VCID=1; wedge; 180000; power; 120000; call; 1000; wedge; 15000; wake; "
        "30000; hook;call; play 2000; 2000; wedge; 15000; wake; 30000; ring; 300; answer; 220; wedge; 20000",
        "asked 2, The modem at /dev/modem " + kSilent + kWorks +
            ", Connected 1, Disconnected 1, Idle 1, The modem at /dev/modem " + kSilent + kWorks +
            ", on-hook, Connected 2, Disconnected 2, Idle 2, The modem at /dev/modem " + kSilent + kWorks +
            ", Offered 3, Ring 3 1, Done 3 0, Connected 3, Disconnected 3, Idle 3, The modem at /dev/modem " +
            kSilent.substr(0, kSilent.size() - 2)),
    Row("TurnedAwayAndDropped", "v253",
        "ready; ring; 300; answer; drop; 5000; hook; 30000; call; play 500; 1000; drop; 3000; drop; 30000; "
        "stop; ring;300; drop; 5000; hook",
        "Offered 1, Ring 1 1, Done 1 0, Done 2 0, Idle 1, on-hook, Connected 2, Done 4 0, Idle 2, Done 5 0, "
        "Offered 3, Ring 3 1, Done 6 0, Idle 3, on-hook"),
    Row("TakenThenBroken", "v253", "refuse 1; start; 5000; refuse 3; 30000; plug; 30000",
        "Refused 1, Trouble Another program uses the modem, Refused 3, Trouble The modem's port cannot be "
        "used, The modem at /dev/modem is: 560, V.253 VOICE MODEM, GENERIC, " +
            kWorks),
    Row("NeitherOfTwo", "v253", "ports 2; wedge; start any; 20000; ports 1; wake; 90000",
        "No voice modem answers at /dev/ttyACM0, /dev/ttyACM0, Trouble No voice modem is found, The modem at "
        "/dev/ttyACM0 is: 560, V.253 VOICE MODEM, GENERIC, The modem at /dev/ttyACM0 works again, Trouble "),
    Row("NoVoice", "fax", "start; 5000",
        "The modem at /dev/modem is not a voice modem, Trouble The modem is not a voice modem"),
    Row("NoFormat", "adpcm", "start; 5000; asked +VSM?",
        "The voice modem at /dev/modem offers no supported audio format, Trouble The modem's audio format is "
        "not supported, asked 1"),
    Row("SlowPort", "lucent", "slow; ready; asked +VSM=129,8000; asked +VSM=131,8000", "asked 0, asked 1"),
    Row("RingsOnAfterTheAnswer", "v253",
        "ready; call; play 100; 1000; event R; 1000; event R; 5000; asked +VLS=1; played; heard again",
        "Connected 1, asked 3, heard"),
    // The modem never confirms the end of playing, nor the end of receiving.
    Row("StuckAtTheEndOfAudio", "v253",
        "ready; call; play 20; 380; wedge; 9000; wake; 30000; call; 1000; wedge; play 10; 2900",
        "Connected 1, Disconnected 1, Idle 1, The modem at /dev/modem " + kSilent + kWorks +
            ", Connected 2, Disconnected 2, Idle 2"),
    Row("DroppedBeforeItPlays", "v253", "ready; call; delay 200; play 500; 450; drop; 3000; hook",
        "Connected 1, Done 2 0, Idle 1, on-hook"),
    Row("ClosedWhileItAnswersLate", "v253", "ready; call; delay 5000; close; hook",
        "Connected 1, Idle 1, closed, on-hook"),
    Row("AnsweredTwiceAndLate", "v253",
        "ready; ring; 300; from \x10XNMBR = 555\r\nNAME = EVE\r\n\x10.; 900; answer; answer; 2000; drop; "
        "3000; answer",
        "Offered 1, Ring 1 1, CallerId 1 EVE/555, Done 2 -5, Done 1 0, Connected 1, Done 3 0, Idle 1, Done 4 "
        "-4"),
    Row("ClosedWhileStuck", "v253", "ready; call; wedge; close; hook",
        "Connected 1, Idle 1, closed, off-hook"),
    Row("ClosedWhileAnswering", "v253", "ready; ring; 300; delay 300; answer; drop; drop; close; hook",
        "Offered 1, Ring 1 1, Done 3 0, Done 1 0, Done 2 0, Idle 1, closed, on-hook"),
    Row("NoCarrierAfterTheAudio", "conexant",
        "ready; call; 1000; from \x10\x03\r\nNO CARRIER\r\n; 6000; asked +VLS=1; 20000; call; 1000; from "
        "\x10\x1B\r\nNO CARRIER\r\n; 6000",
        "Connected 1, The call is over: the modem has hung up, Disconnected 1, Idle 1, asked 1, Connected 2, "
        "The call is over: the modem has hung up, Disconnected 2, Idle 2"),
    Row("AlwaysEchoesAndGoesOffHookLate", "v253",
        "echo; ready; 600000; asked +VCID=1; ring; 300; answer; offhook; delay 4000; 200; delay 0; 15000; "
        "hook",
        "asked 1, Offered 1, Ring 1 1, Done 1 failed, The modem did not answer the call, Idle 1, The modem "
        "at /dev/modem is: 560, GENERIC, V.253 VOICE MODEM, on-hook"),
    Row("RefusesToAnswer", "softmodem",
        "ready; ring; 300; answer; 1600; ring; 1900; ring; 1900; ring; 1900; ring; 20000; hook",
        "Offered 1, Ring 1 1, Ring 1 2, Ring 1 3, Ring 1 4, Done 1 failed, The modem did not answer the "
        "call, Ring 1 5, Idle 1, on-hook",
        {.refuses_off_hook_in_ring = true}),
    // The line keeps ringing after the answer, and the modem refuses to answer again until the ring is over.
    Row("AnswersAgain", "softmodem", "ready; ring; 2500; answer; 150; ring; 8000; hook; asked +VLS=1",
        "Offered 1, Ring 1 1, Done 1 0, Connected 1, off-hook, asked 5",
        {.refuses_off_hook_in_ring = true, .answer_does_not_take = true}),
};

class ModemLine : public testing::TestWithParam<Case> {};

TEST_P(ModemLine, DoesAsTheScriptSays) {
  Story story(GetParam().profile, GetParam().faults);
  story.Play(GetParam().script);
  EXPECT_EQ(story.told, GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(All, ModemLine, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.name; });

TEST(ModemLineTest, CanBeClosedAtAnyTimeWhileTheModemIsQueried) {
  for (int at = 0; at < 4000; at += 70) {
    Story story("v253", {});
    story.Play("start; " + std::to_string(at) + "; close; 5000; hook");
    EXPECT_TRUE(story.told.ends_with("closed, on-hook")) << at << story.told;
  }
}

}  // namespace
}  // namespace orven::test
