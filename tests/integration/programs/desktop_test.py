#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# The program on real displays: with a tray of X11, with a tray on the message bus, and without one.

import os
import signal
import socket
import sys
import time

import dbus
import harness
from display import Display
from harness import processes

LIMIT = 20  # seconds for everything that a program does by itself
NO_CALLS = "ORVEN - Calls:0  New:0"
BLINK_SECONDS = 0.5
WATCHER, ITEM = "org.kde.StatusNotifierWatcher", "org.kde.StatusNotifierItem"
TRAY_HOST = os.path.join(harness.HERE, "tray_host.py")


class BusIcon:
    """The program's icon in a tray on the message bus, as the desktop sees it."""

    def __init__(self, address):
        self._bus = dbus.bus.BusConnection(address)
        watcher = self._interface(WATCHER, "/StatusNotifierWatcher", dbus.PROPERTIES_IFACE)
        icons = processes.wait_for("The icon", lambda: watcher.Get(WATCHER, "RegisteredStatusNotifierItems"), LIMIT)
        self._name = icons[0]

    def _interface(self, name, path, interface):
        return dbus.Interface(self._bus.get_object(name, path, introspect=False), interface)

    def _property(self, name):
        return self._interface(self._name, "/StatusNotifierItem", dbus.PROPERTIES_IFACE).Get(ITEM, name)

    def tip(self):
        return str(self._property("ToolTip")[2])

    def is_blank(self):
        return not any(any(pixels) for _, _, pixels in self._property("IconPixmap"))

    def activate(self):
        self._interface(self._name, "/StatusNotifierItem", ITEM).Activate(0, 0)

    def menu(self):
        """The menu's items by their caption, without separators."""
        _, root = self._menu().GetLayout(0, -1, dbus.Array(signature="s"))
        return {str(item[1]["label"]).replace("_", ""): item[0] for item in root[2] if "label" in item[1]}

    def press(self, caption):
        self._menu().Event(self.menu()[caption], "clicked", dbus.String("", variant_level=1), dbus.UInt32(0))

    def _menu(self):
        return self._interface(self._name, self._property("Menu"), "com.canonical.dbusmenu")


