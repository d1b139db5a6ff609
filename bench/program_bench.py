#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures the start of the program, and its memory and CPU use while it is idle.

    program_bench.py PROGRAM

Runs on a private display with a window manager; each measured start uses an existing application folder.
"""

import glob
import os
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import display  # noqa: E402
import machine  # noqa: E402
import processes  # noqa: E402

STARTS = 7
RECORDS = 100_000
IDLE_TIMES, IDLE_SECONDS = 4, 5.0
START_LIMIT = 20.0


class WindowWatch:
    """Records when the window manager maps the next window."""

    def __init__(self, screen):
        self.shown = None
        self._xprop = subprocess.Popen(
            ["xprop", "-spy", "-root", "_NET_CLIENT_LIST"], env=screen.environment(), stdout=subprocess.PIPE, text=True
        )
        self._xprop.stdout.readline()  # windows that exist already
        self._thread = threading.Thread(target=self._watch)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._xprop.terminate()
        self._thread.join()
        self._xprop.wait()

    def _watch(self):
        for line in self._xprop.stdout:
            if "0x" in line and self.shown is None:
                self.shown = time.monotonic()


def timed_start(program, screen, *arguments, window=True):
    """Returns the seconds until the line was open and, if expected, until the window was shown."""
    with WindowWatch(screen) as watch:
        began = time.monotonic()
        program.start(*arguments)
        opened = None
        while opened is None or (window and watch.shown is None):
            if time.monotonic() - began > START_LIMIT:
                raise processes.Failed("The program did not start")
            program.look()
            if opened is None and program.count("LineOpen["):
                opened = time.monotonic()
            time.sleep(0.002)
    return opened - began, watch.shown - began if window else None


def fill(path, count):
    with sqlite3.connect(path) as calls:
        calls.execute(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) INSERT INTO Calls "
            "SELECT 'Anna', '555' || i, '14:05:07', '12/31/2003', 'm.wav', '5.2', '0' FROM n", [count])


def resident_megabytes(process):
    with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmRSS")) / 1024


def cpu_seconds(process):
    with open(f"/proc/{process.pid}/stat", encoding="ascii") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def voluntary_switches(process):
    """The number of voluntary context switches of its threads: each one is a wake-up."""
    count = 0
    for path in glob.glob(f"/proc/{process.pid}/task/*/status"):
        with open(path, encoding="ascii") as status:
            count += next(int(line.split()[1]) for line in status if line.startswith("voluntary_ctxt_switches"))
    return count


def report_starts(program, screen, what):
    shown, opened = [], []
    for _ in range(STARTS):
        line_open, window_shown = timed_start(program, screen)
        shown.append(window_shown)
        opened.append(line_open)
        program.end()
    print(f"{what:45} window {statistics.median(shown) * 1000:5.0f} ms (most {max(shown) * 1000:.0f})"
          f"   line open {statistics.median(opened) * 1000:5.0f} ms", flush=True)


def report_waiting(program, screen, what, *arguments):
    timed_start(program, screen, *arguments, window=not arguments)
    process = program.process
    time.sleep(3)  # until the background work of the start is done
    cpu, switches = cpu_seconds(process), []
    for _ in range(IDLE_TIMES):
        before = voluntary_switches(process)
        time.sleep(IDLE_SECONDS)
        switches.append((voluntary_switches(process) - before) / IDLE_SECONDS)
    share = (cpu_seconds(process) - cpu) / IDLE_SECONDS / IDLE_TIMES
    print(f"{what:45} resident {resident_megabytes(process):5.1f} MB   CPU {share * 100:.2f} % of a core   "
          f"wake-ups {statistics.median(switches):.2f} a second (most {max(switches):.2f}, aim < 2)", flush=True)
    program.end()


def main(path):
    with tempfile.TemporaryDirectory() as folder, display.Display(folder) as screen, \
         machine.Machine(path, folder, display=screen) as program:  # fmt: skip
        program.start_and_wait()  # the first start fills the folder
        program.end()
        report_starts(program, screen, "start")
        report_waiting(program, screen, "waiting with the window open")
        report_waiting(program, screen, "waiting hidden", "-st")
        fill(program.path("Calls"), RECORDS)
        program.start_and_wait()
        program.end()
        report_starts(program, screen, f"start with {RECORDS:,} records")
        report_waiting(program, screen, f"waiting with {RECORDS:,} records, window open")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]))
