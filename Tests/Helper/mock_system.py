"""logind, polkit and UPower, as far as the helper meets them, on the bus in DBUS_SYSTEM_BUS_ADDRESS.

Steered and read through app.vespra.Mock at /mock: Set(JSON) and Get() -> JSON.
"""
import json
import os

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

MANAGER = "org.freedesktop.login1.Manager"
POLKIT = "org.freedesktop.PolicyKit1.Authority"
PROPERTIES = "org.freedesktop.DBus.Properties"

state = {"polkit": "allow", "lid": False, "docked": False, "lidAction": "suspend", "foreign": [], "hasLid": True,
         "others": [], "canSuspend": "yes"}
deeds = []  # what was asked for, with the locks held then
locks = {}  # read end of the pipe -> [what, who, why, mode, uid, pid]
watches = {}


watches = {}  # the same -> what waits for its end


def forget(read):
    GLib.source_remove(watches.pop(read))
    os.close(read)
    del locks[read]


def note(kind, **more):
    deeds.append({"kind": kind, "locks": [lock[0] for lock in locks.values()], **more})


class Refused(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.DBus.Error.AccessDenied"


class Logind(dbus.service.Object):
    @dbus.service.method(MANAGER, "ssss", "h", sender_keyword="sender", connection_keyword="bus")
    def Inhibit(self, what, who, why, mode, sender, bus):
        if state.get("inhibitFails"):
            raise Refused("no lock today")
        read, write = os.pipe()
        pid = dbus.Interface(bus.get_object("org.freedesktop.DBus", "/"), "org.freedesktop.DBus") \
            .GetConnectionUnixProcessID(sender)
        locks[read] = [str(what), str(who), str(why), str(mode), 0, int(pid)]
        watches[read] = GLib.io_add_watch(read, GLib.PRIORITY_HIGH, GLib.IO_HUP, self.dropped)
        handed = dbus.types.UnixFd(write)
        os.close(write)
        return handed

    def dropped(self, read, _condition):
        forget(read)
        return False

    @dbus.service.method(MANAGER, "", "a(ssssuu)")
    def ListInhibitors(self):
        return dbus.Array([tuple(lock) for lock in [*locks.values(), *state["foreign"]]], signature="(ssssuu)")

    @dbus.service.method(MANAGER, "", "a(susso)")
    def ListSessions(self):
        return dbus.Array([(kind, uid, "somebody", "seat0", "/sessions/" + kind) for kind, uid in
                           [("user", os.getuid()), *((kind, os.getuid() + 1) for kind in state["others"])]],
                          signature="(susso)")

    @dbus.service.method(MANAGER, "", "s")
    def CanSuspend(self):
        return state["canSuspend"]

    @dbus.service.method(MANAGER, "b", "")
    def Suspend(self, _interactive):
        note("suspend")

    @dbus.service.method(MANAGER, "b", "")
    def PowerOff(self, _interactive):
        note("powerOff")

    @dbus.service.method(PROPERTIES, "ss", "v", async_callbacks=("answer", "_fail"))
    def Get(self, _interface, name, answer, _fail):
        note("read")
        if not state.get("isSilent"):
            answer({"LidClosed": state["lid"], "Docked": state["docked"], "OnExternalPower": False,
                    "HandleLidSwitch": state["lidAction"], "HandleLidSwitchExternalPower": ""}[name])


class Session(dbus.service.Object):
    """Called like its class."""
    @dbus.service.method(PROPERTIES, "ss", "v", path_keyword="path")
    def Get(self, _interface, _name, path):
        return path.rpartition("/")[2]


class Polkit(dbus.service.Object):
    @dbus.service.method(POLKIT, "(sa{sv})sa{ss}us", "(bba{ss})", async_callbacks=("answer", "fail"))
    def CheckAuthorization(self, subject, action, _details, flags, _cancellation, answer, fail):
        note("polkit", action=action, subject=[subject[0], str(subject[1]["name"])], flags=int(flags))
        verdict = (state["polkit"] in ("allow", "slow"), state["polkit"] == "ask", dbus.Dictionary({}, signature="ss"))
        if state["polkit"] == "slow":
            GLib.timeout_add(300, lambda: answer(verdict) and False)
        elif state["polkit"] == "broken":
            fail(Refused("no such action"))
        else:
            answer(verdict)


class UPower(dbus.service.Object):
    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, _interface, _name):
        return state["hasLid"]


class Mock(dbus.service.Object):
    @dbus.service.method("app.vespra.Mock", "s", "")
    def Set(self, changes):
        state.update(json.loads(changes))
        deeds.clear()

    @dbus.service.method("app.vespra.Mock", "", "")
    def ForgetLocks(self):
        for read in [*locks]:
            forget(read)

    @dbus.service.method("app.vespra.Mock", "", "s")
    def Get(self):
        return json.dumps({"locks": list(locks.values()), "deeds": deeds})


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
connection = dbus.SystemBus()
objects = [Logind(connection, "/org/freedesktop/login1"),
           Polkit(connection, "/org/freedesktop/PolicyKit1/Authority"),
           UPower(connection, "/org/freedesktop/UPower"),
           *(Session(connection, "/sessions/" + kind) for kind in ("user", "greeter")),
           Mock(connection, "/mock")]
names = [dbus.service.BusName(name, connection)
         for name in ("org.freedesktop.login1", "org.freedesktop.PolicyKit1", "org.freedesktop.UPower",
                      "app.vespra.Mock")]
GLib.MainLoop().run()
