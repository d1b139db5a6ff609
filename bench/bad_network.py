#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures what is left of a message after a bad network or an odd sender, on an idle and on a busy machine.

    bad_network.py PROGRAM [--before PROGRAM] [--busy COUNT] [--seconds S] [--only WORD]

Our own telephone speaks blocks of noise, each of which can be told from all others, over a link that delays, loses and
doubles its packets (bad_link). Each result says: the share of the blocks that came and are at their place in the
message, to the millisecond; how much longer the message is than what was spoken; and how many blocks are missing at
its begin and at its end. --before measures another program as well; --seconds is how long the caller speaks; --only
measures just the rows whose name contains the word.
"""

import argparse
import collections
import dataclasses
import os
import random
import struct
import sys
import tempfile
import time
import typing
from concurrent.futures import ThreadPoolExecutor

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import bad_link  # noqa: E402
import machine  # noqa: E402
import processes  # noqa: E402
import sip_telephone  # noqa: E402
import sound  # noqa: E402
from sip_telephone import BLOCK, BLOCK_SECONDS  # noqa: E402

CALLS_AT_A_TIME = 6
BUSY_PROCESSES = 4
SECONDS = 10.0
SILENT_BLOCKS = 50  # before the caller hangs up
UNDER_WAY = 0.15  # seconds after the hang-up in which a packet may still come
EXACT = sound.RATE // 1000  # samples
COMFORT_NOISE = 13  # RFC 3551, section 6
PAUSE, TALK = 35, 100  # blocks
SETTINGS = {"NumOfRing": "1", "CompressMessages": "1"}


@dataclasses.dataclass(frozen=True)
class Packet:
    """One packet, counted from the first word: when it is sent (seconds), its header and its payload."""

    at: float
    sequence: int
    timestamp: int
    payload: bytes
    source: int = 0
    kind: int = 0  # PCMU


def ordinary(blocks):
    return [Packet(n * BLOCK_SECONDS, n, n * BLOCK, block) for n, block in enumerate(blocks)]


# What a network does: functions of a random.Random and of the seconds since it turned bad, which return the delays of
# the packet's copies.


def good(_chance, _seconds):
    return [0]


def loses(chance, _seconds):
    return [] if chance.random() < 0.05 else [0]


def varies(most):
    return lambda chance, _seconds: [chance.uniform(0, most)]


def varies_in_order(most):
    latest = 0

    def delays(chance, seconds):
        nonlocal latest
        latest = max(latest, seconds + chance.uniform(0, most))
        return [latest - seconds]

    return delays


def reorders(chance, _seconds):
    return [0.07 if chance.random() < 0.1 else 0]


def doubles(chance, _seconds):
    return [0, chance.uniform(0, 0.1)] if chance.random() < 0.3 else [0]


def holds_back(_chance, seconds):
    """For 500 ms of each 2 s nothing comes, then all that was held back."""
    return [max(0, 0.5 - seconds % 2)]


def everything(chance, seconds):
    held = holds_back(chance, seconds)[0]
    return [held + chance.uniform(0, 0.3) for _ in loses(chance, seconds) + loses(chance, seconds)[1:]]


# What a sender does: functions that change the packets.


def later(share, **steps):
    """From this share of the packets on, the fields named are larger by the steps."""

    def change(packets):
        first = int(len(packets) * share)
        return packets[:first] + [
            dataclasses.replace(packet, **{name: getattr(packet, name) + step for name, step in steps.items()})
            for packet in packets[first:]
        ]

    return change


def both(one, other):
    return lambda packets: other(one(packets))


def stalls(seconds):
    """Sends nothing for so long, then all of it at once."""

    def change(packets):
        begin = packets[len(packets) // 2].at
        held = [begin <= packet.at < begin + seconds for packet in packets]
        return [dataclasses.replace(packet, at=begin + seconds) if late else packet
                for packet, late in zip(packets, held)]  # fmt: skip

    return change


def stands_still(packets):
    return [dataclasses.replace(packet, timestamp=0) for packet in packets]


def drifts(parts):
    return lambda packets: [dataclasses.replace(packet, at=packet.at * (1 + parts * 1e-6)) for packet in packets]


def pauses(packets, comfort_noise=False):
    """Says nothing for 0.7 s after every 2 s; with comfort noise the first packet of a pause describes the noise."""
    sent = []
    for number, packet in enumerate(packets):
        into_pause = number % (TALK + PAUSE) - TALK
        if into_pause < 0 or number > len(packets) - 2 * PAUSE:
            sent.append(packet)
        elif into_pause == 0 and comfort_noise:
            sent.append(dataclasses.replace(packet, kind=COMFORT_NOISE, payload=b"\x46"))
    return [dataclasses.replace(packet, sequence=number) for number, packet in enumerate(sent)]


@dataclasses.dataclass(frozen=True)
class Row:
    """A disturbance. `network` makes what Flow wants; `sender` changes the packets; `begin` is the first sequence
    number and timestamp; `silent_blocks` follow the last word."""

    name: str
    network: typing.Callable = lambda: good
    sender: typing.Callable = lambda packets: packets
    begin: tuple = (1000, 100_000)
    silent_blocks: int = SILENT_BLOCKS


ROWS = (
    Row("nothing"),
    Row("5 % lost", lambda: loses),
    Row("jitter of 300 ms, out of order", lambda: varies(0.3)),
    Row("jitter of 300 ms, in order", lambda: varies_in_order(0.3)),
    Row("10 % are 70 ms late", lambda: reorders),
    Row("30 % come twice", lambda: doubles),
    Row("held back for up to 500 ms", lambda: holds_back),
    Row("all of it: lost, late, held back", lambda: everything),
    Row("hangs up at the last word, jitter of 150 ms", lambda: varies(0.15), silent_blocks=0),
    Row("sequence and timestamp wrap", begin=(0x10000 - 250, 0x100000000 - 250 * BLOCK)),
    Row("timestamp jumps by 0.5 s and back", sender=both(later(1 / 3, timestamp=4000), later(2 / 3, timestamp=-4000))),
    Row("timestamp stands still", sender=stands_still),
    Row("new source", sender=later(1 / 2, source=1, sequence=12_345, timestamp=987_654_321)),
    Row("pauses, nothing is sent", sender=pauses),
    Row("pauses with comfort noise", sender=lambda packets: pauses(packets, comfort_noise=True)),
    Row("sender's clock 300 ppm slow", sender=drifts(300)),
    Row("sender's clock 300 ppm fast", sender=drifts(-300)),
    Row("sender stalls for 1 s, then sends it at once", sender=stalls(1)),
    Row("sender stalls for 3 s, then sends it at once", sender=stalls(3)),
    Row("sender stalls for 1 s and goes on where it was", sender=later(1 / 2, at=1)),
    Row("sender stalls for 3 s and goes on where it was", sender=later(1 / 2, at=3)),
    Row("sender stalls for 1 s; that second is lost", sender=lambda packets: [
        packet for packet in packets if not 0 <= packet.at - packets[len(packets) // 2].at < 1]),
)  # fmt: skip


class Speaker:
    """Sends packets over a call that is up."""

    def __init__(self, call, row):
        self._call, self._row, self._source = call, row, random.getrandbits(31)
        self._begin, self._silent = time.monotonic(), 0

    def wait_silently(self, ended):
        while not ended():
            self._send(Packet(self._silent * BLOCK_SECONDS, self._silent, self._silent * BLOCK, sip_telephone.SILENCE))
            self._silent += 1

    def speak(self, packets):
        begin = Packet(self._silent * BLOCK_SECONDS, self._silent, self._silent * BLOCK, b"")
        for packet in packets:
            self._send(dataclasses.replace(packet, at=begin.at + packet.at, sequence=begin.sequence + packet.sequence,
                                           timestamp=begin.timestamp + packet.timestamp))  # fmt: skip

    def _send(self, packet):
        sequence, timestamp = self._row.begin
        header = struct.pack("!BBHII", 0x80, packet.kind, (sequence + packet.sequence) & 0xFFFF,
                             (timestamp + packet.timestamp) & 0xFFFFFFFF, self._source + packet.source)  # fmt: skip
        time.sleep(max(0, self._begin + packet.at - time.monotonic()))
        self._call.sound.sendto(header + packet.payload, self._call.sound_peer)


def result(blocks, came, message):
    """The row's text, for the numbers of the blocks that came."""
    # What follows a loss is blended with what concealed it, so a block is known by its second half.
    half = BLOCK // 2
    begins = {number: message.find(blocks[number][half:]) - half for number in came}
    found = {number: begin for number, begin in begins.items() if begin >= 0}
    if not found:
        return "nothing was recorded"
    shifts = collections.Counter((begin - number * BLOCK) // EXACT for number, begin in found.items())
    share = shifts.most_common(1)[0][1] / len(came)
    first, last = min(found), max(found)
    longer = found[last] - found[first] - (last - first) * BLOCK
    missing = f"{sum(n < first for n in came)}/{sum(n > last for n in came)}"
    return f"{share * 100:5.1f} %  {longer / sound.RATE * 1e3:+6.0f} ms  {missing:>5}"


class Program:
    """A program to be measured, with a used application folder to start it from."""

    def __init__(self, path, folder):
        self.path = os.path.join(folder, "far_program")
        with open(self.path, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\nexec ip netns exec {bad_link.FAR_NETWORK} {path} "$@"\n')
        os.chmod(self.path, 0o755)
        with self.machine(folder) as orven:
            orven.start_and_wait()
            orven.end()
            orven.change_settings(SETTINGS)
            sound.write(orven.path("Greets/Default.wav"), sound.silence(0.3))
            self.template = orven.home

    def machine(self, folder, template=None):
        return machine.Machine(self.path, folder, arguments=["-st"], host=bad_link.FAR, template=template)


def measure(program, row, link, seconds):
    processes.keep_time()
    blocks = sip_telephone.noise_blocks(seconds)
    packets = row.sender(ordinary(blocks + [sip_telephone.SILENCE] * row.silent_blocks))
    with tempfile.TemporaryDirectory() as folder, program.machine(folder, program.template) as orven:
        orven.start_and_wait()
        with sip_telephone.Call(orven.port, host=bad_link.FAR, own=bad_link.NEAR) as call:
            flow = link.flows[call.sound.getsockname()[1]] = bad_link.Flow(row.network(), row.name)
            call.invite()
            call.acknowledge()
            speaker = Speaker(call, row)
            speaker.wait_silently(lambda: orven.count("Start Record Message["))
            speaker.speak(packets)
            ended = time.monotonic()
        processes.wait_for("The record of the call", orven.records, 10, orven.look)
        message = sound.data(orven.message(orven.records()[-1]))
    payloads = {packet[sip_telephone.HEADER_BYTES :] for when, packet in flow.arrived if when < ended + UNDER_WAY}
    return result(blocks, [number for number, block in enumerate(blocks) if block in payloads], message)


def table(programs, rows, link, seconds, busy):
    names = "".join(f" {name:27}" for name in programs)
    print(f"{'':47}{names}  at place, longer, missing at begin and end", flush=True)

    def cell(row, program):
        try:
            return measure(program, row, link, seconds)
        except (sip_telephone.NoCall, processes.Failed) as failure:
            return f"FAILED: {failure}"

    with processes.busy(busy), ThreadPoolExecutor(CALLS_AT_A_TIME) as threads:
        cells = [[threads.submit(cell, row, program) for program in programs.values()] for row in rows]
        for row, results in zip(rows, cells):
            print(f"{row.name:47}" + "".join(f" {text.result():27}" for text in results).rstrip(), flush=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("program")
    parser.add_argument("--before")
    parser.add_argument("--busy", type=int, default=BUSY_PROCESSES)
    parser.add_argument("--seconds", type=float, default=SECONDS)
    parser.add_argument("--only", default="")
    wanted = parser.parse_args()
    if not bad_link.enter_own_network():
        print("Network namespaces and TUN devices are not allowed here: not measured.")
        return
    with tempfile.TemporaryDirectory() as folder, bad_link.Link() as link:
        programs = {}
        for name, path in (("before", wanted.before), ("now", wanted.program)):
            if path:
                os.mkdir(os.path.join(folder, name))
                programs[name] = Program(os.path.abspath(path), os.path.join(folder, name))
        rows = [row for row in ROWS if wanted.only in row.name]
        for busy in sorted({0, wanted.busy}):
            print(f"{busy} busy processes; load {os.getloadavg()[0]:.1f}; {wanted.seconds:g} s spoken")
            table(programs, rows, link, wanted.seconds, busy)


if __name__ == "__main__":
    main()
