// SPDX-License-Identifier: GPL-3.0-or-later
#include "modem_emulator/modem_profile.h"

namespace orven {
namespace {

using enum ModemCoding;

ModemProfile V253() {
  ModemProfile it;
  it.name = "v253";
  it.identity = {"560", "", "", "V.253 VOICE MODEM", "", "", "", "", "", ""};
  it.maker = "GENERIC";
  it.model = "V.253 VOICE MODEM";
  it.revision = "1.0";
  it.classes = "(0,1,8)";
  it.formats = {{1, "+VSM: 1,\"UNSIGNED PCM\",8,0,(7200,8000),0,0", Unsigned8, {7200, 8000}},
                {0, "+VSM: 0,\"SIGNED PCM\",8,0,(7200,8000),0,0", Signed8, {7200, 8000}},
                {4, "+VSM: 4,\"G.711U\",8,0,8000,0,0", MuLaw, {8000}},
                {5, "+VSM: 5,\"G.711A\",8,0,8000,0,0", ALaw, {8000}}};
  it.line_states = {"0,\"\",B0000000,00000000,00000000", "1,\"T\",0B8C0500,0B8C0580,0B8C0580",
                    "4,\"S\",00000000,00000000,00000000", "5,\"ST\",0B8C0500,0B8C0580,0B8C0580"};
  it.hang_up_event = 'l';
  it.shields_pairs = true;
  return it;
}

ModemProfile Conexant() {
  ModemProfile it;
  it.name = "conexant";
  it.identity = {"56000", "OK", "OK", "CX930xx VOICE MODEM", "", "", "OK", "", "", "CX930xx"};
  it.maker = "CONEXANT";
  it.model = "ACF";
  it.revision = "ACF3_V1.000";
  it.classes = "0,1,1.0,2,8";
  it.formats = {{1, "1,\"UNSIGNED PCM\",8,0,8000,0,0", Unsigned8, {8000}},
                {129, "129,\"IMA ADPCM\",4,0,8000,0,0", Other, {8000}},
                {130, "130,\"UNSIGNED PCM\",8,0,8000,0,0", Unsigned8, {8000}},
                {140, "140,\"2 Bit ADPCM\",2,0,8000,0,0", Other, {8000}},
                {141, "141,\"4 Bit ADPCM\",4,0,8000,0,0", Other, {8000}}};
  it.line_states = {"0,\"\",B0000000,00000000,00000000", "1,\"T\",0B8C0500,0B8C0580,0B8C0580",
                    "2,\"L\",00000000,00000000,00000000", "5,\"ST\",0B8C0500,0B8C0580,0B8C0580"};
  it.settings = {{"+VSD", "(0,127-129),(0-255)", "128,50"}, {"+VIT", "(0-255)", "10"}};
  it.buffer = 4096;
  it.escape_ends = false;
  it.any_byte_ends = true;
  return it;
}

ModemProfile Softmodem() {
  ModemProfile it;
  it.name = "softmodem";
  it.identity = {"5601", "", "", "HSF VOICE MODEM", "", "", "", "1.2.23", "", ""};
  it.maker = "HSF";
  it.model = "HSF SOFTMODEM";
  it.revision = "1.2.23";
  it.classes = "0,1,1.0,8";
  it.formats = {{1, "1,\"UNSIGNED PCM\",8,0,(7200,8000),0,0", Unsigned8, {7200, 8000}},
                {128, "128,\"8-BIT LINEAR\",8,0,(7200,8000),0,0", Unsigned8, {7200, 8000}},
                {129, "129,\"IMA ADPCM\",4,0,(7200,8000),0,0", Other, {7200, 8000}},
                {130, "130,\"UNSIGNED PCM\",8,0,(7200,8000),0,0", Unsigned8, {7200, 8000}},
                {131, "131,\"MULAW\",8,0,(7200,8000),0,0", MuLaw, {7200, 8000}},
                {132, "132,\"ALAW\",8,0,(7200,8000),0,0", ALaw, {7200, 8000}},
                {133, "133,\"16-BIT LINEAR\",16,0,(7200,8000),0,0", Signed16, {7200, 8000}}};
  it.line_states = {"0,\"\",B0000000,00000000,00000000", "1,\"T\",0B8C0500,0B8C0580,0B8C0580",
                    "5,\"ST\",0B8C0500,0B8C0580,0B8C0580", "7,\"MST\",0B8C0500,0B8C0580,0B8C0580"};
  it.caller_id = "#CID";
  it.ring_twice = true;
  it.hears_busy = false;
  it.hears_dial = false;
  it.buffer = 16384;
  return it;
}

ModemProfile Lucent() {
  ModemProfile it;
  it.name = "lucent";
  it.identity = {"LUCENT VOICE MODEM", "", "", "V.92 DSP", "", "", "", "", "", ""};
  it.maker = "LUCENT";
  it.model = "VENUS";
  it.revision = "5.00";
  it.classes = "0,1,2,8";
  const std::vector<int> rates = {7200, 8000, 11025};
  it.formats = {{129, "129,\"16-BIT LINEAR\",(7200,8000,11025)", Signed16, rates},
                {128, "128,\"8-BIT LINEAR\",(7200,8000,11025)", Unsigned8, rates},
                {130, "130,\"8-BIT ALAW\",(7200,8000,11025)", ALaw, rates},
                {131, "131,\"8-BIT ULAW\",(7200,8000,11025)", MuLaw, rates},
                {132, "132,\"IMA ADPCM\",(7200,8000,11025)", Other, rates}};
  it.line_states = {"(0,1,2,3,4,5,6,7)"};
  it.settings = {
      {"+VGR", "(0-255)", "128"}, {"+VGT", "(0-255)", "128"}, {"+VSD", "(0-255),(0-255)", "128,70"}};
  it.ring_event = false;
  it.brackets_keys = false;
  it.escape_ends = false;
  it.received = "VCON";
  return it;
}

ModemProfile Silabs() {
  ModemProfile it;
  it.name = "silabs";
  it.identity = {"2457", "", "", "SILICON LABS VOICE MODEM", "", "", "2457", "A", "", ""};
  it.maker = "SILICON LABS";
  it.model = "VOICE MODEM";
  it.revision = "D";
  it.classes = "0,1,8,256";
  it.formats = {{1, "1,\"UNSIGNED PCM\",8,0,8000,0,0", Unsigned8, {8000}},
                {0, "0,\"SIGNED PCM\",8,0,8000,0,0", Signed8, {8000}},
                {4, "4,\"MU-LAW\",8,0,8000,0,0", MuLaw, {8000}},
                {5, "5,\"A-LAW\",8,0,8000,0,0", ALaw, {8000}}};
  it.line_states = {"0,\"\",B0000000,00000000,00000000", "1,\"T\",0B8C0500,0B8C0580,0B8C0580",
                    "4,\"S\",00000000,00000000,00000000"};
  it.settings = {{"+VGR", "(112-134)", "128"}, {"+VGT", "(112-134)", "128"}};
  it.caller_id_in_packet = true;
  it.hang_up_event = 'l';
  it.buffer = 4096;
  return it;
}

const std::vector<ModemProfile>& Profiles() {
  static const std::vector<ModemProfile> profiles = {V253(), Conexant(), Softmodem(), Lucent(), Silabs()};
  return profiles;
}

}  // namespace

const ModemProfile* FindModemProfile(const std::string& name) {
  for (const auto& profile : Profiles()) {
    if (profile.name == name) return &profile;
  }
  return nullptr;
}

std::vector<std::string> ModemProfileNames() {
  std::vector<std::string> names;
  for (const auto& profile : Profiles()) names.push_back(profile.name);
  return names;
}

}  // namespace orven
