# SPDX-License-Identifier: GPL-3.0-or-later
"""A sound server for one program, and recordings of what it plays."""

import os
import subprocess

import processes
import sound


class Server:
    """A PulseAudio with an output "desk" whose sound can be recorded."""

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
        self.ask("load-module", "module-null-sink", "sink_name=desk", "norewinds=1", "rate=8000", "channels=1")

    def end(self):
        if self.process:
            self.process.kill()
            self.process.wait()

    def ask(self, *arguments):
        """What the server answers, or None when there is none."""
        done = subprocess.run(["pactl", *arguments], env=self.environment, capture_output=True, text=True, check=False)
        return done.stdout if done.returncode == 0 else None

    def streams(self):
        return self.ask("list", "short", "sink-inputs").splitlines()


class Recording:
    """What is heard from the output from now on."""

    def __init__(self, server):
        self.path = os.path.join(server.folder, "heard.wav")
        self.server = server
        command = ["parec", "-d", "desk.monitor", "--rate=8000", "--channels=1", "--format=s16le", "--latency-msec=20"]
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
