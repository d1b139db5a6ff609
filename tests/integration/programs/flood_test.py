#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Calls by the thousand: what they do to the one call that is being recorded, to the line and to the memory.
#
# sipp sends 500 INVITEs a second, each a call of its own, from one address; every second one is never finished by
# its ACK, as those of an attacker are not.

import csv
import os
import re

import harness
from harness import LIMIT, processes, sound

SCENARIO = os.path.join(harness.HERE, "flood_scenario.xml")
CALLS_A_SECOND = 500
SHORT, SECONDS = 2, int(os.environ.get("ORVEN_FLOOD_SECONDS", "5"))
# What is kept for a call without its ACK is forgotten after 64 x T1 = 32 s (RFC 3261, section 17.2.1, timer H).
FORGET_LIMIT = 60
MEMORY_SLACK = 4096  # KiB; a transaction for each call of a flood of 5 s would be 11,000
MARGIN = 2  # seconds by which the caller speaks longer than the flood lasts


class Flood:
    """sipp, and what it has counted."""

    def __init__(self, folder, port, seconds):
        scenario, self._counts = os.path.join(folder, "flood.xml"), os.path.join(folder, "counts.csv")
        with open(SCENARIO, encoding="utf-8") as file, open(scenario, "w", encoding="utf-8") as held:
            held.write(file.read().replace("HOLD", str((seconds + MARGIN) * 1000)))
        calls = str(CALLS_A_SECOND * seconds)
        command = ["sipp", f"127.0.0.1:{port}", "-sf", scenario, "-r", str(CALLS_A_SECOND), "-m", calls, "-l", calls]
        command += ["-i", "127.0.0.1", "-p", str(processes.free_port()), "-mi", "127.0.0.1", "-nostdin"]
        command += ["-mp", str(processes.free_port() & 0xFFFE), "-recv_timeout", str(LIMIT * 1000)]
        command += ["-trace_stat", "-stf", self._counts, "-fd", "1"]
        self._process = processes.start(command, os.path.join(folder, "sipp.log"), cwd=folder)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self._process, 5)

    def over(self):
        return self._process.poll() is not None

    def counts(self):
        """How many calls went as expected, and how many did not."""
        with open(self._counts, encoding="utf-8") as file:
            *_, last = csv.DictReader(file, delimiter=";")
        return int(last["SuccessfulCall(C)"]), int(last["FailedCall(C)"])


class FloodTest(harness.ProgramCase):
    def setUp(self):
        super().setUp()
        self.orven.change_settings({"SecSilence": 60})
        self.orven.start_and_wait()

    def memory(self):
        """Resident, in KiB."""
        with open(f"/proc/{self.orven.process.pid}/status", encoding="ascii") as status:
            return int(re.search(r"VmRSS:\s+(\d+)", status.read())[1])

    def flood(self, seconds):
        return self.enterContext(Flood(self.folder, self.orven.port, seconds))

    def assert_over(self, flood, seconds):
        processes.wait_for("The end of the flood", flood.over, LIMIT + seconds)
        self.assertEqual(flood.counts(), (CALLS_A_SECOND * seconds, 0), "as expected, and not")

    def assert_recorded(self, name, samples):
        """The call has one record, and its message is what was said, bit by bit."""

        def filed():
            return [record for record in self.orven.records() if record["Call_Name"] == name]

        (record,) = processes.wait_for("The record", filed, LIMIT)
        message = sound.read(self.orven.message(record))
        self.assertTrue(samples.tobytes() in message.tobytes())

    def test_a_call_is_recorded_meanwhile(self):
        floods, said = [], sound.noise(SECONDS + MARGIN, seed=1)
        self.leave_message("Before", said)  # takes the memory that a call of this length takes
        lines, before = len(self.orven.log()), self.memory()
        self.leave_message("Flooded", said, lambda: floods.append(self.flood(SECONDS)))
        self.assert_over(floods[0], SECONDS)
        self.assert_recorded("Flooded", said)
        self.assertLess(len(self.orven.log()) - lines, 2 * lines, "a refused call is not logged")
        if processes.SLOWNESS == 1:  # a sanitizer keeps freed memory
            processes.wait_for("The memory", lambda: self.memory() <= before + MEMORY_SLACK, FORGET_LIMIT)
        print(f"  memory {self.memory() - before:+d} KiB of {before} KiB", flush=True)
        self.orven.end()

    def test_an_idle_line_takes_one_of_them(self):
        self.assert_over(self.flood(SHORT), SHORT)
        self.orven.wait_for("Idle[", LIMIT)
        self.assertEqual(self.orven.count("InCommingCall["), 1)
        self.leave_message("After", sound.noise(2, seed=2))
        self.assert_recorded("After", sound.noise(2, seed=2))
        self.assertEqual(len(self.orven.records()), 2)
        self.orven.end()


if __name__ == "__main__":
    harness.main()
