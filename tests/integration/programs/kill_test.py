#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Kills the program at random moments of real calls, starts it again, and counts what was lost.
#
#     kill_test.py PROGRAM [KILLS [SEED]]
#
# Ten programs, each with its own folder and port, are called by sipp side by side. A moment is either any time of the
# call or a few milliseconds after a step in the system log. What must be there after the next start follows from what
# the killed program had logged and from how long it had been recording.

import glob
import itertools
import os
import random
import re
import shutil
import sqlite3
import sys
import tempfile
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

import harness
from harness import machine, processes, sound

AT_A_TIME = 10
SCENARIO = os.path.join(harness.HERE, "kill_scenario.xml")
NOISE_SECONDS = 10
BEHIND_SECONDS = 1.0  # what a crash may cost of a message
CALL_SECONDS = 4.5  # from the offer until a long call is filed
STEPS = ["InCommingCall[", "CallerID[", "Ring[", "LineAnswer[", "Connected[", "Play Beep", "Start Record Message[",
         "MonitorDigit[", "Remote Control", "Disconnected[", "Record Message ", "Close PreScreen", "Idle["]  # fmt: skip
PASSWORD = "4711"
COUNTED = ("kills", "in_call", "filed_before", "recovered", "owner", "unlisted", "messages")

FIRST_KEY = '<pause milliseconds="150"/>'  # nobody keys before the greeting is heard

@dataclass
class Round:
    """One call and the kill in it."""

    name: str
    number: str
    owner: bool = False  # the caller keys the password
    unlisted: bool = False  # calls without a message are not to be filed
    lines: list = field(default_factory=list)  # what the log got: (when it was seen, time text, text)
    killed_at: float = 0.0
    filed_before: int = 0  # records of this call when the program was killed

    def seen(self, start):
        """When the line that begins so was seen; None when it was not written."""
        return next((when for when, _, text in self.lines if text.startswith(start)), None)

    def after(self, start):
        """Whether something was written after that line."""
        return any(text.startswith(start) for _, _, text in self.lines[:-1])

    def recorded(self):
        """The seconds that had surely been recorded; None when no recording was begun."""
        begun = self.seen("Start Record Message[")
        return None if begun is None else (self.seen("Disconnected[") or self.killed_at) - begun


