#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A greeting that is spoken into a microphone.

import os

import harness
import sound_case
from creator import Creator
from display import Display
from sound_case import processes, snr, sound

GREETING = "Hello, this is the garden. Please say what you want to tell us."


class GreetingTest(harness.ProgramCase):
    arguments = ()

    def prepare(self):
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, 0o700)
        self.server = sound_case.Server(runtime)
        self.addCleanup(self.server.end)
        self.variables = {"PULSE_SERVER": f"unix:{runtime}/pulse/native"}
        self.display = self.enterContext(Display(self.folder, {"HOME": runtime, "XDG_RUNTIME_DIR": runtime}))

    def test_a_spoken_greeting_is_what_was_said(self):
        self.server.start()
        self.server.ask("set-default-source", "mic_desk")
        spoken = sound.speech(GREETING, "en")
        said = os.path.join(self.folder, "said.wav")
        sound.write(said, spoken + sound.silence(1))
        self.orven.start_and_wait()
        creator = Creator(self.display, self.orven.process)
        processes.wait_for("the end of the start's beep", lambda: not self.server.streams(), 10)
        creator.open()
        creator.press("alt+r")  # Record
        processes.wait_for("the take", self.server.takes, 10)
        self.server.speak("desk", said)
        creator.press("alt+o")  # Stop
        greeting = sound.read(creator.save(self.orven.home, "Spoken"))
        self.assertGreater(snr.snr(spoken, greeting)[0], sound_case.BIT_EXACT)
        self.orven.end()


if __name__ == "__main__":
    harness.main()
