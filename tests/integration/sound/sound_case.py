# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests of the sound cards share: a sound server of their own and the program's sound."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "demo"))

import processes  # noqa: E402
import snr  # noqa: E402
import sound  # noqa: E402

PLAYER = ""

BIT_EXACT = 90  # dB; the output or input runs at the telephone's own rate
GIVES_UP = 15  # seconds in which a play on a hanging server has ended, on a busy machine
TEXT = "This is a message for you. Please call me back tomorrow morning at nine."


class Server:
    """A sound server of the test's own, with an output "desk" whose sound can be recorded."""

    def __init__(self, folder):
        self.folder = folder
        self.environment = {k: v for k, v in os.environ.items() if not k.startswith(("PULSE_", "DBUS_", "DISPLAY"))}
        self.environment.update(HOME=folder, XDG_RUNTIME_DIR=folder, LC_ALL="C.UTF-8")
        os.makedirs(os.path.join(folder, ".config", "pulse"))
        with open(os.path.join(folder, ".config", "pulse", "client.conf"), "w", encoding="ascii") as file:
            file.write("autospawn = no\n")
        self.process = None

    def start(self):
        modules = ("module-native-protocol-unix",)
        command = ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no"]
        self.process = processes.start(
            command + [f"--load={module}" for module in modules],
            os.path.join(self.folder, "server.log"),
            env=self.environment,
        )
        processes.wait_for("the sound server", lambda: self.ask("info") is not None, 20)
        self.plug_in("desk")

    def end(self):
        if self.process:
            self.process.kill()
            self.process.wait()

    def ask(self, *arguments):
        """What the server answers, or None when there is none."""
        done = subprocess.run(["pactl", *arguments], env=self.environment, capture_output=True, text=True, check=False)
        return done.stdout if done.returncode == 0 else None

    def plug_in(self, name, sound=("rate=8000", "channels=1"), card=None):
        """A new output `name`, and an input mic_`name` that hears what is played there. Both belong to the
        physical card `card`. Qt and the desktop tell them by their descriptions."""
        bus = f"device.bus_path={card}" if card else ""
        properties = f'sink_properties="device.description={name} {bus}"'
        self.ask("load-module", "module-null-sink", f"sink_name={name}", "norewinds=1", *sound, properties)
        properties = f'source_properties="device.description=mic_{name} {bus}"'
        self.ask("load-module", "module-remap-source", f"master={name}.monitor", f"source_name=mic_{name}", properties)
        processes.wait_for(f"input mic_{name}", lambda: f"mic_{name}" in (self.ask("list", "short", "sources") or ""), 10)

    def unplug(self, name):
        """Takes an output or an input away."""
        for line in self.ask("list", "short", "modules").splitlines():
            if f"sink_name={name} " in line or f"source_name={name} " in line:
                self.ask("unload-module", line.split()[0])

    def streams(self):
        return self.ask("list", "short", "sink-inputs").splitlines()

    def takes(self):
        """The streams of programs that record."""
        return [line for line in self.ask("list", "short", "source-outputs").splitlines() if "native" in line]

    def speak(self, name, path):
        """Plays a sound file on output `name`, to its end."""
        subprocess.run(["paplay", "-d", name, path], env=self.environment, check=True)


class Recording:
    """What is heard from output `name` from now on."""

    def __init__(self, server, name="desk"):
        self.path = os.path.join(server.folder, f"heard-{name}.wav")
        self.server = server
        command = ["parec", "-d", f"mic_{name}", "--rate=8000", "--channels=1", "--format=s16le", "--latency-msec=20"]
        self.process = processes.start(
            command + ["--file-format=wav", self.path], os.path.join(server.folder, "parec.log"), env=server.environment
        )
        self.wait_for_more()

    def samples(self):
        return sound.read_growing(self.path)

    def wait_for_more(self):
        """Half a second from now."""
        enough = len(self.samples()) + sound.RATE // 2
        processes.wait_for("more of the recording", lambda: len(self.samples()) >= enough, 20)

    def finish(self):
        """What was heard until the last stream closed."""
        processes.wait_for("the stream's end", lambda: not self.server.streams(), 10)
        self.wait_for_more()
        processes.stop(self.process, 5)
        return self.samples()


