# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs ORVEN for a demonstration, a test or a benchmark: its process, folder, logs and records."""

import glob
import os
import re
import shutil
import signal
import sqlite3

import modem_telephone
import processes
import telephone

LINE = "Demo"  # the name of the telephone line


class Machine:
    """ORVEN in the application folder `folder`/home, which is new or a copy of `template`, an earlier machine's.
    Its only telephone line is on the address `host`, or at the modem_telephone.Modem `modem`. Its windows are on the
    Display `display`, if any. Every new log line is passed to `show`. Every start passes `arguments` to the program.
    Use it in a with statement, which stops the program."""

    def __init__(self, program, folder, show=lambda *_: None, display=None, modem=None, arguments=(), template=None,
                 variables=None, host="127.0.0.1"):  # fmt: skip
        self._follow(os.path.join(folder, "home"), folder, show, processes.free_port(), modem, host)
        self.program, self.arguments = os.path.abspath(program), arguments
        sip = f"type = sip\nlisten = {host}:{self.port}\nring_seconds = 1"
        self.line = f"type = modem\nport = {modem.port}" if modem else sip
        self.config = os.path.join(folder, "config")  # the first start adds ORVEN to the programs started at login
        self._display, self.variables = display, dict(variables or {}, ORVEN_HOME=self.home, XDG_CONFIG_HOME=self.config)
        if template:
            shutil.copytree(template, self.home)
            settings = self.read("registry.reg").replace(template, self.home)
            self.write("registry.reg", settings)
        else:
            os.makedirs(self.home)
        self.write_line(self.line)

    def _follow(self, home, folder, show, port, modem=None, host="127.0.0.1"):
        """What calling and watching the machine in `home` takes, however it was made."""
        self.home, self.port, self.modem, self.process, self.encrypted = home, port, modem, None, False
        self.address = f"the line of the modem at {modem.port}" if modem else f"sip:machine@{host}:{port}"
        self.ready = f"The modem at {modem.port} is: " if modem else "LineOpen["
        self._folder, self._output, self._show, self._read_so_far = folder, os.path.join(folder, "orven.out"), show, {}
        self._logs, self._start = {"Sys": [], "Calls": []}, 0

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process:
            processes.stop(self.process, 5)

    def start(self, *arguments):
        """Starts the program without waiting."""
        self._start = len(self.log())
        command = [self.program, *self.arguments, *arguments]
        desktop = ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")
        windowless = {k: v for k, v in os.environ.items() if k not in desktop}
        environment = {**(self._display.environment() if self._display else windowless), **self.variables}
        self.process = processes.start(command, self._output, env=environment, cwd=self._folder)

    def start_and_wait(self, *arguments):
        """Starts the program; returns when its line accepts calls."""
        self.start(*arguments)
        self.wait_for(self.ready)

    def end(self, with_signal=signal.SIGTERM):
        """Ends the program with a signal, by default as a logout does; fails unless it exits with 0."""
        self.process.send_signal(with_signal)
        self.wait_for_exit()

    def wait_for_exit(self, code=0):
        seconds = 15 * processes.SLOWNESS
        if self.process.wait(seconds) != code:
            raise processes.Failed(f"The program ended with code {self.process.returncode}, not {code}")

    def restart_with(self, settings):
        """Ends the program and starts it again with these settings changed."""
        self.end()
        self.change_settings(settings)
        self.start_and_wait()

    def telephone(self, name, number):
        """A telephone that can call the machine, with telephone.Telephone's methods. Waits in it end with the program."""
        if self.modem:
            return modem_telephone.ModemTelephone(self.modem, name, number, self.look)
        folder = os.path.join(self._folder, name.replace(" ", ""))
        return telephone.Telephone(folder, name, number, meanwhile=self.look, encrypted=self.encrypted)

    # The machine's folder. Change it only while the machine is not running.

    def path(self, name):
        return os.path.join(self.home, name)

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def write_line(self, keys):
        """Configures the telephone line, the only one."""
        self.write("lines.ini", f"[{LINE}]\n{keys}\n")

    def encrypt(self):
        """The SIP line and the telephones take only calls with SRTP."""
        self.write_line(self.line + "\nsrtp = yes")
        self.encrypted = True

    def change_settings(self, settings):
        text = self.read("registry.reg")
        for name, value in settings.items():
            escaped = str(value).replace("\\", "\\\\").replace('"', '\\"')
            line = f'"{name}"="{escaped}"'
            text, count = re.subn(rf'^"{name}"=[^\r\n]*', lambda _: line, text, flags=re.MULTILINE)  # noqa: B023
            if count != 1:
                raise processes.Failed(f'The settings hold "{name}" {count} times')
        self.write("registry.reg", text)

    # The machine's logs and records.

    def look(self):
        """Reads the new log lines; fails when the program has ended."""
        self._read_logs()
        if self.process.poll() is not None:
            raise processes.Failed(
                f"The program ended by itself with code {self.process.returncode}; it printed: {self.output().strip()}"
            )

    def log(self, kind="Sys"):
        """All lines so far of the system log ("Sys") or of the calls log ("Calls")."""
        self._read_logs()
        return self._logs[kind]

    def log_since_start(self):
        """The system log's lines of the latest start."""
        return self.log()[self._start :]

    def count(self, text):
        """The number of log lines since the latest start that contain `text`."""
        return sum(text in line for line in self.log_since_start())

    def wait_for(self, text, limit=30, count=1):
        """Waits until `count` lines of the latest start contain `text`."""
        found = f'"{text}" in the system log' + (f", {count} times" if count > 1 else "")
        processes.wait_for(found, lambda: self.count(text) >= count, limit, self.look)

    def output(self):
        with open(self._output, encoding="utf-8", errors="replace") as file:
            return file.read()

    def password(self):
        """The six-digit password that the first start prints."""
        found = processes.wait_for(
            "The password on standard output", lambda: re.search(r"\b\d{6}\b", self.output()), 20, self.look
        )
        return found[0]

    def records(self, path=None):
        """The call records, oldest first, of its database or of a copy at `path`."""
        path = path or self.path("Calls")
        if not os.path.exists(path):
            return []
        calls = sqlite3.connect(path)
        calls.row_factory = sqlite3.Row
        try:
            return [dict(row) for row in calls.execute("select * from Calls order by rowid")]
        finally:
            calls.close()

    def message(self, record):
        """The path of a record's message."""
        return self.path("Messages/" + record["Call_Massage_Name"])

    def _read_logs(self):
        for kind, lines in self._logs.items():
            for path in sorted(glob.glob(self.path(f"Log/*_{kind}.txt")), key=os.path.getmtime):
                for line in self._new_lines(path):
                    lines.append(line)
                    self._show(kind, line)

    def _new_lines(self, path):
        start = self._read_so_far.get(path, 0)
        with open(path, "rb") as file:
            file.seek(start)
            data = file.read()
        whole = data.rfind(b"\n") + 1
        self._read_so_far[path] = start + whole
        return data[:whole].decode("utf-8", "replace").splitlines()
