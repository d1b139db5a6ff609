// SPDX-License-Identifier: GPL-3.0-or-later
// How cards are numbered, and which microphone they use.
#include <gtest/gtest.h>

#include "adapters/sound/card_list.h"
#include "adapters/sound/sound_devices.h"
#include "platform/audio_device.h"

namespace orven::testing {
namespace {

using Devices = std::vector<SoundDevice>;
using Names = std::vector<std::string>;

TEST(CardList, ACardKeepsItsNumberWhileUnplugged) {
  CardList cards;
  EXPECT_TRUE(cards.MayBe(7));  // no card is known yet
  cards.Update(Devices{{"a", "Speakers"}, {"b", "Headset"}});
  cards.Update(Devices{{"c", "Television"}, {"b", "Phones"}});
  EXPECT_EQ((Names{"Default output", "", "Phones", "Television"}), cards.Names());
  EXPECT_EQ("", cards.IdOf(1));
  EXPECT_EQ("c", cards.IdOf(3));
  EXPECT_TRUE(cards.MayBe(1));
  for (const int number : {-1, 4, kFirstLineWaveDevice}) EXPECT_FALSE(cards.MayBe(number)) << number;
}

TEST(Microphone, IsTheConnectedOneOfTheCardThenTheDefaultThenAny) {
  SoundDevices devices;
  devices.default_input = "webcam";
  devices.outputs = {{"speakers", "", "card 0"}, {"headset", "", "card 1"}, {"virtual", ""}};
  devices.inputs = {
      {"line in", "", "card 0", false}, {"boom", "", "card 1"}, {"webcam", "", "card 1"}, {"network", ""}};
  for (const char* output : {"headset", "speakers", "virtual", ""})
    EXPECT_EQ("webcam", MicrophoneOf(devices, output)->id);
  devices.default_input = "speakers.monitor";
  EXPECT_EQ("boom", MicrophoneOf(devices, "speakers")->id);
  devices.inputs.resize(1);
  EXPECT_EQ(nullptr, MicrophoneOf(devices, "speakers"));
}

}  // namespace
}  // namespace orven::testing
