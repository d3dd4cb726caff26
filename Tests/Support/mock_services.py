"""logind, polkit, UPower and the services of a desktop, as far as Vespra meets them, on the bus in
DBUS_SYSTEM_BUS_ADDRESS. They own the names in the arguments; app.vespra.Mock steers and tells of them.
"""
import json
import os
import select
import sys

import dbus
import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

LOGIND = "org.freedesktop.login1"
PORTAL = "/org/freedesktop/portal/desktop"
REFUSED = "org.freedesktop.DBus.Error.AccessDenied"
FIRST = {"polkit": "allow", "lid": False, "docked": False, "lidAction": "suspend", "foreign": [], "hasLid": True,
         "others": [], "hasHost": True, "charger": None, "canSuspend": "yes", "inhibitFails": False, "isSilent": False,
         "portal": {}, "answers": {}}  # to methods that are not played here: signature and value


class Refused(Exception):
    pass


class State:
    """What a test leaves behind."""

    def __init__(self):
        self.settings = dict(FIRST)
        self.deeds = []  # what was asked for, with the locks held then
        self.locks = {}  # read end of the pipe -> [what, who, why, mode, uid, pid]
        self.cookies = {}  # number -> "org.gnome.SessionManager 4"
        self.properties = {}  # (path, interface) -> values by name
        self.capabilities, self.notifications, self.last_notification = [], {}, 0
        self.most = 0  # held at the same time
        self.kept_members, self.kept = [], []


state = State()
owned = set(sys.argv[1:])
last_cookie = 0  # never given twice: a late release must not hit another test


def held():
    for end in [*state.locks]:
        poll = select.poll()
        poll.register(end, 0)
        if poll.poll(0):  # the other end has been closed
            forget(end)
    return [f"{lock[0]}:{lock[3]}" for lock in state.locks.values()] + [*state.cookies.values()]


def forget(end):
    os.close(end)
    del state.locks[end]


def note(kind, **more):
    held()
    state.deeds.append({"kind": kind, "locks": [lock[0] for lock in state.locks.values()], **more})


def inhibit(call, arguments):
    global last_cookie
    if state.settings["inhibitFails"]:
        raise Refused("no lock today")
    if call.get_interface() != LOGIND + ".Manager":
        last_cookie += 1
        state.cookies[last_cookie] = " ".join([call.get_interface(), *map(str, arguments[3:4])])
        state.most = max(state.most, len(held()))
        return "u", last_cookie
    read, write = os.pipe()
    pid = bus.call_blocking("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID", "s",
                            (call.get_sender(),))
    state.locks[read] = [*map(str, arguments), 0, int(pid)]
    state.most = max(state.most, len(held()))
    handed = dbus.types.UnixFd(write)
    os.close(write)
    return "h", handed


def read_property(call, name):
    note("read")
    if call.get_path().startswith("/sessions/"):
        return call.get_path().rpartition("/")[2]
    settings = state.settings
    return {"LidClosed": settings["lid"], "Docked": settings["docked"], "OnExternalPower": settings["charger"] is not None,
            "HandleLidSwitch": settings["lidAction"], "IsStatusNotifierHostRegistered": settings["hasHost"],
            "HandleLidSwitchExternalPower": settings["charger"] or ""}.get(name, settings["hasLid"])


def check_authorization(arguments):
    subject, action, _, flags, _ = arguments
    note("polkit", action=action, subject=[subject[0], str(subject[1]["name"])], flags=int(flags))
    verdict = state.settings["polkit"]
    if verdict == "broken":
        raise Refused("no such action")
    is_proved = verdict == "password" and bool(flags)
    asks = verdict in ("ask", "password") and not is_proved
    details = {"polkit.retains_authorization_after_challenge": "1"} if asks else {}
    return "(bba{ss})", (verdict == "allow" or is_proved, asks, details)


def ask_portal(call, arguments):
    """The path of the request; the user's answer follows, unless it is kept back."""
    member, options = call.get_member(), arguments[-1]
    note(member, arguments=repr(arguments[:-1]), options={name: repr(value) for name, value in options.items()})
    if member not in state.settings["portal"]:
        raise Refused("no such method")
    path = "/".join([PORTAL, "request", call.get_sender()[1:].replace(".", "_"), options["handle_token"]])
    code, given = state.settings["portal"][member]
    signal = dbus.lowlevel.SignalMessage(path, "org.freedesktop.portal.Request", "Response")
    signal.append(code, entries(given), signature="ua{sv}")
    GLib.idle_add(lambda: bus.send_message(signal) and False)
    return "o", path


def entries(given):
    """JSON as a portal's results: lists of [name, properties] are its shortcuts."""
    return {name: dbus.Array(each, "(sa{sv})") if isinstance(each, list) else each for name, each in given.items()}


