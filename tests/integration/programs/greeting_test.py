#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Greetings made in the real program: spoken into a microphone, and typed after the speech helper has died.

import os
import signal

import harness
import sound_case
from creator import Creator
from display import Display
from sound_case import Recording, processes, snr, sound

GREETING = "Hello, this is the garden. Please say what you want to tell us."


class GreetingTest(harness.ProgramCase):
    arguments = ()

    def prepare(self):
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, 0o700)
        self.server = sound_case.Server(runtime)
        self.addCleanup(self.server.end)
        private = {key: self.server.environment[key] for key in ("HOME", "XDG_RUNTIME_DIR")}
        self.variables = {"PULSE_SERVER": f"unix:{runtime}/pulse/native"}
        self.display = self.enterContext(Display(self.folder, private))

    def start(self):
        self.orven.start_and_wait()
        return Creator(self.display, self.orven.process)

    def helpers(self):
        """The speech helpers of this test's program."""
        found = []
        for process in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{process}/comm", encoding="utf-8") as name, open(f"/proc/{process}/environ", "rb") as environ:
                    if name.read() == "TTS\n" and f"ORVEN_HOME={self.orven.home}\0".encode() in environ.read():
                        found.append(int(process))
            except OSError:
                continue
        return found

    def test_a_spoken_greeting_is_what_was_said(self):
        self.server.start()
        self.server.plug_in("room")
        self.server.ask("set-default-sink", "desk")
        self.server.ask("set-default-source", "mic_room")
        spoken = sound.speech(GREETING, "en")
        said = os.path.join(self.folder, "said.wav")
        sound.write(said, spoken + sound.silence(1))
        creator = self.start()
        processes.wait_for("the end of the start's beep", lambda: not self.server.streams(), 10)
        creator.open()
        creator.press("alt+r")  # Record
        processes.wait_for("the take", self.server.takes, 10)
        self.server.speak("room", said)
        creator.press("alt+o")  # Stop
        processes.wait_for("the take's file", lambda: os.path.exists(self.orven.path("spktmp.wav")), 10)
        take = sound.read(self.orven.path("spktmp.wav"))
        self.assertGreater(snr.snr(spoken, take)[0], sound_case.BIT_EXACT)

        heard = Recording(self.server)
        creator.press("alt+p")  # Start Play
        self.orven.wait_for("Start Play:")
        processes.wait_for("what is played", self.server.streams, 10)
        self.assertGreater(snr.snr(take, heard.finish())[0], sound_case.BIT_EXACT)
        self.assertEqual(take, sound.read(creator.save(self.orven.home, "Spoken")))
        self.assertFalse(os.path.exists(self.orven.path("spktmp.wav")))
        self.orven.end()

    def test_a_helper_that_dies_is_logged_and_the_next_opening_has_another(self):
        creator = self.start()
        creator.open()
        os.kill(processes.wait_for("the helper", self.helpers, 10)[0], signal.SIGKILL)
        self.orven.wait_for("TTS: the speech helper ")  # has ended; or does not answer: it had not come yet
        creator.create(GREETING)
        creator.press("Escape")
        processes.wait_for("the creator's end", lambda: not creator.is_open(), 10)
        creator.open()
        creator.create(GREETING)
        creator.save(self.orven.home, "Second")
        self.assertFalse(os.path.exists(self.orven.path("ttstmp.wav")))
        self.orven.end()
        processes.wait_for("the helper's end", lambda: not self.helpers(), 10)


if __name__ == "__main__":
    harness.main(at_a_time=2)
