#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The same calls on every kind of telephone line, in real time: each test has a program and a line of its own.

    lines_test.py PROGRAM EMULATOR [CLASS.TEST …]

All of them run side by side, a few at a time; those that are named run in this process.
"""

import os
import sys
import tempfile
import time
import unittest

import orven_test
from line_scenarios import LIMIT, REACTION_SECONDS, STEPS_TO_A_MESSAGE, LineCase, Scenarios
from orven_test import processes, sound
from telephone_lines import ModemLine, SipLine

EMULATOR = ""
AT_A_TIME = 5


class Sip(Scenarios):
    def make_line(self):
        return SipLine(self.folder)


class Modem16Bits(Scenarios):
    def make_line(self):
        return ModemLine(EMULATOR, self.folder, "lucent")


class Modem8Bits(Scenarios):
    lowest_snr = 20.0  # 8 linear bits leave about 24

    def make_line(self):
        return ModemLine(EMULATOR, self.folder, "conexant")


class ModemTroubles(LineCase):
    """What a modem does that no other line does."""

    def make_line(self):
        return ModemLine(EMULATOR, self.folder, "silabs")

    def setUp(self):
        super().setUp()
        self.settings(SecSilence="30")  # not what ends these calls

    def in_the_message(self):
        """A caller who has said something."""
        caller = self.to_the_message()
        caller.say(sound.silence(REACTION_SECONDS) + self.sounds["Old"], LIMIT)
        return caller

    def assert_works_again(self):
        self.orven.wait_for(f"The modem at {self.line.port} works again", LIMIT)
        with self.caller() as caller:
            caller.dial()
            caller.wait_event("CALL_ESTABLISHED", LIMIT)
            self.until(caller, "Connected[", 2)
            caller.hang_up()
            self.orven.wait_for("Idle[", LIMIT, 2)

    def test_unplugged_in_mid_message(self):
        self.in_the_message()
        self.line.do("unplug")
        self.end_of_call()
        self.orven.wait_for(f"The modem at {self.line.port} is gone")
        self.assert_same(self.sounds["Old"], self.recorded())
        self.line.do("replug")
        self.assert_works_again()
        self.end()

    def end_of_call(self):
        """As when the caller hangs up."""
        self.orven.wait_for("Idle[", LIMIT)
        self.assert_order(*STEPS_TO_A_MESSAGE, "Disconnected[LineIndex:0]", "Record Message ", "Idle[LineIndex:0]")


def everything():
    """The names of all tests, the longest first."""
    classes = (ModemTroubles, Modem16Bits, Modem8Bits, Sip)
    loader = unittest.defaultTestLoader
    return [f"{case.__name__}.{name}" for case in classes for name in loader.getTestCaseNames(case)]


class Run:
    """One test in a process of its own."""

    def __init__(self, name, folder):
        self.name, self._log, self._began = name, os.path.join(folder, name), time.monotonic()
        command = [sys.executable, "-B", os.path.abspath(__file__), orven_test.PROGRAM, EMULATOR, name]
        self._process = processes.start(command, self._log)

    def over(self):
        if self._process.poll() is None:
            return False
        seconds = time.monotonic() - self._began
        print(f"{self.name:60} {'ok' if self.passed() else 'FAILED'} {seconds:5.1f} s", flush=True)
        if not self.passed():
            with open(self._log, encoding="utf-8", errors="replace") as log:
                print(log.read(), flush=True)
        return True

    def passed(self):
        return self._process.returncode == 0


def run_side_by_side(names):
    """Whether all have passed."""
    passed, running = True, []
    with tempfile.TemporaryDirectory() as folder:
        while names or running:
            while names and len(running) < AT_A_TIME:
                running.append(Run(names.pop(0), folder))
            over = processes.wait_for("A test's end", lambda: [run for run in running if run.over()], 120)
            passed = passed and all(run.passed() for run in over)
            running = [run for run in running if run not in over]
    return passed


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    orven_test.PROGRAM, EMULATOR = (os.path.abspath(sys.argv.pop(1)) for _ in range(2))
    if len(sys.argv) > 1:
        unittest.main()
    sys.exit(0 if run_side_by_side(everything()) else 1)
