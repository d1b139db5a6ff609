#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures the start of the program.

    program_bench.py PROGRAM

Runs on a private display with a window manager; each measured start uses an existing application folder.
"""

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


def timed_start(program, screen):
    """Returns the seconds until the line was open and until the window was shown."""
    with WindowWatch(screen) as watch:
        began = time.monotonic()
        program.start()
        opened = None
        while opened is None or watch.shown is None:
            if time.monotonic() - began > START_LIMIT:
                raise processes.Failed("The program did not start")
            program.look()
            if opened is None and program.count("LineOpen["):
                opened = time.monotonic()
            time.sleep(0.002)
    return opened - began, watch.shown - began


def fill(path, count):
    with sqlite3.connect(path) as calls:
        calls.execute(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) INSERT INTO Calls "
            "SELECT 'Anna', '555' || i, '14:05:07', '12/31/2003', 'm.wav', '5.2', '0' FROM n", [count])


def report_starts(program, screen, what):
    shown, opened = [], []
    for _ in range(STARTS):
        line_open, window_shown = timed_start(program, screen)
        shown.append(window_shown)
        opened.append(line_open)
        program.end()
    print(f"{what:45} window {statistics.median(shown) * 1000:5.0f} ms (most {max(shown) * 1000:.0f})"
          f"   line open {statistics.median(opened) * 1000:5.0f} ms", flush=True)


def main(path):
    with tempfile.TemporaryDirectory() as folder, display.Display(folder) as screen, \
         machine.Machine(path, folder, display=screen) as program:  # fmt: skip
        program.start_and_wait()  # the first start fills the folder
        program.end()
        report_starts(program, screen, "start")
        fill(program.path("Calls"), RECORDS)
        program.start_and_wait()
        program.end()
        report_starts(program, screen, f"start with {RECORDS:,} records")


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]))
