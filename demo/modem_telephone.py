# SPDX-License-Identifier: GPL-3.0-or-later
"""A telephone that calls over the emulated voice modem, as telephone.Telephone does over the network."""

import os
import subprocess
import time

import processes
import sound

RING_INTERVAL = 3.0  # seconds: the bell rings for two of them
CALLER_ID_AFTER = 2.2  # seconds into the first ring: between it and the second
LONGEST_NAME = 15  # characters of a caller id


class Modem:
    """The emulator `program` with its port under the symbolic link `port`, in the new folder `folder`. Use it in
    a with statement, which ends it."""

    def __init__(self, program, folder, profile="conexant", faults="", seconds=300, options=()):
        os.makedirs(folder)
        self.folder, self.port, self.news = folder, os.path.join(folder, "port"), []
        self._log = os.path.join(folder, "emulator.log")
        command = [program, "--profile", profile, "--faults", faults, "--seconds", str(seconds), "--link", self.port]
        command += options
        for option in ("captured", "spoken", "sent"):
            command += ["--" + option, self._path(option)]
        self._process = processes.start(command, self._log, stdin=subprocess.PIPE)
        try:
            self.wait("port", 10)
        except BaseException:
            self.__exit__()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.stdin.close()  # ends it
        processes.stop(self._process, 3)

    def _path(self, name):
        return os.path.join(self.folder, name + ("" if name == "sent" else ".wav"))

    def do(self, step):
        """Runs one step of the emulator's scripts at once: "ring", "press 12", "say FILE.wav" …"""
        self._process.stdin.write((step + "\n").encode())
        self._process.stdin.flush()

    def look(self):
        """Reads its new reports; raises when it has ended."""
        with open(self._log, encoding="utf-8") as file:
            self.news = [line for line in file.read().split("\n")[:-1] if line]
        if self._process.poll() is not None:
            raise processes.Failed(f"The modem ended by itself; its log is {self._log}")

    def wait(self, word, limit, since=0, meanwhile=lambda: None):
        """Waits for a report that begins with `word`, from number `since` on. Returns the next number."""

        def find():
            self.look()
            for number, line in enumerate(self.news[since:], since + 1):
                if line.startswith(word):
                    return number
            return None

        return processes.wait_for(f'The modem\'s "{word}"', find, limit, meanwhile)

    def complaints(self):
        """The reports of actions that a real modem would have refused."""
        self.look()
        return [line for line in self.news if line.startswith(("complaint", "refused"))]

    def heard(self):
        """The audio that the caller has heard since the latest call was answered."""
        return sound.read_growing(self._path("captured"))

    def spoken(self):
        """The audio from the caller in that time."""
        return sound.read_growing(self._path("spoken"))

    def sent(self):
        """The audio bytes that the modem has sent in that time."""
        with open(self._path("sent"), "rb") as file:
            return file.read()


class ModemTelephone:
    """A telephone on the other end of `modem`'s line, with telephone.Telephone's methods. `meanwhile` is
    called repeatedly during every wait and may end it by raising."""

    def __init__(self, modem, name, number, meanwhile=lambda: None):
        self._modem, self._meanwhile = modem, meanwhile
        self._caller_id = [f"NMBR = {number}", f"NAME = {name[:LONGEST_NAME]}"]
        self._since = self._next_ring = self._identify_at = None

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._next_ring = None
        self._modem.look()
        if self._since is not None and "on-hook" not in self._modem.news[self._since :]:
            self.hang_up()

    def dial(self, _address=None):
        """Rings until the call is answered or this telephone hangs up."""
        self._modem.look()
        self._since = len(self._modem.news)
        self._next_ring = time.monotonic()
        self._identify_at = self._next_ring + CALLER_ID_AFTER

    def press(self, digit):
        self._modem.do(f"press {digit}")

    def say(self, samples, limit):
        """Says `samples`; returns when they and half a second of silence have been sent."""
        path = os.path.join(self._modem.folder, "say.wav")
        sound.write(path, samples)
        target = len(self.sent()) + len(samples) + sound.RATE // 2
        self._modem.do("say " + path)
        self.wait_until("The end of what the telephone says", lambda: len(self.sent()) >= target, limit)

    def hang_up(self):
        self._next_ring = None
        self._modem.do("hangup")

    def sent(self):
        return self._modem.spoken()

    def heard(self):
        return self._modem.heard()

    def wait_event(self, kind, limit):
        """Waits for "CALL_ESTABLISHED" or "CALL_CLOSED"."""
        word = {"CALL_ESTABLISHED": "off-hook", "CALL_CLOSED": "on-hook"}[kind]
        self._modem.wait(word, limit, self._since, self._check)
        self._next_ring = None

    def wait_until(self, what, condition, limit):
        """Waits for `condition` during a call; fails at once when the call ends."""

        def in_call():
            self._check()
            if "on-hook" in self._modem.news[self._since :]:
                raise processes.Failed(f"{what} did not come: the call ended")

        return processes.wait_for(what, condition, limit, in_call)

    def _check(self):
        self._meanwhile()
        self._modem.look()
        if self._next_ring is None:
            return
        now = time.monotonic()
        if now >= self._next_ring:
            self._next_ring += RING_INTERVAL
            self._modem.do("ring")
        if self._identify_at is not None and now >= self._identify_at:
            self._identify_at = None
            for line in self._caller_id:
                self._modem.do("callerid " + line)
