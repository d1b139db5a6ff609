# SPDX-License-Identifier: GPL-3.0-or-later
"""An independent telephone: baresip, with its own configuration and without a sound card."""

import glob
import json
import os
import socket

import processes
import sound

CONFIGURATION = """\
sip_listen 127.0.0.1:{sip_port}
net_interface 127.0.0.1
audio_player aubridge,nowhere
audio_source aufile,{folder}/silence.wav
audio_alert aufile,{folder}/alert.wav
ausrc_srate 8000
auplay_srate 8000
module_path /usr/lib/baresip/modules
module g711.so
module srtp.so
module aubridge.so
module aufile.so
module sndfile.so
module_tmp account.so
module_app menu.so
module_app ctrl_tcp.so
ctrl_tcp_listen 127.0.0.1:{control_port}
snd_path {folder}
call_max_calls 1
"""

ACCOUNT = (
    '"{name}" <sip:{number}@127.0.0.1:{sip_port}>'
    ";regint=0;audio_codecs=PCMU/8000/1;dtmfmode=rtpevent;answermode={answer}{security}\n"
)

SILENCE_SECONDS = 180  # the longest call; a source that ends would end the call


class Telephone:
    """One telephone with one line. Use it in a with statement, which ends it. `meanwhile` is called repeatedly
    during every wait and may end it by raising. An `encrypted` one makes calls only with SRTP."""

    def __init__(self, folder, name, number, answer="manual", meanwhile=lambda: None, encrypted=False):
        self._meanwhile = meanwhile
        self.folder, self.control_port = folder, processes.free_port()
        self.sip_port = processes.free_port(2)  # baresip uses the next port for TLS
        os.makedirs(folder)
        security = ";mediaenc=srtp-mand" if encrypted else ""
        facts = dict(vars(self), name=name, number=number, answer=answer, security=security)
        self._write("config", CONFIGURATION.format(**facts))
        self._write("accounts", ACCOUNT.format(**facts))
        self._write("contacts", "")
        sound.write(os.path.join(folder, "silence.wav"), sound.silence(SILENCE_SECONDS))
        self._events, self._received = [], b""
        self._log = os.path.join(folder, "baresip.log")
        self._process = processes.start(["baresip", "-f", folder], self._log, cwd=folder)
        try:
            self._control = processes.wait_for("The telephone's control port", self._connect, 10, self._check)
        except BaseException:
            processes.stop(self._process, 2)
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._control.close()
        processes.stop(self._process, 3)

    def hurry(self):
        """Raises its priority, if allowed, to send audio in time on a busy computer. Call it before dialling."""
        processes.hurry(self._process)

    def dial(self, address):
        self._command("dial", address)

    def press(self, digit):
        """Presses and releases one key."""
        self._command("sndcode", digit)

    def say(self, samples, limit):
        """Says `samples`; returns when they and half a second of silence have been sent."""
        path = os.path.join(self.folder, "say.wav")
        sound.write(path, samples + sound.silence(SILENCE_SECONDS))
        target = len(self.sent()) + len(samples) + sound.RATE // 2
        self._command("ausrc", "aufile," + path)
        self.wait_until("The end of what the telephone says", lambda: len(self.sent()) >= target, limit)

    def hang_up(self):
        self._command("hangup", "")

    def sent(self):
        """The audio that this telephone has sent in its latest call."""
        return self._recording("enc")

    def heard(self):
        """The audio that this telephone has received in its latest call."""
        return self._recording("dec")

    def wait_event(self, kind, limit):
        """Waits for an event that no earlier wait has taken, for example "CALL_ESTABLISHED"."""

        def taken():
            self._read()
            for index, event in enumerate(self._events):
                if event.get("type") == kind:
                    del self._events[: index + 1]
                    return event
            return None

        return processes.wait_for(f"The telephone's event {kind}", taken, limit, self._check)

    def wait_until(self, what, condition, limit):
        """Waits for `condition` during a call; fails at once when the call ends."""

        def in_call():
            self._check()
            for event in self._events:
                if event.get("type") == "CALL_CLOSED":
                    raise processes.Failed(f"{what} did not come: the call ended ({event.get('param')})")

        def check():
            self._read()
            return condition()

        return processes.wait_for(what, check, limit, in_call)

    def _write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def _recording(self, direction):
        paths = sorted(glob.glob(os.path.join(self.folder, f"dump-*-{direction}.wav")), key=os.path.getmtime)
        return sound.read_growing(paths[-1]) if paths else sound.silence(0)

    def _connect(self):
        try:
            control = socket.create_connection(("127.0.0.1", self.control_port), timeout=2)
        except OSError:
            return None
        control.setblocking(False)
        return control

    def _check(self):
        self._meanwhile()
        if self._process.poll() is not None:
            raise processes.Failed(f"The telephone ended by itself; its log is {self._log}")

    def _command(self, command, parameters):
        message = json.dumps({"command": command, "params": parameters}).encode()
        self._control.sendall(b"%d:%s," % (len(message), message))

    def _read(self):
        """Parses the received bytes: netstrings ("length:text,") of JSON, events and responses mixed."""
        while True:
            try:
                data = self._control.recv(65536)
            except BlockingIOError:
                break
            if not data:
                break
            self._received += data
        while b":" in self._received:
            length, rest = self._received.split(b":", 1)
            size = int(length)
            if len(rest) <= size:
                return
            message, self._received = json.loads(rest[:size]), rest[size + 1 :]
            if message.get("event"):
                self._events.append(message)
            elif not message.get("ok", True):
                raise processes.Failed(f"The telephone refused a command: {message.get('data', '').strip()}")
