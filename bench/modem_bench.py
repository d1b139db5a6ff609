#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures latency, audio quality and CPU use of calls over a voice modem.

    modem_bench.py PROGRAM EMULATOR

Runs in real time with an emulated modem, which answers a command after 20 to 100 ms and reports a key 40 ms
after it is pressed. The emulator takes the times.
"""

import array
import os
import statistics
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import machine  # noqa: E402
import modem_telephone  # noqa: E402
import processes  # noqa: E402
import sound  # noqa: E402

TIMES = 20
PROFILES = {"lucent": "16 bits", "silabs": "mu-law"}
GREETING_SECONDS, CALL_SECONDS, LONG_SECONDS = 10, 60, 100
SPOKEN_SECONDS = 45  # of the rest of the call
PASSWORD = "12"
LIMIT = 30  # seconds, for any wait


def compared(reference, recording):
    """Describes how well the recording matches the reference."""
    begin = recording.tobytes().find(reference[:8].tobytes())
    if begin < 0 or begin % 2:
        return "not found"
    found = recording[begin // 2 : begin // 2 + len(reference)]
    if found == reference:
        return "identical"
    first = next((i for i, (a, b) in enumerate(zip(reference, found)) if a != b), len(found))
    return f"differs from sample {first} of {len(reference)} on"


class Bench:
    """ORVEN with an emulated modem of one family, answering at the first ring."""

    def __init__(self, program, emulator, folder, profile):
        self.modem = modem_telephone.Modem(emulator, os.path.join(folder, "modem"), profile, options=["--times"])
        self.machine = machine.Machine(program, folder, modem=self.modem)
        self.idles = 0

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.machine.__exit__()
        self.modem.__exit__()

    def begin(self, greeting):
        self.machine.start_and_wait()
        sound.write(os.path.join(self.machine.home, "Greets", "Noise.wav"), greeting)
        self.machine.restart_with({"NumOfRing": "1", "Greeting": "Noise", "Pass": PASSWORD})

    def change_message(self, message):
        """Replaces the message of the latest call."""
        sound.write(self.machine.message(self.machine.records()[-1]), message)

    def wait(self, word, since=0):
        """Waits for a report from number `since` on. Returns its number and its time in seconds."""
        number = self.modem.wait(word, LIMIT, since, self.machine.look)
        return number, float(self.modem.news[number - 1].rsplit(" ", 1)[1])

    def ring(self):
        """Returns the seconds until the line was off-hook."""
        self.modem.look()
        since = len(self.modem.news)
        self.modem.do("ring")
        (_, rung), (_, answered) = (self.wait(word, since) for word in ("ring", "off-hook"))
        return answered - rung

    def end_call(self):
        """Ends the call: the handset of a parallel telephone is lifted."""
        self.modem.do("event H")
        self.idles += 1
        self.machine.wait_for("Idle[", LIMIT, self.idles)

    def press(self, key):
        """Returns the seconds from the report of the key until playback stopped."""
        self.modem.look()
        since = len(self.modem.news)
        self.modem.do("press " + key)
        _, pressed = self.wait("key", since)
        number, quiet = self.wait("idle", since)
        self.wait("playing", number)
        return quiet - pressed


def cpu_seconds(process):
    with open(f"/proc/{process.pid}/stat", encoding="ascii") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def print_times(what, seconds):
    times = f"median {statistics.median(seconds) * 1000:4.0f} ms   most {max(seconds) * 1000:4.0f} ms"
    print(f"{what:45} {times}   of {len(seconds)}", flush=True)


def sent_samples(bench, profile):
    sent = bench.modem.sent()
    if PROFILES[profile] == "mu-law":
        return array.array("h", (sound.MU_LAW[byte] for byte in sent))
    return array.array("h", sent[: len(sent) // 2 * 2])


def report_call(bench, profile, greeting):
    """A call of one minute with greeting and message."""
    spoken = sound.noise(SPOKEN_SECONDS, seed=2)
    path = os.path.join(bench.modem.folder, "spoken_noise.wav")
    sound.write(path, spoken)
    before = cpu_seconds(bench.machine.process)
    bench.ring()
    heard = bench.modem.heard
    bench.machine.wait_for("Start Record Message[", LIMIT)
    bench.wait("receiving", bench.wait("playing")[0])
    bench.modem.do("say " + path)
    processes.wait_for(
        "The end of the minute", lambda: len(heard()) >= CALL_SECONDS * sound.RATE, LONG_SECONDS, bench.machine.look
    )
    used = cpu_seconds(bench.machine.process) - before
    bench.end_call()
    records = processes.wait_for("The record of the call", bench.machine.records, LIMIT, bench.machine.look)
    message = sound.read(bench.machine.message(records[-1]))
    what = f"{profile}, {PROFILES[profile]}: "
    print(f"{what + 'the greeting, heard':45} {compared(greeting, heard())}")
    sent = between_silences(sent_samples(bench, profile))
    print(f"{what + 'audio from the modem, recorded':45} {compared(sent, message)}")
    print(f"{what + 'audio from the caller, recorded':45} {compared(spoken, message)}")
    print(f"{what + 'CPU for a minute of call':45} {used:.2f} s", flush=True)


def between_silences(samples):
    """The samples without the silence at both ends."""
    loud = [i for i, sample in enumerate(samples) if sample]
    return samples[loud[0] : loud[-1] + 1] if loud else samples


def report_times(bench):
    bench.change_message(sound.noise(LONG_SECONDS, seed=3))
    answers = []
    for _ in range(TIMES):
        answers.append(bench.ring())
        bench.end_call()
    print_times("the ring to the off-hook command", answers)
    before = bench.machine.count("Connected[")
    bench.ring()
    bench.machine.wait_for("Connected[", LIMIT, before + 1)
    number = len(bench.modem.news)
    for key in PASSWORD + "*":
        bench.modem.do("press " + key)
        number, _ = bench.wait("key", number)
    bench.wait("playing", number)
    bench.press("*")  # now a message plays
    print_times("a key's report to the end of playback", [bench.press("*") for _ in range(TIMES)])
    bench.end_call()


def main(program, emulator):
    for profile in PROFILES:
        with tempfile.TemporaryDirectory() as folder, Bench(program, emulator, folder, profile) as bench:
            greeting = sound.noise(GREETING_SECONDS, seed=1)
            bench.begin(greeting)
            report_call(bench, profile, greeting)
            if profile == next(iter(PROFILES)):
                report_times(bench)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*map(os.path.abspath, sys.argv[1:]))
