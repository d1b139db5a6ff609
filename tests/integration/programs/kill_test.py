#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Kills the program at random moments of real calls, starts it again, and counts what was lost.
#
#     kill_test.py PROGRAM [KILLS [SEED]]
#
# sipp calls ten programs in parallel, each with its own folder and port. A kill comes at any time of the call or a few
# milliseconds after a step in the system log. What must exist after the next start follows from what the killed program
# had logged and from how long it had been recording.

import glob
import itertools
import os
import random
import sqlite3
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

import harness
from harness import machine, processes, sound

AT_A_TIME = 10
NOISE_SECONDS = 10
BEHIND_SECONDS = 1.0  # how much of a message a crash may cost
CALL_SECONDS = 4.5  # from the offer until a long call is filed
STEPS = ["InCommingCall[", "CallerID[", "Ring[", "LineAnswer[", "Connected[", "Play Beep", "Start Record Message[",
         "Disconnected[", "Record Message ", "Close PreScreen", "Idle["]  # fmt: skip


@dataclass
class Call:
    """One call and the kill during it."""

    name: str
    number: str
    lines: list = field(default_factory=list)  # of the log: (when it was seen, time text, text)
    killed_at: float = 0.0

    def seen(self, start):
        """Returns when a line that starts with `start` was seen; None if it was not written."""
        return next((when for when, _, text in self.lines if text.startswith(start)), None)

    def after(self, start):
        """Returns whether anything was logged after that line. (A step and its line are not simultaneous.)"""
        return any(text.startswith(start) for _, _, text in self.lines[:-1])

    def recorded(self):
        """Returns the seconds that had certainly been recorded."""
        begun = self.seen("Start Record Message[")
        return 0 if begun is None else (self.seen("Disconnected[") or self.killed_at) - begun


