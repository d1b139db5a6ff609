# SPDX-License-Identifier: GPL-3.0-or-later
# What the tests of the whole program share: a folder, the program in it, callers, and a runner that runs the tests of a
# script side by side, each in its own process.

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path += [os.path.join(HERE, *[".."] * 3, "demo"), os.path.join(HERE, "..", "sound")]

import machine  # noqa: E402
import processes  # noqa: E402
import sound  # noqa: E402

PROGRAM = EMULATOR = ""
LIMIT = 30  # seconds, for every wait
REACTION_SECONDS = 0.5  # from the beep until a person speaks
SKIPPED = 77  # CTest's SKIP_RETURN_CODE
_TEMPLATE = "ORVEN_TEST_TEMPLATE"  # set in each test's process
QUIET = {"LC_ALL": "en_US.UTF-8", "PULSE_SERVER": "unix:/nonexistent"}  # no test beeps on the user's desk


def make_template(folder):
    """A used application folder whose machine answers at the first ring with a short greeting."""
    with machine.Machine(PROGRAM, folder, arguments=["-st"], variables=QUIET) as orven:
        orven.start_and_wait()
        orven.end()
        orven.change_settings({"NumOfRing": "1"})
        shutil.rmtree(orven.path("Log"))
        sound.write(orven.path("Greets/Default.wav"), sound.silence(0.3))
        return orven.home


class ProgramCase(unittest.TestCase):
    """A folder for the program, not started yet, and telephones that call it."""

    modem, display, arguments, variables = None, None, ("-st",), {}

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="orven-test-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.prepare()
        self.orven = self.machine(os.environ[_TEMPLATE])

    def prepare(self):
        """What the program needs around it."""

    def machine(self, template=None):
        return self.enterContext(machine.Machine(
            PROGRAM, self.folder, display=self.display, modem=self.modem, arguments=self.arguments,
            template=template, variables={**QUIET, **self.variables}))  # fmt: skip

    def dial(self, name):
        caller = self.enterContext(self.orven.telephone(name, "5551234"))
        caller.hurry()
        caller.dial(self.orven.address)
        return caller

    def call(self, name):
        """A caller whose call was answered."""
        caller = self.dial(name)
        caller.wait_event("CALL_ESTABLISHED", LIMIT)
        return caller

    def call_to_the_message(self, name):
        recordings = self.orven.count("Start Record Message[")
        caller = self.call(name)
        self.orven.wait_for("Start Record Message[", LIMIT, recordings + 1)
        return caller

    def hang_up(self, caller):
        caller.hang_up()
        caller.wait_event("CALL_CLOSED", LIMIT)

    def leave_message(self, name, samples, meanwhile=lambda: None):
        """A whole call; `meanwhile` is called when its recording has begun."""
        ends = self.orven.count("Idle[")
        caller = self.call_to_the_message(name)
        meanwhile()
        caller.say(samples, LIMIT + len(samples) / sound.RATE)
        self.hang_up(caller)
        self.orven.wait_for("Idle[", LIMIT, ends + 1)

    def assert_order(self, *steps):
        """The log of the latest start has them in this order."""
        rest = iter(self.orven.log_since_start())
        for step in steps:
            self.assertTrue(any(step in line for line in rest), (step, self.orven.log_since_start()))

    def callers_of_records(self):
        return [record["Call_Name"] for record in self.orven.records()]


def unshare(kinds, trial):
    """The command that runs another in its own namespaces, whose end undoes all mounts and networks. `kinds` are
    letters of unshare(1). Where the shell command `trial` fails in such namespaces, the tests are skipped."""
    for options in ("-" + kinds, "-r" + kinds):
        command = ["unshare", options]
        if subprocess.run([*command, "sh", "-c", trial], capture_output=True, check=False).returncode == 0:
            return command
    print(f"unshare -{kinds} and -r{kinds} do not allow here: {trial}: skipped")
    sys.exit(SKIPPED)


def run_side_by_side(names, at_a_time, command):
    """Runs each test by `command` in its own process. Whether all passed."""
    passed, running = True, {}
    with tempfile.TemporaryDirectory(prefix="orven-tests-") as logs:
        while names or running:
            while names and len(running) < at_a_time:
                name = names.pop(0)
                running[name] = processes.start([*command, name], os.path.join(logs, name))
            over = lambda: [name for name, process in running.items() if process.poll() is not None]  # noqa: E731
            for name in processes.wait_for("A test's end", over, 600):
                with open(os.path.join(logs, name), encoding="utf-8", errors="replace") as log:
                    print(log.read(), flush=True)
                passed = running.pop(name).returncode == 0 and passed
    return passed


def main(program_arguments=1, at_a_time=1, namespaces=None, prepare=lambda: None):
    """Runs the tests of the script that are named, or all. Each test's process calls `prepare` first."""
    global PROGRAM, EMULATOR
    if len(sys.argv) <= program_arguments:
        sys.exit(f"{sys.argv[0]} PROGRAM [EMULATOR] [CLASS.TEST …]")
    script, *programs = map(os.path.abspath, sys.argv[: program_arguments + 1])
    PROGRAM, EMULATOR = (programs + [""])[:2]
    names = sys.argv[program_arguments + 1 :]
    if _TEMPLATE in os.environ:
        prepare()
        unittest.main(argv=[script, *names], verbosity=2)
    if not names:
        suites = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
        names = [test.id().removeprefix("__main__.") for suite in suites for test in suite]
    command = [*(unshare(*namespaces) if namespaces else []), sys.executable, "-B", script, *programs]
    with tempfile.TemporaryDirectory(prefix="orven-tests-") as folder:
        os.environ[_TEMPLATE] = make_template(folder)
        sys.exit(0 if run_side_by_side(names, at_a_time, command) else 1)
