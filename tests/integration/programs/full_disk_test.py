#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A disk that is filled to its last byte in mid-message: the call goes on, and nothing is lost.

    full_disk_test.py PROGRAM [CLASS.TEST …]

The disk is a small one in memory, mounted where only this test and what it starts see it. Where nobody may do
that the test is skipped (77).
"""

import array
import audioop
import errno
import os
import random
import re
import subprocess
import sys
import unittest

import orven_test
from alone import alone
from orven_test import Orven, OrvenCase, processes, sound, telephone

DISK_SIZE = "64m"
LIMIT = 30  # seconds, for whatever is waited for
SECONDS = 1.5  # of each thing that a caller says
REACTION_SECONDS = 0.5  # from the beep to what a person says
CAUSE = re.compile("disk (is )?full|no space left", re.IGNORECASE)


def noise(seed):
    """Samples that mu-law keeps as they are."""
    codes = random.Random(seed).randbytes(int(SECONDS * sound.RATE)).replace(b"\x7f", b"\xff")
    return array.array("h", audioop.ulaw2lin(codes, 2))


class FullDiskCase(OrvenCase):
    small_disk = ""  # which of the application's folders is on it, by default the whole

    def setUp(self):
        super().setUp()
        lines, self.disk = self.read("lines.ini"), self.path(self.small_disk)
        os.makedirs(self.disk, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=" + DISK_SIZE, "orven-test", self.disk], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", self.disk], check=False)
        self.write("lines.ini", lines)
        self.orven = None
        self.first_start()
        sound.write(self.path("Greets/Default.wav"), sound.silence(0.3))

    def fill(self):
        """To the last byte that the disk gives."""
        with open(os.path.join(self.disk, "filler"), "ab", buffering=0) as filler:
            for size in (1 << 20, 4096, 1):
                try:
                    while True:
                        filler.write(bytes(size))
                except OSError as failure:
                    self.assertEqual(failure.errno, errno.ENOSPC)

    def make_room(self):
        os.unlink(os.path.join(self.disk, "filler"))

    def start(self):
        """The program, ready for calls."""
        openings = self.logged("LineOpen[") + 1
        self.orven = self.enterContext(Orven(self.home, ["-st"]))
        self.orven.wait_for("LineOpen[", LIMIT, openings)

    def logged(self, text):
        """How many lines of the system log contain it."""
        return sum(text in line for line in self.log())

    def log(self):
        return self.orven.log() if self.orven else ["LineOpen["]  # of the first start

    def dial(self, name):
        caller = telephone.Telephone(os.path.join(self.folder, name), name, "555")
        self.addCleanup(caller.__exit__, None, None, None)
        caller.hurry()
        caller.dial(f"sip:machine@127.0.0.1:{self.port}")
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        return caller

    def in_the_message(self, name):
        recordings = self.logged("Start Record Message[") + 1
        caller = self.dial(name)
        self.orven.wait_for("Start Record Message[", LIMIT, recordings)
        return caller

    def hang_up(self, caller):
        caller.hang_up()
        caller.wait_event("CALL_CLOSED", LIMIT)
        caller.__exit__()

    def whole_call(self, name):
        caller = self.in_the_message(name)
        caller.say(noise(name), LIMIT)
        ends = self.logged("Idle[") + 1
        self.hang_up(caller)
        self.orven.wait_for("Idle[", LIMIT, ends)

    def call_until_full(self):
        """The disk becomes full in the message; the caller notices nothing, and speaks on. (What a telephone says
        would fail if it were hung up on.)"""
        caller = self.in_the_message("Full")
        caller.say(noise("Full 1"), LIMIT)
        self.fill()
        caller.say(noise("Full 2"), LIMIT)
        self.hang_up(caller)

    def assert_filed(self, *said):
        """There are these calls and no other, (name, sounds …) each, and what was left of every message is whole."""
        records = self.records()
        self.assertEqual([record[0] for record in records], [name for name, *_ in said])
        for record, (_, *sounds) in zip(records, said):
            message = sound.read(self.path("Messages/" + record[4]))
            self.assertAlmostEqual(len(message) / sound.RATE, float(record[5]), places=1)
            for name in sounds:
                self.assertTrue(noise(name).tobytes() in message.tobytes(), f"{name}, as it was said")
        self.assert_nothing_left(len(said))

    def assert_nothing_left(self, messages):
        self.assertEqual(len(os.listdir(self.path("Messages"))), messages)
        self.assertFalse(os.path.exists(self.path("Call.journal")))

    def assert_told(self, *what):
        """The log names the full disk once for each thing that had no room."""
        lines = [line for line in self.orven.log() if CAUSE.search(line)]
        self.assertEqual(len(lines), len(what), lines)
        for text, line in zip(what, lines):
            self.assertIn(text, line)


class EverythingOnTheDisk(FullDiskCase):
    def test_room_comes_back(self):
        self.start()
        self.whole_call("Before")
        self.call_until_full()
        caller = self.dial("Later")  # is answered when the end of the call before has been dealt with
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()) is not None, LIMIT)
        caller.say(sound.silence(REACTION_SECONDS) + noise("Later 1"), LIMIT)
        self.make_room()
        self.orven.wait_for("The calls that could not be filed are filed now", LIMIT)  # without another call's end
        self.assertEqual([record[0] for record in self.records()], ["Before", "Full"])
        caller.say(noise("Later 2"), LIMIT)
        self.hang_up(caller)
        self.whole_call("After")
        self.assertEqual(self.orven.end(), 0)
        self.assert_filed(
            ("Before", "Before"), ("Full", "Full 1", "Full 2"), ("Later", "Later 1", "Later 2"), ("After", "After")
        )
        self.assert_told("Record Message The disk is full", "home/Calls")

    def test_the_program_ends_before_there_is_room(self):
        self.start()
        self.whole_call("Before")
        self.call_until_full()
        self.assertEqual(self.orven.end(), 0)
        self.assertEqual([record[0] for record in self.records()], ["Before"])
        self.make_room()
        self.start()
        self.whole_call("After")
        self.assertEqual(self.orven.end(), 0)
        self.assert_filed(("Before", "Before"), ("Full", "Full 1"), ("After", "After"))
        self.assert_told("Record Message The disk is full", "home/Calls")


class MessagesOnTheDisk(FullDiskCase):
    small_disk = "Messages"

    def test_the_message_is_kept_elsewhere_and_named(self):
        self.start()
        self.whole_call("Before")
        self.call_until_full()
        self.orven.wait_for("Idle[", LIMIT, 2)
        self.assert_told("The recording was kept as")
        (line,) = (line for line in self.orven.log() if CAUSE.search(line))
        kept = sound.read(line.split('"')[1]).tobytes()
        self.assertTrue(noise("Full 1").tobytes() in kept and noise("Full 2").tobytes() in kept)
        self.make_room()
        self.whole_call("After")
        self.assertEqual(self.orven.end(), 0)
        self.assertEqual([record[0] for record in self.records()], ["Before", "Full", "After"])
        self.assert_nothing_left(2)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    alone("m", "mount -t tmpfs -o size=4k orven-test /tmp")
    orven_test.PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
