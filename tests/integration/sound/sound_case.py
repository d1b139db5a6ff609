# SPDX-License-Identifier: GPL-3.0-or-later
"""For tests of whole programs: a sound server of their own, and recordings of what it plays."""

import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "demo"))

import processes  # noqa: E402
import snr  # noqa: E402
import sound  # noqa: E402

BIT_EXACT = 90  # dB; the output or input runs at the telephone's own rate


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
        command = ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no"]
        command.append("--load=module-native-protocol-unix")
        self.process = processes.start(command, os.path.join(self.folder, "server.log"), env=self.environment)
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

    def plug_in(self, name):
        """A new output `name`, and an input mic_`name` that hears what is played there. Qt and the desktop tell them
        by their descriptions."""
        properties = f'sink_properties="device.description={name}"'
        self.ask("load-module", "module-null-sink", f"sink_name={name}", "norewinds=1", "rate=8000", "channels=1", properties)
        properties = f'source_properties="device.description=mic_{name}"'
        self.ask("load-module", "module-remap-source", f"master={name}.monitor", f"source_name=mic_{name}", properties)
        processes.wait_for(f"input mic_{name}", lambda: f"mic_{name}" in (self.ask("list", "short", "sources") or ""), 10)

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
        command += ["--file-format=wav", self.path]
        self.process = processes.start(command, os.path.join(server.folder, "parec.log"), env=server.environment)
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
