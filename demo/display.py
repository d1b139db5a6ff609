# SPDX-License-Identifier: GPL-3.0-or-later
"""A private X display, its windows, and pictures of them."""

import contextlib
import os
import re
import shutil
import subprocess

import processes

SCREEN = "1280x800x24"
TOOLS_TO_LOOK = ("xdotool", "xprop", "import", "identify")
TOOLS_TO_OPEN = ("Xvfb", "openbox")


def find_display(folder):
    """A context manager for a private display; for the user's own if the programs for one are missing; for None
    if windows cannot be shown or inspected."""

    def all_there(tools):
        return all(shutil.which(tool) for tool in tools)

    if not all_there(TOOLS_TO_LOOK):
        return contextlib.nullcontext()
    if all_there(TOOLS_TO_OPEN):
        return Display(folder)
    return contextlib.nullcontext(Display(folder) if os.environ.get("DISPLAY") else None)


class Window:
    """One window of an X display, seen from outside."""

    def __init__(self, display, number):
        self._display, self.number = display, number

    def property(self, name):
        """What xprop prints for a property, without its name; empty when the window lacks it."""
        text = self._display.ask("xprop", "-id", self.number, name)
        found = re.match(rf"{name}(?:\([A-Z0-9_]+\))?( =|:)\s*(.*)", text, re.DOTALL)
        return found[2].strip() if found else ""

    def state(self):
        """Normal or Iconic for a window that the window manager manages; else empty."""
        return (re.search(r"window state: (\w+)", self.property("WM_STATE")) or ["", ""])[1]

    def kind(self):
        """The window's first declared type: "NORMAL", "TOOLTIP" …"""
        return (re.search(r"_NET_WM_WINDOW_TYPE_(\w+)", self.property("_NET_WM_WINDOW_TYPE")) or ["", ""])[1]

    def area(self):
        """Left, top, width and height on the screen."""
        text = self._display.ask("xdotool", "getwindowgeometry", "--shell", self.number)
        facts = dict(re.findall(r"(X|Y|WIDTH|HEIGHT)=(-?\d+)", text))
        return tuple(int(facts.get(name, 0)) for name in ("X", "Y", "WIDTH", "HEIGHT"))

    def click(self, button=1):
        left, top, width, height = self.area()
        self._display.run("xdotool", "mousemove", left + width // 2, top + height // 2, "click", button)

    def close(self):
        """Closes the window as its close button does."""
        self._display.run("wmctrl", "-i", "-c", hex(self.number))

    def picture(self, path):
        """Saves the window as a picture; false when that failed."""
        return self._display.run("import", "-window", self.number, path).returncode == 0 and os.path.exists(path)


class Display:
    """An existing display or, in a with statement, a private one with a window manager and without a message
    bus, so that programs on it do not reach the user's desktop."""

    def __init__(self, folder, variables=None):
        self._folder, self._children = folder, []
        # libxkbcommon-x11 copies texts of known length without a terminating zero, which strict_string_checks
        # would report.
        lenient = os.environ.get("ASAN_OPTIONS", "") + ":strict_string_checks=0"
        self.variables = {"ASAN_OPTIONS": lenient, **(variables or {})}

    def __enter__(self):
        try:
            self._open()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for child in reversed(self._children):
            processes.stop(child, 5)

    def _open(self):
        number_out, number_in = os.pipe()
        server = ["Xvfb", "-displayfd", str(number_in), "-screen", "0", SCREEN, "-nolisten", "tcp", "-noreset"]
        try:
            self.start(server, "xvfb", pass_fds=[number_in])
        finally:
            os.close(number_in)
        with os.fdopen(number_out) as pipe:  # one line, or the end when the server ended
            number = pipe.readline().strip()
        if not number:
            raise processes.Failed(f"Xvfb opened no display; see {self._folder}/xvfb.out")
        self.variables.update(DISPLAY=f":{number}", DBUS_SESSION_BUS_ADDRESS="disabled:")
        self.start(["openbox", "--sm-disable"], "openbox")
        processes.wait_for("The window manager", self._is_managed, 20)

    def _is_managed(self):
        return "window id" in self.ask("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")

    def environment(self):
        """This script's environment with the variables for the display."""
        kept = {k: v for k, v in os.environ.items() if k not in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
        return {**kept, **self.variables}

    def start(self, command, name, **options):
        """Starts a program that ends with the display; its output goes to NAME.out."""
        output = os.path.join(self._folder, name + ".out")
        self._children.append(processes.start(command, output, env=self.environment(), **options))
        return self._children[-1]

    def run(self, *command):
        return subprocess.run(
            [str(part) for part in command], env=self.environment(), capture_output=True, text=True, timeout=30, check=False
        )

    def ask(self, *command):
        """The output of a command; empty if its window was closed meanwhile."""
        return self.run(*command).stdout

    def wait_for_keyboard(self, title, limit):
        """Waits until the window with this title has the keyboard focus."""

        def is_there():
            return self.ask("xdotool", "getwindowfocus", "getwindowname").strip() == title

        processes.wait_for(f'The keyboard at "{title}"', is_there, limit)

    def colours(self, path):
        """The number of colours in a picture."""
        return int(self.ask("identify", "-format", "%k", path) or 0)

    def windows(self, process):
        """The visible or minimised windows of a process, including tool tips and menus."""
        found = self.ask("xdotool", "search", "--pid", process.pid).split()
        seen = self.ask("xdotool", "search", "--onlyvisible", "--pid", process.pid).split()
        windows = [Window(self, int(number)) for number in dict.fromkeys(found + seen)]
        return [window for window in windows if str(window.number) in seen or window.state() == "Iconic"]

    def main_window(self, process):
        """The window of a process that the window manager manages, in any state; None without one."""
        return next((window for window in self.windows(process) if window.state()), None)
