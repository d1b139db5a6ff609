#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program on real displays: with a tray of X11, with a tray on the message bus, and without one.

    desktop_test.py PROGRAM
"""

import os
import shutil
import signal
import socket
import sys
import tempfile
import time
import unittest

import dbus
import orven_test
from orven_test import Orven

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "..", "demo"))

import processes  # noqa: E402
import telephone  # noqa: E402
from display import Display  # noqa: E402

LIMIT = 20  # seconds for everything that a program does by itself
NO_CALLS = "ORVEN - Calls:0  New:0"
BLINK_SECONDS = 0.5
TRAY_HOST = os.path.join(os.path.dirname(os.path.abspath(__file__)), "tray_host.py")


class BusIcon:
    """The program's icon in a tray on the message bus, as the desktop sees it."""

    def __init__(self, address):
        self._bus = dbus.bus.BusConnection(address)
        watcher = self._properties("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher")

        def registered():
            return watcher.Get("org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems")

        self._name = processes.wait_for("The icon on the bus", registered, LIMIT)[0]

    def _properties(self, name, path):
        return dbus.Interface(self._bus.get_object(name, path, introspect=False), dbus.PROPERTIES_IFACE)

    def _property(self, name):
        return self._properties(self._name, "/StatusNotifierItem").Get("org.kde.StatusNotifierItem", name)

    def tip(self):
        return str(self._property("ToolTip")[2])

    def is_blank(self):
        return not any(any(pixels) for _, _, pixels in self._property("IconPixmap"))

    def activate(self):
        item = self._bus.get_object(self._name, "/StatusNotifierItem", introspect=False)
        item.Activate(0, 0, dbus_interface="org.kde.StatusNotifierItem")

    def menu(self):
        """The menu's items by their caption, without separators."""
        _, root = self._menu().GetLayout(0, -1, dbus.Array(signature="s"))
        return {str(item[1]["label"]).replace("_", ""): item[0] for item in root[2] if "label" in item[1]}

    def press(self, caption):
        self._menu().Event(self.menu()[caption], "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))

    def _menu(self):
        menu = self._bus.get_object(self._name, self._property("Menu"), introspect=False)
        return dbus.Interface(menu, "com.canonical.dbusmenu")


class DesktopTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="orven-test-")
        self.addCleanup(shutil.rmtree, self.folder, True)
        self.home = os.path.join(self.folder, "home")
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(self.home)
        os.makedirs(runtime, 0o700)
        self.port = processes.free_port()
        self.lines(f"[Test]\ntype = sip\nlisten = 127.0.0.1:{self.port}\n")
        # No settings, no sockets and no sound server of the user's.
        private = {"HOME": self.folder, "XDG_RUNTIME_DIR": runtime, "PULSE_SERVER": f"unix:{runtime}/none"}
        self.display = self.enterContext(Display(self.folder, private))

    def lines(self, text):
        with open(os.path.join(self.home, "lines.ini"), "w", encoding="utf-8") as file:
            file.write(text)

    def x11_tray(self):
        command = ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request"]
        return self.display.start(command, "trayer")

    def bus(self):
        address = f"unix:path={self.folder}/bus"
        self.display.start(["dbus-daemon", "--session", "--nofork", "--address=" + address], "dbus")
        processes.wait_for("The message bus", lambda: os.path.exists(f"{self.folder}/bus"), LIMIT)
        self.display.variables["DBUS_SESSION_BUS_ADDRESS"] = address
        return address

    def bus_tray(self):
        address = self.bus()
        return address, self.tray_host(address)

    def tray_host(self, address):
        host = self.display.start([sys.executable, "-B", TRAY_HOST], "tray_host")
        connection = dbus.bus.BusConnection(address)
        processes.wait_for("The tray", lambda: connection.name_has_owner("org.kde.StatusNotifierWatcher"), LIMIT)
        return host

    def start(self, *arguments):
        orven = self.enterContext(Orven(self.home, arguments, self.display.variables))
        try:
            orven.wait_for("LineOpen[LineIndex:0")
        except processes.Failed as failure:
            self.fail(f"{failure}; it printed:\n{orven.output()}\nand logged:\n{orven.log()}")
        return orven

    def icon(self, orven):
        """The program's window in a tray of X11."""

        def find():
            return [w for w in self.display.windows(orven.process) if w.kind() == "OVERRIDE" and w.area()[2] <= 64]

        return processes.wait_for("The icon in the tray", find, LIMIT)[0]

    def click(self, window, button):
        left, top, width, height = window.area()
        self.display.run("xdotool", "mousemove", left + width // 2, top + height // 2, "click", button)

    def main_window(self, orven, state):
        """Waits until the main window has this state; an empty one is a window that is not there."""

        def find():
            window = self.display.main_window(orven.process)
            return (window.state() if window else "") == state and (window or True)

        return processes.wait_for(f'The main window\'s state "{state}"', find, LIMIT)

    def close(self, window):
        self.display.run("wmctrl", "-i", "-c", hex(window.number))  # as its close button does

    def assert_line_is_open(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other, self.assertRaises(OSError):
            other.bind(("127.0.0.1", self.port))

    def assert_ended_by_exit(self, orven):
        self.assertEqual(orven.process.wait(LIMIT * processes.SLOWNESS), 0)
        for kind in ("Sys", "Calls"):
            self.assertEqual(orven.log(kind)[-1], "Unload ORVEN")

    def test_the_icon_in_a_tray_of_x11_keeps_watch(self):
        orven = self.start("-st")
        tray = self.x11_tray()  # comes up after the program, as it may at login
        self.icon(orven)
        processes.stop(tray, LIMIT)
        processes.wait_for("The tray's end", lambda: not self.display.windows(orven.process), LIMIT)
        self.x11_tray()  # and again, as after a crash
        icon = self.icon(orven)

        self.display.run("xdotool", "mousemove", *(x + 8 for x in icon.area()[:2]), "mousemove_relative", 2, 2)
        processes.wait_for(
            "The icon's tip", lambda: any(w.kind() == "TOOLTIP" for w in self.display.windows(orven.process)), LIMIT
        )
        self.click(icon, 1)
        window = self.main_window(orven, "Normal")
        self.close(window)
        self.main_window(orven, "")
        self.assert_line_is_open()
        self.assertNotIn("Unload ORVEN", orven.log())

        self.choose(orven, icon, "Up")  # the last item is "Open"
        self.main_window(orven, "Normal")
        self.open_lines()
        self.display.run("xdotool", "key", "alt+r")  # a question, over which the menu works
        self.keyboard_goes_to("ORVEN")
        self.choose(orven, icon, "Down")  # the first item is "Exit"
        self.assert_ended_by_exit(orven)

    def choose(self, orven, icon, key):
        windows = len(self.display.windows(orven.process))
        self.click(icon, 3)
        processes.wait_for("The menu", lambda: len(self.display.windows(orven.process)) > windows, LIMIT)
        self.display.run("xdotool", "key", key, "Return")

    def test_the_icon_in_a_tray_on_the_bus_keeps_watch(self):
        address, _ = self.bus_tray()
        orven = self.start("-st")
        icon = BusIcon(address)
        self.assertEqual(icon.tip(), NO_CALLS)
        self.assertFalse(icon.is_blank())
        self.assertIsNone(self.display.main_window(orven.process))
        icon.activate()
        self.close(self.main_window(orven, "Normal"))
        self.main_window(orven, "")
        self.assert_line_is_open()
        icon.press("Open")
        self.main_window(orven, "Normal")
        self.assertEqual(list(icon.menu()), ["Exit", "Off", "On", "Open"])
        icon.press("Exit")
        self.assert_ended_by_exit(orven)

    def test_a_tray_that_hangs_does_not_keep_the_program_from_its_line(self):
        address, host = self.bus_tray()
        host.send_signal(signal.SIGSTOP)
        orven = self.start()
        self.close(self.main_window(orven, "Normal"))
        self.main_window(orven, "Iconic")  # the icon could not bring it back
        host.kill()  # whoever looks after the desktop starts it again
        host.wait(LIMIT)
        self.tray_host(address)
        self.assertEqual(BusIcon(address).tip(), NO_CALLS)

    def test_a_call_makes_the_icon_blink_until_the_window_is_back(self):
        script = os.path.join(self.folder, "call.sim")
        with open(script, "w", encoding="utf-8") as file:
            file.write("0.5 offer\n0.6 callerid 5551234 Anna\n0.7 ring\n1.2 hangup\n")
        self.lines(f"[Test]\ntype = sim\nscript = {script}\n")
        address, _ = self.bus_tray()
        orven = self.start("-st")
        icon = BusIcon(address)
        for blank in (True, False, True):
            processes.wait_for(f"The icon's next picture (blank: {blank})", lambda: icon.is_blank() == blank, LIMIT)
        self.assertEqual(icon.tip(), "ORVEN - Calls:1  New:1")
        icon.activate()
        self.main_window(orven, "Normal")
        processes.wait_for("The icon's picture", lambda: not icon.is_blank(), LIMIT)
        end = time.monotonic() + 3 * BLINK_SECONDS
        while time.monotonic() < end:
            self.assertFalse(icon.is_blank(), "it goes on blinking")

    def test_dialogs_that_close_beside_the_caller_view_give_the_keyboard_back(self):
        orven = self.start()
        self.main_window(orven, "Normal")
        self.open_lines()
        windows = len(self.display.windows(orven.process))
        caller = telephone.Telephone(os.path.join(self.folder, "caller"), "Anna", "5551234")
        self.addCleanup(caller.__exit__, None, None, None)
        caller.dial(f"sip:machine@127.0.0.1:{self.port}")
        processes.wait_for("The caller view", lambda: len(self.display.windows(orven.process)) > windows, LIMIT)
        self.display.run("xdotool", "key", "alt+r")  # asks
        self.keyboard_goes_to("ORVEN")
        for below in ("Telephone Lines", "Options", "ORVEN"):
            self.display.run("xdotool", "key", "Escape")
            self.keyboard_goes_to(below)

    def open_lines(self):
        self.keyboard_goes_to("ORVEN")
        self.display.run("xdotool", "key", "alt+o", "Down", "Return")
        self.keyboard_goes_to("Options")
        self.display.run("xdotool", "key", "alt+l")
        self.keyboard_goes_to("Telephone Lines")

    def keyboard_goes_to(self, title):
        def is_there():
            return self.display.ask("xdotool", "getwindowfocus", "getwindowname").strip() == title

        processes.wait_for(f'The keyboard at "{title}"', is_there, LIMIT)

    def test_an_exit_while_a_box_is_open_ends_the_program(self):
        def start_with_a_box():
            orven = self.enterContext(Orven(self.home, (), self.display.variables))
            processes.wait_for("The message box", lambda: self.display.windows(orven.process), LIMIT)
            return orven

        first = self.start()
        before = first.log("Calls")
        self.assertEqual(start_with_a_box().end(), 0)  # "ORVEN is still running"
        self.assertEqual(first.log("Calls"), before)
        self.assertEqual(first.end(), 0)
        settings = os.path.join(self.home, "registry.reg")
        with open(settings, encoding="utf-8", newline="") as file:
            text = file.read()
        with open(settings, "w", encoding="utf-8", newline="") as file:
            file.write(text.replace('"ModemName"="Test"', '"ModemName"="Gone"'))
        third = start_with_a_box()  # "Select Modem Device …"
        self.assertEqual(third.end(), 0)
        self.assertEqual(third.log("Calls").count("Unload ORVEN"), 2)

    def test_without_a_tray_closing_minimises_the_window(self):
        orven = self.start()
        window = self.main_window(orven, "Normal")
        self.close(window)
        self.main_window(orven, "Iconic")
        orven.wait_for("No notification area: the window is minimised, not hidden")
        self.assert_line_is_open()
        self.display.run("xdotool", "windowmap", window.number)
        self.main_window(orven, "Normal")
        self.assertNotIn("Unload ORVEN", orven.log())


if __name__ == "__main__":
    orven_test.PROGRAM = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
