#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The sound cards over a real sound server, which serves well, comes late, hangs, dies or is missing.

    sound_test.py PLAYER
"""

import signal

import sound_case
from sound_case import Recording, SoundCase, processes, snr, sound

WELL_CONVERTED = 20  # dB; the server resamples twice, and what is late by part of a sample counts as noise


class SoundTest(SoundCase):
    def hang(self, hangs=True):
        self.server.process.send_signal(signal.SIGSTOP if hangs else signal.SIGCONT)

    def wait_for_cards(self, player, *cards):
        processes.wait_for(cards, lambda: player.cards() == ["0 Default output", *cards], 10)

    def test_what_is_played_and_spoken_arrives_bit_by_bit(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-source", "mic_room")
        player = self.player()
        self.assert_plays(player)
        self.assert_takes(player, output="room")

        # It is played and recorded again at the same time.
        take = sound.read(self.take)
        self.server.ask("set-default-source", "mic_desk")
        self.start_take(player)
        player.do("play", 0, self.take)
        self.assertIn("record 2", player.do("record"))
        processes.wait_for("a level", lambda: player.value("level") > 100, 10)
        player.wait_for("finished", 2)
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.assert_heard(take, self.finish_take(player))

        # Seeking and stopping cut at once.
        recording = Recording(self.server)
        self.start_play(player)
        player.do("seek", 3000)
        player.wait_for("finished", 3)
        heard = recording.finish()
        self.assert_heard(self.speech[3000 * sound.RATE // 1000 :], heard)
        self.assertLess(snr.snr(self.speech[: sound.RATE * 3 // 2], heard)[0], 10)
        self.start_play(player)
        player.do("stop")
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.assertEqual(3, len(player.lines("finished")))
        self.assert_ends_well(player)

    def test_cards_that_come_and_go_keep_their_numbers_and_their_microphones(self):
        self.server.start()
        player = self.player()
        self.wait_for_cards(player, "1 desk")
        self.server.plug_in("headset", card="usb-3")
        self.wait_for_cards(player, "1 desk", "2 headset")
        self.server.unplug("desk")
        self.wait_for_cards(player, "2 headset")
        player.do("play", 1, self.message)
        self.assert_given_up(player, "number 1", plays=1)
        self.assertIn("play 1", player.do("play", 3, self.message))
        self.server.plug_in("desk")
        self.wait_for_cards(player, "1 desk", "2 headset")
        for name in ("headset", "desk"):  # number 0 follows the desktop's choice
            self.server.ask("set-default-sink", name)
            self.assert_plays(player, output=name)
        self.server.plug_in("studio", ("rate=48000", "channels=2"))
        self.server.ask("set-default-source", "mic_studio")
        self.assert_takes(player, 2, "headset")
        for card in (0, 1):  # without a microphone of its own
            self.assert_takes(player, card, "studio", WELL_CONVERTED)
        player.forgotten += len(player.lines())
        self.start_play(player, 2)
        self.server.unplug("headset")
        self.assert_given_up(player, '"headset"', plays=1)
        self.assert_ends_well(player)

    def test_a_microphone_that_goes_away_ends_the_take(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-source", "mic_room")
        player = self.player()
        self.start_take(player)
        self.server.speak("room", self.message)
        self.server.unplug("mic_room")
        self.assert_given_up(player, 'microphone "mic_room" went away')
        self.assertGreater(len(self.finish_take(player)), len(self.speech) * 9 // 10)
        self.server.unplug("mic_desk")
        self.assertIn("record 0", player.do("record"))  # shows that there is none; the next one is refused
        self.assert_given_up(player, "no microphone")
        self.assertEqual(0, len(self.finish_take(player)))
        self.assertIn("record 1", player.do("record"))
        self.server.plug_in("room")
        processes.wait_for("the room", lambda: "record 0" in player.do("record"), 10)
        self.hang()
        self.assert_ends_well(player)

    def test_a_server_that_comes_late_hangs_or_dies_ends_what_runs_and_may_come_back(self):
        player = self.player()
        self.assertEqual(["0 Default output"], player.cards())
        self.assertIn("play 0", player.do("play", 0, self.message))
        self.assert_given_up(player, "no sound server", plays=1)
        self.server.start()
        self.assert_plays(player)
        player.forgotten += len(player.lines())

        self.start_take(player)
        self.server.speak("desk", self.message)
        self.start_play(player)
        self.hang()
        player.do("stop")
        self.assertIn("play 0", player.do("play", 0, self.message))
        self.assert_given_up(player, "The sound server does not answer", "the recording was given up", plays=1)
        self.assertGreater(len(self.finish_take(player)), len(self.speech) * 9 // 10)
        self.hang(False)
        self.assert_takes(player)
        self.assert_plays(player)
        player.forgotten += len(player.lines())

        self.start_play(player)
        self.start_take(player)
        self.server.end()
        self.assert_given_up(player, '"desk"', '"mic_desk"', plays=1)
        self.assert_ends_well(player)

    def test_a_server_that_hangs_at_the_first_look_or_the_start_blocks_nothing(self):
        self.server.start()
        self.hang()
        player = self.player()
        self.assertEqual(["0 Default output"], player.cards())
        for command in ("play", "seek", "stop", "play", "record"):
            player.do(command, 0, self.message)
        self.assert_given_up(player, "does not answer; what was playing", "does not answer; the recording", plays=1)
        self.assertEqual(0, len(self.finish_take(player)))
        player.do("play", 0, self.message)
        self.assert_ends_well(player)  # although the sound thread still waits for the server

    def test_a_server_that_refuses_a_take_holds_up_no_other(self):
        """Qt waits forever for the stream."""
        self.server.start()
        listeners = []
        while not listeners or listeners[-1] is not None:  # until the microphone's limit
            arguments = ("module-remap-source", "master=mic_desk", f"source_name=listener{len(listeners)}")
            listeners.append(self.server.ask("load-module", *arguments))
        self.server.ask("set-default-source", "mic_desk")
        player = self.player()
        self.assertIn("record 0", player.do("record"))
        self.assert_given_up(player, "No sound comes from the microphone")
        self.finish_take(player)
        for listener in listeners[-3:-1]:
            self.server.ask("unload-module", listener.strip())
        self.assert_takes(player)
        self.assert_ends_well(player)


if __name__ == "__main__":
    sound_case.main(__doc__)
