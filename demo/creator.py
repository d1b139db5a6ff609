# SPDX-License-Identifier: GPL-3.0-or-later
"""The greeting creator, used with the keyboard as a person does."""

import os

import processes


def type_greeting(answering_machine, screen, text, name):
    """Types a greeting and saves it. Returns the path of its file."""
    keyboard = Keyboard(answering_machine, screen)
    keyboard.turn_to("ORVEN")
    keyboard.press("alt+t", "Return")  # Tools, Greeting Creator
    keyboard.turn_to("Greeting Creator")
    keyboard.press("alt+t", "alt+x")  # Text To Speech, Text
    keyboard.write(text)
    keyboard.press("alt+c")  # Create Greeting
    take = os.path.join(answering_machine.home, "ttstmp.wav")
    processes.wait_for("The speech", lambda: os.path.exists(take), 20, answering_machine.look)
    keyboard.press("alt+n")  # Greeting Name
    keyboard.write(name)
    keyboard.press("Return")
    greeting = os.path.join(answering_machine.home, "Greets", name + ".wav")
    closed = lambda: os.path.exists(greeting) and keyboard.find("Greeting Creator") is None
    processes.wait_for("The greeting", closed, 20, answering_machine.look)
    return greeting


class Keyboard:
    """The keyboard of a display, on the windows of the answering machine."""

    def __init__(self, answering_machine, screen):
        self._machine, self._screen = answering_machine, screen

    def find(self, title):
        windows = self._screen.windows(self._machine.process)
        return next((w for w in windows if w.state() and w.property("WM_NAME") == f'"{title}"'), None)

    def turn_to(self, title):
        """Waits for the window of this title and gives it the keyboard."""
        window = processes.wait_for(f'The window "{title}"', lambda: self.find(title), 10, self._machine.look)
        self._screen.run("xdotool", "windowactivate", "--sync", window.number)

    def press(self, *keys):
        for key in keys:
            self._screen.run("xdotool", "key", "--delay", "100", key)

    def write(self, text):
        self._screen.run("xdotool", "type", "--delay", "20", text)
