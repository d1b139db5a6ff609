#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A desktop on the message bus: its notifications, its colours and its sleep. Runs until it is stopped.
#
# The tests look at it, and act in it, through the interface org.orven.Desktop.

import os
import select

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH = "org.orven.Desktop", "/org/orven/Desktop"
NOTIFICATIONS, LAUNCHER = "org.freedesktop.Notifications", "com.canonical.Unity.LauncherEntry"
PORTAL, SETTINGS = "org.freedesktop.portal.Desktop", "org.freedesktop.portal.Settings"
LOGIN, MANAGER = "org.freedesktop.login1", "org.freedesktop.login1.Manager"


class Notifications(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(dbus.service.BusName(NOTIFICATIONS, bus), "/org/freedesktop/Notifications")
        self.shown, self._last = {}, 0

    @dbus.service.method(NOTIFICATIONS, out_signature="as")
    def GetCapabilities(self):
        return ["actions", "body", "body-markup"]

    @dbus.service.method(NOTIFICATIONS, in_signature="susssasa{sv}i", out_signature="u")
    def Notify(self, _program, replaces, _icon, summary, body, actions, _hints, _timeout):
        self._last += 1
        self.shown[replaces or self._last] = [summary, body, *actions[1::2]]
        return replaces or self._last

    @dbus.service.method(NOTIFICATIONS, in_signature="u")
    def CloseNotification(self, number):
        self.shown.pop(number, None)
        self.NotificationClosed(number, 3)

    @dbus.service.signal(NOTIFICATIONS, signature="uu")
    def NotificationClosed(self, number, reason):
        pass

    @dbus.service.signal(NOTIFICATIONS, signature="us")
    def ActionInvoked(self, number, key):
        pass


class Portal(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(dbus.service.BusName(PORTAL, bus), "/org/freedesktop/portal/desktop")

    @dbus.service.method(SETTINGS, in_signature="ss", out_signature="v")
    def Read(self, _group, _name):
        return dbus.UInt32(1, variant_level=1)  # dark

    @dbus.service.signal(SETTINGS, signature="ssv")
    def SettingChanged(self, group, name, value):
        pass


class Login(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(dbus.service.BusName(LOGIN, bus), "/org/freedesktop/login1")
        self.locks = []

    @dbus.service.method(MANAGER, in_signature="ssss", out_signature="h")
    def Inhibit(self, what, who, _why, mode):
        ours, theirs = os.pipe()
        self.locks.append((f"{what} {who} {mode}", ours))
        lock = dbus.types.UnixFd(theirs)
        os.close(theirs)
        return lock


class Desktop(dbus.service.Object):
    def __init__(self, bus):
        self._notifications, self._portal, self._login = Notifications(bus), Portal(bus), Login(bus)
        self._unread = 0
        bus.add_signal_receiver(self._update, "Update", LAUNCHER)
        super().__init__(dbus.service.BusName(NAME, bus), PATH)

    def _update(self, program, facts):
        self._unread = facts["count"] if program == "application://orven.desktop" and facts["count-visible"] else 0

    @dbus.service.method(NAME, out_signature="a{uas}")
    def Shown(self):
        return self._notifications.shown

    @dbus.service.method(NAME, in_signature="us")
    def Press(self, number, key):
        self._notifications.ActionInvoked(number, key)

    @dbus.service.method(NAME, out_signature="x")
    def Unread(self):
        return self._unread

    @dbus.service.method(NAME)
    def TurnLight(self):
        self._portal.SettingChanged("org.freedesktop.appearance", "color-scheme", dbus.UInt32(2))

    @dbus.service.method(NAME, out_signature="as")
    def Locks(self):
        return [lock for lock, end in self._login.locks if not select.select([end], [], [], 0)[0]]


if __name__ == "__main__":
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    desktop = Desktop(dbus.SessionBus())
    GLib.MainLoop().run()
