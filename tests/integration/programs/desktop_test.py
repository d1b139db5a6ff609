#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# The program on a desktop: with an X11 tray, with a tray on the message bus, or without one; how it starts and ends.

import os
import shutil
import signal
import socket
import subprocess
import sys

import dbus
import harness
from display import Display
from harness import LIMIT, processes, sound

WATCHER, ITEM = "org.kde.StatusNotifierWatcher", "org.kde.StatusNotifierItem"
TRAY_HOST = os.path.join(harness.HERE, "tray_host.py")
DESKTOP, DESKTOP_HOST = "org.orven.Desktop", os.path.join(harness.HERE, "desktop_host.py")

# A bus that starts no services of this computer.
BUS = """<busconfig><type>session</type><listen>{}</listen><policy context="default">
  <allow own="*"/><allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>"""


class BusIcon:
    """The program's icon in a tray on the message bus, as the desktop sees it."""

    def __init__(self, address):
        self._bus = dbus.bus.BusConnection(address)
        trays = self._interface(WATCHER, "/StatusNotifierWatcher", dbus.PROPERTIES_IFACE)
        icons = processes.wait_for("The icon", lambda: trays.Get(WATCHER, "RegisteredStatusNotifierItems"), LIMIT)
        self._name = icons[0]

    def _interface(self, name, path, interface):
        return dbus.Interface(self._bus.get_object(name, path, introspect=False), interface)

    def property(self, name):
        return self._interface(self._name, "/StatusNotifierItem", dbus.PROPERTIES_IFACE).Get(ITEM, name)

    def activate(self):
        self._interface(self._name, "/StatusNotifierItem", ITEM).Activate(0, 0)


