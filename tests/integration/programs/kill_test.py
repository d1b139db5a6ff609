#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Kills the program at random moments of real calls, starts it again, and counts what was lost.

    kill_test.py PROGRAM [KILLS [SEED]]

Ten programs, each in a folder and on a port of its own, are called by sipp at a time. A moment is either any
time of the call or a few milliseconds after a step that the system log names. What must be there after the next
start follows from what the killed program had written to its log and from how long it had been recording.
"""

import audioop
import glob
import itertools
import os
import random
import shutil
import sqlite3
import sys
import tempfile
import threading
import time
import wave
from dataclasses import dataclass, field

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import orven_test  # noqa: E402
import processes  # noqa: E402
import sound  # noqa: E402

AT_A_TIME = 10
SCENARIO = os.path.join(os.path.dirname(os.path.abspath(__file__)), "kill_scenario.xml")
NOISE_SECONDS = 10
BEHIND_SECONDS = 1.0  # what a crash may cost of a message
CALL_SECONDS = 4.5  # from the offer until a long call is filed
STEPS = ["InCommingCall[", "CallerID[", "Ring[", "LineAnswer[", "Connected[", "Play Beep", "Start Record Message[",
         "MonitorDigit[", "Remote Control", "Disconnected[", "Record Message ", "Close PreScreen", "Idle["]  # fmt: skip
PASSWORD = "4711"

FIRST_KEY = '<pause milliseconds="150"/>'  # nobody keys before the greeting is heard

KEY = """<send><![CDATA[

INFO [next_url] SIP/2.0
Via: SIP/2.0/[transport] [local_ip]:[local_port];branch=[branch]
[last_From:]
[last_To:]
Call-ID: [call_id]
CSeq: {number} INFO
Content-Type: application/dtmf-relay
Content-Length: [len]

Signal={key}
Duration=100
]]></send><recv response="200"></recv><pause milliseconds="60"/>
"""


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


class Tally:
    """What happened to all programs together."""

    def __init__(self):
        self.lock = threading.Lock()
        self.counts = dict.fromkeys(
            ["kills", "in_call", "ended_before", "recovered", "owner", "unlisted", "messages", "lost", "twice"], 0
        )
        self.behind = 0.0
        self.faults = []

    def count(self, **counts):
        with self.lock:
            for name, number in counts.items():
                self.counts[name] += number

    def fault(self, text):
        with self.lock:
            self.faults.append(text)


class Victim:
    """One program that is killed again and again."""

    def __init__(self, index, folder, seed, tally, noise):
        self.index, self.tally, self.noise = index, tally, noise
        self.random = random.Random(f"{seed}-{index}")
        self.folder, self.home = folder, os.path.join(folder, "home")
        self.port = processes.free_port()
        self.rounds, self.known, self.log_size = 0, 0, 0
        os.makedirs(self.home)
        self.write("lines.ini", f"[Test]\ntype = sip\nlisten = 127.0.0.1:{self.port}\nring_seconds = 1\n")
        with orven_test.Orven(self.home, ["-st"]) as orven:
            orven.wait_for("LineOpen[")
            orven.end()
        self.turn_over()
        sound.write(self.path("Greets/Default.wav"), sound.silence(0.3))
        settings = self.read("registry.reg").replace('"NumOfRing"="4"', '"NumOfRing"="1"')
        self.settings = "\n".join(
            f'"Pass"="{PASSWORD}"' if line.startswith('"Pass"=') else line for line in settings.split("\n")
        )

    def path(self, name):
        return os.path.join(self.home, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def kill_often(self, kills):
        last = None
        for _ in range(kills):
            last = self.round(last)
        with self.start() as orven:
            self.check(last)
            if orven.end() != 0:
                self.tally.fault(f"{self.home}: the last exit was not a clean one")

    def start(self):
        """Started, and ready for calls: what was interrupted has been dealt with."""
        orven = orven_test.Orven(self.home, ["-st"])
        try:
            processes.wait_for("The open line", lambda: any("LineOpen[" in t for _, t in self.news()), 60)
        except BaseException:
            orven.__exit__()
            raise
        return orven

    def news(self):
        """The lines of the system log since it was last turned over: (time text, text)."""
        log = self.whole_log()
        return [tuple(line.split(" : ", 1)) for line in log[self.log_size :].split("\r\n")[:-1]]

    def whole_log(self):
        """The log, whose end is one of a line: of a line that is just being written half may be seen for a moment,
        where it reaches into another page of the file."""
        try:
            return processes.wait_for("A line's end", self.ended_log, 2)[0]
        except processes.Failed:
            self.tally.fault(f"{self.home}: half a line in the log: {self.log()[-80:]!r}")
            return self.log()

    def ended_log(self):
        log = self.log()
        return [log] if not log or log.endswith("\r\n") else None

    def log(self):
        paths = sorted(glob.glob(self.path("Log/*_Sys.txt")), key=os.path.getmtime)
        return "".join(self.read(os.path.relpath(path, self.home)) for path in paths)

    def turn_over(self):
        self.log_size = len(self.log())

    def steps(self):
        """The lines from the call's first."""
        return list(itertools.dropwhile(lambda line: not line[1].startswith("InCommingCall["), self.news()))

    def round(self, last):
        self.rounds += 1
        this = Round(f"Caller {self.index}-{self.rounds}", f"555{self.index:02}{self.rounds:04}")
        this.owner = self.random.random() < 0.1
        this.unlisted = not this.owner and self.random.random() < 0.15
        # The call before is dealt with under the settings that it had.
        with self.start() as orven:
            if last:
                self.check(last)
            orven.process.kill()
            orven.process.wait()
        self.turn_over()
        self.write("registry.reg", self.settings.replace(
            '"ListMessageOnly"="0"', f'"ListMessageOnly"="{int(this.unlisted)}"'))  # fmt: skip
        with self.start() as orven:
            self.call_and_kill(this, orven)
        self.tally.count(kills=1, in_call=int(bool(this.lines)))
        this.filed_before = len(self.records(copied=True)) - self.known
        self.turn_over()
        return this

    def call_and_kill(self, this, orven):
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
            orven.process.kill()
            this.killed_at = time.monotonic()
            orven.process.wait()
            sipp.kill()
            sipp.wait()
        this.lines += [(this.killed_at, *line) for line in self.steps()[len(this.lines) :]]

    def dial(self, this):
        keys = [KEY.format(number=number, key=key) for number, key in enumerate(PASSWORD + "*", 10)]
        with open(SCENARIO, encoding="utf-8") as file:
            scenario = file.read()
        words = {
            "NAME": this.name,
            "NUMBER": this.number,
            "SOUND": self.noise,
            "KEYS": "".join([FIRST_KEY, *keys]) if this.owner else "",
            "TALK": str(self.random.randint(700, 3300)),
        }
        for word, text in words.items():
            scenario = scenario.replace(word, text)
        path = os.path.join(self.folder, "call.xml")
        with open(path, "w", encoding="utf-8") as file:
            file.write(scenario)
        ports = ["-mi", "127.0.0.1", "-p", str(processes.free_port()), "-mp", str(processes.free_port() & 0xFFFE)]
        command = ["sipp", f"127.0.0.1:{self.port}", "-sf", path, "-m", "1", "-nostdin", "-i", "127.0.0.1"]
        sipp = processes.start(command + ports, os.path.join(self.folder, "sipp.log"), cwd=self.folder)
        processes.hurry(sipp)
        return sipp

    def records(self, copied=False):
        """The records; `copied`: without touching what a killed program left of its database."""
        place = self.home
        if copied:
            place = os.path.join(self.folder, "copy")
            shutil.rmtree(place, True)
            os.makedirs(place)
            for path in glob.glob(self.path("Calls*")):
                shutil.copy(path, place)
        with sqlite3.connect(os.path.join(place, "Calls")) as calls:
            if calls.execute("pragma integrity_check").fetchone() != ("ok",):
                self.tally.fault(f"{self.home}: the records are damaged")
            rows = calls.execute(
                "select Call_Name, Call_Number, Call_Date, Call_Time, Call_Massage_Name, Type from Calls order by rowid"
            ).fetchall()
        calls.close()
        return rows

    def check(self, this):
        """Whether the start after a kill left of its call exactly what there must be."""
        records = self.records()
        new, self.known = records[self.known :], len(records)
        told = sum("Recovered call" in text for _, text in self.news())

        def fault(text, **counts):
            self.tally.count(**counts)
            self.tally.fault(f"{self.home}, {this.name}: {text}\n  records {new}\n  log {[l[2] for l in this.lines]}")

        least, most = self.expected(this)
        if len(new) < least:
            fault("the call was lost", lost=1)
        if len(new) > most:
            fault("there are too many records", twice=1)
        if told != len(new) - this.filed_before:
            fault(f"{told} recoveries in the log, {this.filed_before} filed before")
        self.tally.count(recovered=told, ended_before=this.filed_before, owner=int(most == 0 and this.owner),
                         unlisted=int(most == 0 and this.unlisted))  # fmt: skip
        for record in new:
            self.check_record(this, record, fault)
        left = [name for name in os.listdir(self.path("Messages")) if not name.endswith(".wav") or ".kept" in name]
        sounds = len(glob.glob(self.path("Messages/*.wav")))
        if left or os.path.exists(self.path("Call.journal")) or sounds != sum(r[5] != "-1" for r in records):
            fault(f"left over: {left}, {sounds} sounds, journal {os.path.exists(self.path('Call.journal'))}")

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

    def check_record(self, this, record, fault):
        name, number, date, time_text, message, length = record
        if this.after("CallerID[") and (name, number) != (this.name, this.number):
            fault("another caller", lost=1)
        if time_text not in {line[1] for line in this.lines}:
            fault("another time")
        if message != (date + "_" + time_text).replace("/", "-").replace(":", "-") + ".wav":
            fault("another message's name")
        recorded = this.recorded()
        if length == "-1":
            if this.unlisted or (recorded or 0) > BEHIND_SECONDS:
                fault(f"{recorded:.2f} seconds were recorded, and there is no message", lost=1)
            return
        self.tally.count(messages=1)
        with wave.open(self.path("Messages/" + message)) as file:
            seconds = file.getnframes() / file.getframerate()
            sent = audioop.lin2ulaw(file.readframes(file.getnframes()), 2)
        behind = (recorded or 0) - seconds
        self.tally.behind = max(self.tally.behind, behind)
        if behind > BEHIND_SECONDS or abs(seconds - float(length)) > 0.01:
            fault(f"{recorded:.2f} seconds were recorded, {seconds:.2f} are there, the record says {length}", lost=1)
        with open(self.noise, "rb") as file:
            said = file.read()
        blocks = [sent[i : i + 160] for i in range(0, len(sent) - 160, 160)]
        if sum(block in said for block in blocks) < 0.8 * len(blocks):
            fault("the message is not what the caller said", lost=1)


