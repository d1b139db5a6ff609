#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Tests the Debian package as a user would: installs it on a clean system, starts the program, opens its
help, calls it, listens to the message, upgrades the package, runs it as a service and removes it.

    check.py PACKAGE

Needs root for the clean system, a chroot. Its processes run in a network namespace that contains only them and
the telephone. Exits with 0 only when every step worked; after a failure its folder is kept.
"""

import configparser
import contextlib
import ctypes
import hashlib
import os
import shutil
import signal
import stat
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "demo"))

import demo  # noqa: E402
import machine  # noqa: E402
import sound  # noqa: E402
import sound_server  # noqa: E402
from display import Display  # noqa: E402
from processes import Failed, wait_for  # noqa: E402

OWNER = "owner"
HOME = f"/home/{OWNER}"
APPLICATION_FOLDER = f"{HOME}/.local/share/orven"
AUTOSTART_ENTRY = f"{HOME}/.config/autostart/orven.desktop"
OPENED = f"{HOME}/opened"  # by the clean system's xdg-open
SOUND_SERVER = "/tmp/sound"
DEFAULT_PORT = 5060  # of the telephone line without a lines.ini
UNIT, MANUAL = "/usr/lib/systemd/user/orven.service", "/usr/share/man/man1/orven.1.gz"
METAINFO = "/usr/share/metainfo/org.orven.orven.metainfo.xml"
PLACES = ("/usr/bin/orven", "/usr/lib/orven", "/usr/share/orven", "/usr/share/applications/orven.desktop", UNIT, MANUAL,
          METAINFO)  # fmt: skip
HELP_CHECK = os.path.join(HERE, "..", "tests", "house", "check_help.py")
SCREENSHOT = os.path.join(HERE, "..", "build", "package", "installed.png")

CLONE_NEWNS, CLONE_NEWNET = 0x00020000, 0x40000000  # unshare(2)
MS_REC, MS_PRIVATE = 0x4000, 0x40000  # mount(2)


def run(*command):
    """Runs a command and returns its output; raises Failed with the output when it fails."""
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode:
        raise Failed(f"{' '.join(command)} ended with {done.returncode}:\n{done.stdout}")
    return done.stdout


class CleanSystem:
    """A small Debian in a folder, from this machine's package archive."""

    def __init__(self, folder):
        self.root = os.path.join(folder, "root")
        sources = run("apt-get", "indextargets", "--format", "deb $(REPO_URI) $(CODENAME) $(COMPONENT)",
                      "Created-By: Packages", "Origin: Debian").splitlines()
        release = next(line.split("=")[1].strip() for line in open("/etc/os-release", encoding="utf-8")
                       if line.startswith("VERSION_CODENAME="))
        if not sources:
            raise Failed("apt knows no Debian archive; run apt-get update")
        run("mmdebstrap", "--variant=apt", "--mode=root", "--include=passwd", release, self.root, *dict.fromkeys(sources))
        # Keeps services of the clean system from starting on this machine.
        policy = self.path("/usr/sbin/policy-rc.d")
        with open(policy, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\nexit 101\n")
        os.chmod(policy, 0o755)

    def add_opener(self):
        """Installs an xdg-open that only records its argument."""
        opener = self.path("/usr/local/bin/xdg-open")
        with open(opener, "w", encoding="utf-8") as file:
            file.write(f'#!/bin/sh\nprintf %s "$1" >{OPENED}.new && mv {OPENED}.new {OPENED}\n')
        os.chmod(opener, 0o755)

    def path(self, inside):
        return self.root + inside

    def run(self, *command):
        return run("chroot", self.root, "/usr/bin/env", "DEBIAN_FRONTEND=noninteractive", "LC_ALL=C.UTF-8", *command)

    def update(self):
        shutil.copy("/etc/resolv.conf", self.path("/etc/resolv.conf"))
        self.run("apt-get", "-q", "update")

    def install(self, package):
        name = "/" + os.path.basename(package)
        shutil.copy(package, self.path(name))
        # Without recommended packages: the program must run with its dependencies only.
        self.run("apt-get", "-q", "install", "-y", "--no-install-recommends", "." + name)
        os.unlink(self.path(name))


class Installed(machine.Machine):
    """The installed program of the clean system, started by its owner with these environment variables."""

    def __init__(self, system, folder, show, variables, command=("orven",)):
        # The application folder is made by the program's first start.
        self._follow(system.path(APPLICATION_FOLDER), folder, show, DEFAULT_PORT)
        variables = {"HOME": HOME, "PATH": "/usr/local/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8",
                     "PULSE_SERVER": "unix:" + SOUND_SERVER, **variables}
        self.program, self._display, self.variables = "chroot", None, {}
        self.arguments = (f"--userspec={OWNER}:{OWNER}", system.root, "/usr/bin/env", "-i", f"--chdir={HOME}",
                          *(f"{name}={value}" for name, value in variables.items()), *command)

    def settings(self):
        with open(os.path.join(self.home, "registry.reg"), encoding="utf-8") as file:
            return file.read()


def enter_own_network():
    """Moves this process to a new mount and network namespace; they end with it and its children."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNS | CLONE_NEWNET) != 0:
        raise Failed(f"A network namespace cannot be created: {os.strerror(ctypes.get_errno())}")
    libc.mount(None, b"/", None, MS_REC | MS_PRIVATE, None)
    run("ip", "link", "set", "lo", "up")


def check_texts(package, folder):
    files = os.path.join(folder, "files")
    run("dpkg-deb", "-x", package, files)
    run("desktop-file-validate", files + "/usr/share/applications/orven.desktop")
    run("appstreamcli", "validate", "--no-net", "--pedantic", files + METAINFO)
    run("appstreamcli", "validate-tree", "--no-net", files)
    unit = os.path.join(folder, "orven.service")
    with open(files + UNIT, encoding="utf-8") as installed, open(unit, "w", encoding="utf-8") as copied:
        copied.write(installed.read().replace("=/usr/bin/", f"={files}/usr/bin/"))  # which must exist
    run("env", "XDG_RUNTIME_DIR=" + folder, "systemd-analyze", "--user", "--man=no", "verify", unit)
    demo.step("Its desktop entry, its AppStream data and its service are valid")


def check_package(package):
    # Warnings are failures, so that a new one is noticed.
    run("lintian", "--allow-root", "--tag-display-limit", "0", "--fail-on", "error,warning", package)
    demo.step("lintian has no complaints")


def data_of(system):
    """All files in the owner's home: type, mode and content by path."""
    found = {}
    for folder, folders, files in os.walk(system.path(HOME)):
        for name in folders + files:
            path = os.path.join(folder, name)
            status = os.lstat(path)
            content = b""
            if stat.S_ISREG(status.st_mode):
                with open(path, "rb") as file:
                    content = file.read()
            found[path] = (status.st_mode, status.st_uid, hashlib.sha256(content).hexdigest())
    return found


def check_first_start(installed, system):
    demo.step(f"Its first start has made the password {installed.password()}")
    installed.wait_for(f"LineOpen[LineIndex:0 Device Name:SIP 127.0.0.1:{DEFAULT_PORT}]", 20)
    for name in ("beep.wav", "Greets/Default.wav", "Sound/Ring.wav", "registry.reg"):
        demo.check(os.path.isfile(os.path.join(installed.home, name)), f"The application folder lacks {name}")
    entry = system.path(AUTOSTART_ENTRY)
    run("desktop-file-validate", entry)
    with open(entry, encoding="utf-8") as file:
        demo.check("\nExec=/usr/lib/orven/orven -st\n" in file.read(), "The autostart entry starts something else")
    demo.step("It is among the programs that start with the desktop")


def check_help(installed, system, screen):
    """F1 passes the page about the window in front to xdg-open; the first page and all pages it links to exist."""

    def page():
        screen.run("xdotool", "key", "F1")
        wait_for("The help", lambda: os.path.exists(system.path(OPENED)), 20, installed.look)
        with open(system.path(OPENED), encoding="utf-8") as file:
            address = file.read()
        os.unlink(system.path(OPENED))
        return address.removeprefix(f"file://{APPLICATION_FOLDER}/Help/")

    screen.wait_for_keyboard("Set-up Assistant", 20)
    demo.check(page() == "setup.htm", "F1 in the assistant opens another page")
    screen.run("xdotool", "key", "Escape")
    screen.wait_for_keyboard("ORVEN", 20)
    demo.check(page() == "index.htm", "F1 in the window opens another page")
    run(sys.executable, "-B", HELP_CHECK, system.path(APPLICATION_FOLDER + "/Help"))
    demo.step("Its assistant and its help open, complete with pictures")


def check_call(installed, screen):
    spoken = sound.speech(demo.MESSAGE, "en-gb+f2")
    greeting = demo.make_greeting(installed, screen)
    demo.check_order(demo.leave_message(installed, greeting, spoken), demo.STEPS_OF_A_CALL)
    message = demo.check_record(installed)
    demo.check_message(message, spoken)
    return message


def check_sound(installed, server, message, screen):
    """The program plays the message on the sound card."""
    wait_for("The end of the sound that announces a message", lambda: not server.streams(), 20, installed.look)
    heard = sound_server.Recording(server)
    window = screen.main_window(installed.process)
    screen.run("xdotool", "windowactivate", "--sync", window.number)
    screen.run("xdotool", "key", "space")  # Edit, Play
    wait_for("The sound", server.streams, 20, installed.look)
    demo.check_quality("recorded, heard at the desk", sound.read(message), heard.finish())


def check_window(installed, screen):
    window = wait_for("The main window", lambda: screen.main_window(installed.process), 20, installed.look)
    # Waits until the caller view has closed.
    wait_for("The main window alone", lambda: len(screen.windows(installed.process)) == 1, 20, installed.look)
    wait_for("A picture of it", lambda: window.picture(SCREENSHOT) and screen.colours(SCREENSHOT) >= demo.FEWEST_COLOURS,
             10, installed.look)
    demo.step(f"Its window is shown: {os.path.realpath(SCREENSHOT)}")


def newer(package, folder):
    """Makes the same package with a higher version. Returns its path and version."""
    content, version = os.path.join(folder, "newer"), run("dpkg-deb", "-f", package, "Version").strip()
    control, higher = os.path.join(content, "DEBIAN", "control"), version + "+newer"
    run("dpkg-deb", "-R", package, content)
    with open(control, encoding="utf-8") as file:
        text = file.read()
    with open(control, "w", encoding="utf-8") as file:
        file.write(text.replace(f"\nVersion: {version}\n", f"\nVersion: {higher}\n"))
    run("dpkg-deb", "--root-owner-group", "-Znone", "-b", content, content + ".deb")
    return content + ".deb", higher


def check_upgrade(installed, system, package, folder):
    """Upgrades the package while the program is running, as users do, then restarts the program."""
    before, password = data_of(system), installed.password()
    upgrade, version = newer(package, folder)
    system.install(upgrade)
    there = system.run("dpkg-query", "-W", "-f", "${Version}", "orven")
    demo.check(there == version, f"The clean system has version {there} after the upgrade to {version}")
    demo.check(data_of(system) == before, "The upgrade changed the owner's data")
    installed.end()
    settings, records, output = installed.settings(), installed.records(), installed.output()
    installed.start_and_wait()
    demo.check(f'"{password}"' in settings and installed.settings() == settings, "The upgrade changed the settings")
    demo.check(installed.records() == records and records, "The upgrade changed the call records")
    demo.check(password not in installed.output()[len(output):], "The upgraded program takes this for its first start")
    demo.step(f"The package is upgraded to {version}; settings and call are as they were")


def check_service(system, folder):
    """Starts the program as its service does, without a display, and ends it as the service manager does."""
    unit = configparser.ConfigParser()
    unit.optionxform = str
    unit.read(system.path(UNIT), encoding="utf-8")
    service = unit["Service"]
    variables = dict([service["Environment"].split("=", 1)])
    with Installed(system, folder, demo.show_log_line, variables, service["ExecStart"].split()) as installed:
        installed.start_and_wait()
        installed.end()
        demo.check("Unload ORVEN" in installed.log()[-1], "The service was not ended by its exit command")
    demo.step("It runs as a service, without a display")


@contextlib.contextmanager
def own_sound_server(folder, system):
    """A sound server for the clean system, with a card whose output is recorded."""
    os.mkdir(os.path.join(folder, "sound"))
    server = sound_server.Server(os.path.join(folder, "sound"))
    try:
        server.start()
        server.ask("load-module", "module-native-protocol-unix", "auth-anonymous=1", "socket=" + system.path(SOUND_SERVER))
        yield server
    finally:
        server.end()


def check_removal(system):
    before = data_of(system)
    system.run("apt-get", "-q", "purge", "-y", "orven")
    for place in PLACES:
        demo.check(not os.path.lexists(system.path(place)), f"The removed package left {place}")
    demo.check(data_of(system) == before, "Removing the package changed the owner's data")
    demo.step(f"The package is removed; the owner's {len(before)} files and folders are as they were")


def check(package, folder):
    check_package(package)
    check_texts(package, folder)
    system = CleanSystem(folder)
    demo.step("The clean system is installed")
    system.update()
    system.install(package)
    system.run("useradd", "--create-home", OWNER)
    system.add_opener()
    demo.step("The package and its dependencies are installed there")
    enter_own_network()
    run("mount", "-t", "proc", "proc", system.path("/proc"))
    try:
        with (
            Display(folder) as screen,
            own_sound_server(folder, system) as server,
            Installed(system, folder, demo.show_log_line, screen.variables) as installed,
        ):
            installed.start()
            check_first_start(installed, system)
            check_help(installed, system, screen)
            check_sound(installed, server, check_call(installed, screen), screen)
            check_window(installed, screen)
            check_upgrade(installed, system, package, folder)
            installed.end()
        check_service(system, folder)
        check_removal(system)
    finally:
        run("umount", "--lazy", system.path("/proc"))
    demo.step("Every step worked")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    folder = tempfile.mkdtemp(prefix="orven-package-")
    os.chmod(folder, 0o755)  # the clean system's user needs access
    try:
        check(os.path.abspath(sys.argv[1]), folder)
    except (Failed, OSError, subprocess.CalledProcessError) as failure:
        print(f"\nFAILED: {failure}.\nEverything is kept in {folder}", file=sys.stderr)
        return 1
    except BaseException:
        print(f"Everything is kept in {folder}", file=sys.stderr)
        raise
    shutil.rmtree(folder)
    return 0


if __name__ == "__main__":
    sys.exit(main())