class DesktopTest(harness.ProgramCase):
    arguments = ()

    def prepare(self):
        runtime = os.path.join(self.folder, "runtime")
        os.makedirs(runtime, 0o700)
        # The user's settings and sockets are not used.
        self.display = self.enterContext(Display(self.folder, {"HOME": self.folder, "XDG_RUNTIME_DIR": runtime}))

    def x11_tray(self):
        command = ["trayer", "--edge", "bottom", "--align", "right", "--widthtype", "request"]
        return self.display.start(command, "trayer")

    def bus(self):
        """Starts a message bus for the program and returns its address."""
        address = f"unix:path={self.folder}/bus"
        with open(f"{self.folder}/bus.conf", "w", encoding="utf-8") as file:
            file.write(BUS.format(address))
        command = ["dbus-daemon", "--nofork", "--print-address", f"--config-file={self.folder}/bus.conf"]
        self.display.start(command, "dbus")  # prints when it listens
        processes.wait_for("The message bus", lambda: os.path.getsize(f"{self.folder}/dbus.out"), LIMIT)
        self.display.variables.update(DBUS_SESSION_BUS_ADDRESS=address, DBUS_SYSTEM_BUS_ADDRESS=address)
        return address

    def desktop(self, address):
        """Starts the desktop's services and returns their process and what tests see of them."""
        host = self.display.start([sys.executable, "-B", DESKTOP_HOST], "desktop_host")
        connection = dbus.bus.BusConnection(address)
        processes.wait_for("The desktop", lambda: connection.name_has_owner(DESKTOP), LIMIT)
        peer = connection.get_object(DESKTOP, "/org/orven/Desktop", introspect=False)
        return host, dbus.Interface(peer, DESKTOP)

    def bus_tray(self, address):
        host = self.display.start([sys.executable, "-B", TRAY_HOST], "tray_host")
        connection = dbus.bus.BusConnection(address)
        processes.wait_for("The tray", lambda: connection.name_has_owner(WATCHER), LIMIT)
        return host

    def windows(self):
        return self.display.windows(self.orven.process)

    def icon(self):
        """Waits for the program's icon in an X11 tray and returns its window."""

        def find():
            return [w for w in self.windows() if w.kind() == "OVERRIDE" and w.area()[2] <= 64]

        return processes.wait_for("The icon in the tray", find, LIMIT)[0]

    def main_window(self, state):
        """Waits until the main window has this state; an empty state means that it is not shown."""

        def find():
            window = self.display.main_window(self.orven.process)
            return (window.state() if window else "") == state and (window or True)

        return processes.wait_for(f'The main window\'s state "{state}"', find, LIMIT)

    def assert_ended_by_exit(self):
        self.orven.wait_for_exit()
        for kind in ("Sys", "Calls"):
            self.assertIn("Unload ORVEN", self.orven.log(kind)[-1])

    def test_an_icon_in_an_x11_tray_returns_with_its_tray_and_opens_and_ends_the_program(self):
        self.orven.start_and_wait("-st")
        self.main_window("")
        tray = self.x11_tray()  # starts after the program, as can happen at login
        self.icon()
        processes.stop(tray, LIMIT)
        processes.wait_for("The tray's end", lambda: not self.windows(), LIMIT)
        self.x11_tray()  # starts again, as after a crash
        icon = self.icon()

        icon.click()
        window = self.main_window("Normal")
        window.close()
        self.main_window("")
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other, self.assertRaises(OSError):
            other.bind(("127.0.0.1", self.orven.port))  # the line is open

        self.choose(icon, "Up")  # the last item is "Open"
        self.main_window("Normal")
        self.open_lines()
        self.display.run("xdotool", "key", "alt+r")  # a question; the menu works while it is open
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        self.choose(icon, "Down")  # the first item is "Exit"
        self.assert_ended_by_exit()

    def choose(self, icon, key):
        known = {window.number for window in self.windows()}

        def is_menu(window):
            return window.number not in known and window.kind() != "TOOLTIP"  # the icon's comes and goes

        def open_menu():  # one that opens while the closed window's focus still moves is closed again
            icon.click(3)
            try:
                return processes.wait_for("The menu", lambda: any(map(is_menu, self.windows())), 2)
            except processes.Failed:
                return False

        processes.wait_for("The menu", open_menu, LIMIT)
        self.display.run("xdotool", "key", key, "Return")

    def test_a_tray_on_the_bus_that_hangs_blocks_nothing_and_the_next_one_shows_the_icon(self):
        address = self.bus()
        host = self.bus_tray(address)
        host.send_signal(signal.SIGSTOP)
        self.orven.start_and_wait()
        self.main_window("Normal").close()
        self.main_window("Iconic")  # the icon could not bring it back
        host.kill()  # the desktop starts another one
        host.wait(LIMIT)
        self.bus_tray(address)
        icon = BusIcon(address)
        self.assertEqual(icon.property("ToolTip")[2], "ORVEN - Calls:0  New:0")
        self.assertTrue(any(any(pixels) for _, _, pixels in icon.property("IconPixmap")), "the icon is blank")
        icon.activate()
        self.main_window("Normal").close()
        self.main_window("")

    def miss(self, name):
        """Calls and hangs up while it rings: newer telephones cannot hang up before."""
        caller = self.dial(name)
        caller.wait_event("CALL_RINGING", LIMIT)
        self.hang_up(caller)

    def test_the_desktop_shows_calls_sets_the_colours_and_stays_awake_and_a_second_start_raises_the_window(self):
        address = self.bus()
        host, desktop = self.desktop(address)

        def shown(name):
            """Waits for the notification of this caller and returns its number."""
            numbers = lambda: [number for number, texts in desktop.Shown().items() if name in texts[0]]  # noqa: E731
            return processes.wait_for(f"{name}'s notification", numbers, LIMIT)[0]

        self.orven.change_settings({"KeepAwake": "1", "WhenMsgViewMsg": "0", "ViewDetails": "0"})
        self.orven.start_and_wait()
        processes.wait_for("The lock", lambda: desktop.Locks() == ["sleep ORVEN block"], LIMIT)
        self.main_window("Normal")
        processes.wait_for("Dark windows", lambda: 0.02 < self.brightness() < 0.15, LIMIT)
        desktop.TurnLight()
        processes.wait_for("Light windows", lambda: self.brightness() > 0.25, LIMIT)
        self.main_window("Normal").close()
        self.main_window("Iconic")

        self.leave_message("A <b>&", sound.noise(1, seed=1))
        number = shown("A <b>&")
        title, text, *captions = desktop.Shown()[number]
        self.assertEqual((title, captions), ("New message from A <b>&", ["", "Play", "Open"]))
        self.assertRegex(text, r"^5551234, at .* seconds$")
        self.assertEqual(desktop.Unread(), 1)
        desktop.Press(number, "0")  # Play
        processes.wait_for("The message to be read", lambda: not desktop.Unread() and not desktop.Shown(), LIMIT)
        self.main_window("Iconic")

        host.send_signal(signal.SIGSTOP)
        self.miss("Ben")
        host.kill()  # before it has shown anything: the next one does
        host.wait(LIMIT)
        desktop = self.desktop(address)[1]
        desktop.Press(shown("Ben"), "default")
        self.main_window("Normal").close()
        self.main_window("Iconic")

        first = self.orven.process
        self.addCleanup(processes.stop, first, 5)
        self.orven.start()
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        self.display.run("xdotool", "key", "Return")
        self.orven.wait_for_exit()
        self.orven.process = first
        self.main_window("Normal")
        self.miss("Carl")
        self.main_window("Normal").close()
        self.miss("Dora")
        shown("Dora")
        self.orven.end()
        processes.wait_for("The end", lambda: not (desktop.Shown() or desktop.Unread()), LIMIT)

    def brightness(self):
        """Of the screen, from 0 to 1."""
        return float(self.display.ask("sh", "-c", "import -window root png:- | convert - -format '%[fx:mean]' info:"))

    def test_dialogs_return_the_focus_and_closing_without_a_tray_minimises(self):
        self.orven.start_and_wait()
        self.main_window("Normal")
        self.open_lines()
        windows = len(self.windows())
        self.dial("Anna")
        processes.wait_for("The caller view", lambda: len(self.windows()) > windows, LIMIT)
        self.display.run("xdotool", "key", "alt+r")  # opens a question
        self.display.wait_for_keyboard("ORVEN", LIMIT)
        for below in ("Telephone Lines", "Options", "ORVEN"):
            self.display.run("xdotool", "key", "Escape")
            self.display.wait_for_keyboard(below, LIMIT)
        self.main_window("Normal").close()
        self.main_window("Iconic")  # there is no tray

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