def kill(kills, seed):
    print(f"Killing the program {kills} times; seed {seed}", flush=True)
    tally = Tally()
    with tempfile.TemporaryDirectory(prefix="orven-kill-") as folder:
        noise = os.path.join(folder, "noise.ul")
        with open(noise, "wb") as file:
            # Without the second zero of mu-law, so that what is recorded gives back what was sent.
            file.write(random.Random(seed).randbytes(NOISE_SECONDS * sound.RATE).replace(b"\x7f", b"\xff"))

        def work(index, share):
            try:
                place = os.path.join(folder, str(index))
                os.makedirs(place)
                Victim(index, place, seed, tally, noise).kill_often(share)
            except BaseException as failure:
                tally.fault(f"{index}: {failure!r}")

        workers = min(AT_A_TIME, kills)
        shares = [kills // workers + (index < kills % workers) for index in range(workers)]
        threads = [threading.Thread(target=work, args=one) for one in enumerate(shares)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    counts = tally.counts
    print("{kills} kills, {in_call} of them in a call: {ended_before} calls were filed before the kill, {recovered} by "
          "the next start; {owner} were the owner's, {unlisted} without a message were not to be listed; {messages} "
          "messages".format(**counts))  # fmt: skip
    print(f"The message furthest behind: {max(tally.behind, 0):.2f} s")
    print(f"Lost: {counts['lost']}. Filed twice: {counts['twice']}.")
    for text in tally.faults[:20]:
        print("FAULT " + text)
    if counts["in_call"] < 0.75 * kills or counts["kills"] != kills:
        print("FAULT Too few of the kills were in a call: this run says nothing")
        return False
    return not tally.faults


if __name__ == "__main__":
    orven_test.PROGRAM = os.path.abspath(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    sys.exit(not kill(count, sys.argv[3] if len(sys.argv) > 3 else str(random.SystemRandom().randrange(10**6))))
