#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A disk becomes full during a message: the call goes on, and nothing is lost.
#
# The disk is a small tmpfs, mounted where only this test and its child processes see it. The test is skipped (77) if
# mounting is not allowed.

import errno
import glob
import os
import re
import subprocess

import harness
from harness import LIMIT, REACTION_SECONDS, sound

DISK_SIZE = "64m"
CAUSE = re.compile("disk (is )?full|no space left", re.IGNORECASE)


def noise(seed):
    return sound.noise(1.5, seed)


class FullDiskTest(harness.ProgramCase):
    def setUp(self):
        super().setUp()
        kept = self.orven.home + ".kept"
        os.rename(self.orven.home, kept)
        os.makedirs(self.orven.home)
        mount = ["mount", "-t", "tmpfs", "-o", "size=" + DISK_SIZE, "orven-test", self.orven.home]
        subprocess.run(mount, check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", self.orven.home], check=False)
        subprocess.run(["cp", "-r", kept + "/.", self.orven.home], check=True)
        self.filler = self.orven.path("filler")
        self.orven.start_and_wait()
        self.leave_message("Before", noise("Before"))

    def fill(self):
        """Fills the disk to its last byte."""
        with open(self.filler, "ab", buffering=0) as filler:
            for size in (1 << 20, 4096, 1):
                try:
                    while True:
                        filler.write(bytes(size))
                except OSError as failure:
                    self.assertEqual(failure.errno, errno.ENOSPC)

    def call_until_full(self):
        """Fills the disk during the message; the caller speaks on, as if nothing had happened.
        (A telephone's say() would fail after a hang-up.)"""
        caller = self.call_to_the_message("Full")
        caller.say(noise("Full 1"), LIMIT)
        self.fill()
        caller.say(noise("Full 2"), LIMIT)
        self.hang_up(caller)

    def end_and_assert_filed(self, *said):
        """Checks that the records are those of these calls, (name, sounds …) each, and that the log names the full disk
        once for the message, once for the call and once for its record."""
        self.leave_message("After", noise("After"))
        self.orven.end()
        said = (("Before", "Before"), *said, ("After", "After"))
        self.assertEqual(self.callers_of_records(), [name for name, *_ in said])
        for name, *sounds in said:
            self.assert_message(name, *map(noise, sounds))
        self.assertEqual(len(os.listdir(self.orven.path("Messages"))), len(said))
        self.assertEqual(glob.glob(self.orven.path(".call-*")), [])
        told = [line for line in self.orven.log() if CAUSE.search(line)]
        places = ["home/.call-", "Record Message The disk is full", "home/Calls"]
        self.assertTrue(len(told) == 3 and all(place in line for place, line in zip(places, told)), told)

    def test_space_becomes_free_during_the_next_call(self):
        self.call_until_full()
        caller = self.call("Later")  # is answered once the end of the previous call has been handled
        caller.wait_until("The beep", lambda: sound.end_of_beep(caller.heard()) is not None, LIMIT)
        caller.say(sound.silence(REACTION_SECONDS) + noise("Later 1"), LIMIT)
        os.unlink(self.filler)
        self.orven.wait_for("The calls that could not be filed are filed now", LIMIT)  # before this call ends
        self.assertEqual(self.callers_of_records(), ["Before", "Full"])
        caller.say(noise("Later 2"), LIMIT)
        self.hang_up(caller)
        self.end_and_assert_filed(("Full", "Full 1", "Full 2"), ("Later", "Later 1", "Later 2"))

    def test_the_program_ends_before_space_becomes_free(self):
        self.call_until_full()
        self.orven.end()
        self.assertEqual(self.callers_of_records(), ["Before"])
        os.unlink(self.filler)
        self.orven.start_and_wait()
        self.end_and_assert_filed(("Full", "Full 1"))


if __name__ == "__main__":
    harness.main(at_a_time=2, namespaces=("m", "mount -t tmpfs -o size=4k orven-test /tmp"))
