#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures SIP calls: latency, packet timing, audio quality and memory use.

    telephone_bench.py PROGRAM FLOOR

A test telephone calls ORVEN and baresip in turn; all times are the kernel's. The program FLOOR (floor.cpp) does the
least that each needs, which shows what this machine allows.
"""

import contextlib
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

CALLS = 200  # of each kind, to each program
LONG_CALLS, LONG_SECONDS = 4, 16.0
FLOOR_CALLS = 50
RECORDED_SECONDS = 60
STARTS = 9
FEW_CALLS, MANY_CALLS = 100, 1000
TRANSACTION_SECONDS = 36  # SIP transactions last 32 s after a call (RFC 3261, section 17.2.2)
BETWEEN_CALLS = 0.25  # the machine waits up to 0.2 s for the last audio of a call; the next one would end that wait
BUSY_PROCESSES = 2


class Table:
    """Rows of measurements: ours, the peer's, and the target."""

    def __init__(self):
        self.failures = []
        self.row("", "ORVEN", "baresip", "aim")

    def row(self, what, ours="", peers="", aim=""):
        print(f"{what:57} {ours:43} {peers:43} {aim}".rstrip(), flush=True)

    @contextlib.contextmanager
    def failing(self, what):
        """Reports any failure and continues."""
        try:
            yield
        except (sip_telephone.NoCall, processes.Failed, OSError) as failure:
            self.failures.append(f"{what}: {failure}")
            print(f"FAILED: {self.failures[-1]}", flush=True)


def milliseconds(values):
    """Median, 99th percentile and maximum of values in seconds."""
    if not values:
        return "none"
    ordered = sorted(values)
    p99 = ordered[min(len(ordered) - 1, int(len(ordered) * 0.99))]
    return f"p50 {ordered[len(ordered) // 2] * 1e3:.2f}  p99 {p99 * 1e3:.2f}  worst {ordered[-1] * 1e3:.2f} ms"


def first_sound(call):
    """The arrival time of the first packet that is not silence."""
    end = time.monotonic() + sip_telephone.LIMIT
    while time.monotonic() < end:
        payload, arrived = call.heard(1)
        if payload and payload != sip_telephone.SILENCE:
            return arrived
    raise sip_telephone.NoCall("The greeting was not heard")


def report_answers(table, answering):
    """Calls one after the other: the time to the answer and to the start of the greeting."""
    answered = {who.name: [] for who in answering}
    greeted = {(who.name, talks): [] for who in answering for talks in (True, False)}
    early = dict.fromkeys(greeted, 0)
    for number in range(2 * CALLS):
        talks = number % 2 == 0
        for who in answering:
            with table.failing(f"call {number + 1} to {who.name}"):
                with sip_telephone.Call(who.port, who.user) as call:
                    call.invite()
                    call.acknowledge()
                    if talks:
                        call.talk()
                    heard = first_sound(call)
                answered[who.name].append(call.answered - call.invited)
                greeted[who.name, talks].append(max(heard - call.acknowledged, 0))
                early[who.name, talks] += heard < call.acknowledged
            time.sleep(BETWEEN_CALLS)
    ours, peer = (who.name for who in answering)
    table.row(f"INVITE to 200, {2 * CALLS} calls", milliseconds(answered[ours]), milliseconds(answered[peer]))
    for talks in (True, False):
        what = "talks at once" if talks else "is silent"
        table.row(f"ACK to the greeting's first packet, caller {what}", milliseconds(greeted[ours, talks]),
                  milliseconds(greeted[peer, talks]), "p99 1.5 ms")
        for name in (ours, peer):
            if early[name, talks]:
                table.row(f"  {name}: {early[name, talks]} of {CALLS} greetings had begun before the ACK was sent")


def report_floor(table, floor):
    """One packet, two changes of threads, one packet back."""
    answered = []
    for number in range(FLOOR_CALLS):
        with table.failing(f"call {number + 1} to the floor"), sip_telephone.Call(floor.port) as call:
            call.sound_peer = call.peer
            begin = sip_telephone.now()
            call.talk()
            answered.append(call.heard(sip_telephone.LIMIT)[1] - begin)
        time.sleep(floor.BETWEEN_CALLS)
    table.row(f"floor: a packet to the first packet back, {FLOOR_CALLS} calls", milliseconds(answered))


def report_second_rings(table, program):
    """The second ring is raised one second after the 180: any further delay is the time to answer, plus a few
    microseconds between the 180 and the start of that second."""
    program.restart_with({"NumOfRing": "2"})
    took = []
    for number in range(CALLS):
        with table.failing(f"call {number + 1} with two rings"), sip_telephone.Call(program.port) as call:
            call.invite()
            call.acknowledge()
            took.append(call.answered - call.rung - 1)
        time.sleep(BETWEEN_CALLS)
    program.restart_with({"NumOfRing": "1"})
    table.row(f"ring threshold reached to 200, {CALLS} calls", milliseconds(took), "", "p50 0.7  p99 2 ms")


def spacing(call, seconds, silence=sip_telephone.SILENCE):
    """The seconds between the packets of the greeting, those that are not `silence`. The kernel buffers and time-stamps
    them, so this process need not wake up for each one. A gap in which the system clock was set back is left out."""
    arrivals = []
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(1)
        while True:
            payload, arrived = call.heard(0)
            if payload is None:
                break
            if payload != silence:
                arrivals.append(arrived)
    return [after - before for before, after in zip(arrivals, arrivals[1:]) if after >= before]


