#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# Starts and ends the program in every way that a person, a desktop or a crash would.

import glob
import os
import signal

import harness
from harness import processes, sound


class OrvenTest(harness.ProgramCase):
    arguments = ()

    def test_first_start_makes_a_working_machine_and_tells_the_password_once(self):
        os.rename(self.orven.home, self.orven.home + ".used")
        orven = self.machine()
        orven.start_and_wait()
        password = orven.password()
        orven.end()
        for kind in ("Sys", "Calls"):
            log = orven.log(kind)
            self.assertTrue("Load ORVEN" in log[0] and "Unload ORVEN" in log[-1], log)
            self.assertNotIn(password, "".join(log))
        for text in (f'"Pass"="{password}"', f'"MassagesPath"="{orven.home}/Messages/"'):
            self.assertIn(text, orven.read("registry.reg"))
        for name in ("beep.wav", "Greets/Default.wav", "Messages", "Log", "Sound"):
            self.assertTrue(os.path.exists(orven.path(name)), name)
        orven.start_and_wait()
        orven.end(signal.SIGINT)
        self.assertEqual(orven.output().count(password), 1)
        with open(f"{orven.config}/autostart/orven.desktop", encoding="utf-8") as entry:
            self.assertIn(f"\nExec=env ORVEN_HOME={orven.home} {orven.program} -st\n", entry.read())

    def test_a_second_instance_touches_nothing(self):
        self.orven.start_and_wait()
        self.orven.wait_for("There is no sound server")  # the last line that a start writes
        before, first = list(self.orven.log()), self.orven.process
        self.addCleanup(processes.stop, first, 5)
        self.orven.start()
        self.orven.wait_for_exit()
        self.assertIn("ORVEN is still running", self.orven.output())
        self.assertEqual((self.orven.log(), first.poll()), (before, None))

    def test_exit_in_mid_message_keeps_the_message(self):
        self.orven.start_and_wait()
        said = sound.noise(2, seed=1)
        self.call_to_the_message("Anna").say(said, harness.LIMIT)
        self.orven.end()
        self.assertIn("Unload ORVEN", self.orven.log()[-1])
        (record,) = self.orven.records()
        self.assertEqual((record["Call_Name"], record["Call_Number"]), ("Anna", "5551234"))
        message = sound.read(self.orven.message(record))
        self.assertTrue(said.tobytes() in message.tobytes())
        self.assertAlmostEqual(len(message) / sound.RATE, float(record["Type"]), places=2)

    def test_damaged_files_are_set_aside_and_named(self):
        orven, damaged = self.orven, "not a database, only a text that is long enough to look like one\n" * 20
        orven.write("registry.reg", orven.read("registry.reg").splitlines()[0] + "\n")
        os.remove(orven.path("registry.reg.bak"))
        orven.write("Calls", damaged)
        orven.write("lines.ini", orven.read("lines.ini") + "[Broken]\ntype = pigeon\n")
        orven.start_and_wait()
        orven.end()
        log = "\n".join(orven.log())
        self.assertIn("The settings are missing: the installation's settings and a new password are in", log)
        self.assertIn("lines.ini:6", log)
        kept = [name for name in glob.glob(orven.path("Calls.*")) if orven.read(name) == damaged]
        self.assertEqual((len(kept), orven.records()), (1, []))

    def test_an_application_folder_that_cannot_be_made_is_named(self):
        self.orven.home += "/lines.ini/home"  # below a file
        self.orven.variables["ORVEN_HOME"] = self.orven.home
        self.orven.start()
        self.assertNotEqual(self.orven.process.wait(harness.LIMIT), 0)
        self.assertIn(self.orven.home, self.orven.output())


if __name__ == "__main__":
    harness.main(at_a_time=3)