class Victim:
    """One program that is killed again and again."""

    def __init__(self, folder, index, seed, template):
        self.index, self.folder = index, os.path.join(folder, str(index))
        self.counts, self.faults, self.behind, self.known = Counter(), [], 0.0, 0
        self.random, self.noise = random.Random(f"{seed}-{index}"), sound.noise(NOISE_SECONDS, seed)
        os.makedirs(self.folder)
        code_of = {value: code for code, value in enumerate(sound.MU_LAW)}
        with open(os.path.join(self.folder, "noise.ul"), "wb") as file:
            file.write(bytes(code_of[sample] for sample in self.noise))
        self.orven = machine.Machine(harness.PROGRAM, self.folder, arguments=["-st"], template=template,
                                     variables=harness.QUIET)  # fmt: skip
        self.orven.change_settings({"Pass": PASSWORD})

    def kill_often(self, kills):
        try:
            last = None
            for number in range(1, kills + 1):
                last = self.round(number, last)
            with self.orven:
                self.orven.start_and_wait()
                self.check(last)
                self.orven.end()
        except (processes.Failed, OSError, sqlite3.Error) as failure:
            self.faults.append(f"{self.folder}: {failure}")
        return self

    def kill(self):
        """In the middle of whatever it does; its log still ends with a whole line."""
        self.orven.process.kill()
        self.orven.process.wait()
        for path in glob.glob(self.orven.path("Log/*_Sys.txt")):
            with open(path, "rb") as log:
                if not (content := log.read()).endswith(b"\r\n"):
                    self.faults.append(f"half a line in the log: {content[-80:]!r}")

    def steps(self):
        """The lines from the call's first: (time text, text)."""
        lines = [tuple(line.split(" : ", 1)) for line in self.orven.log_since_start()]
        return list(itertools.dropwhile(lambda line: not line[1].startswith("InCommingCall["), lines))

    def round(self, number, last):
        this = Round(f"Caller {self.index}-{number}", f"555{self.index:02}{number:04}")
        this.owner = self.random.random() < 0.1
        this.unlisted = not this.owner and self.random.random() < 0.15
        if last:  # the call before is dealt with under the settings that it had
            with self.orven:
                self.orven.start_and_wait()
                self.check(last)
                self.kill()
        self.orven.change_settings({"ListMessageOnly": int(this.unlisted)})
        with self.orven:
            self.orven.start_and_wait()
            self.call_and_kill(this)
        self.counts.update(kills=1, in_call=int(bool(this.lines)))
        this.filed_before = len(self.records_in_copy()) - self.known
        return this

    def call_and_kill(self, this):
        step = self.random.choice(STEPS) if self.random.random() < 0.5 else None
        delay = self.random.uniform(0, 0.004 if step else CALL_SECONDS)
        begun = time.monotonic()
        latest = begun + CALL_SECONDS + 2
        moment = None if step else begun + delay
        sipp = self.dial(this)
        try:
            while (now := time.monotonic()) < (moment or latest):
                for line in self.steps()[len(this.lines) :]:
                    this.lines.append((now, *line))
                    if moment is None and step and line[1].startswith(step):
                        moment = now + delay
                time.sleep(0.001)
        finally:
            self.kill()
            this.killed_at = time.monotonic()
            sipp.kill()
            sipp.wait()
        this.lines += [(this.killed_at, *line) for line in self.steps()[len(this.lines) :]]

    def dial(self, this):
        with open(os.path.join(harness.HERE, "kill_key.xml"), encoding="utf-8") as file:
            key = file.read()
        keys = [key.format(number=number, key=key_pressed) for number, key_pressed in enumerate(PASSWORD + "*", 10)]
        path, words = os.path.join(self.folder, "call.xml"), {
            "NAME": this.name,
            "NUMBER": this.number,
            "SOUND": os.path.join(self.folder, "noise.ul"),
            "KEYS": "".join([FIRST_KEY, *keys]) if this.owner else "",
            "TALK": str(self.random.randint(700, 3300)),
        }  # fmt: skip
        with open(SCENARIO, encoding="utf-8") as file, open(path, "w", encoding="utf-8") as scenario:
            scenario.write(re.sub("|".join(words), lambda word: words[word[0]], file.read()))
        ports = ["-mi", "127.0.0.1", "-p", str(processes.free_port()), "-mp", str(processes.free_port() & 0xFFFE)]
        command = ["sipp", f"127.0.0.1:{self.orven.port}", "-sf", path, "-m", "1", "-nostdin", "-i", "127.0.0.1"]
        sipp = processes.start(command + ports, os.path.join(self.folder, "sipp.log"), cwd=self.folder)
        processes.hurry(sipp)
        return sipp

    def records_in_copy(self):
        """The records, without touching what a killed program left of its database."""
        copy = os.path.join(self.folder, "copy")
        shutil.rmtree(copy, True)
        os.makedirs(copy)
        for path in glob.glob(self.orven.path("Calls*")):
            shutil.copy(path, copy)
        return self.orven.records(os.path.join(copy, "Calls"))

    def check(self, this):
        """Whether the start after a kill left of its call exactly what there must be."""
        calls = sqlite3.connect(self.orven.path("Calls"))
        integrity = calls.execute("pragma integrity_check").fetchone()
        calls.close()
        records, told = self.orven.records(), self.orven.count("Recovered call")
        new, self.known = records[self.known :], len(records)

        def require(kept, text, **counts):
            if not kept:
                self.counts.update(counts)
                log = [line[2] for line in this.lines]
                self.faults.append(f"{self.folder}, {this.name}: {text}\n  records {new}\n  log {log}")

        least, most = self.expected(this)
        require(integrity == ("ok",), "the records are damaged")
        require(len(new) >= least, "the call was lost", lost=1)
        require(len(new) <= most, "there are too many records", twice=1)
        require(told == len(new) - this.filed_before, f"{told} recoveries logged, {this.filed_before} filed before")
        self.counts.update(recovered=told, filed_before=this.filed_before, owner=int(most == 0 and this.owner),
                           unlisted=int(most == 0 and this.unlisted))  # fmt: skip
        for record in new:
            self.check_record(this, record, require)
        names = os.listdir(self.orven.path("Messages"))
        left = [name for name in names if not name.endswith(".wav") or ".kept" in name]
        require(not left and len(names) == sum(r["Type"] != "-1" for r in records), f"left over: {names}")
        require(not os.path.exists(self.orven.path("Call.journal")), "the journal was left over")

    def expected(self, this):
        """The fewest and the most records of the call. A step and its line in the log are not one instant, so that
        the last line that was written leaves both."""
        if not this.lines or this.seen("Remote Control") is not None:
            return 0, 0
        if not this.after("InCommingCall["):
            return 0, 1
        if this.owner and this.lines[-1][2].startswith("MonitorDigit["):
            return 0, 1
        if not this.unlisted:
            return 1, 1
        recorded = this.recorded()
        if recorded is None:
            return 0, 0
        return int(recorded > BEHIND_SECONDS), 1

    def check_record(self, this, record, require):
        length, message, caller = record["Type"], record["Call_Massage_Name"], (record["Call_Name"], record["Call_Number"])
        name = (record["Call_Date"] + "_" + record["Call_Time"]).replace("/", "-").replace(":", "-") + ".wav"
        require(not this.after("CallerID[") or caller == (this.name, this.number), "another caller", lost=1)
        require(record["Call_Time"] in {line[1] for line in this.lines}, "another time")
        require(message == name, "another message's name")
        recorded = this.recorded() or 0
        if length == "-1":
            return require(not this.unlisted and recorded <= BEHIND_SECONDS, f"no message of {recorded} s", lost=1)
        samples = sound.read(self.orven.message(record))
        seconds = len(samples) / sound.RATE
        self.counts.update(messages=1)
        self.behind = max(self.behind, recorded - seconds)
        require(recorded - seconds <= BEHIND_SECONDS, f"{seconds:.2f} s of {recorded:.2f} are there", lost=1)
        require(abs(seconds - float(length)) <= 0.01, f"the message has {seconds:.2f} s, not {length}", lost=1)
        said = self.noise.tobytes()
        blocks = [samples[i : i + sound.BLOCK].tobytes() for i in range(0, len(samples) - sound.BLOCK, sound.BLOCK)]
        found = sum(block in said for block in blocks)
        return require(found >= 0.8 * len(blocks), "the message is not what the caller said", lost=1)