def report_spacing(table, answering, floor, what):
    gaps = {who.name: [] for who in answering}
    for number in range(LONG_CALLS):
        for who in answering:
            with table.failing(f"long call {number + 1} to {who.name}"):
                with sip_telephone.Call(who.port, who.user) as call:
                    call.invite()
                    call.acknowledge()
                    call.talk()
                    gaps[who.name] += spacing(call, LONG_SECONDS)

    def words(values):
        if len(values) < LONG_CALLS:
            return "none"
        return f"deviation {statistics.pstdev(values) * 1e3:.3f}  worst {max(values) * 1e3:.2f} ms  ({len(values)})"

    table.row(f"greeting, packet to packet, {what}", *(words(gaps[who.name]) for who in answering),
              "deviation 0.3  worst 22 ms")
    with table.failing("floor"), sip_telephone.Call(floor.port) as call:
        call.sound_peer = call.peer
        call.talk()
        table.row(f"  floor, {what}", words(spacing(call, LONG_CALLS * LONG_SECONDS, silence=None)))
    time.sleep(floor.BETWEEN_CALLS)


def compared(sent, recorded):
    if sent in recorded:
        return "identical, in one run"
    begin = recorded.find(sent[: sip_telephone.BLOCK])
    if begin < 0:
        return "NOT FOUND"
    same = next((i for i, (a, b) in enumerate(zip(sent, recorded[begin:])) if a != b), len(recorded) - begin)
    return f"DIFFERS after {same / sound.RATE:.2f} s"


def report_recording(table, program, folder):
    blocks = sip_telephone.noise_blocks(RECORDED_SECONDS)
    found = ""
    with answerers.Orven(program, os.path.join(folder, "recorder"), sound.silence(0.3), {"CompressMessages": "1"}) as ours:
        with table.failing("recorded call"):
            with sip_telephone.Call(ours.port) as call:
                call.invite()
                call.acknowledge()
                call.talk()
                ours.machine.wait_for("Start Record Message[", 10)
                call.to_send.extend(blocks)
                processes.wait_for("The end of the minute", lambda: not call.to_send, 2 * RECORDED_SECONDS)
                time.sleep(0.5)
            processes.wait_for("The record of the call", ours.machine.records, 10, ours.machine.look)
            message = ours.machine.message(ours.machine.records()[-1])
            found = compared(b"".join(blocks), sound.data(message))
    table.row(f"{RECORDED_SECONDS} s of PCMU recorded as mu-law", found, "", "identical, in one run")


def short_calls(table, who, count):
    for number in range(count):
        with table.failing(f"short call {number + 1} to {who.name}"):
            with sip_telephone.Call(who.port, who.user) as call:
                call.invite()
                call.acknowledge()


def memory(who):
    resident, share, own = who.process.megabytes("Rss", "Pss", "Anonymous")
    return f"{resident:.1f} MB (PSS {share:.1f}, own {own:.1f})"


def report_memory(table, answering, what):
    row = [memory(who) for who in answering]
    table.row(f"resident after the start, {what}", *row, *([""] if len(row) == 1 else []), "45 MB")


def report_growth(table, answering):
    """Memory after some calls and after many, once their transactions have expired."""
    for calls, more in ((FEW_CALLS, FEW_CALLS), (MANY_CALLS, MANY_CALLS - FEW_CALLS)):
        for who in answering:
            short_calls(table, who, more)
        time.sleep(TRANSACTION_SECONDS)
        table.row(f"resident after {calls:,} calls", *(memory(who) for who in answering), "no growth")


def report_starts(table, answering, what):
    starts = {who.name: [] for who in answering}
    for _ in range(STARTS):
        for who in answering:
            with table.failing(f"start of {who.name}"):
                starts[who.name].append(who.timed_start())

    def words(values):
        return f"median {statistics.median(values) * 1e3:.0f}  worst {max(values) * 1e3:.0f} ms" if values else "none"

    table.row(f"start to the first answered request, {what}", *(words(starts[who.name]) for who in answering),
              *([""] if len(answering) == 1 else []), "100 ms")


def main(program, floor_program):
    print(f"load of the machine before: {' '.join(f'{load:.2f}' for load in os.getloadavg())}")
    table = Table()
    with tempfile.TemporaryDirectory() as folder:
        greeting = sound.noise(LONG_SECONDS + 4, seed=1)
        with table.failing("calls in turn"), \
             answerers.Orven(program, os.path.join(folder, "ours"), greeting) as ours, \
             answerers.Peer(os.path.join(folder, "peer"), greeting) as peer, \
             answerers.Floor(floor_program, folder) as floor:  # fmt: skip
            both = (ours, peer)
            report_starts(table, both, "without a display")
            time.sleep(2)
            report_memory(table, both, "without a display")
            report_growth(table, both)
            report_answers(table, both)
            report_floor(table, floor)
            report_second_rings(table, ours)
            report_spacing(table, both, floor, "machine idle")
            with processes.busy(BUSY_PROCESSES):
                report_spacing(table, both, floor, f"{BUSY_PROCESSES} busy processes")
        report_recording(table, program, folder)
        with table.failing("X display"), display.Display(folder) as screen, \
             answerers.Orven(program, os.path.join(folder, "shown"), greeting, display=screen) as ours:  # fmt: skip
            report_starts(table, (ours,), "X display")
            time.sleep(2)
            report_memory(table, (ours,), "X display")
    print(f"load of the machine after: {' '.join(f'{load:.2f}' for load in os.getloadavg())}")
    if table.failures:
        print(f"{len(table.failures)} CALLS OR STARTS FAILED; the first: {table.failures[0]}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*map(os.path.abspath, sys.argv[1:]))
