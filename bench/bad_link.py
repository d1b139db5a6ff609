# SPDX-License-Identifier: GPL-3.0-or-later
"""A link between two networks that delays, loses and doubles chosen packets: two TUN devices joined by a thread."""

import fcntl
import heapq
import itertools
import os
import random
import select
import struct
import subprocess
import sys
import threading
import time

import processes

NEAR, FAR = "10.77.1.1", "10.77.1.2"
GOOD_SECONDS = 3  # a network that is bad from the start finds a receiver that expects it
FAR_NETWORK = "far"  # the network namespace behind the link
TUNSETIFF, IFF_TUN, IFF_NO_PI = 0x400454CA, 1, 0x1000  # linux/if_tun.h
UDP = 17
TRIAL = "mount -t tmpfs link /run && mkdir /run/netns && ip netns add trial && ip tuntap add mode tun"


def enter_own_network():
    """Starts this script again in a network namespace of its own, which ends with it. Returns once it is there, or
    False where that is not allowed."""
    if "ORVEN_BAD_LINK" in os.environ:
        return True
    for kinds in ("-nm", "-rnm"):
        command = ["unshare", kinds]
        if subprocess.run([*command, "sh", "-c", TRIAL], capture_output=True, check=False).returncode == 0:
            os.environ["ORVEN_BAD_LINK"] = "inside"
            os.execvp("unshare", [*command, sys.executable, "-B", *sys.argv])
    return False


def _run(command):
    subprocess.run(command.split(), check=True, stdout=subprocess.DEVNULL)


class Flow:
    """The packets from one UDP port at the near end. They pass at once for GOOD_SECONDS. From then on
    `network(chance, seconds)` says what becomes of a packet that comes so much later: the delay in seconds of each copy
    that arrives. `chance` is a random.Random."""

    def __init__(self, network, seed):
        self._network, self._chance, self._begin = network, random.Random(seed), None
        self.arrived = []  # (time.monotonic(), payload)

    def delays(self, now):
        self._begin = self._begin or now
        seconds = now - self._begin - GOOD_SECONDS
        return [0] if seconds < 0 else self._network(self._chance, seconds)


class Link:
    """Joins this network namespace (address NEAR) to a new one named FAR_NETWORK (address FAR). Packets pass at once,
    except those of a flow. Once in a process that enter_own_network() has moved. Use it in a with statement."""

    def __init__(self):
        self.flows = {}  # by UDP port
        _run("mount -t tmpfs link /run")
        os.mkdir("/run/netns")
        _run(f"ip netns add {FAR_NETWORK}")
        _run("ip link set lo up")
        self._ends = [self._device("near"), self._device("far")]
        _run(f"ip link set far netns {FAR_NETWORK}")
        for command, name, address in (("ip", "near", NEAR), (f"ip -n {FAR_NETWORK}", "far", FAR)):
            _run(f"{command} addr add {address}/24 dev {name}")
            _run(f"{command} link set {name} up")
        _run(f"ip -n {FAR_NETWORK} link set lo up")
        self._waiting, self._order = [], itertools.count()  # a heap of (when, order, payload, flow, packet)
        self._closed = threading.Event()
        self._thread = threading.Thread(target=self._pass_on, daemon=True)
        self._thread.start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._closed.set()
        self._thread.join()
        for end in self._ends:
            os.close(end)

    @staticmethod
    def _device(name):
        device = os.open("/dev/net/tun", os.O_RDWR | os.O_NONBLOCK)
        fcntl.ioctl(device, TUNSETIFF, struct.pack("16sH14x", name.encode(), IFF_TUN | IFF_NO_PI))
        return device

    def _pass_on(self):
        processes.keep_time()
        near, far = self._ends
        while not self._closed.is_set():
            limit = 0.1 if not self._waiting else min(0.1, max(0, self._waiting[0][0] - time.monotonic()))
            readable = select.select(self._ends, [], [], limit)[0]
            if far in readable:
                os.write(near, os.read(far, 65536))
            if near in readable:
                self._take(os.read(near, 65536))
            while self._waiting and self._waiting[0][0] <= time.monotonic():
                _, _, flow, packet = heapq.heappop(self._waiting)
                flow.arrived.append((time.monotonic(), packet[_udp_begin(packet) + 8 :]))
                os.write(far, packet)

    def _take(self, packet):
        flow = self.flows.get(_udp_port(packet))
        if flow is None:
            os.write(self._ends[1], packet)
            return
        now = time.monotonic()
        for delay in flow.delays(now):
            heapq.heappush(self._waiting, (now + delay, next(self._order), flow, packet))


def _udp_begin(packet):
    return (packet[0] & 0x0F) * 4


def _udp_port(packet):
    """The source port of a UDP packet over IPv4; otherwise None."""
    if packet[0] >> 4 != 4 or packet[9] != UDP:
        return None
    return struct.unpack_from("!H", packet, _udp_begin(packet))[0]