class Victim:
    """A program that is killed again and again."""

    def __init__(self, folder, index, seed, template):
        self.index, self.folder = index, os.path.join(folder, str(index))
        self.faults, self.behind, self.known, self.in_call, self.messages = [], 0.0, 0, 0, 0
        self.random, self.noise = random.Random(f"{seed}-{index}"), sound.noise(NOISE_SECONDS, seed)
        os.makedirs(self.folder)
        code_of = {value: code for code, value in enumerate(sound.MU_LAW)}
        with open(os.path.join(self.folder, "noise.ul"), "wb") as file:
            file.write(bytes(code_of[sample] for sample in self.noise))
        self.orven = machine.Machine(harness.PROGRAM, self.folder, arguments=["-st"], template=template,
                                     variables=harness.QUIET)  # fmt: skip

    def kill_often(self, kills):
        try:
            last = None
            for number in range(1, kills + 1):
                with self.orven:
                    last = self.start_and_kill(last, f"Caller {self.index}-{number}", f"555{self.index:02}{number:04}")
            with self.orven:
                self.start_and_check(last)
                self.orven.end()
        except (processes.Failed, OSError, sqlite3.Error) as failure:
            self.faults.append(f"{self.folder}: {failure}")
        return self

    def start_and_kill(self, last, *caller):
        self.start_and_check(last)
        call = Call(*caller)
        step = self.random.choice(STEPS) if self.random.random() < 0.5 else None
        delay = self.random.uniform(0, 0.004 if step else CALL_SECONDS)
        begun = time.monotonic()
        moment = begun + (CALL_SECONDS + 2 if step else delay)
        words = {"NAME": call.name, "NUMBER": call.number, "SOUND": os.path.join(self.folder, "noise.ul"),
                 "TALK": self.random.randint(700, 3300)}  # fmt: skip
        sipp = harness.sipp(self.folder, self.orven.port, "kill_scenario.xml", words, "-m", 1)
        processes.hurry(sipp)
        try:
            while (now := time.monotonic()) < moment:
                for line in self.steps()[len(call.lines) :]:
                    call.lines.append((now, *line))
                    if step and line[1].startswith(step):
                        moment, step = now + delay, None
                time.sleep(0.001)
        finally:
            self.orven.process.kill()
            self.orven.process.wait()
            call.killed_at = time.monotonic()
            sipp.kill()
            sipp.wait()
        call.lines += [(call.killed_at, *line) for line in self.steps()[len(call.lines) :]]
        self.in_call += bool(call.lines)
        for path in glob.glob(self.orven.path("Log/*_Sys.txt")):
            with open(path, "rb") as log:
                self.require(call, log.read().endswith(b"\r\n"), "half a line in the log")
        return call

    def steps(self):
        """Returns the log from the first line of the call: (time text, text)."""
        lines = [tuple(line.split(" : ", 1)) for line in self.orven.log_since_start()]
        return list(itertools.dropwhile(lambda line: not line[1].startswith("InCommingCall["), lines))

    def require(self, call, kept, text):
        if not kept:
            self.faults.append(f"{self.folder}, {call.name}: {text}\n  log {[line[2] for line in call.lines]}")

    def start_and_check(self, call):
        """Starts the program after a kill and checks that exactly what must be left of the call exists."""
        self.orven.start_and_wait()
        if not call:
            return
        calls = sqlite3.connect(self.orven.path("Calls"))
        self.require(call, calls.execute("pragma integrity_check").fetchone() == ("ok",), "the records are damaged")
        self.require(call, calls.execute("select count(*) from OpenCalls").fetchone() == (0,), "a call is left open")
        calls.close()
        records = self.orven.records()
        new, self.known = records[self.known :], len(records)
        least, most = int(call.after("InCommingCall[")), int(bool(call.lines))
        self.require(call, least <= len(new) <= most, f"lost or filed twice: {new}")
        for record in new:
            self.check_record(call, record)
        names = os.listdir(self.orven.path("Messages"))
        self.require(call, len(names) == sum(r["Type"] != "-1" for r in records), f"left over: {names}")
        self.require(call, not glob.glob(self.orven.path(".call-*")), "a note was left over")

    def check_record(self, call, record):
        name = (record["Call_Date"] + "_" + record["Call_Time"]).replace("/", "-").replace(":", "-") + ".wav"
        caller = call.name == record["Call_Name"] and call.number == record["Call_Number"]
        self.require(call, caller or not call.after("CallerID["), "wrong caller")
        self.require(call, record["Call_Time"] in {line[1] for line in call.lines}, "wrong time")
        self.require(call, record["Call_Massage_Name"] == name, "wrong message name")
        samples = [] if record["Type"] == "-1" else sound.read(self.orven.message(record))
        seconds = len(samples) / sound.RATE
        self.behind = max(self.behind, call.recorded() - seconds)
        self.require(call, call.recorded() - seconds <= BEHIND_SECONDS, f"{seconds:.2f} s of {call.recorded():.2f}")
        if record["Type"] == "-1":
            return
        self.messages += 1
        self.require(call, abs(seconds - float(record["Type"])) <= 0.01, f"the message has {seconds:.2f} s: {record}")
        said = self.noise.tobytes()
        blocks = [samples[i : i + sound.BLOCK].tobytes() for i in range(0, len(samples) - sound.BLOCK, sound.BLOCK)]
        found = sum(block in said for block in blocks)
        self.require(call, found >= 0.8 * len(blocks), "the message is not what the caller said")


def main(kills=20, seed=random.SystemRandom().randrange(10**6)):
    print(f"Killing the program {kills} times; seed {seed}", flush=True)
    workers = min(AT_A_TIME, int(kills))
    shares = [int(kills) // workers + (index < int(kills) % workers) for index in range(workers)]
    with tempfile.TemporaryDirectory(prefix="orven-kill-") as folder, ThreadPoolExecutor(workers) as threads:
        template = harness.make_template(folder)
        victims = list(threads.map(lambda i: Victim(folder, i, seed, template).kill_often(shares[i]), range(workers)))
    faults = [fault for victim in victims for fault in victim.faults]
    in_call, messages = (sum(getattr(victim, what) for victim in victims) for what in ("in_call", "messages"))
    if in_call < 0.75 * int(kills):
        faults.append("Too few of the kills were in a call: this run proves nothing")
    behind = max(victim.behind for victim in victims)
    print(f"{in_call} kills were in a call; {messages} messages; the one furthest behind: {behind:.2f} s")
    print("".join("FAULT " + text + "\n" for text in faults[:20]))
    return 1 if faults else 0


if __name__ == "__main__":
    harness.PROGRAM = os.path.abspath(sys.argv[1])
    sys.exit(main(*sys.argv[2:]))
