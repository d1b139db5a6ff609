#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The microphones of the sound cards over a real sound server.

    microphone_test.py PLAYER
"""

import os
import signal

import sound_case
from sound_case import Recording, SoundCase, processes, snr, sound

WELL_CONVERTED = 20  # dB; the server resamples twice, and what is late by part of a sample counts as noise


class MicrophoneTest(SoundCase):
    def start_take(self, player, card=0):
        self.assertIn("record 0", player.do("record", card))
        processes.wait_for("the take", self.server.takes, 10)

    def finish_take(self, player):
        """What was recorded."""
        path = os.path.join(self.server.folder, "take.wav")
        self.assertIn("stoprecord 0", player.do("stoprecord", path))
        return sound.read(path)

    def spoken_take(self, player, into, card=0):
        """A take from `card` while the message is spoken into the microphone of `into`."""
        self.start_take(player, card)
        reference = Recording(self.server, into)
        self.server.speak(into, self.message)
        reference.wait_for_more()
        processes.stop(reference.process, 5)
        take = self.finish_take(player)
        processes.wait_for("the take's end", lambda: not self.server.takes(), 10)
        return take

    def assert_take_ends_by_itself(self, player, because):
        """The take that runs gets no more and is reported, once; nothing is left of it."""
        player.wait_for("report ")
        self.assertEqual(1, len(player.lines("report ")))
        self.assertIn(because, player.lines("report ")[0])

    def test_a_take_is_what_was_spoken(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-source", "mic_room")
        player = self.player()
        take = self.spoken_take(player, "room")
        self.assert_heard(self.speech, take)

        # It is played and recorded again at the same time.
        path = os.path.join(self.server.folder, "take.wav")
        self.server.ask("set-default-sink", "desk")
        self.server.ask("set-default-source", "mic_desk")
        self.start_take(player)
        player.do("play", 0, path)
        self.assertIn("record 2", player.do("record", 0))
        player.wait_for_position(1000)
        processes.wait_for("a level", lambda: self.level(player) > 100, 10)
        player.wait_for("finished")
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.assert_heard(take, self.finish_take(player))
        self.assertEqual([], player.lines("report "))
        self.assert_ends_well(player)

    def level(self, player):
        return int(next(line.split()[1] for line in player.do("level") if line.startswith("level ")))

    def test_a_take_comes_from_the_cards_own_microphone_else_the_default_one(self):
        self.server.start()
        self.server.plug_in("studio", ("rate=48000", "channels=2"))
        self.server.plug_in("headset", card="usb-3")
        self.server.ask("set-default-sink", "desk")
        self.server.ask("set-default-source", "mic_studio")
        player = self.player()
        cards = {}
        processes.wait_for("the first look", lambda: len(player.cards()) == 4, 10)
        for card in player.cards():
            number, name = card.split(maxsplit=1)
            cards[name] = number
        self.assert_heard(self.speech, self.spoken_take(player, "headset", cards["headset"]))
        for card in (0, cards["desk"]):
            ratio, _ = snr.snr(self.speech, self.spoken_take(player, "studio", card))
            self.assertGreater(ratio, WELL_CONVERTED)
        self.assertEqual([], player.lines("report "))
        self.assert_ends_well(player)

    def test_a_microphone_that_goes_away_ends_the_take(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-source", "mic_room")
        player = self.player()
        self.start_take(player)
        self.server.speak("room", self.message)
        self.server.unplug("mic_room")
        self.assert_take_ends_by_itself(player, 'microphone "mic_room" went away')
        self.assertGreater(len(self.finish_take(player)), len(self.speech) * 9 // 10)
        self.assertGreater(len(self.spoken_take(player, "desk")), len(self.speech))

        player.forget()
        self.server.unplug("mic_desk")
        self.start_refused_take(player)
        self.server.plug_in("room")
        processes.wait_for("the room", lambda: "record 0" in player.do("record", 0), 10)
        processes.wait_for("the take", self.server.takes, 10)
        self.server.process.send_signal(signal.SIGSTOP)
        self.assert_ends_well(player)

    def start_refused_take(self, player):
        """There is no microphone: the first take shows it, the next one is refused."""
        self.assertIn("record 0", player.do("record", 0))
        self.assert_take_ends_by_itself(player, "no microphone")
        self.assertEqual(0, len(self.finish_take(player)))
        self.assertIn("record 1", player.do("record", 0))

    def test_a_server_that_hangs_or_dies_ends_the_take(self):
        self.server.start()
        self.server.process.send_signal(signal.SIGSTOP)
        player = self.player()
        self.assertIn("record 0", player.do("record", 0))
        self.assert_take_ends_by_itself(player, "does not answer")
        self.assertEqual(0, len(self.finish_take(player)))
        self.assertIn("record 0", player.do("record", 0))
        self.finish_take(player)
        self.server.process.send_signal(signal.SIGCONT)
        player.forget()
        self.start_take(player)
        self.server.speak("desk", self.message)
        self.server.process.send_signal(signal.SIGSTOP)
        self.assert_take_ends_by_itself(player, "does not answer")
        self.assertGreater(len(self.finish_take(player)), len(self.speech) * 9 // 10)
        self.server.process.send_signal(signal.SIGCONT)
        player.forget()
        self.assert_heard(self.speech, self.spoken_take(player, "desk"))
        self.assertEqual([], player.lines("report "))

        self.start_take(player)
        self.server.end()
        self.assert_take_ends_by_itself(player, '"mic_desk"')
        self.finish_take(player)
        self.assert_ends_well(player)


    def test_a_server_that_refuses_a_take_holds_up_no_other(self):
        """Qt waits for ever for the stream."""
        self.server.start()
        listeners = []
        while not listeners or listeners[-1] is not None:  # until the microphone's limit
            arguments = ("module-remap-source", "master=mic_desk", f"source_name=listener{len(listeners)}")
            listeners.append(self.server.ask("load-module", *arguments))
        self.server.ask("set-default-source", "mic_desk")
        player = self.player()
        self.assertIn("record 0", player.do("record", 0))
        self.assert_take_ends_by_itself(player, "No sound comes from the microphone")
        self.finish_take(player)
        player.forget()
        for listener in listeners[-3:-1]:
            self.server.ask("unload-module", listener.strip())
        self.assert_heard(self.speech, self.spoken_take(player, "desk"))
        self.assertEqual([], player.lines("report "))
        self.assert_ends_well(player)


if __name__ == "__main__":
    sound_case.main(__doc__)
