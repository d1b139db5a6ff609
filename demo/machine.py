# SPDX-License-Identifier: GPL-3.0-or-later
"""The answering machine under demonstration: its process, its folder, its logs and its records."""

import glob
import json
import os
import re
import subprocess

import processes


class Machine:
    """ORVEN in a fresh application folder below `folder`, with one telephone line on 127.0.0.1 or at the
    modem_telephone.Modem `modem`, on the Display `display` or on none. Use it in a with statement. Every new
    log line is given to `show` as it appears. The program gets `arguments` at each start."""

    def __init__(self, program, folder, show, display=None, modem=None, arguments=(), ring_seconds=2):
        self.home = os.path.join(folder, "home")
        self.port, self.modem = processes.free_port(), modem
        self.address = f"the line of the modem at {modem.port}" if modem else f"sip:machine@127.0.0.1:{self.port}"
        line = f"type = modem\nport = {modem.port}" if modem else f"type = sip\nlisten = 127.0.0.1:{self.port}"
        self.system_log, self.calls_log = [], []
        self._output, self._show, self._read_so_far = os.path.join(folder, "orven.out"), show, {}
        os.makedirs(self.home)
        with open(os.path.join(self.home, "lines.ini"), "w", encoding="utf-8") as file:
            file.write(f"[Demo]\n{line}\n" + ("" if modem else f"ring_seconds = {ring_seconds}\n"))
        windowless = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY")}
        self._environment = display.environment() if display else windowless
        self._environment["ORVEN_HOME"] = self.home
        # The first start enters the program among those that start with the desktop; not with the user's.
        self._environment["XDG_CONFIG_HOME"] = os.path.join(folder, "config")
        self._command, self._folder = [os.path.abspath(program), *arguments], folder
        self.start()

    def start(self):
        self.process = processes.start(self._command, self._output, env=self._environment, cwd=self._folder)

    def restart_with(self, settings):
        """Ends the program and starts it again with these settings changed."""
        self.exit()
        path = os.path.join(self.home, "registry.reg")
        with open(path, encoding="utf-8", newline="") as file:
            text = file.read()
        for name, value in settings.items():
            escaped = value.replace("\\", "\\\\").replace('"', '\\"')
            line = f'"{name}"="{escaped}"'
            text, count = re.subn(rf'^"{name}"=.*$', lambda _: line, text, flags=re.MULTILINE)  # noqa: B023
            if count != 1:
                raise processes.Failed(f'The settings hold "{name}" {count} times')
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        openings = sum("LineOpen[" in line for line in self.system_log)
        self.start()
        processes.wait_for(
            "The line", lambda: sum("LineOpen[" in line for line in self.system_log) > openings, 20, self.look
        )

    def __enter__(self):
        return self

    def __exit__(self, *_):
        processes.stop(self.process, 5)

    def look(self):
        """Takes in what the logs have gained; raises when the program has ended."""
        self._read_logs()
        if self.process.poll() is not None:
            self._read_logs()
            raise processes.Failed(
                f"The program ended by itself with code {self.process.returncode}; it printed: {self.output().strip()}"
            )

    def output(self):
        with open(self._output, encoding="utf-8", errors="replace") as file:
            return file.read()

    def password(self):
        """The six-digit password that the first start prints."""
        found = processes.wait_for(
            "The password on standard output", lambda: re.search(r"\b\d{6}\b", self.output()), 20, self.look
        )
        return found[0]

    def wait_for_line(self, text, limit, since=0):
        """Waits until a line of the system log, from number `since` on, contains `text`."""

        def find():
            return any(text in line for line in self.system_log[since:])

        self._read_logs()
        processes.wait_for(f'The line "{text}" in the system log', find, limit, self.look)

    def records(self):
        """The call records, by the independent tool."""
        path = os.path.join(self.home, "Calls")
        if not os.path.exists(path):
            return []
        command = ["sqlite3", "-cmd", ".timeout 5000", "-json", path, "select * from Calls order by rowid"]
        result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False)
        if result.returncode:
            raise processes.Failed(f"sqlite3 cannot read the call records: {result.stderr.strip()}")
        return json.loads(result.stdout or "[]")

    def exit(self):
        """Ends the program by SIGTERM and takes in its last log lines."""
        code = processes.stop(self.process, 10)
        self._read_logs()
        if code is None:
            raise processes.Failed("The program did not end within 10 seconds of SIGTERM")
        if code != 0:
            raise processes.Failed(f"The program ended with code {code} after SIGTERM")

    def _read_logs(self):
        for suffix, lines in (("_Sys.txt", self.system_log), ("_Calls.txt", self.calls_log)):
            for path in sorted(glob.glob(os.path.join(self.home, "Log", "*" + suffix)), key=os.path.getmtime):
                for line in self._new_lines(path):
                    lines.append(line)
                    self._show(suffix[1:-4], line)

    def _new_lines(self, path):
        start = self._read_so_far.get(path, 0)
        with open(path, "rb") as file:
            file.seek(start)
            data = file.read()
        whole = data.rfind(b"\n") + 1
        self._read_so_far[path] = start + whole
        return data[:whole].decode("utf-8", "replace").splitlines()