class StartTest(harness.ProgramCase):
    arguments = ()

    def test_the_first_start_prints_its_password_once_and_the_next_login_starts_the_program(self):
        shutil.rmtree(self.orven.home)
        orven = self.machine()
        for with_signal in (signal.SIGTERM, signal.SIGINT):
            orven.start_and_wait()
            orven.end(with_signal)
        password = orven.password()
        self.assertEqual((orven.output().count(password), "".join(orven.log()).count(password)), (1, 0))
        self.assertIn(f'"Pass"="{password}"', orven.read("registry.reg"))
        entry = orven.read(f"{orven.config}/autostart/orven.desktop")
        self.assertIn(f"\nExec=env ORVEN_HOME={orven.home} {orven.program} -st\n", entry)

    def test_a_second_instance_touches_nothing(self):
        self.orven.start_and_wait()
        self.orven.wait_for("There is no sound server")  # the last line that is logged at a start
        before, first = list(self.orven.log()), self.orven.process
        self.addCleanup(processes.stop, first, 5)
        self.orven.start()
        self.orven.wait_for_exit()
        self.assertIn("ORVEN is still running", self.orven.output())
        self.assertEqual((self.orven.log(), first.poll()), (before, None))

    def test_an_exit_during_a_message_keeps_the_message(self):
        self.orven.start_and_wait()
        said = sound.noise(2, seed=1)
        self.call_to_the_message("Anna").say(said, LIMIT)
        self.orven.end()
        self.assertIn("Unload ORVEN", self.orven.log()[-1])
        self.assert_message("Anna", said)

    def test_an_application_folder_that_cannot_be_created_is_reported(self):
        self.orven.variables["ORVEN_HOME"] = home = self.orven.path("lines.ini/home")  # below a file
        self.orven.start()
        self.orven.wait_for_exit(1)
        self.assertIn(home, self.orven.output())

    def test_what_is_no_start_is_answered_without_a_display_or_a_folder(self):
        variables = {"PATH": os.environ["PATH"], "ORVEN_HOME": os.path.join(self.folder, "none")}
        for words, platform, code, answer in (
            (["--version"], "xcb", 0, "ORVEN 1.0.0.22\n"),
            (["--help"], "xcb", 0, "usage: orven "),
            (["-platform", "offscreen", "--version"], "", 0, "ORVEN 1.0.0.22\n"),
            (["-st", "-h"], "", 2, 'ORVEN: there is no option "-st -h"'),
        ):
            ended = subprocess.run([self.orven.program, *words], env={**variables, "QT_QPA_PLATFORM": platform},
                                   capture_output=True, text=True, timeout=LIMIT, check=False)  # fmt: skip
            said = ended.stderr if code else ended.stdout
            self.assertEqual((ended.returncode, answer in said), (code, True), (words, ended))
        self.assertFalse(os.path.exists(variables["ORVEN_HOME"]))


if __name__ == "__main__":
    harness.main(at_a_time=4)
