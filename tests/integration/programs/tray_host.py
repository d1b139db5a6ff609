#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A desktop's tray on the session bus, with which programs register their icons (StatusNotifierWatcher).
#
# Runs until it is stopped. The tests read the icons through the bus.

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher"

DESCRIPTION = f"""<node><interface name="{NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
</interface></node>"""


class Watcher(dbus.service.Object):
    def __init__(self, bus):
        self._items = dbus.Array(signature="s")
        super().__init__(dbus.service.BusName(NAME, bus), PATH)

    @dbus.service.method(NAME, in_signature="s")
    def RegisterStatusNotifierItem(self, item):
        self._items.append(item)

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, out_signature="s")
    def Introspect(self):
        return DESCRIPTION

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        about = {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": dbus.Int32(0)}
        return {**about, "RegisteredStatusNotifierItems": self._items}[name]


if __name__ == "__main__":
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    watcher = Watcher(dbus.SessionBus())
    GLib.MainLoop().run()
