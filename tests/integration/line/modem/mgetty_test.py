#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""An answering machine that nobody here wrote takes a call on the emulated modem: so the modem is right.

    mgetty_test.py EMULATOR FAMILY

Debian's vgetty runs in a mount namespace of its own, with its folders below a temporary one: the
machine's own configuration, logs, locks and messages are neither read nor written.
"""

import array
import glob
import os
import random
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), *[".."] * 4, "demo"))

import modem_telephone  # noqa: E402
import processes  # noqa: E402
import sound  # noqa: E402

VGETTY = "/usr/sbin/vgetty"
SKIPPED = 77  # the exit code that says so
NUMBER, NAME = "5557777", "ANNA GARDEN"
GREETING_BYTES = 16000  # two seconds, of one byte a sample
BEEP_HERTZ, BEEP_SECONDS = 933, 1.4  # of its 1.5
RATE = 115200

# The one that it chooses on each family for eight bits a sample, and how the caller's end is told there:
# the softmodem has no code for it, so that silence must do.
FAMILIES = {"v253": ("signed", "hangup"), "conexant": ("unsigned", "hangup"), "softmodem": ("unsigned", "silence"),
            "silabs": ("unsigned", "hangup")}

VOICE_CONF = """\
part generic
voice_log_level 6
voice_dir {folder}/voice
phone_owner root
phone_group root
receive_dir incoming
message_dir messages
backup_message standard.rmd
port_speed {rate}
raw_data true
forceV253 TRUE
rec_silence_len 40
rec_min_len 1
rec_silence_threshold 128
program vgetty
rings 2
answer_mode voice
voice_devices {tty}
"""

MGETTY_CONFIG = "debug 9\nspeed {rate}\nport {tty}\ntoggle-dtr no\n"

# What it would otherwise share with the machine, below its folder.
PRIVATE = {"etc": "/etc/mgetty", "log": "/var/log", "voice": "/var/spool/voice", "run": "/run"}


class AnsweringMachine:
    """vgetty on the modem's port, for one call."""

    def __init__(self, folder, modem):
        self._folder = folder
        for name in ("etc", "log/mgetty", "voice/incoming", "voice/messages", "run/lock"):
            os.makedirs(os.path.join(folder, name))
        tty = os.path.relpath(os.path.realpath(modem.port), "/dev")
        for name, text in (("voice.conf", VOICE_CONF), ("mgetty.config", MGETTY_CONFIG)):
            with open(os.path.join(folder, "etc", name), "w", encoding="ascii") as file:
                file.write(text.format(folder=folder, tty=tty, rate=RATE))
        self.greeting = random.Random(1).randbytes(GREETING_BYTES)  # every byte value, 0x10 among them
        with open(os.path.join(folder, "voice", "messages", "standard.rmd"), "wb") as file:
            file.write(self.greeting)
        mounts = [f"mount --bind {folder}/{name} {place}" for name, place in PRIVATE.items()]
        script = " && ".join([*mounts, f"exec {VGETTY} {tty}"])
        command = ["unshare", "--mount", "--propagation", "private", "sh", "-c", script]
        self._process = processes.start(command, os.path.join(folder, "vgetty.out"))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self._process, 3)

    def wait_for_log(self, text, limit):
        processes.wait_for(f'"{text}" in its log', lambda: text in self.log(), limit)

    def log(self):
        text = ""
        for path in glob.glob(os.path.join(self._folder, "log", "mgetty", "*")):
            with open(path, encoding="latin-1") as file:
                text += file.read()
        return text

    def recording(self):
        """The caller's number in the message's name, and its sound."""
        (path,) = glob.glob(os.path.join(self._folder, "voice", "incoming", "v-*"))
        with open(path, "rb") as file:
            return os.path.splitext(path)[0].split("-")[-1], file.read()


def samples_of(data, kind):
    """Bytes of 8 bits as the line's samples."""
    offset = 128 if kind == "unsigned" else 0
    values = (byte - offset if offset else (byte ^ 128) - 128 for byte in data)
    return array.array("h", (value * 256 for value in values))


def bytes_of(samples, kind):
    flip = 128 if kind == "unsigned" else 0
    return bytes(((sample >> 8) & 255) ^ flip for sample in samples)


class MgettyTest(unittest.TestCase):
    def call(self, modem, machine, message, end):
        """The whole call: two rings with the caller's number in between, a message, its end."""
        machine.wait_for_log("waiting...", 60)
        modem.do("ring")
        machine.wait_for_log("CND: RING", 20)
        for line in ("DATE = 1121", "TIME = 1335", f"NMBR = {NUMBER}", f"NAME = {NAME}"):
            modem.do("callerid " + line)
        modem.do("ring")
        answered = modem.wait("receiving", 60)
        modem.do("say " + message)
        modem.do(end) if modem.wait("said", 30, answered) else None
        modem.wait("on-hook", 60, answered)

    def check_family(self, profile, kind, end):
        with tempfile.TemporaryDirectory() as folder:
            message = os.path.join(folder, "message.wav")
            said = array.array("h", (random.Random(2).randrange(-20000, 20000) for _ in range(2 * sound.RATE)))
            sound.write(message, said)
            with (
                modem_telephone.Modem(EMULATOR, os.path.join(folder, "modem"), profile) as modem,
                AnsweringMachine(os.path.join(folder, "machine"), modem) as machine,
            ):
                self.call(modem, machine, message, end)
                heard = modem.heard()
                self.check_greeting(heard, samples_of(machine.greeting, kind))
                number, recording = machine.recording()
                self.assertEqual(recording, modem.sent(), "what it recorded is not what the modem sent")
                self.assertIn(bytes_of(said, kind), recording, "the message is not whole in the recording")
                if profile != "softmodem":  # its command for caller ids is one that vgetty does not know
                    self.assertEqual(number, NUMBER)
                    self.assertIn(NAME, machine.log())
                self.assertEqual(modem.complaints(), [])

    def check_greeting(self, heard, greeting):
        """It was played whole, without a gap, and the beep came after it."""
        start = heard.tobytes().find(greeting.tobytes()) // 2
        self.assertGreaterEqual(start, 0, "the greeting was not heard as one piece")
        rest = heard[start + len(greeting) :]
        self.assertIsNotNone(sound.end_of_beep(rest, BEEP_HERTZ, BEEP_SECONDS), "no beep was heard after it")

    def test_it_answers_greets_beeps_records_and_hangs_up(self):
        self.check_family(FAMILY, *FAMILIES[FAMILY])


def why_impossible():
    if not os.access(VGETTY, os.X_OK):
        return f"there is no {VGETTY} (the package mgetty-voice)"
    if subprocess.run(["unshare", "--mount", "true"], stderr=subprocess.DEVNULL, check=False).returncode != 0:
        return "a mount namespace takes root"
    return None


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    FAMILY, EMULATOR = sys.argv.pop(), os.path.abspath(sys.argv.pop())
    reason = why_impossible()
    if reason:
        print(f"SKIPPED: {reason}")
        sys.exit(SKIPPED)
    unittest.main(verbosity=2)
