#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Starts and ends the program in every way that a person, a desktop or a crash would.

    orven_test.py PROGRAM
"""

import glob
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "demo"))

import processes  # noqa: E402
import sound  # noqa: E402
import telephone  # noqa: E402

PROGRAM = ""


class Orven:
    """The program in `home`, with one SIP line on a free port."""

    def __init__(self, home, arguments=(), environment=None):
        self.home = home
        self.output_path = tempfile.mkstemp(prefix="orven-out-")[1]
        clean = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        silence = "unix:/nonexistent"  # no test beeps on the desk of whoever runs it
        clean.update({"ORVEN_HOME": home, "LC_ALL": "en_US.UTF-8", "PULSE_SERVER": silence, **(environment or {})})
        self.config = home + ".config"  # no test enters a program among those that the user's desktop starts
        clean["XDG_CONFIG_HOME"] = self.config
        self.process = processes.start([PROGRAM, *arguments], self.output_path, env=clean)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self.process, 5)
        os.unlink(self.output_path)

    def output(self):
        with open(self.output_path, encoding="utf-8") as file:
            return file.read()

    def log(self, kind="Sys"):
        lines = []
        for path in sorted(glob.glob(os.path.join(self.home, "Log", f"*_{kind}.txt")), key=os.path.getmtime):
            with open(path, encoding="utf-8", newline="") as file:
                lines += [re.sub(r"^[^:]*:\d\d:\d\d.*? : ", "", line) for line in file.read().split("\r\n")[:-1]]
        return lines

    def wait_for(self, text, limit=20, count=1):
        def look():
            return sum(text in line for line in self.log()) >= count

        processes.wait_for(f'"{text}" in the system log', look, limit)

    def end(self, with_signal=signal.SIGTERM):
        self.process.send_signal(with_signal)
        return self.process.wait(15 * processes.SLOWNESS)


class OrvenCase(unittest.TestCase):
    """A folder for the program, and a telephone that calls it."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="orven-test-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.home = os.path.join(self.folder, "home")
        os.makedirs(self.home)
        self.port = processes.free_port()
        self.write("lines.ini", f"[Test]\ntype = sip\nlisten = 127.0.0.1:{self.port}\nring_seconds = 1\n")

    def path(self, name):
        return os.path.join(self.home, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def read(self, name):
        with open(self.path(name), encoding="utf-8") as file:
            return file.read()

    def records(self):
        with sqlite3.connect(self.path("Calls")) as calls:
            return calls.execute("select * from Calls").fetchall()

    def first_start(self):
        """A folder with its defaults in place, answering at the first ring."""
        with Orven(self.home) as orven:
            orven.wait_for("LineOpen[")
            orven.end()
        settings = self.read("registry.reg").replace('"NumOfRing"="4"', '"NumOfRing"="1"')
        self.write("registry.reg", settings)

    def call(self, name):
        caller = telephone.Telephone(os.path.join(self.folder, name), "Anna", "5551234")
        self.addCleanup(caller.__exit__, None, None, None)
        caller.dial(f"sip:machine@127.0.0.1:{self.port}")
        caller.wait_event("CALL_ESTABLISHED", 20)
        return caller


class OrvenTest(OrvenCase):
    def test_first_start_makes_a_working_machine_and_tells_the_password_once(self):
        with Orven(self.home) as orven:
            orven.wait_for("LineOpen[LineIndex:0 Device Name:Test]->")
            password = re.search(r"\b(\d{6})\b", orven.output()).group(1)
            self.assertEqual(orven.end(), 0)
            log = orven.log()
            self.assertEqual([log[0], log[-1]], ["Load ORVEN", "Unload ORVEN"])
            self.assertEqual(orven.log("Calls"), ["Load ORVEN", "Unload ORVEN"])
        self.assertIn(f'"Pass"="{password}"', self.read("registry.reg"))
        self.assertIn(f'"MassagesPath"="{self.home}/Messages/"', self.read("registry.reg"))
        for name in ("beep.wav", "Greets/Default.wav", "Messages", "Log", "Sound"):
            self.assertTrue(os.path.exists(self.path(name)), name)
        for name in glob.glob(self.path("Log/*")):
            with open(name, encoding="utf-8") as file:
                self.assertNotIn(password, file.read())
        with Orven(self.home) as orven:
            orven.wait_for("Load ORVEN", count=2)
            orven.end(signal.SIGINT)
            self.assertNotIn(password, orven.output())
            with open(f"{orven.config}/autostart/orven.desktop", encoding="utf-8") as entry:
                self.assertIn(f"\nExec=env ORVEN_HOME={self.home} {PROGRAM} -st\n", entry.read())

    def test_a_second_instance_touches_nothing(self):
        with Orven(self.home) as first:
            first.wait_for("LineOpen[")
            first.wait_for("There is no sound server")  # the last that a start leaves to be said
            before = first.log()
            with Orven(self.home) as second:
                self.assertEqual(second.process.wait(20 * processes.SLOWNESS), 0)
                self.assertIn("ORVEN is still running", second.output())
            self.assertEqual(first.log(), before)

    def test_exit_in_mid_message_keeps_the_message(self):
        self.first_start()
        with Orven(self.home) as orven:
            orven.wait_for("LineOpen[", count=2)
            caller = self.call("caller")
            orven.wait_for("Start Record Message[")
            caller.say(sound.speech("Please call me back.", "en"), 30)
            self.assertEqual(orven.end(), 0)
            self.assertEqual(orven.log()[-1], "Unload ORVEN")
        record = self.records()[0]
        self.assertEqual(record[:2], ("Anna", "5551234"))
        length = float(subprocess.run(["soxi", "-D", self.path("Messages/" + record[4])], check=True,
                                      capture_output=True, text=True).stdout)
        self.assertAlmostEqual(length, float(record[5]), places=2)
        self.assertGreater(length, 1.0)

    def test_damaged_files_are_set_aside_and_named(self):
        self.first_start()
        self.write("registry.reg", self.read("registry.reg").splitlines()[0] + "\n")
        os.remove(self.path("registry.reg.bak"))
        self.write("Calls", "this is no database, only a text that is long enough to look like something\n" * 20)
        self.write("lines.ini", self.read("lines.ini") + "[Broken]\ntype = pigeon\n")
        with Orven(self.home) as orven:
            orven.wait_for("LineOpen[LineIndex:0 Device Name:Test]->", count=2)
            log = "\n".join(orven.log())
            orven.end()
        self.assertIn("The settings are missing: the installation's settings and a new password are in", log)
        self.assertRegex(log, r"lines\.ini:6")
        kept = [name for name in os.listdir(self.home) if name.startswith("Calls") and name != "Calls"]
        self.assertTrue(any(self.read(name).startswith("this is no database") for name in kept), kept)
        self.assertEqual(self.records(), [])

    def test_an_unusable_application_folder_is_said(self):
        blocked = self.path("file")
        self.write("file", "")
        with Orven(os.path.join(blocked, "home")) as orven:
            self.assertNotEqual(orven.process.wait(20 * processes.SLOWNESS), 0)
            self.assertIn(blocked, orven.output())


if __name__ == "__main__":
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
