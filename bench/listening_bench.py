#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures how long a caller's voice takes to someone who listens along at the desk.

    listening_bench.py PROGRAM

A test telephone sends noises, and what a sound server plays meanwhile is recorded: the time from the moment before a
noise's first packet is sent to the moment at which its first sample is recorded, a few milliseconds after it was played.
"""

import array
import collections
import os
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import machine  # noqa: E402
import processes  # noqa: E402
import sip_telephone  # noqa: E402
import sound  # noqa: E402
import sound_server  # noqa: E402

CALLS, NOISES = 5, 20
NOISE_BLOCKS = 5
BETWEEN_NOISES = 0.5  # seconds
LONGEST_DELAY = 0.4
LOUD = 500  # of 32768; the caller is silent between the noises
STARTED = "PreScreen->"  # in the log
BUSY_PROCESSES = 4


class Sent(collections.deque):
    """Blocks for sip_telephone.Call.to_send, and when each was sent."""

    def __init__(self):
        super().__init__()
        self.moments = []

    def popleft(self):
        self.moments.append(time.monotonic())
        return super().popleft()


class Played(threading.Thread):
    """What the server plays, until its end, with the moment of each sample."""

    def __init__(self, server):
        super().__init__(daemon=True)
        command = "parec -d desk.monitor --raw --rate=8000 --channels=1 --format=s16le --latency-msec=5".split()
        self._parec = subprocess.Popen(command, env=server.environment, stdout=subprocess.PIPE)
        processes.hurry(self._parec)
        self._data, self._arrivals = bytearray(), []
        self.start()

    def run(self):
        processes.keep_time()
        while data := os.read(self._parec.stdout.fileno(), 1 << 16):
            self._data += data
            self._arrivals.append((len(self._data) // 2, time.monotonic()))

    def noises(self):
        """When each noise began. A sample arrives late at times, but never early: the earliest arrival tells the rest."""
        self._parec.terminate()
        self.join()
        moments, quiet_since = [], -sound.RATE
        for number, sample in enumerate(array.array("h", self._data[: len(self._data) // 2 * 2])):
            if abs(sample) < LOUD:
                continue
            if number - quiet_since > BETWEEN_NOISES / 2 * sound.RATE:
                first = min(at - count / sound.RATE for count, at in self._arrivals if abs(count - number) < sound.RATE)
                moments.append(first + number / sound.RATE)
            quiet_since = number
        return moments


def delays(program, server):
    """The delay of each noise of a call."""
    played, sent, calls = Played(server), Sent(), program.count(STARTED)
    with sip_telephone.Call(program.port) as call:
        call.to_send = sent
        call.invite()
        call.acknowledge()
        call.talk()
        program.wait_for(STARTED, 10, calls + 1)
        time.sleep(BETWEEN_NOISES)
        for _ in range(NOISES):
            sent.extend(sip_telephone.noise_blocks(NOISE_BLOCKS * sip_telephone.BLOCK_SECONDS))
            time.sleep(BETWEEN_NOISES)
    heard = played.noises()
    begins = sent.moments[::NOISE_BLOCKS]
    return [next((moment - begin for moment in heard if 0 < moment - begin < LONGEST_DELAY), None) for begin in begins]


def report(program, server, what):
    found = [delay for _ in range(CALLS) for delay in delays(program, server)]
    times = sorted(delay * 1e3 for delay in found if delay)
    words = f"p50 {times[len(times) // 2]:.1f}  worst {times[-1]:.1f} ms" if times else "none"
    print(f"caller to the desk's output, {what:27} {words}  ({len(times)} of {len(found)} noises heard)   aim: 100 ms", flush=True)


def main(program):
    with tempfile.TemporaryDirectory() as folder:
        server = sound_server.Server(os.path.join(folder, "desk"))
        server.start()
        own = {name: server.environment[name] for name in ("HOME", "XDG_RUNTIME_DIR")}
        with machine.Machine(program, folder, arguments=["-st"], variables=own) as ours:
            ours.start_and_wait()
            sound.write(ours.path("Greets/Bench.wav"), sound.silence(0.2))
            ours.restart_with({"NumOfRing": "1", "Greeting": "Bench", "PreScreen": "1"})
            report(ours, server, "machine idle")
            with processes.busy(BUSY_PROCESSES):
                report(ours, server, f"{BUSY_PROCESSES} busy processes")
        server.end()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]))
