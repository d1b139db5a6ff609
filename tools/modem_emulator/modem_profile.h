// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orven {

/// How a modem encodes a sample. Other: the format is offered, but not emulated.
enum class ModemCoding : std::uint8_t { Signed8, Unsigned8, Signed16, MuLaw, ALaw, Other };

/// One line of the answer to "+VSM=?".
struct ModemFormat {
  int code;
  std::string line;  ///< as the modem writes it
  ModemCoding coding;
  std::vector<int> rates;  ///< samples a second
};

/// A setting that can be set and read back, and has little or no other effect.
struct ModemSetting {
  std::string name;
  std::string range;  ///< the answer to "=?" and the accepted values: "(0,121-131)" or "(0-3),(0-255)"
  std::string initial;
  bool voice_only = true;  ///< an error outside class 8
};

/// A chip family: its answers and differences, as data.
struct ModemProfile {
  std::string name;                      ///< v253, conexant, softmodem, lucent, silabs
  std::array<std::string, 10> identity;  ///< the answers to ATI0 to ATI9; an empty one is just OK
  std::string maker, model, revision;    ///< +GMI and +FMI, +GMM and +FMM, +GMR and +FMR
  std::string classes;                   ///< the answer to +FCLASS=?
  std::vector<ModemFormat> formats;      ///< the first is set at the beginning
  std::vector<std::string> line_states;  ///< the lines of the answer to +VLS=?
  std::vector<ModemSetting> settings;    ///< where they differ from the common ones
  std::string caller_id = "+VCID";       ///< the command that turns caller id on: +VCID or #CID
  bool caller_id_in_packet = false;      ///< in class 8 as <DLE>X … <DLE>.
  bool ring_event = true;                ///< in class 8 <DLE>R in place of RING
  bool ring_twice = false;               ///< reports each ring again after half a second
  bool brackets_keys = true;             ///< '/' and '~' around a key, which is repeated in between
  char hang_up_event = 0;                ///< the event for a loop break at a hang-up; 0: none
  bool hears_busy = true;                ///< reports 'b' after two seconds of the busy tone
  bool hears_dial = true;                ///< reports 'd' after one second of the dial tone
  std::size_t buffer = 8192;             ///< size of the playback buffer, bytes
  bool escape_ends = true;               ///< <DLE><ESC> ends receiving
  bool any_byte_ends = false;            ///< an unshielded byte ends receiving
  bool shields_pairs = false;            ///< two 0x10 in a row are sent as <DLE><SUB>
  std::string received = "OK";           ///< the result after receiving: OK or VCON
};

/// The profile of that name, or nullptr.
const ModemProfile* FindModemProfile(const std::string& name);
std::vector<std::string> ModemProfileNames();

}  // namespace orven
