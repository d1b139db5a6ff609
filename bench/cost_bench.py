#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures what waiting and recording cost: processor time, wake-ups and memory.

    cost_bench.py PROGRAM FLOOR [--before PROGRAM] [--quick]

All programs run side by side and record in turn, so that a slow moment of the computer meets each of them: ORVEN
hidden and with its window shown, another build of it (--before), baresip recording the same call, and the program
FLOOR, which only wakes up for a timer of 10 ms and for each packet (floor.cpp). Processor time of a recorded minute is
net of the same program's waiting; a wake-up is a voluntary context switch of any of its threads.
"""

import argparse
import contextlib
import dataclasses
import os
import statistics
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import answerers  # noqa: E402
import display  # noqa: E402
import processes  # noqa: E402
import sip_telephone  # noqa: E402
import sound  # noqa: E402

SETTLING_SECONDS = 5.0  # after the start of all programs
BEGIN_SECONDS = 3.0  # of a call: the greeting, the beep, the first blocks of the message
GREETING_SECONDS = 0.3
MINUTE = 60.0


@dataclasses.dataclass(frozen=True)
class Cost:
    """What a program used in a second."""

    processor: float
    wake_ups: float


class Meter:
    """Measures a process from now on."""

    def __init__(self, process):
        self._process = process
        self._processor, self._wake_ups, self._begin = process.cpu_seconds(), process.wake_ups(), time.monotonic()

    def cost(self):
        """Without the wake-ups of threads that have ended meanwhile."""
        passed = time.monotonic() - self._begin
        wake_ups = sum(count - self._wake_ups.get(thread, 0) for thread, count in self._process.wake_ups().items())
        return Cost((self._process.cpu_seconds() - self._processor) / passed, wake_ups / passed)


@dataclasses.dataclass
class Measured:
    """One program, and what it used in each round."""

    name: str
    who: object
    aim: str = ""
    waiting: list = dataclasses.field(default_factory=list)
    recording: list = dataclasses.field(default_factory=list)
    waiting_memory: tuple = ()
    recording_memory: tuple = ()


def wait(running, seconds):
    """All at once: none of them disturbs another."""
    meters = [Meter(program.who.process) for program in running]
    time.sleep(seconds)
    for program, meter in zip(running, meters):
        program.waiting.append(meter.cost())
        program.waiting_memory = memory(program)


def record(program, seconds):
    with sip_telephone.Call(program.who.port, program.who.user) as call:
        if program.who.user:
            call.invite()
            call.acknowledge()
        else:
            call.sound_peer = call.peer
        call.to_send.extend(sip_telephone.noise_blocks(BEGIN_SECONDS + seconds + 1))
        call.talk()
        time.sleep(BEGIN_SECONDS)
        meter = Meter(program.who.process)
        time.sleep(seconds)
        program.recording.append(meter.cost())
        program.recording_memory = memory(program)


def memory(program):
    return program.who.process.megabytes("Rss", "Pss", "Anonymous")


def report(program):
    def median(costs, name):
        return statistics.median(getattr(cost, name) for cost in costs)

    waited = median(program.waiting, "processor")
    net = [(recorded.processor - waited) * MINUTE for recorded in program.recording]
    minute = f"{statistics.median(net):.3f} s ({min(net):.3f} to {max(net):.3f})"
    print(f"{program.name:18} {minute:28}{median(program.recording, 'wake_ups'):10.1f}  {waited * MINUTE:14.3f} s"
          f"{median(program.waiting, 'wake_ups'):10.2f}    {words(program.waiting_memory):20} "
          f"{words(program.recording_memory):20} {program.aim}".rstrip(), flush=True)


def words(memory):
    return "/".join(f"{megabytes:.1f}" for megabytes in memory)


def programs(stack, folder, path, floor, before):
    """Starts everything; what is entered into `stack` ends with it."""
    screen = stack.enter_context(display.Display(folder))
    greeting, settings = sound.silence(GREETING_SECONDS), {"CompressMessages": "1"}

    def orven(name, path, aim="", **options):
        where = os.path.join(folder, name.replace(" ", "_"))
        return Measured(name, stack.enter_context(answerers.Orven(path, where, greeting, settings, **options)), aim)

    builds = [("ORVEN", path)] + ([("before", before)] if before else [])
    for name, build in builds:
        yield orven(f"{name}, hidden", build, "0.20 s, < 1 a second, 45 MB")
    for name, build in builds:
        yield orven(f"{name}, shown", build, "0.25 s, 47 MB", display=screen, hidden=False)
    silence = sound.silence(10 * MINUTE)
    yield Measured("baresip", stack.enter_context(answerers.Peer(os.path.join(folder, "peer"), silence, records=True)))
    yield Measured("floor", stack.enter_context(answerers.Floor(floor, folder)))


def main(path, floor, before, rounds, seconds):
    print(f"load of the machine: {' '.join(f'{load:.2f}' for load in os.getloadavg())}")
    with tempfile.TemporaryDirectory() as folder, contextlib.ExitStack() as stack:
        running = list(programs(stack, folder, path, floor, before))
        time.sleep(SETTLING_SECONDS)
        for _ in range(rounds):
            wait(running, seconds)
        for program in running * rounds:
            try:
                record(program, seconds)
            except (sip_telephone.NoCall, processes.Failed, OSError) as failure:
                print(f"FAILED: {program.name}: {failure}")
        print(f"{rounds} rounds of {seconds:g} s; memory is resident/proportional/own, in MB\n"
              f"{'':18} {'a recorded minute':28}wake-ups/s  a waited minute  wake-ups/s  "
              f"{'memory, waiting':20} {'memory, recording':20} aim")
        for program in filter(lambda program: program.recording, running):
            report(program)
    print(f"load of the machine: {' '.join(f'{load:.2f}' for load in os.getloadavg())}")


if __name__ == "__main__":
    arguments = argparse.ArgumentParser(usage=__doc__)
    arguments.add_argument("program")
    arguments.add_argument("floor")
    arguments.add_argument("--before")
    arguments.add_argument("--quick", action="store_true")
    chosen = arguments.parse_args()
    main(chosen.program, chosen.floor, chosen.before, *((2, 20.0) if chosen.quick else (2, 60.0)))
