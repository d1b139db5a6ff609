#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A flood of calls: what it does to the one call that is being recorded, to the line and to the memory.
#
# sipp sends 500 INVITEs a second from one address, each for a new call. Like an attacker,
# it never sends the ACK for half of them.

import csv
import os
import re

import harness
from harness import LIMIT, processes, sound

CALLS_A_SECOND = 500
SHORT, SECONDS = 2, int(os.environ.get("ORVEN_FLOOD_SECONDS", "5"))
# The state of a call without an ACK is kept for 64 x T1 = 32 s (RFC 3261, section 17.2.1, timer H).
FORGET_LIMIT = 60
MEMORY_SLACK = 4096  # KiB; one transaction for each call of a 5 s flood would need 11,000
MARGIN = 2  # seconds that the caller speaks longer than the flood lasts


class FloodTest(harness.ProgramCase):
    def setUp(self):
        super().setUp()
        self.counts = os.path.join(self.folder, "counts.csv")
        self.orven.change_settings({"SecSilence": 60})
        self.orven.start_and_wait()

    def memory(self):
        """Returns the resident memory in KiB."""
        with open(f"/proc/{self.orven.process.pid}/status", encoding="ascii") as status:
            return int(re.search(r"VmRSS:\s+(\d+)", status.read())[1])

    def flood(self, seconds):
        calls, hold = CALLS_A_SECOND * seconds, (seconds + MARGIN) * 1000
        options = ["-r", CALLS_A_SECOND, "-m", calls, "-l", calls, "-recv_timeout", LIMIT * 1000]
        options += ["-rtp_echo"]  # keeps the port of the answered call's audio open
        options += ["-trace_stat", "-stf", self.counts, "-fd", 1]
        flood = harness.sipp(self.folder, self.orven.port, "flood_scenario.xml", {"HOLD": hold}, *options)
        self.addCleanup(processes.stop, flood, 5)
        return flood

    def assert_over(self, flood, seconds):
        processes.wait_for("The end of the flood", lambda: flood.poll() is not None, LIMIT + seconds)
        with open(self.counts, encoding="utf-8") as file:
            *_, last = csv.DictReader(file, delimiter=";")
        went = (last["SuccessfulCall(C)"], last["FailedCall(C)"])
        self.assertEqual(went, (str(CALLS_A_SECOND * seconds), "0"), "successful and failed calls")

    def test_a_call_is_recorded_during_a_flood(self):
        floods, said = [], sound.noise(SECONDS + MARGIN, seed=1)
        self.leave_message("Before", said)  # allocates the memory that a call of this length needs
        lines, before = len(self.orven.log()), self.memory()
        self.leave_message("Flooded", said, lambda: floods.append(self.flood(SECONDS)))
        self.assert_over(floods[0], SECONDS)
        self.assertLess(len(self.orven.log()) - lines, 2 * lines, "a refused call is not logged")
        if processes.SLOWNESS == 1:  # a sanitizer keeps freed memory
            processes.wait_for("The memory", lambda: self.memory() <= before + MEMORY_SLACK, FORGET_LIMIT)
        print(f"  memory {self.memory() - before:+d} KiB of {before} KiB", flush=True)
        self.orven.end()
        self.assert_message("Flooded", said)

    def test_an_idle_line_takes_one_call_of_a_flood(self):
        self.assert_over(self.flood(SHORT), SHORT)
        self.orven.wait_for("Idle[", LIMIT)
        self.assertEqual(self.orven.count("InCommingCall["), 1)
        said = sound.noise(2, seed=2)
        self.leave_message("After", said)
        self.orven.end()
        self.assert_message("After", said)
        self.assertEqual(self.callers_of_records(), ["Flood", "After"])


if __name__ == "__main__":
    harness.main()