class DesktopTest(harness.ProgramCase):
    arguments = ()

    def prepare(self):
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, 0o700)
        # No settings and no sockets of the user's.
        self.display = self.enterContext(Display(self.folder, {"HOME": self.folder, "XDG_RUNTIME_DIR": runtime}))

    def x11_tray(self):
        command = ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request"]
        return self.display.start(command, "trayer")

    def bus_tray(self):
        """The bus and the tray on it."""
        address = f"unix:path={self.folder}/bus"
        self.display.start(["dbus-daemon", "--session", "--nofork", "--address=" + address], "dbus")
        processes.wait_for("The message bus", lambda: os.path.exists(f"{self.folder}/bus"), LIMIT)
        self.display.variables["DBUS_SESSION_BUS_ADDRESS"] = address
        return address, self.tray_host(address)

    def tray_host(self, address):
        host = self.display.start([sys.executable, "-B", TRAY_HOST], "tray_host")
        connection = dbus.bus.BusConnection(address)
        processes.wait_for("The tray", lambda: connection.name_has_owner(WATCHER), LIMIT)
        return host

    def windows(self):
        return self.display.windows(self.orven.process)

    def icon(self):
        """The program's window in a tray of X11."""

        def find():
            return [w for w in self.windows() if w.kind() == "OVERRIDE" and w.area()[2] <= 64]

        return processes.wait_for("The icon in the tray", find, LIMIT)[0]

    def main_window(self, state):
        """Waits until the main window has this state, which is empty for a window that is not shown."""

        def find():
            window = self.display.main_window(self.orven.process)
            return (window.state() if window else "") == state and (window or True)

        return processes.wait_for(f'The main window\'s state "{state}"', find, LIMIT)

    def assert_line_is_open(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other, self.assertRaises(OSError):
            other.bind(("127.0.0.1", self.orven.port))

    def assert_ended_by_exit(self):
        self.orven.wait_for_exit()
        for kind in ("Sys", "Calls"):
            self.assertIn("Unload ORVEN", self.orven.log(kind)[-1])

    def test_the_icon_in_a_tray_of_x11_keeps_watch(self):
        self.orven.start_and_wait("-st")
        tray = self.x11_tray()  # comes up after the program, as it may at login
        self.icon()
        processes.stop(tray, LIMIT)
        processes.wait_for("The tray's end", lambda: not self.windows(), LIMIT)
        self.x11_tray()  # and again, as after a crash
        icon = self.icon()

        self.display.run("xdotool", "mousemove", *(x + 8 for x in icon.area()[:2]), "mousemove_relative", 2, 2)
        processes.wait_for("The icon's tip", lambda: any(w.kind() == "TOOLTIP" for w in self.windows()), LIMIT)
        icon.click()
        window = self.main_window("Normal")
        window.close()
        self.main_window("")
        self.assert_line_is_open()
        self.assertEqual(self.orven.count("Unload ORVEN"), 0)

        self.choose(icon, "Up")  # the last item is "Open"
        self.main_window("Normal")
        self.open_lines()
        self.display.run("xdotool", "key", "alt+r")  # a question, over which the menu works
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        self.choose(icon, "Down")  # the first item is "Exit"
        self.assert_ended_by_exit()

    def choose(self, icon, key):
        windows = len(self.windows())
        icon.click(3)
        processes.wait_for("The menu", lambda: len(self.windows()) > windows, LIMIT)
        self.display.run("xdotool", "key", key, "Return")

    def test_the_icon_in_a_tray_on_the_bus_keeps_watch(self):
        address, _ = self.bus_tray()
        self.orven.start_and_wait("-st")
        icon = BusIcon(address)
        self.assertEqual(icon.tip(), NO_CALLS)
        self.assertFalse(icon.is_blank())
        self.assertIsNone(self.display.main_window(self.orven.process))
        icon.activate()
        self.main_window("Normal").close()
        self.main_window("")
        self.assert_line_is_open()
        icon.press("Open")
        self.main_window("Normal")
        self.assertEqual(list(icon.menu()), ["Exit", "Off", "On", "Open"])
        icon.press("Exit")
        self.assert_ended_by_exit()

    def test_a_tray_that_hangs_does_not_keep_the_program_from_its_line(self):
        address, host = self.bus_tray()
        host.send_signal(signal.SIGSTOP)
        self.orven.start_and_wait()
        self.main_window("Normal").close()
        self.main_window("Iconic")  # the icon could not bring it back
        host.kill()  # whoever looks after the desktop starts it again
        host.wait(LIMIT)
        self.tray_host(address)
        self.assertEqual(BusIcon(address).tip(), NO_CALLS)

    def test_a_call_makes_the_icon_blink_until_the_window_is_back(self):
        self.orven.write("call.sim", "0.5 offer\n0.6 callerid 5551234 Anna\n0.7 ring\n1.2 hangup\n")
        self.orven.write_line(f"type = sim\nscript = {self.orven.path('call.sim')}")
        address, _ = self.bus_tray()
        self.orven.start_and_wait("-st")
        icon = BusIcon(address)
        for blank in (True, False, True):
            processes.wait_for(f"The icon's next picture (blank: {blank})", lambda: icon.is_blank() == blank, LIMIT)
        self.assertEqual(icon.tip(), "ORVEN - Calls:1  New:1")
        icon.activate()
        self.main_window("Normal")
        processes.wait_for("The icon's picture", lambda: not icon.is_blank(), LIMIT)
        end = time.monotonic() + 3 * BLINK_SECONDS
        while time.monotonic() < end:
            self.assertFalse(icon.is_blank(), "it goes on blinking")

    def test_dialogs_that_close_beside_the_caller_view_give_the_keyboard_back(self):
        self.orven.start_and_wait()
        self.main_window("Normal")
        self.open_lines()
        windows = len(self.windows())
        self.dial("Anna")
        processes.wait_for("The caller view", lambda: len(self.windows()) > windows, LIMIT)
        self.display.run("xdotool", "key", "alt+r")  # asks
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        for below in ("Telephone Lines", "Options", "ORVEN"):
            self.display.run("xdotool", "key", "Escape")
            self.display.wait_for_keyboard(below, LIMIT)

    def open_lines(self):
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        self.display.run("xdotool", "key", "alt+o", "Down", "Return")
        self.display.wait_for_keyboard("Options", LIMIT)
        self.display.run("xdotool", "key", "alt+l")
        self.display.wait_for_keyboard("Telephone Lines", LIMIT)

    def test_an_exit_while_a_box_is_open_ends_the_program(self):
        self.orven.change_settings({"ModemName": "Gone"})
        self.orven.start()
        processes.wait_for("Select Modem Device …", self.windows, LIMIT)
        self.orven.end()
        self.assertIn("Unload ORVEN", self.orven.log("Calls")[-1])

    def test_without_a_tray_closing_minimises_the_window(self):
        self.orven.start_and_wait()
        window = self.main_window("Normal")
        window.close()
        self.main_window("Iconic")
        self.orven.wait_for("No notification area: the window is minimised, not hidden")
        self.assert_line_is_open()
        self.display.run("xdotool", "windowmap", window.number)
        self.main_window("Normal")
        self.assertEqual(self.orven.count("Unload ORVEN"), 0)


if __name__ == "__main__":
    harness.main(at_a_time=4)
