#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# What the speech helper says aloud, over a real sound server that serves well, hangs or is not there.

import os
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "sound"))

import sound_case  # noqa: E402
from sound_case import processes, snr, sound  # noqa: E402

SENTENCE = "Please leave a message after the tone."
ANOTHER = "Thank you for your call."
LIKE_THE_FILE = 20  # dB; both were made from the engine's rate into the telephone's, by different filters


def length(samples):
    """Seconds from the first sound to the last."""
    loud = [at for at, sample in enumerate(samples) if abs(sample) > sound.FULL_SCALE / 50]
    return (loud[-1] - loud[0]) / sound.RATE if loud else 0


class SpokenTest(unittest.TestCase):
    """The program's end of a helper's link."""

    def setUp(self):
        self.server = sound_case.Server(self.enterContext(tempfile.TemporaryDirectory(prefix="orven-tts-")))
        self.addCleanup(self.server.end)
        self.path = os.path.join(self.server.folder, "ttstmp.wav")

    def start_helper(self):
        path = os.path.join(self.server.folder, "uDat")
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(path)
            listener.listen(1)
            listener.settimeout(10)
            environment = dict(self.server.environment, ORVEN_CHANNEL=path)
            self.helper = subprocess.Popen([TTS, "-gc"], env=environment, stderr=subprocess.PIPE)
            self.addCleanup(self.helper.communicate)
            self.addCleanup(self.helper.kill)
            self.link = listener.accept()[0]
            os.remove(path)
        self.addCleanup(self.link.close)

    def send(self, *texts):
        for text in texts:
            self.link.sendall(struct.pack(">I", len(text)) + text.encode())

    def unload(self):
        """What was complained of."""
        self.send("ULD:")
        complaints = self.helper.communicate(timeout=10)[1].decode()
        self.assertEqual(0, self.helper.returncode)
        return complaints

    def spoken(self, text):
        """How `text` sounds, by the helper's own file."""
        subprocess.run([TTS, "-w", self.path], input=text, text=True, check=True)
        return sound.read(self.path)

    def wait_for_sound(self, recording, since=0):
        processes.wait_for("the sound", lambda: sound.peak(recording.samples()[since:]) > 0.05, 10)

    def wait_for_silence(self):
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 3)

    def test_texts_are_heard_one_after_the_other_until_they_are_stopped(self):
        self.server.start()
        self.start_helper()
        recording = sound_case.Recording(self.server)
        self.send("Stp:", "Say:" + SENTENCE, "Say:" + ANOTHER)
        self.wait_for_sound(recording)
        heard = recording.finish()
        # Only the first text is made exactly like the file: the engine's waves go on from one text to the next.
        self.assertGreater(snr.snr(self.spoken(SENTENCE), heard)[0], LIKE_THE_FILE)
        both = length(self.spoken(SENTENCE)) + length(self.spoken(ANOTHER))
        self.assertAlmostEqual(both + 0.5, length(heard), delta=0.5)

        recording = sound_case.Recording(self.server)
        self.send("Say:" + (SENTENCE + "\r\n") * 10_000, "Say:" + SENTENCE)
        self.wait_for_sound(recording)
        self.send("Stp:")
        self.wait_for_silence()
        silent_from = len(recording.samples()) + sound.RATE // 2
        for _ in range(2):
            recording.wait_for_more()
        self.assertEqual(0, sound.peak(recording.samples()[silent_from:]), "what waited was said all the same")
        self.send("Say:" + ANOTHER)
        self.wait_for_sound(recording, silent_from)
        self.assertAlmostEqual(length(self.spoken(ANOTHER)), length(recording.finish()[silent_from:]), delta=0.1)

        # A file takes the engine from a long text; the end cuts off what sounds.
        self.send("SFS:" + self.path, "Say:" + SENTENCE * 1000)
        processes.wait_for("the stream", self.server.streams, 10)
        self.send("STW:" + SENTENCE)
        processes.wait_for("the file", lambda: os.path.exists(self.path), 10)
        self.wait_for_silence()
        self.send("Say:" + SENTENCE * 1000)
        processes.wait_for("the stream", self.server.streams, 10)
        self.assertEqual("", self.unload())
        self.wait_for_silence()

    def test_a_server_that_is_missing_or_hangs_costs_a_complaint(self):
        self.start_helper()
        self.send("Say:" + SENTENCE)
        processes.wait_for("the complaint", lambda: b"sound server" in os.read(self.helper.stderr.fileno(), 4096), 20)
        self.server.start()
        recording = sound_case.Recording(self.server)
        self.send("Say:" + SENTENCE)
        self.wait_for_sound(recording)
        self.assertAlmostEqual(length(self.spoken(SENTENCE)), length(recording.finish()), delta=0.1)
        self.assertEqual("", self.unload())

        self.server.process.send_signal(signal.SIGSTOP)
        self.start_helper()
        self.send("Say:" + SENTENCE, "SFS:" + self.path, "STW:" + SENTENCE)
        processes.wait_for("the file", lambda: os.path.exists(self.path), 10)
        self.unload()


if __name__ == "__main__":
    TTS = os.path.abspath(sys.argv.pop(1))
    unittest.main()
