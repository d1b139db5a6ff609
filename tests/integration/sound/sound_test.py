#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The sound cards over a real sound server, which serves well, comes late, hangs, dies or is not there.

    sound_test.py PLAYER
"""

import signal

import sound_case
from sound_case import Recording, SoundCase, processes, snr, sound


class SoundTest(SoundCase):
    def test_a_message_is_what_is_heard(self):
        self.server.start()
        recording, player = Recording(self.server), self.player()
        self.assertIn("play 0", player.do("play", 0, self.message))
        player.wait_for("finished")
        self.assert_heard(self.speech, recording.finish())
        self.assertEqual([], player.lines("report "))
        self.assert_ends_well(player)

    def test_seeking_and_stopping_cut_at_once(self):
        self.server.start()
        recording, player = Recording(self.server), self.player()
        player.do("play", 0, self.message)
        player.wait_for_position(500)
        player.do("seek", 3000)
        player.wait_for("finished")
        heard = recording.finish()
        self.assert_heard(self.speech[3000 * sound.RATE // 1000 :], heard)
        self.assertLess(snr.snr(self.speech[: sound.RATE * 3 // 2], heard)[0], 10)

        player.do("play", 0, self.message)
        player.wait_for_position(500)
        player.do("stop")
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.assertEqual(1, len(player.lines("finished")))
        self.assert_ends_well(player)

    def test_outputs_that_come_and_go_keep_their_numbers(self):
        self.server.start()
        player = self.player()
        cards = ["0 Default output", "1 desk"]
        processes.wait_for("the first look", lambda: player.cards() == cards, 10)
        self.server.plug_in("headset")
        processes.wait_for("the headset", lambda: player.cards() == cards + ["2 headset"], 10)
        self.server.unplug("desk")
        processes.wait_for("the desk's end", lambda: player.cards() == ["0 Default output", "2 headset"], 10)
        player.do("play", 1, self.message)
        self.assert_ended_by_itself(player, "number 1")
        self.assertIn("play 1", player.do("play", 3, self.message))
        player.forget()
        self.server.plug_in("desk")
        processes.wait_for("the desk", lambda: player.cards() == cards + ["2 headset"], 10)

        # Number 0 follows the desktop's choice.
        for name in ("headset", "desk"):
            self.server.ask("set-default-sink", name)
            recording = Recording(self.server, name)
            player.do("play", 0, self.message)
            player.wait_for("finished")
            self.assert_heard(self.speech, recording.finish())
            player.forget()

        player.do("play", 2, self.message)
        player.wait_for_position(500)
        self.server.unplug("headset")
        self.assert_ended_by_itself(player, '"headset"')
        self.assert_ends_well(player)

    def test_a_server_that_dies_ends_the_play(self):
        self.server.start()
        player = self.player()
        player.do("play", 0, self.message)
        player.wait_for_position(500)
        self.server.end()
        self.assert_ended_by_itself(player, '"desk"')
        self.assert_ends_well(player)

    def test_a_server_that_comes_late_is_found(self):
        player = self.player()
        self.assertEqual(["0 Default output"], player.cards())
        self.assertIn("play 0", player.do("play", 0, self.message))
        self.assert_ended_by_itself(player, "no sound server")
        player.forget()
        self.server.start()
        recording = Recording(self.server)
        player.do("play", 0, self.message)
        player.wait_for("finished")
        self.assert_heard(self.speech, recording.finish())
        self.assert_ends_well(player)

    def test_a_server_that_hangs_in_a_play_ends_it_and_may_come_back(self):
        self.server.start()
        player = self.player()
        player.do("play", 0, self.message)
        player.wait_for_position(500)
        self.server.process.send_signal(signal.SIGSTOP)
        self.assert_ended_by_itself(player, "does not answer")
        player.do("play", 0, self.message)
        player.wait_for("finished", 2)

        self.server.process.send_signal(signal.SIGCONT)
        recording = Recording(self.server)
        player.do("play", 0, self.message)
        player.wait_for("finished", 3)
        self.assert_heard(self.speech, recording.finish())
        self.assert_ends_well(player)

    def test_a_server_that_hangs_at_the_first_look_holds_nobody_up(self):
        self.server.start()
        self.server.process.send_signal(signal.SIGSTOP)
        player = self.player()
        self.assertEqual(["0 Default output"], player.cards())
        self.assertIn("play 0", player.do("play", 0, self.message))
        self.assert_ended_by_itself(player, "does not answer")
        player.do("play", 0, self.message)
        self.assert_ends_well(player)  # although the sound thread still waits for the server

    def test_a_server_that_hangs_when_a_play_starts_holds_nobody_up(self):
        self.server.start()
        player = self.player()
        processes.wait_for("the first look", lambda: len(player.cards()) == 2, 10)
        self.server.process.send_signal(signal.SIGSTOP)
        player.do("play", 0, self.message)
        player.do("seek", 1000)
        player.do("stop")
        player.do("play", 0, self.message)
        self.assert_ended_by_itself(player, "does not answer")
        self.assert_ends_well(player)


if __name__ == "__main__":
    sound_case.main(__doc__)