def main(kills=20, seed=random.SystemRandom().randrange(10**6)):
    print(f"Killing the program {kills} times; seed {seed}", flush=True)
    workers = min(AT_A_TIME, int(kills))
    shares = [int(kills) // workers + (index < int(kills) % workers) for index in range(workers)]
    with tempfile.TemporaryDirectory(prefix="orven-kill-") as folder, ThreadPoolExecutor(workers) as threads:
        template = harness.make_template(folder)
        victims = list(threads.map(lambda i: Victim(folder, i, seed, template).kill_often(shares[i]), range(workers)))
    counts, faults = sum((victim.counts for victim in victims), Counter()), sum((v.faults for v in victims), [])
    if counts["in_call"] < 0.75 * int(kills) or counts["kills"] != int(kills):
        faults.append("Too few of the kills were in a call: this run says nothing")
    print("{} kills, {} of them in a call: {} calls were filed before the kill, {} by the next start; {} were the owner's, "
          "{} without a message were not to be listed; {} messages".format(*(counts[name] for name in COUNTED)))  # fmt: skip
    print(f"The message furthest behind: {max(victim.behind for victim in victims):.2f} s")
    print(f"Lost: {counts['lost']}. Filed twice: {counts['twice']}.")
    print("".join("FAULT " + text + "\n" for text in faults[:20]))
    return 1 if faults else 0


if __name__ == "__main__":
    harness.PROGRAM = os.path.abspath(sys.argv[1])
    sys.exit(main(*sys.argv[2:]))