def result(call):
    """The signature and the value of the answer; none for an answer without one."""
    member, arguments = call.get_member(), call.get_args_list()
    if member in state.settings["answers"]:
        return state.settings["answers"][member]
    if member == "Inhibit":
        return inhibit(call, arguments)
    if member.lower() == "uninhibit":
        state.cookies.pop(arguments[0], None)
    elif member == "ListInhibitors":
        held()
        return "a(ssssuu)", [tuple(lock) for lock in [*state.locks.values(), *state.settings["foreign"]]]
    elif member == "ListSessions":
        others = [(kind, os.getuid() + 1) for kind in state.settings["others"]]
        return "a(susso)", [(kind, uid, "somebody", "seat0", "/sessions/" + kind)
                            for kind, uid in [("user", os.getuid()), *others]]
    elif member == "CanSuspend":
        return "s", state.settings["canSuspend"]
    elif member in ("Suspend", "PowerOff"):
        note(member, asks=bool(arguments[0]))
    elif member == "CheckAuthorization":
        return check_authorization(arguments)
    elif member in ("CreateSession", "BindShortcuts", "RequestBackground"):
        return ask_portal(call, arguments)
    elif member in ("Close", "Register"):
        note(member, path=call.get_path())
    elif member == "ReadAll":  # the settings portal: the properties of each interface by its name
        return "a{sa{sv}}", {interface: dbus.Dictionary(state.properties.get((call.get_path(), interface), {}), "sv")
                             for interface in arguments[0]}
    elif member == "Get":
        return "v", read_property(call, arguments[1])
    elif member == "GetAll":
        return "a{sv}", state.properties.get((call.get_path(), arguments[0]), {})
    elif member == "GetCapabilities":
        return "as", state.capabilities
    elif member == "Notify":
        if not arguments[1]:
            state.last_notification += 1
        number = int(arguments[1]) or state.last_notification
        hints = {name: f"{type(value).__name__} {value}" for name, value in arguments[6].items()}
        state.notifications[number] = [*arguments[:6], hints, arguments[7]]
        return "u", number
    elif member == "RegisterStatusNotifierItem":
        note(member, service=str(arguments[0]))
    elif member == "CloseNotification":
        state.notifications.pop(arguments[0], None)
    return None


def answer(call):
    try:
        value = result(call)
    except Refused as refused:
        refuse(call, str(refused))
        return
    if call.get_member() == "Get" and state.settings["isSilent"]:
        return
    reply = dbus.lowlevel.MethodReturnMessage(call)
    if value:
        reply.append(value[1], signature=value[0])
    bus.send_message(reply)


def refuse(call, why="Permission denied"):
    bus.send_message(dbus.lowlevel.ErrorMessage(call, REFUSED, why))


class Steering:
    """The methods of app.vespra.Mock."""

    def Own(self, name):
        bus.request_name(name)
        owned.add(name)

    def Disown(self, name):
        """The process lives on, with all that it has granted, but without the name."""
        bus.release_name(name)

    def Restart(self, name):
        """As if it crashed and came back at once."""
        self.Disown(name)
        if name == LOGIND:
            self.ForgetLocks()
        state.cookies = {cookie: each for cookie, each in state.cookies.items() if not each.startswith(name)}
        state.notifications, state.last_notification = {}, 0
        self.Own(name)

    def Reset(self):
        global state
        for name in owned:
            bus.release_name(name)
        owned.clear()
        self.ForgetLocks()
        state = State()

    def ForgetLocks(self):
        for end in [*state.locks]:
            forget(end)

    def KeepBack(self, member):
        state.kept_members.append(member)

    def Release(self, answers):
        kept, state.kept, state.kept_members = state.kept, [], []
        for call in kept:
            (answer if answers else refuse)(call)

    def SetProperty(self, path, interface, name, value):
        state.properties.setdefault((path, interface), {})[name] = value

    def Emit(self, path, interface, name, arguments):
        signal = dbus.lowlevel.SignalMessage(path, interface, name)
        signal.append(*(type(each)(each, signature=each.signature) if isinstance(each, (dbus.Array, dbus.Dictionary))
                        else type(each)(each) for each in arguments))
        bus.send_message(signal)

    def SetCapabilities(self, capabilities):
        state.capabilities = capabilities

    def Set(self, changes):
        state.settings.update(json.loads(changes))
        state.deeds.clear()

    def Get(self):
        return json.dumps({"held": held(), "locks": [*state.locks.values()], "most": state.most, "deeds": state.deeds,
                           "notifications": state.notifications})


def handle(_connection, message):
    if not isinstance(message, dbus.lowlevel.MethodCallMessage) or message.get_interface() == "org.freedesktop.DBus.Peer":
        return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
    if message.get_interface() == "app.vespra.Mock":
        told = getattr(Steering(), message.get_member())(*message.get_args_list())
        reply = dbus.lowlevel.MethodReturnMessage(message)
        reply.append(told or "", signature="s")
        bus.send_message(reply)
    elif message.get_member() in state.kept_members:
        state.kept.append(message)
    else:
        answer(message)
    return dbus.lowlevel.HANDLER_RESULT_HANDLED


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
bus.add_message_filter(handle)
for each in (*owned, "app.vespra.Mock"):
    bus.request_name(each)
GLib.MainLoop().run()
