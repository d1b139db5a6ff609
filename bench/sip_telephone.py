# SPDX-License-Identifier: GPL-3.0-or-later
"""A telephone for measurements: SIP and RTP over plain UDP sockets, PCMU in packets of 20 ms.
Received packets have the kernel's time stamp; sent ones have the time just before the system call."""

import collections
import os
import random
import re
import select
import socket
import struct
import threading
import time

import processes

SO_TIMESTAMPNS = 35  # socket(7); Python has no name for it
HOST = "127.0.0.1"
RATE = 8000  # samples a second
BLOCK = 160  # bytes in a packet of 20 ms
BLOCK_SECONDS = 0.020
HEADER_BYTES = 12  # RFC 3550, section 5.1
SILENCE = b"\xff" * BLOCK  # ITU-T G.711, mu-law
LIMIT = 10.0  # seconds, for any answer


class NoCall(Exception):
    """A call that failed, with the reason."""


def now():
    """The clock of the kernel's arrival times, in seconds."""
    return time.clock_gettime(time.CLOCK_REALTIME)


def stamped_socket(host):
    """A datagram socket on a free port of `host` whose datagrams come with their arrival time."""
    udp = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    udp.setsockopt(socket.SOL_SOCKET, SO_TIMESTAMPNS, 1)
    udp.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1 << 20)
    udp.bind((host, 0))
    return udp


def receive(udp, limit):
    """One datagram and its arrival time; (None, None) when none arrives within `limit` seconds."""
    if not select.select([udp], [], [], limit)[0]:
        return None, None
    data, control, _, _ = udp.recvmsg(4096, 64)
    for level, kind, value in control:
        if level == socket.SOL_SOCKET and kind == SO_TIMESTAMPNS:
            seconds, nanoseconds = struct.unpack("@ll", value[:16])
            return data, seconds + nanoseconds * 1e-9
    raise NoCall("The kernel gave no arrival time")


def noise_blocks(seconds):
    """Mu-law noise without the second code of zero, which recorders cannot distinguish from the first."""
    codes = bytes(code for code in range(256) if code not in (0x7F, 0xFF))
    chosen = bytes(random.Random(4).choices(codes, k=int(seconds * RATE)))
    return [chosen[i : i + BLOCK] for i in range(0, len(chosen), BLOCK)]


class Message:
    """A SIP message that has arrived."""

    def __init__(self, data, arrived):
        self.text, self.arrived = data.decode("utf-8", "replace"), arrived
        first = self.text.split("\r\n", 1)[0]
        self.status = int(first.split(" ")[1]) if first.startswith("SIP/2.0 ") else None
        self.method = None if self.status else first.split(" ", 1)[0]

    def header(self, name):
        found = re.search(rf"^{name}\s*:\s*(.*?)\r$", self.text, re.MULTILINE | re.IGNORECASE)
        return found[1] if found else ""

    def sound_port(self):
        return int(re.search(r"^m=audio (\d+)", self.text, re.MULTILINE)[1])


class Call:
    """One call from an address of `own` to the telephone at `port` of `host`. Use it in a with statement, which hangs
    up."""

    def __init__(self, port, user="machine", host=HOST, own=HOST):
        self.peer, self.user = (host, port), user
        self.sip, self.sound = stamped_socket(own), stamped_socket(own)
        self.id = os.urandom(8).hex()
        self._sequence, self._branch, self._remote = 1, "", f"<sip:{user}@{host}:{port}>"
        self._up, self._thread, self._ended = False, None, threading.Event()
        self.to_send = collections.deque()  # blocks, one every 20 ms; silence when there is none

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._stop_talking()
        if self._up:
            self.hang_up()
        self.sip.close()
        self.sound.close()

    def options(self):
        """Sends one OPTIONS without waiting for the answer."""
        self._send("OPTIONS")
        self._sequence += 1

    def invite(self):
        """Calls and returns when the call is answered, not acknowledged yet. Times: self.invited, self.rung (of
        the 180), self.answered."""
        address, port = self.sound.getsockname()
        description = (f"v=0\r\no=- 1 1 IN IP4 {address}\r\ns=-\r\nc=IN IP4 {address}\r\nt=0 0\r\n"
                       f"m=audio {port} RTP/AVP 0\r\na=rtpmap:0 PCMU/8000\r\na=ptime:20\r\n")  # fmt: skip
        self.rung = None
        self.invited = self._send("INVITE", description)
        while True:
            answer = self.answer("INVITE")
            if answer.status == 180:
                self.rung = answer.arrived
            if answer.status >= 200:
                break
        self._remote = answer.header("To")
        if answer.status != 200:
            self._send("ACK")
            raise NoCall(f"The call was answered with {answer.status}")
        self.answered, self._up = answer.arrived, True
        self.sound_peer = (self.peer[0], answer.sound_port())

    def acknowledge(self):
        self.acknowledged = self._send("ACK")

    def answer(self, method, limit=LIMIT):
        """The next answer to a request of this kind."""
        end = time.monotonic() + limit
        while True:
            data, arrived = receive(self.sip, max(0, end - time.monotonic()))
            if data is None:
                raise NoCall(f"No answer came to {method}")
            message = Message(data, arrived)
            if message.status and message.header("CSeq").endswith(method):
                return message
            if message.method == "BYE":
                raise NoCall("The other side hung up")

    def hang_up(self):
        self._up = False
        self._sequence += 1
        self._send("BYE")
        self.answer("BYE")

    def talk(self):
        """Starts to send a packet every 20 ms, counted from the first one."""
        self._thread = threading.Thread(target=self._talk, daemon=True)
        self._thread.start()

    def heard(self, limit):
        """The next audio packet: (payload, arrival time); (None, None) when none arrives within `limit`."""
        data, arrived = receive(self.sound, limit)
        return (data[HEADER_BYTES:] if data else None), arrived

    def _talk(self):
        processes.keep_time()
        source, stamp, number = random.getrandbits(32), 0, 0
        begin = time.monotonic()
        while not self._ended.is_set():
            header = struct.pack("!BBHII", 0x80, 0x80 if number == 0 else 0, number & 0xFFFF, stamp, source)
            self.sound.sendto(header + (self.to_send.popleft() if self.to_send else SILENCE), self.sound_peer)
            number, stamp = number + 1, (stamp + BLOCK) & 0xFFFFFFFF
            time.sleep(max(0, begin + number * BLOCK_SECONDS - time.monotonic()))

    def _stop_talking(self):
        self._ended.set()
        if self._thread is not None:
            self._thread.join()

    def _send(self, method, body=""):
        """Returns when it was sent."""
        host, port = self.sip.getsockname()
        local = f"{host}:{port}"
        if method != "ACK" or self._up:  # a refusal is acknowledged within the transaction
            self._branch = "z9hG4bK" + os.urandom(6).hex()
        kind = "Content-Type: application/sdp\r\n" if body else ""
        text = (f"{method} sip:{self.user}@{self.peer[0]}:{self.peer[1]} SIP/2.0\r\n"
                f"Via: SIP/2.0/UDP {local};branch={self._branch};rport\r\nMax-Forwards: 70\r\n"
                f'From: "Anna" <sip:5551234@{local}>;tag={self.id}\r\nTo: {self._remote}\r\nCall-ID: {self.id}\r\n'
                f"CSeq: {self._sequence} {method}\r\nContact: <sip:5551234@{local}>\r\n"
                f"{kind}Content-Length: {len(body)}\r\n\r\n{body}")  # fmt: skip
        data = text.encode()
        sent = now()
        self.sip.sendto(data, self.peer)
        return sent
