#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Calls by the thousand: what they do to the one call that is being recorded, to the line and to the memory.

    flood_test.py PROGRAM [SECONDS]

sipp sends 500 INVITEs a second, each a call of its own, from one address; every second one is never finished by
its ACK, as those of an attacker are not.
"""

import array
import audioop
import csv
import os
import random
import re
import sys
import unittest

import orven_test
from orven_test import Orven, OrvenCase, processes, sound, telephone

SCENARIO = os.path.join(os.path.dirname(os.path.abspath(__file__)), "flood_scenario.xml")
CALLS_A_SECOND = 500
SHORT = SECONDS = 5
LIMIT = 30  # seconds, for whatever is waited for
# What is kept for a call without its ACK is forgotten after 64 x T1 = 32 s (RFC 3261, section 17.2.1, timer H).
FORGET_LIMIT = 60
MEMORY_SLACK = 4096  # KiB; a transaction for each call of the short flood would be 11,000
MARGIN = 2  # seconds by which the caller speaks longer than the flood lasts


def noise(seconds):
    """Samples that mu-law keeps as they are."""
    codes = random.Random(1).randbytes(int(seconds * sound.RATE)).replace(b"\x7f", b"\xff")
    return array.array("h", audioop.ulaw2lin(codes, 2))


class Flood:
    """sipp, and what it has counted."""

    def __init__(self, folder, port, seconds):
        """For so long; a call that is answered takes a little longer."""
        self._log, scenario = os.path.join(folder, "sipp.log"), os.path.join(folder, "flood.xml")
        self._counts = os.path.join(folder, "counts.csv")
        with open(SCENARIO, encoding="utf-8") as file:
            text = file.read().replace("HOLD", str((seconds + MARGIN) * 1000))
        with open(scenario, "w", encoding="utf-8") as file:
            file.write(text)
        calls = str(CALLS_A_SECOND * seconds)
        command = ["sipp", f"127.0.0.1:{port}", "-sf", scenario, "-r", str(CALLS_A_SECOND), "-m", calls, "-l", calls]
        command += ["-i", "127.0.0.1", "-p", str(processes.free_port()), "-mi", "127.0.0.1", "-nostdin"]
        command += ["-mp", str(processes.free_port() & 0xFFFE), "-recv_timeout", str(LIMIT * 1000)]
        command += ["-trace_stat", "-stf", self._counts, "-fd", "1"]
        self._process = processes.start(command, self._log, cwd=folder)

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


class FloodTest(OrvenCase):
    def setUp(self):
        super().setUp()
        self.first_start()
        settings = self.read("registry.reg")
        self.write("registry.reg", re.sub(r'"SecSilence"="\d+"', '"SecSilence"="60"', settings))
        sound.write(self.path("Greets/Default.wav"), sound.silence(0.3))
        self.orven = self.enterContext(Orven(self.home, ["-st"]))
        self.orven.wait_for("LineOpen[", LIMIT, 2)

    def memory(self):
        """Resident, in KiB."""
        with open(f"/proc/{self.orven.process.pid}/status", encoding="ascii") as status:
            return int(re.search(r"VmRSS:\s+(\d+)", status.read())[1])

    def lost_datagrams(self):
        """Those for which the line's socket had no room."""
        with open("/proc/net/udp", encoding="ascii") as sockets:
            rows = [line.split() for line in sockets]
        return sum(int(row[-1]) for row in rows[1:] if int(row[1].split(":")[1], 16) == self.port)

    def logged(self, text):
        return sum(text in line for line in self.orven.log())

    def flood(self, seconds):
        return self.enterContext(Flood(self.folder, self.port, seconds))

    def record(self, name, samples, meanwhile=lambda: None):
        """A whole call, with something that happens in its message."""
        caller = self.enterContext(telephone.Telephone(os.path.join(self.folder, name), name, "555"))
        caller.hurry()  # what it says is to leave it without a gap, too
        recordings, ends = self.logged("Start Record Message["), self.logged("Idle[")
        caller.dial(f"sip:machine@127.0.0.1:{self.port}")
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        self.orven.wait_for("Start Record Message[", LIMIT, recordings + 1)
        meanwhile()
        caller.say(samples, LIMIT + len(samples) / sound.RATE)
        caller.hang_up()
        caller.wait_event("CALL_CLOSED", LIMIT)
        self.orven.wait_for("Idle[", LIMIT, ends + 1)

    def assert_recorded(self, name, samples):
        """The call is filed once, and its message is what was said, bit by bit."""
        def filed():
            return [record for record in self.records() if record[0] == name]

        (record,) = processes.wait_for("The record", filed, LIMIT)
        message = sound.read(self.path("Messages/" + record[4]))
        self.assertTrue(samples.tobytes() in message.tobytes(), gap(samples, message))

    def test_a_call_is_recorded_meanwhile(self):
        floods = []
        self.record("Before", noise(SECONDS + MARGIN))  # leaves behind what a call of this length does
        lines, before = len(self.orven.log()), self.memory()
        self.record("Flooded", noise(SECONDS + MARGIN), lambda: floods.append(self.flood(SECONDS)))
        processes.wait_for("The end of the flood", floods[0].over, LIMIT)
        self.show("the call's end", before)
        self.assert_recorded("Flooded", noise(SECONDS + MARGIN))
        self.assertEqual(floods[0].counts(), (CALLS_A_SECOND * SECONDS, 0), "refused, and not")
        self.assertLess(len(self.orven.log()) - lines, 2 * lines, "a refused call says nothing")
        if processes.SLOWNESS == 1:  # a sanitizer keeps what is given back
            processes.wait_for("The memory", lambda: self.memory() <= before + MEMORY_SLACK, FORGET_LIMIT)
        self.show("the end", before)
        self.assertEqual(self.orven.end(), 0)

    def show(self, when, before):
        more, lost = self.memory() - before, self.lost_datagrams()
        print(f"  at {when} {more:+d} KiB of {before} KiB, {lost} datagrams lost by the system", flush=True)

    def test_an_idle_line_takes_one_of_them(self):
        sipp = self.flood(SHORT)
        processes.wait_for("The end of the flood", sipp.over, LIMIT + SHORT)
        self.assertEqual(sipp.counts(), (CALLS_A_SECOND * SHORT, 0))
        self.orven.wait_for("Idle[", LIMIT)
        self.assertEqual(self.logged("InCommingCall["), 1)
        self.record("After", noise(3))
        self.assert_recorded("After", noise(3))
        self.assertEqual(len(self.records()), 2)
        self.assertEqual(self.orven.end(), 0)


def gap(said, recorded):
    """In words, where the recording is not what was said."""
    recording = recorded.tobytes()
    blocks = [said[i : i + sound.BLOCK].tobytes() for i in range(0, len(said), sound.BLOCK)]
    missing = [number for number, block in enumerate(blocks) if block not in recording]
    places = [recording.find(block) // 2 for block in blocks]
    late = [(n, b - a - sound.BLOCK) for n, (a, b) in enumerate(zip(places, places[1:]), 1) if b - a != sound.BLOCK]
    return f"of {len(blocks)} blocks {len(missing)} are missing: {missing[:20]}; out of place: {late[:20]}"


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    orven_test.PROGRAM = os.path.abspath(sys.argv.pop(1))
    if len(sys.argv) > 1:
        SECONDS = int(sys.argv.pop(1))
    unittest.main(verbosity=2)
