#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the speech helper says aloud, over a real sound server that serves well, hangs or is not there.

    spoken_test.py TTS
"""

import os
import shutil
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "sound"))

import sound_case  # noqa: E402
from sound_case import processes, snr, sound  # noqa: E402

TTS = ""

SENTENCE = "Please leave a message after the tone."
ANOTHER = "Thank you for your call."
LIKE_THE_FILE = 20  # dB; both were made from the engine's rate into the telephone's, by different filters


def length(samples):
    """Seconds from the first sound to the last."""
    loud = [at for at, sample in enumerate(samples) if abs(sample) > sound.FULL_SCALE / 50]
    return (loud[-1] - loud[0]) / sound.RATE if loud else 0


class Helper:
    """The helper and the program's end of its link."""

    def __init__(self, server):
        path = os.path.join(server.folder, "uDat")
        with socket.socket(socket.AF_UNIX) as listener:
            listener.bind(path)
            listener.listen(1)
            listener.settimeout(10)
            self.process = subprocess.Popen(
                [TTS, "-gc"], env=dict(server.environment, ORVEN_CHANNEL=path), stderr=subprocess.PIPE
            )
            self.link = listener.accept()[0]
        self.link.settimeout(10)

    def send(self, text):
        data = text.encode()
        self.link.sendall(struct.pack(">I", len(data)) + data)

    def answer(self):
        """The answer to "GVC:", which everything that was sent before has gone before."""
        self.send("GVC:")
        data = b""
        while len(data) < 4 or len(data) < 4 + struct.unpack(">I", data[:4])[0]:
            data += self.link.recv(65536)
        return data[4:].decode()

    def unload(self):
        """The exit code and what was complained of."""
        self.send("ULD:")
        complaints = self.process.communicate(timeout=10)[1].decode()
        return self.process.returncode, complaints

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stderr.close()
        self.link.close()


class SpokenTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.mkdtemp(prefix="orven-tts-")
        self.addCleanup(shutil.rmtree, folder, True)
        self.server = sound_case.Server(folder)
        self.addCleanup(self.server.end)

    def helper(self):
        helper = Helper(self.server)
        self.addCleanup(helper.end)
        return helper

    def speech(self, text):
        """How `text` sounds, by the helper's own file."""
        path = os.path.join(self.server.folder, "spoken.wav")
        subprocess.run([TTS, "-w", path], input=text, text=True, check=True)
        return sound.read(path)

    def wait_for_sound(self, recording, since=0):
        processes.wait_for("the sound", lambda: sound.peak(recording.samples()[since:]) > 0.05, 10)

    def assert_heard(self, text, heard):
        """Whole. Only the first text of a helper is made exactly like the file: the engine's waves go on from
        one text to the next."""
        self.assertAlmostEqual(length(self.speech(text)), length(heard), delta=0.1)

    def test_texts_are_heard_one_after_the_other(self):
        self.server.start()
        helper = self.helper()
        recording = sound_case.Recording(self.server)
        helper.send("Say:" + SENTENCE)
        helper.send("Say:" + ANOTHER)
        self.assertTrue(helper.answer().startswith("GVCS:"))
        self.wait_for_sound(recording)
        heard = recording.finish()
        self.assertGreater(snr.snr(self.speech(SENTENCE), heard)[0], LIKE_THE_FILE)
        both = length(self.speech(SENTENCE)) + length(self.speech(ANOTHER))
        self.assertAlmostEqual(both + 0.5, length(heard), delta=0.5)
        self.assertEqual((0, ""), helper.unload())

    def test_stop_cuts_off_what_sounds_and_what_waits(self):
        self.server.start()
        helper = self.helper()
        helper.send("Stp:")
        recording = sound_case.Recording(self.server)
        helper.send("Say:" + (SENTENCE + "\r\n") * 10_000)
        helper.send("Say:" + SENTENCE)
        self.wait_for_sound(recording)
        helper.send("Stp:")
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 3)
        silent_from = len(recording.samples())
        recording.wait_for_more()
        recording.wait_for_more()
        self.assertEqual(0, sound.peak(recording.samples()[silent_from + sound.RATE // 2 :]))

        helper.send("Say:" + ANOTHER)
        self.wait_for_sound(recording, silent_from + sound.RATE // 2)
        self.assert_heard(ANOTHER, recording.finish()[silent_from:])

        # A file takes the engine from a long text; the end cuts off what sounds.
        path = os.path.join(self.server.folder, "ttstmp.wav")
        for end in ("STW:" + SENTENCE, "ULD:"):
            helper.send("SFS:" + path)
            helper.send("Say:" + SENTENCE * 1000)
            processes.wait_for("the stream", self.server.streams, 10)
            if end == "ULD:":
                self.assertEqual((0, ""), helper.unload())
                self.assertFalse(os.path.exists(path))
            else:
                helper.send(end)
                processes.wait_for("the file", lambda: os.path.exists(path), 10)
            processes.wait_for("the stream's end", lambda: not self.server.streams(), 3)

    def test_without_a_sound_server_the_helper_complains_and_works_on(self):
        helper = self.helper()
        helper.send("Say:" + SENTENCE)
        processes.wait_for("the complaint", lambda: b"sound server" in os.read(helper.process.stderr.fileno(), 4096), 20)
        self.server.start()
        recording = sound_case.Recording(self.server)
        helper.send("Say:" + SENTENCE)
        self.wait_for_sound(recording)
        self.assert_heard(SENTENCE, recording.finish())
        self.assertEqual((0, ""), helper.unload())

    def test_a_server_that_hangs_holds_nothing_up(self):
        self.server.start()
        self.server.process.send_signal(signal.SIGSTOP)
        begin = time.monotonic()
        helper = self.helper()
        helper.send("Say:" + SENTENCE)
        path = os.path.join(self.server.folder, "ttstmp.wav")
        helper.send("SFS:" + path)
        helper.send("STW:" + SENTENCE)
        processes.wait_for("the file", lambda: os.path.exists(path), 10)
        self.assertEqual(0, helper.unload()[0])
        self.assertLess(time.monotonic() - begin, 10)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    TTS = os.path.abspath(sys.argv.pop(1))
    unittest.main()
