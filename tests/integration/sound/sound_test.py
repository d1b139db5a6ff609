#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The sound cards over a real sound server, which serves well, comes late, hangs, dies or is missing.

    sound_test.py PLAYER
"""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

from sound_case import BIT_EXACT, Recording, Server, processes, snr, sound

WELL_CONVERTED = 20  # dB; the server resamples twice, and what is late by part of a sample counts as noise
GIVES_UP = 15  # seconds in which a play on a hanging server has ended, on a busy machine
TEXT = "This is a message for you. Please call me back tomorrow morning at nine."


class SoundTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.mkdtemp(prefix="orven-sound-")
        self.addCleanup(shutil.rmtree, folder, True)
        self.server = Server(folder)
        self.addCleanup(self.server.end)
        self.message, self.take, self.log = (os.path.join(folder, name) for name in ("a.wav", "take.wav", "player.log"))
        self.speech = sound.speech(TEXT, "en")
        sound.write(self.message, self.speech)

    def start_player(self):
        """The program's audio on its own (player/main.cpp)."""
        self.forgotten = 0
        with open(self.log, "wb") as output:
            self.player = subprocess.Popen([PLAYER], stdin=subprocess.PIPE, stdout=output, env=self.server.environment)
        self.addCleanup(lambda: (self.player.kill(), self.player.communicate()))

    def lines(self, start=""):
        """The rests of the player's lines that begin with `start`, without the forgotten ones."""
        with open(self.log, encoding="utf-8") as file:
            return [line[len(start) :] for line in file.read().splitlines()[self.forgotten :] if line.startswith(start)]

    def forget(self):
        self.forgotten += len(self.lines())

    def do(self, command, number=0, path=""):
        """Gives the player a command and returns what it said."""
        seen = len(self.lines())
        self.player.stdin.write(f"{command} {number} {path}\n".encode())
        self.player.stdin.flush()
        processes.wait_for(command, lambda: f"done {command}" in self.lines()[seen:], 10)
        return self.lines()[seen:]

    def wait_for_lines(self, start, count):
        processes.wait_for(f'"{start}"', lambda: len(self.lines(start)) >= count, GIVES_UP)

    def wait_for_value(self, command, least):
        processes.wait_for(command, lambda: int(self.do(command)[0].split()[1]) >= least, 20)

    def wait_for_cards(self, *cards):
        cards = [f"card {card}" for card in ("0 Default output", *cards)]
        processes.wait_for(cards, lambda: self.do("cards")[:-1] == cards, 10)

    def hang(self, hangs=True):
        self.server.process.send_signal(signal.SIGSTOP if hangs else signal.SIGCONT)

    def start_play(self, card=0):
        self.assertIn("play 0", self.do("play", card, self.message))
        self.wait_for_value("position", 500)

    def start_take(self, card=0):
        self.assertIn("record 0", self.do("record", card))
        processes.wait_for("the take", self.server.takes, 10)

    def finish_take(self):
        """What was recorded."""
        self.assertIn("stoprecord 0", self.do("stoprecord", path=self.take))
        return sound.read(self.take)

    def assert_heard(self, heard, quality=BIT_EXACT):
        self.assertGreater(snr.snr(self.speech, heard)[0], quality)

    def assert_plays(self, card=0, output="desk"):
        """The message is heard on `output` when it is played on `card`."""
        recording = Recording(self.server, output)
        count = len(self.lines("finished"))
        self.do("play", card, self.message)
        self.wait_for_lines("finished", count + 1)
        self.assert_heard(recording.finish())

    def assert_takes(self, card=0, output="desk", quality=BIT_EXACT):
        """What is spoken into the microphone of `output` is recorded from `card`."""
        self.start_take(card)
        reference = Recording(self.server, output)
        self.server.speak(output, self.message)
        reference.wait_for_more()
        processes.stop(reference.process, 5)
        self.assert_heard(self.finish_take(), quality)
        processes.wait_for("the take's end", lambda: not self.server.takes(), 10)

    def assert_given_up(self, *reasons, plays=0):
        """What runs ends by itself: so many plays, and one report for each of the reasons."""
        self.wait_for_lines("report ", len(reasons))
        self.wait_for_lines("finished", plays)
        reports = self.lines("report ")
        self.assertEqual((len(reasons), plays), (len(reports), len(self.lines("finished"))))
        for reason in reasons:
            self.assertTrue(any(reason in report for report in reports), reports)
        self.forget()

    def assert_ends_well(self):
        """Nothing else was reported, and the process soon ends."""
        self.assertEqual([], self.lines("report "))
        self.do("quit")
        self.assertEqual(0, self.player.wait(10 * processes.SLOWNESS))

    def test_cards_that_come_and_go_keep_their_numbers_and_their_microphones(self):
        self.server.start()
        self.start_player()
        self.wait_for_cards("1 desk")
        self.server.plug_in("headset", card="usb-3")
        self.wait_for_cards("1 desk", "2 headset")
        self.server.unplug("desk")
        self.wait_for_cards("2 headset")
        self.do("play", 1, self.message)
        self.assert_given_up("number 1", plays=1)
        self.assertIn("play 1", self.do("play", 3, self.message))
        self.server.plug_in("desk")
        self.wait_for_cards("1 desk", "2 headset")
        for name in ("headset", "desk"):  # number 0 follows the desktop's choice
            self.server.ask("set-default-sink", name)
            self.assert_plays(output=name)
        self.server.plug_in("studio", ("rate=48000", "channels=2"))
        self.server.ask("set-default-source", "mic_studio")
        self.assert_takes(2, "headset")
        for card in (0, 1):  # without a microphone of its own
            self.assert_takes(card, "studio", WELL_CONVERTED)
        self.forget()
        self.start_play()
        self.do("stop")
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.start_play(2)
        self.server.unplug("headset")
        self.assert_given_up('"headset"', plays=1)
        self.assert_ends_well()

    def test_a_microphone_that_goes_away_or_is_refused_ends_only_the_take(self):
        self.server.start()
        listeners = []
        while not listeners or listeners[-1] is not None:  # until the microphone's limit: Qt waits forever then
            arguments = ("module-remap-source", "master=mic_desk", f"source_name=listener{len(listeners)}")
            listeners.append(self.server.ask("load-module", *arguments))
        self.server.ask("set-default-source", "mic_desk")
        self.start_player()
        self.assertIn("record 0", self.do("record"))
        self.assert_given_up("No sound comes from the microphone")
        self.finish_take()
        for listener in listeners[:-1]:
            self.server.ask("unload-module", listener.strip())

        self.server.plug_in("room")
        self.server.ask("set-default-source", "mic_room")
        self.start_take()
        self.server.speak("room", self.message)
        self.server.unplug("mic_room")
        self.assert_given_up('microphone "mic_room" was disconnected')
        self.assertGreater(len(self.finish_take()), len(self.speech) * 9 // 10)
        self.server.unplug("mic_desk")
        self.assertIn("record 0", self.do("record"))  # shows that there is none; the next one is refused
        self.assert_given_up("no microphone")
        self.assertEqual(0, len(self.finish_take()))
        self.assertIn("record 1", self.do("record"))
        self.server.plug_in("room")
        processes.wait_for("the room", lambda: "record 0" in self.do("record"), 10)
        self.hang()
        self.assert_ends_well()

    def test_a_server_that_hangs_or_dies_ends_what_runs_blocks_nothing_and_may_come_back(self):
        self.server.start()
        self.hang()
        self.start_player()
        self.assertEqual("card 0 Default output", self.do("cards")[0])
        for command in ("play", "seek", "stop", "play", "record"):
            self.do(command, 0, self.message)
        self.assert_given_up("does not answer; playing on", "does not answer; the recording", plays=1)
        self.assertEqual(0, len(self.finish_take()))
        self.hang(False)
        self.assert_plays()
        self.forget()

        self.start_take()
        self.server.speak("desk", self.message)
        self.start_play()
        self.wait_for_value("level", 100)
        self.hang()
        self.do("stop")
        self.assertIn("play 0", self.do("play", 0, self.message))
        self.assert_given_up("The sound server does not answer", "the recording was stopped", plays=1)
        self.assertGreater(len(self.finish_take()), len(self.speech) * 9 // 10)
        self.hang(False)
        self.assert_takes()

        self.start_play()
        self.start_take()
        self.server.end()
        self.assert_given_up('"desk"', '"mic_desk"', plays=1)
        self.assertIn("play 0", self.do("play", 0, self.message))
        self.assert_given_up("no sound server", plays=1)
        self.server.start()
        self.assert_plays()
        self.assert_ends_well()


if __name__ == "__main__":
    PLAYER = os.path.abspath(sys.argv.pop(1))
    unittest.main()
