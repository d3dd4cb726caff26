"""The helper as a process on a bus of its own: daemon_tests.py HELPER HELPER-UNDER-TEST"""
import json
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import dbus
import dbus.bus
import dbus.lowlevel

HELPER, UNDER_TEST = sys.argv.pop(1), sys.argv.pop(1)
NAME = "app.vespra.Helper"
HERE = pathlib.Path(__file__).parent
LOCK = "sleep:handle-lid-switch"
BUS_CONFIGURATION = """<busconfig><type>system</type><listen>unix:path={0}/bus</listen>
<policy context="default"><allow own="*"/><allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>"""


def wait(what, condition, limit=5.0):
    deadline = time.monotonic() + limit
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {limit} s: {what}")
        time.sleep(0.01)


class Client:
    """A connection of its own to the helper."""

    def __init__(self):
        self.bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])

    def __getattr__(self, method):
        return lambda: self.bus.call_blocking(NAME, "/app/vespra/Helper", NAME, method, "", (), timeout=10)

    def refused(self, method):
        try:
            getattr(self, method)()
        except dbus.DBusException as error:
            return error.get_dbus_name() == NAME + ".Error.Refused" and error.get_dbus_message()
        return None


class DaemonTest(unittest.TestCase):
    @staticmethod
    def start_bus(directory):
        configuration = directory / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION.format(directory))
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={directory}/bus"
        bus = subprocess.Popen(["dbus-daemon", "--nofork", "--nopidfile", "--print-address", "--config-file",
                                configuration], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        bus.stdout.readline()
        return bus

    @classmethod
    def setUpClass(cls):
        cls.directory = pathlib.Path(tempfile.mkdtemp(prefix="vespra-"))
        cls.processes = [cls.start_bus(cls.directory)]
        cls.processes.append(subprocess.Popen(
            [sys.executable, "-B", HERE.parent / "Support/mock_services.py",
             *("org.freedesktop." + name for name in ("login1", "PolicyKit1", "UPower"))]))
        cls.bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
        wait("the mock", lambda: cls.bus.name_has_owner("app.vespra.Mock"))
        cls.mock = dbus.Interface(cls.bus.get_object("app.vespra.Mock", "/mock", introspect=False), "app.vespra.Mock")

    @classmethod
    def tearDownClass(cls):
        for process in reversed(cls.processes):
            process.kill()
            process.communicate()
        shutil.rmtree(cls.directory)

    def setUp(self):
        self.state = self.directory / "state"
        self.ledger = self.state / "sleep-override.json"
        self.set(polkit="allow", lid=False, docked=False, lidAction="suspend", foreign=[], inhibitFails=False,
                 charger=None, isSilent=False, others=[], canSuspend="yes")

    def tearDown(self):
        self.end(signal.SIGKILL)
        shutil.rmtree(self.state, ignore_errors=True)

    def set(self, **changes):
        self.mock.Set(json.dumps(changes))

    def get(self, what):
        return json.loads(self.mock.Get())[what]

    def deeds(self):
        return [deed for deed in self.get("deeds") if deed["kind"] not in ("polkit", "read")]

    def is_held(self):
        return bool(self.get("locks"))

    def start(self, lease=25, idle=60, kill_at=None, **environment):
        self.end(signal.SIGKILL)
        arguments = [UNDER_TEST, self.state, str(lease), str(idle)] + ([str(kill_at)] if kill_at is not None else [])
        self.daemon = subprocess.Popen(arguments, stderr=subprocess.DEVNULL, env=os.environ | environment)
        wait("the helper", lambda: self.daemon.poll() is not None or self.bus.name_has_owner(NAME))
        Client().refused("ProtocolVersion")  # it answers once it has recovered

    def end(self, how):
        status = None
        if getattr(self, "daemon", None):
            self.daemon.send_signal(how)
            status = self.daemon.wait(10)
            self.daemon = None
        wait("the end of the helper", lambda: not self.bus.name_has_owner(NAME))
        return status

    def enabled(self, **options):
        """A client of a new helper, for which closed-lid mode is on."""
        self.start(**options)
        client = Client()
        client.EnableClosedLid()
        return client

    def assert_untouched(self):
        wait("no lock and no record", lambda: not self.is_held() and not self.ledger.exists())

    def test_applies_and_restores(self):
        self.start()
        client = Client()
        self.assertEqual(client.ProtocolVersion(), 2)
        self.assertFalse(client.Heartbeat())
        client.EnableClosedLid()
        client.EnableClosedLid()
        self.assertEqual([lock[0::3][:2] for lock in self.get("locks")], [[LOCK, "block"]])
        self.assertEqual(json.loads(self.ledger.read_text())["originalSleepDisabled"], False)
        self.assertTrue(client.Heartbeat())
        client.RestoreSleep()
        self.assert_untouched()
        self.assertFalse(client.Heartbeat())
        client.EnableClosedLid()
        self.assertEqual(self.end(signal.SIGTERM), 0)
        self.assert_untouched()

    def test_a_slow_disk_makes_no_lease_longer(self):
        self.client = self.enabled(lease=2, DELAY="60000")  # stays connected
        self.assertTrue(self.is_held())
        wait("the end of the lock", lambda: not self.is_held(), 3.0)

    def test_killed_at_any_step_it_leaves_the_setting_as_it_was(self):
        steps = 0
        while True:
            with self.subTest(step=steps):
                self.start(kill_at=steps)
                survived = self.daemon.poll() is None
                if survived:
                    client = Client()
                    try:
                        client.EnableClosedLid()
                        client.RestoreSleep()
                    except dbus.DBusException:
                        survived = False
                self.end(signal.SIGKILL)
                wait("no lock", lambda: not self.is_held())
                self.start()
                self.assert_untouched()
                self.end(signal.SIGKILL)
            if survived:
                break
            steps += 1
        self.assertGreater(steps, 12)

    def test_asks_polkit_about_the_connection(self):
        self.start()
        client = Client()
        subject = ["system-bus-name", client.bus.get_unique_name()]
        own, login = "app.vespra.helper.closed-lid", "org.freedesktop.login1."
        for changes, method, asked in (
                ({}, "EnableClosedLid", [(own, 0)]), ({}, "Heartbeat", [(own, 0)]), ({}, "SleepNow", [(login + "suspend", 0)]),
                ({"others": ["greeter"]}, "ShutDown", [(login + "power-off", 0)]),
                ({"others": ["user"]}, "SleepNow", [(login + "suspend-multiple-sessions", 0)]),
                ({"others": ["user"]}, "ShutDown", [(login + "power-off-multiple-sessions", 0)]),
                ({"polkit": "ask"}, "EnableClosedLid", [(own, 0), (own, 1)])):
            self.set(**changes)
            client.refused(method)
            self.assertEqual([(deed["action"], deed["flags"], deed["subject"])
                              for deed in self.get("deeds") if deed["kind"] == "polkit"],
                             [(*question, subject) for question in asked])

    def test_a_right_that_is_taken_away_ends_the_lock(self):
        client = self.enabled()
        for polkit, lives in (("broken", True), ("allow", True), ("deny", False), ("allow", False)):
            self.set(polkit=polkit)
            self.assertEqual((polkit, client.Heartbeat(), self.is_held()), (polkit, lives, lives))

    def test_lets_go_for_its_deeds_unless_it_must_refuse_them(self):
        for method, kind, what, held in (("SleepNow", "Suspend", "sleep", []),
                                         ("ShutDown", "PowerOff", "shutdown", [LOCK])):
            with self.subTest(method=method):
                client = self.enabled()
                for mode in ("block", "block-weak"):
                    self.set(foreign=[["idle:" + what, "dpkg", "upgrade", mode, 0, 1]])
                    self.assertIn("dpkg", client.refused(method))
                self.set(foreign=[[what, "editor", "save", "delay", 0, 1]], canSuspend="na")
                self.assertEqual(bool(client.refused(method)), kind == "Suspend")
                self.assertEqual(client.Heartbeat(), kind == "Suspend")
                client.EnableClosedLid()
                self.set(canSuspend="yes")
                self.assertFalse(client.refused(method))
                self.assertEqual([(deed["kind"], deed["locks"]) for deed in self.deeds()], [(kind, held)])
                self.assert_untouched()

    def test_takes_a_lock_again_that_logind_forgets_or_ends(self):
        client = self.enabled()
        self.mock.ForgetLocks()
        wait("another lock", self.is_held)
        self.assertTrue(client.Heartbeat())
        self.set(inhibitFails=True)
        self.mock.ForgetLocks()
        self.assertEqual(self.daemon.wait(5), 1)

    def test_a_second_one_touches_nothing(self):
        client = self.enabled()
        record = self.ledger.read_text()
        self.assertEqual(subprocess.run([UNDER_TEST, self.state, "25", "60"], stderr=subprocess.DEVNULL).returncode, 1)
        self.assertEqual((self.ledger.read_text(), self.is_held(), client.Heartbeat()), (record, True, True))

    def test_a_call_at_the_last_moment_is_served_unless_there_is_another_by_now(self):
        for another in (False, True):
            with self.subTest(another=another):
                self.start(idle=0.1, STOPS="")
                if another:
                    self.bus.request_name(NAME)  # as soon as it is free
                os.waitid(os.P_PID, self.daemon.pid, os.WSTOPPED)
                threading.Timer(0.2, self.daemon.send_signal, (signal.SIGCONT,)).start()
                bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
                call = dbus.lowlevel.MethodCallMessage(self.bus.get_name_owner(NAME), "/app/vespra/Helper", NAME,
                                                       "EnableClosedLid")
                try:
                    answer = bus.send_message_with_reply_and_block(call, 5).get_type()
                except dbus.DBusException as error:
                    answer = error.get_dbus_name().rpartition(".")[2]
                self.assertEqual(answer, "Disconnected" if another else dbus.lowlevel.MESSAGE_TYPE_METHOD_RETURN)
                self.assertEqual(self.is_held(), not another)
                if another:
                    self.assertEqual(self.daemon.wait(5), 0)
                    self.bus.release_name(NAME)

    def test_tells_the_watchdog_that_it_is_alive(self):
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            manager.bind(str(self.directory / "notify"))
            manager.settimeout(5)
            self.start(NOTIFY_SOCKET=str(self.directory / "notify"), WATCHDOG_USEC="200000")
            self.assertEqual([manager.recv(100) for _ in range(4)],
                             [b"WATCHDOG=1", b"READY=1", b"WATCHDOG=1", b"WATCHDOG=1"])
        unit = (HERE.parents[1] / "Resources/linux/vespra-helper.service.in").read_text()
        self.assertRegex(unit, "(?m)^WatchdogSec=30$")

    def test_ends_with_the_bus(self):
        ordinary = os.environ["DBUS_SYSTEM_BUS_ADDRESS"]
        with tempfile.TemporaryDirectory() as directory, self.start_bus(pathlib.Path(directory)) as bus:
            try:
                daemon = subprocess.Popen([UNDER_TEST, self.state, "25", "60"], stderr=subprocess.DEVNULL)
                wait("the helper", lambda: Client().bus.name_has_owner(NAME))
                bus.kill()
                self.assertEqual(daemon.wait(5), 1)
            finally:
                os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = ordinary
                daemon.kill()

    def test_sleeps_for_a_lid_that_stays_shut(self):
        lid = "handle-lid-switch"
        for changes, sleeps in (({}, True), ({"docked": True}, False), ({"lidAction": "lock"}, False),
                                ({"charger": "ignore"}, False), ({"lidAction": "ignore", "charger": ""}, False),
                                ({"foreign": [[lid, "presentation", "talk", "block", 1000, 1]]}, False),
                                ({"foreign": [["handle-power-key:" + lid, "desktop", "", "block", 1000, 1]]}, True)):
            with self.subTest(changes=changes):
                self.set(lid=True, docked=False, lidAction="suspend", charger=None, foreign=[])
                self.set(**changes)
                self.enabled().RestoreSleep()
                time.sleep(2.5)
                self.assertEqual([deed["kind"] for deed in self.deeds()], ["Suspend"] if sleeps else [])

    def test_goes_on_when_logind_does_not_answer(self):
        client = self.enabled()
        self.set(isSilent=True)
        client.RestoreSleep()
        wait("a look at the lid", lambda: self.get("deeds"))
        client.EnableClosedLid()  # waits 10 s at most
        self.assertTrue(self.is_held())

    def test_the_installed_helper_takes_no_options_but_these(self):
        for arguments, status in ((["--help"], 0), (["--lease", "1000"], 2), (["--install", "/tmp"], 2)):
            self.assertEqual(subprocess.run([HELPER, *arguments], capture_output=True).returncode, status)


unittest.main()
