# SPDX-License-Identifier: GPL-3.0-or-later
"""The answering programs of the benchmark: ORVEN and, for comparison, baresip with automatic answering and the floor
below any answering program."""

import contextlib
import glob
import os
import time

import machine
import processes
import sip_telephone
import sound

START_LIMIT = 20.0  # seconds
PEER_NUMBER = "100"
PEER_CONFIGURATION = """\
sip_listen 127.0.0.1:{port}
net_interface 127.0.0.1
audio_player aubridge,nowhere
audio_source aufile,{folder}/greeting.wav
ausrc_srate 8000
auplay_srate 8000
module_path /usr/lib/baresip/modules
module g711.so
module aubridge.so
module aufile.so
{recorder}
module_tmp account.so
module_app menu.so
snd_path {folder}
call_max_calls 1
"""
PEER_ACCOUNT = "<sip:{number}@127.0.0.1:{port}>;regint=0;audio_codecs=PCMU/8000/1;answermode=auto\n"


class Process:
    """CPU time and memory of a process, from the kernel."""

    def __init__(self, number):
        self.number = number

    def cpu_seconds(self):
        """CPU time of all threads, including finished ones: the clock of clock_getcpuclockid(3)."""
        return time.clock_gettime(~self.number << 3 | 2)

    def wake_ups(self):
        """Voluntary context switches so far of each thread that runs now."""
        counts = {}
        for path in glob.glob(f"/proc/{self.number}/task/*/status"):
            with contextlib.suppress(FileNotFoundError, ProcessLookupError), open(path, encoding="ascii") as status:
                fields = dict(line.split(":", 1) for line in status)
                counts[path] = int(fields["voluntary_ctxt_switches"])
        return counts

    def megabytes(self, *names):
        """These lines of /proc/PID/smaps_rollup, for example "Rss"."""
        with open(f"/proc/{self.number}/smaps_rollup", encoding="ascii") as rollup:
            sizes = dict(line.split()[:2] for line in rollup if line.rstrip().endswith("kB"))
        return [int(sizes[name + ":"]) / 1024 for name in names]


class Orven:
    """ORVEN with the given greeting and settings; it answers at the first ring."""

    name, user = "ORVEN", "machine"

    def __init__(self, program, folder, greeting, settings=None, display=None, hidden=True):
        self.machine = machine.Machine(program, folder, display=display, arguments=["-st"] if hidden else [])
        try:
            self.port = self.machine.port
            self.machine.start_and_wait()
            sound.write(self.machine.path("Greets/Bench.wav"), greeting)
            self.restart_with({"NumOfRing": "1", "Greeting": "Bench", **(settings or {})})
        except BaseException:
            self.machine.__exit__()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.machine.__exit__()

    def restart_with(self, settings):
        self.machine.restart_with(settings)
        self.process = Process(self.machine.process.pid)

    def timed_start(self):
        """Restarts the program; returns the seconds until it answered a request."""
        self.machine.end()
        seconds = first_answer(self.port, self.machine.start)
        self.process = Process(self.machine.process.pid)
        return seconds


class Peer:
    """baresip, which plays the greeting to each caller, and optionally records the received audio."""

    name, user = "baresip", PEER_NUMBER

    def __init__(self, folder, greeting, records=False):
        os.makedirs(folder)
        self._folder, self.port = folder, processes.free_port(2)  # baresip uses the next port for TLS
        facts = {"folder": folder, "port": self.port, "number": PEER_NUMBER}
        recorder = "module sndfile.so" if records else ""
        for name, text in (("config", PEER_CONFIGURATION), ("accounts", PEER_ACCOUNT), ("contacts", "")):
            with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
                file.write(text.format(recorder=recorder, **facts))
        sound.write(os.path.join(folder, "greeting.wav"), greeting)
        self._child = None
        self.timed_start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self._child, 3)

    def timed_start(self):
        """Starts or restarts it; returns the seconds until it answered a request."""
        if self._child is not None:
            processes.stop(self._child, 3)
        return first_answer(self.port, self._start)

    def _start(self):
        self._child = processes.start(["baresip", "-f", self._folder], self._folder + "/output", cwd=self._folder)
        self.process = Process(self._child.pid)


class Floor:
    """`program` speaks no SIP: it takes packets of audio at its port, sends as many, and does nothing with them."""

    name, user = "floor", None
    BETWEEN_CALLS = 1.1  # seconds until it takes the next one

    def __init__(self, program, folder):
        output = os.path.join(folder, "floor.out")
        self._child = processes.start([program], output)
        self.process = Process(self._child.pid)

        def port():
            with open(output, encoding="ascii") as file:
                return int(file.read() or 0)

        self.port = processes.wait_for("The port of the floor", port, START_LIMIT)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self._child, 3)


def first_answer(port, start):
    """Calls `start` and sends a request to `port` every millisecond; returns the seconds until the first answer."""
    with sip_telephone.Call(port) as telephone:
        began = sip_telephone.now()
        start()
        while True:
            telephone.options()
            data, arrived = sip_telephone.receive(telephone.sip, 0.001)
            if data is not None:
                return arrived - began
            if sip_telephone.now() - began > START_LIMIT:
                raise processes.Failed(f"Nothing at port {port} answers within {START_LIMIT:g} seconds")
