#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A disk that is filled to its last byte in mid-message: the call goes on, and nothing is lost.
#
# The disk is a small one in memory, mounted where only this test and what it starts see it. Where nobody may do
# that the test is skipped (77).

import errno
import os
import re
import subprocess

import harness
from harness import LIMIT, REACTION_SECONDS, sound

DISK_SIZE = "64m"
CAUSE = re.compile("disk (is )?full|no space left", re.IGNORECASE)


def noise(seed):
    return sound.noise(1.5, seed)


class FullDiskCase(harness.ProgramCase):
    small_disk = ""  # which of the application's folders is on it, by default the whole

    def setUp(self):
        super().setUp()
        self.disk = self.orven.path(self.small_disk)
        kept = self.orven.home + ".kept"
        os.rename(self.disk, kept)
        os.makedirs(self.disk)
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=" + DISK_SIZE, "orven-test", self.disk], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", self.disk], check=False)
        subprocess.run(["cp", "-r", kept + "/.", self.disk], check=True)
        self.orven.start_and_wait()
        self.leave_message("Before", noise("Before"))

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

    def call_until_full(self):
        """The disk becomes full in the message; the caller notices nothing, and speaks on. (What a telephone says
        would fail if it were hung up on.)"""
        caller = self.call_to_the_message("Full")
        caller.say(noise("Full 1"), LIMIT)
        self.fill()
        caller.say(noise("Full 2"), LIMIT)
        self.hang_up(caller)

    def assert_filed(self, *said):
        """The records are those of these calls, (name, sounds …) each, and each message holds its sounds whole."""
        self.assertEqual(self.callers_of_records(), [name for name, *_ in said])
        for record, (_, *sounds) in zip(self.orven.records(), said):
            message = sound.read(self.orven.message(record))
            self.assertAlmostEqual(len(message) / sound.RATE, float(record["Type"]), places=1)
            for name in sounds:
                self.assertTrue(noise(name).tobytes() in message.tobytes(), f"{name}, as it was said")
        self.assert_nothing_left(len(said))

    def assert_nothing_left(self, messages):
        self.assertEqual(len(os.listdir(self.orven.path("Messages"))), messages)
        self.assertFalse(os.path.exists(self.orven.path("Call.journal")))

    def causes(self):
        return [line for line in self.orven.log() if CAUSE.search(line)]

    def assert_told(self, *what):
        """The log names the full disk once for each thing that had no room."""
        lines = self.causes()
        self.assertEqual(len(lines), len(what), lines)
        for text, line in zip(what, lines):
            self.assertIn(text, line)


class EverythingOnTheDisk(FullDiskCase):
    def test_room_comes_back(self):
        self.call_until_full()
        caller = self.call("Later")  # is answered when the end of the call before has been dealt with
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()) is not None, LIMIT)
        caller.say(sound.silence(REACTION_SECONDS) + noise("Later 1"), LIMIT)
        self.make_room()
        self.orven.wait_for("The calls that could not be filed are filed now", LIMIT)  # without another call's end
        self.assertEqual(self.callers_of_records(), ["Before", "Full"])
        caller.say(noise("Later 2"), LIMIT)
        self.hang_up(caller)
        self.leave_message("After", noise("After"))
        self.orven.end()
        self.assert_filed(
            ("Before", "Before"), ("Full", "Full 1", "Full 2"), ("Later", "Later 1", "Later 2"), ("After", "After")
        )
        self.assert_told("Record Message The disk is full", "home/Calls")

    def test_the_program_ends_before_there_is_room(self):
        self.call_until_full()
        self.orven.end()
        self.assertEqual(self.callers_of_records(), ["Before"])
        self.make_room()
        self.orven.start_and_wait()
        self.leave_message("After", noise("After"))
        self.orven.end()
        self.assert_filed(("Before", "Before"), ("Full", "Full 1"), ("After", "After"))
        self.assert_told("Record Message The disk is full", "home/Calls")


class MessagesOnTheDisk(FullDiskCase):
    small_disk = "Messages"

    def test_the_message_is_kept_elsewhere_and_named(self):
        self.call_until_full()
        self.orven.wait_for("Idle[", LIMIT, 2)
        self.assert_told("The recording was kept as")
        kept = sound.read(self.causes()[0].split('"')[1]).tobytes()
        self.assertTrue(noise("Full 1").tobytes() in kept and noise("Full 2").tobytes() in kept)
        self.make_room()
        self.leave_message("After", noise("After"))
        self.orven.end()
        self.assertEqual(self.callers_of_records(), ["Before", "Full", "After"])
        self.assert_nothing_left(2)


if __name__ == "__main__":
    harness.main(at_a_time=3, namespaces=("m", "mount -t tmpfs -o size=4k orven-test /tmp"))
