# SPDX-License-Identifier: GPL-3.0-or-later
"""Operates the greeting creator by keyboard, as a user does."""

import os

import processes


class Creator:
    """The greeting creator of the program `process` on a Display. `alive` is called during every wait and may
    end it by raising."""

    def __init__(self, screen, process, alive=lambda: None):
        self._screen, self._process, self._alive = screen, process, alive

    def open(self):
        self._turn_to("ORVEN")
        self.press("alt+t", "Return")  # Tools, Greeting Creator
        self._turn_to("Greeting Creator")

    def create(self, text):
        """Makes a take of a text."""
        self.press("alt+t", "alt+x")  # Text To Speech, Text
        self._write(text)
        self.press("alt+c")  # Create Greeting

    def save(self, home, name):
        """Names the take and saves it. Returns the path of the greeting."""
        self.press("alt+n")  # Greeting Name
        self._write(name)
        self.press("Return")
        greeting = os.path.join(home, "Greets", name + ".wav")
        processes.wait_for("The greeting", lambda: os.path.exists(greeting), 20, self._alive)
        processes.wait_for("The creator's end", lambda: not self.is_open(), 10, self._alive)
        return greeting

    def is_open(self):
        return self._find("Greeting Creator") is not None

    def press(self, *keys):
        for key in keys:
            self._screen.run("xdotool", "key", "--delay", "100", key)

    def _write(self, text):
        self._screen.run("xdotool", "type", "--delay", "20", text)

    def _find(self, title):
        windows = self._screen.windows(self._process)
        return next((w for w in windows if w.state() and w.property("WM_NAME") == f'"{title}"'), None)

    def _turn_to(self, title):
        """Waits for the window with this title and gives it the keyboard focus."""
        window = processes.wait_for(f'The window "{title}"', lambda: self._find(title), 20, self._alive)
        self._screen.run("xdotool", "windowactivate", "--sync", window.number)
