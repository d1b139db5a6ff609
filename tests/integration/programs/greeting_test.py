#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Greetings made in the real program: typed, spoken into a microphone, and with a helper that dies.

    greeting_test.py PROGRAM
"""

import os
import signal
import sys
import unittest

import orven_test
from orven_test import Orven, OrvenCase

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "sound"))

import sound_case  # noqa: E402
from creator import Creator  # noqa: E402
from display import Display  # noqa: E402
from sound_case import Recording, processes, snr, sound  # noqa: E402

GREETING = "Hello, this is the garden. Please say what you want to tell us."
TELEPHONE_QUALITY = 20  # dB


class GreetingTest(OrvenCase):
    def setUp(self):
        super().setUp()
        self.first_start()
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, 0o700)
        self.server = sound_case.Server(runtime)
        self.addCleanup(self.server.end)
        private = {key: self.server.environment[key] for key in ("HOME", "XDG_RUNTIME_DIR", "LC_ALL")}
        private["PULSE_SERVER"] = f"unix:{runtime}/pulse/native"
        self.display = self.enterContext(Display(self.folder, private))

    def start(self):
        orven = self.enterContext(Orven(self.home, (), self.display.variables))
        orven.wait_for("LineOpen[")
        return orven, Creator(self.display, orven.process)

    def helpers(self):
        """The speech helpers of this test's program."""
        found = []
        for process in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{process}/comm", encoding="utf-8") as name, open(f"/proc/{process}/environ", "rb") as environ:
                    if name.read() == "TTS\n" and f"ORVEN_HOME={self.home}\0".encode() in environ.read():
                        found.append(int(process))
            except OSError:
                continue
        return found

    def test_a_typed_greeting_is_heard_by_the_caller(self):
        orven, creator = self.start()
        creator.open()
        creator.create(GREETING)
        greeting = creator.save(self.home, "Garden")
        processes.wait_for("the helper's end", lambda: not self.helpers(), 10)
        self.assertFalse(os.path.exists(self.path("ttstmp.wav")))
        self.assertIn('"Greeting"="Garden"', self.read("registry.reg"))
        with self.call("Anna") as anna:
            anna.wait_until("the beep", lambda: sound.end_of_beep(anna.heard()) is not None, 30)
            ratio, _ = snr.snr(sound.read(greeting), anna.heard())
        self.assertGreater(ratio, TELEPHONE_QUALITY)
        orven.end()

    def test_a_spoken_greeting_is_what_was_said(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-sink", "desk")
        self.server.ask("set-default-source", "mic_room")
        spoken = sound.speech(GREETING, "en")
        said = os.path.join(self.folder, "said.wav")
        sound.write(said, spoken + sound.silence(1))
        orven, creator = self.start()
        processes.wait_for("the end of the start's beep", lambda: not self.server.streams(), 10)
        creator.open()
        creator.press("alt+r")  # Record
        processes.wait_for("the take", self.server.takes, 10)
        self.server.speak("room", said)
        creator.press("alt+o")  # Stop
        processes.wait_for("the take's file", lambda: os.path.exists(self.path("spktmp.wav")), 10)
        take = sound.read(self.path("spktmp.wav"))
        self.assertGreater(snr.snr(spoken, take)[0], sound_case.BIT_EXACT)

        heard = Recording(self.server)
        creator.press("alt+p")  # Start Play
        orven.wait_for("Start Play:")
        processes.wait_for("what is played", self.server.streams, 10)
        self.assertGreater(snr.snr(take, heard.finish())[0], sound_case.BIT_EXACT)
        self.assertEqual(take, sound.read(creator.save(self.home, "Spoken")))
        self.assertFalse(os.path.exists(self.path("spktmp.wav")))
        orven.end()

    def test_a_helper_that_dies_is_logged_and_the_next_opening_has_another(self):
        orven, creator = self.start()
        creator.open()
        os.kill(processes.wait_for("the helper", self.helpers, 10)[0], signal.SIGKILL)
        orven.wait_for("TTS: the speech helper ")  # is gone; or does not answer: it had not come yet
        creator.create(GREETING)
        creator.press("Escape")
        processes.wait_for("the creator's end", lambda: not creator.is_open(), 10)
        creator.open()
        creator.create(GREETING)
        creator.save(self.home, "Second")
        self.assertEqual(0, orven.end())
        processes.wait_for("the helper's end", lambda: not self.helpers(), 10)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    orven_test.PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main()