class Player:
    """The program's sound on its own (player/main.cpp)."""

    def __init__(self, server):
        self.path = os.path.join(server.folder, "player.log")
        self.forgotten = 0
        with open(self.path, "wb") as output:
            self.process = subprocess.Popen([PLAYER], stdin=subprocess.PIPE, stdout=output, env=server.environment)

    def lines(self, start=""):
        with open(self.path, encoding="utf-8") as file:
            return [line[len(start) :] for line in file.read().splitlines()[self.forgotten :] if line.startswith(start)]

    def do(self, command, number=0, path=""):
        """Gives a command and returns what it said."""
        seen = len(self.lines())
        self.process.stdin.write(f"{command} {number} {path}\n".encode())
        self.process.stdin.flush()
        processes.wait_for(command, lambda: f"done {command}" in self.lines()[seen:], 10)
        return self.lines()[seen:]

    def value(self, command):
        return int(next(line.split()[1] for line in self.do(command) if line.startswith(command)))

    def cards(self):
        return [line[len("card ") :] for line in self.do("cards") if line.startswith("card ")]

    def wait_for(self, start, count=1):
        processes.wait_for(f'"{start}"', lambda: len(self.lines(start)) >= count, GIVES_UP)

    def wait_for_position(self, milliseconds):
        processes.wait_for(f"position {milliseconds}", lambda: self.value("position") >= milliseconds, 20)

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdin.close()


class SoundCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.speech = sound.speech(TEXT, "en")

    def setUp(self):
        folder = tempfile.mkdtemp(prefix="orven-sound-")
        self.addCleanup(shutil.rmtree, folder, True)
        self.server = Server(folder)
        self.addCleanup(self.server.end)
        self.message, self.take = (os.path.join(folder, name) for name in ("message.wav", "take.wav"))
        sound.write(self.message, self.speech)

    def player(self):
        player = Player(self.server)
        self.addCleanup(player.end)
        return player

    def start_play(self, player, card=0):
        self.assertIn("play 0", player.do("play", card, self.message))
        player.wait_for_position(500)

    def start_take(self, player, card=0):
        self.assertIn("record 0", player.do("record", card))
        processes.wait_for("the take", self.server.takes, 10)

    def finish_take(self, player):
        """What was recorded."""
        self.assertIn("stoprecord 0", player.do("stoprecord", path=self.take))
        return sound.read(self.take)

    def assert_heard(self, expected, heard, quality=BIT_EXACT):
        self.assertGreater(snr.snr(expected, heard)[0], quality)

    def assert_plays(self, player, card=0, output="desk"):
        """The message is heard on `output` when it is played on `card`."""
        recording = Recording(self.server, output)
        count = len(player.lines("finished"))
        player.do("play", card, self.message)
        player.wait_for("finished", count + 1)
        self.assert_heard(self.speech, recording.finish())

    def assert_takes(self, player, card=0, output="desk", quality=BIT_EXACT):
        """What is spoken into the microphone of `output` is recorded from `card`."""
        self.start_take(player, card)
        reference = Recording(self.server, output)
        self.server.speak(output, self.message)
        reference.wait_for_more()
        processes.stop(reference.process, 5)
        self.assert_heard(self.speech, self.finish_take(player), quality)
        processes.wait_for("the take's end", lambda: not self.server.takes(), 10)

    def assert_given_up(self, player, *reasons, plays=0):
        """What runs ends by itself: so many plays, and one report for each of the reasons."""
        player.wait_for("report ", len(reasons))
        player.wait_for("finished", plays)
        reports = player.lines("report ")
        self.assertEqual((len(reasons), plays), (len(reports), len(player.lines("finished"))))
        for reason in reasons:
            self.assertTrue(any(reason in report for report in reports), reports)
        player.forgotten += len(player.lines())

    def assert_ends_well(self, player):
        """Nothing else was reported, no operation has blocked its caller, and the process soon ends."""
        self.assertEqual([], player.lines("report "))
        player.do("quit")
        self.assertEqual(0, player.process.wait(10 * processes.SLOWNESS))
        player.forgotten = 0
        self.assertEqual([], player.lines("blocked "))
        self.assertLess(int(player.lines("gone after ")[0].split()[0]), 3000)


def main(description):
    """Runs the tests of the script, whose first argument is the player."""
    global PLAYER
    if len(sys.argv) < 2:
        sys.exit(description)
    PLAYER = os.path.abspath(sys.argv.pop(1))
    unittest.main()
