# SPDX-License-Identifier: GPL-3.0-or-later
# Shared by the tests of the whole program: a folder, the program in it, callers, and a runner that runs the tests of a
# script in parallel, each in its own process.

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

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
QUIET = {"LC_ALL": "en_US.UTF-8", "PULSE_SERVER": "unix:/nonexistent"}  # tests play nothing on the user's cards


def make_template(folder):
    """Creates a used application folder whose machine answers at the first ring with a short greeting."""
    with machine.Machine(PROGRAM, folder, arguments=["-st"], variables=QUIET) as orven:
        orven.start_and_wait()
        orven.end()
        orven.change_settings({"NumOfRing": "1"})
        # Its window was closed before: the first close shows a box.
        settings = orven.read("registry.reg").replace('"NumOfRing"=', '"ClosedBefore"="1"\n"NumOfRing"=')
        orven.write("registry.reg", settings)
        shutil.rmtree(orven.path("Log"))
        sound.write(orven.path("Greets/Default.wav"), sound.silence(0.3))
        return orven.home


class ProgramCase(unittest.TestCase):
    """Provides a folder for the program, which is not started yet, and telephones that call it."""

    modem, display, arguments, variables = None, None, ("-st",), {}

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="orven-test-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.prepare()
        self.orven = self.machine(os.environ[_TEMPLATE])

    def prepare(self):
        """Sets up what the program needs around it."""

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
        """Calls and waits for the answer."""
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
        """Makes a complete call; `meanwhile` is called when its recording has begun."""
        ends = self.orven.count("Idle[")
        caller = self.call_to_the_message(name)
        meanwhile()
        caller.say(samples, LIMIT + len(samples) / sound.RATE)
        self.hang_up(caller)
        self.orven.wait_for("Idle[", LIMIT, ends + 1)

    def assert_message(self, name, *sounds):
        """Checks that the only record of this caller has a message that contains these sounds, bit by bit."""
        (record,) = [record for record in self.orven.records() if record["Call_Name"] == name]
        message = sound.read(self.orven.message(record))
        for said in sounds:
            self.assertTrue(said.tobytes() in message.tobytes(), "the message is not what was said")
        self.assertAlmostEqual(len(message) / sound.RATE, float(record["Type"]), places=1)

    def assert_order(self, *steps):
        """Checks that the log of the latest start has these steps in this order."""
        rest = iter(self.orven.log_since_start())
        for step in steps:
            self.assertTrue(any(step in line for line in rest), (step, self.orven.log_since_start()))

    def callers_of_records(self):
        return [record["Call_Name"] for record in self.orven.records()]


def sipp(folder, port, scenario, words, *options):
    """Starts sipp, which calls `port` with this scenario; words in capitals are replaced by those in `words`."""
    path = os.path.join(folder, scenario)
    with open(os.path.join(HERE, scenario), encoding="utf-8") as file, open(path, "w", encoding="utf-8") as filled:
        filled.write(re.sub("|".join(words), lambda word: str(words[word[0]]), file.read()))
    ports = ["-p", processes.free_port(), "-mp", processes.free_port() & 0xFFFE]
    command = ["sipp", f"127.0.0.1:{port}", "-sf", path, "-nostdin", "-i", "127.0.0.1", "-mi", "127.0.0.1", *ports]
    return processes.start([str(word) for word in (*command, *options)], os.path.join(folder, "sipp.log"), cwd=folder)


def unshare(kinds, trial):
    """Returns the command that runs another one in new namespaces, whose end undoes all mounts and networks. `kinds`
    are letters of unshare(1). Skips the tests if the shell command `trial` fails in such namespaces."""
    for options in ("-" + kinds, "-r" + kinds):
        command = ["unshare", options]
        if subprocess.run([*command, "sh", "-c", trial], capture_output=True, check=False).returncode == 0:
            return command
    print(f"unshare -{kinds} and -r{kinds} do not allow here: {trial}: skipped")
    sys.exit(SKIPPED)


def main(program_arguments=1, at_a_time=1, namespaces=None, prepare=lambda: None):
    """Runs the named tests, or all: SCRIPT PROGRAM [EMULATOR] [CLASS.TEST …]. Each process calls `prepare` first."""
    global PROGRAM, EMULATOR
    script, *programs = map(os.path.abspath, sys.argv[: program_arguments + 1])
    PROGRAM, EMULATOR = (programs + [""])[:2]
    names = sys.argv[program_arguments + 1 :]
    if _TEMPLATE in os.environ:
        prepare()
        unittest.main(argv=[script, *names], verbosity=2)
    suites = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    names = names or [test.id().removeprefix("__main__.") for suite in suites for test in suite]
    command = [*(unshare(*namespaces) if namespaces else []), sys.executable, "-B", script, *programs]

    def run(name):
        log = os.path.join(folder, name)
        process = processes.start([*command, name], log)
        process.wait()
        with open(log, encoding="utf-8", errors="replace") as file:
            print(file.read(), flush=True)
        return process.returncode == 0

    with tempfile.TemporaryDirectory(prefix="orven-tests-") as folder, ThreadPoolExecutor(at_a_time) as threads:
        os.environ[_TEMPLATE] = make_template(folder)
        sys.exit(0 if all(list(threads.map(run, names))) else 1)
