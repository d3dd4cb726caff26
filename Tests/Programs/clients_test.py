"""Who else comes to the application: a second start of it, and programs that misbehave on its socket."""

import os
import signal
import subprocess
import sys
import unittest

from application import BIN, SLOW, ApplicationTest


class SecondStart(ApplicationTest):
    def start(self, *options):
        result = subprocess.run([BIN / "vespra", *options], env=self.environment, capture_output=True, text=True,
                                timeout=SLOW)
        return result.returncode, result.stdout, result.stderr

    def test_it_shows_the_first_one_or_says_how_to_start_a_session(self):
        application = self.launch()
        self.assertEqual(self.start(), (0, "", ""))
        refusal = 'vespra: Vespra is already running. "vespractl start" starts a session in it.\n'
        for options in (("--unlimited",), ("--headless", "--timer", "5m"), ("--idle",), ("--display",)):
            self.assertEqual(self.start(*options), (1, "", refusal))
        self.assertEqual(self.status()["state"], "idle")
        os.kill(application.pid, signal.SIGSTOP)
        waiting = [self.ctl_later(*verb) for verb in (
            ("status",), ("status", "--watch", "--json"), ("start",), ("wait",), ("closed-lid", "set-up"))]
        self.assertEqual(self.start(), (1, "", "vespra: Vespra is already running, but does not answer.\n"))
        for each in waiting:
            _, complaint = each.communicate(timeout=SLOW)
            self.assertEqual((each.returncode, complaint),
                             (4, "vespractl: Vespra does not answer; it may have been stopped.\n"))
        os.kill(application.pid, signal.SIGCONT)
        self.assertEqual(self.start(), (0, "", ""))
        self.assertEqual((self.status()["state"], self.status()["helper"]), ("idle", "notInstalled"))

    def test_a_socket_that_cannot_be_reached_is_no_application_that_does_not_run(self):
        self.launch()
        deep = self.home / ("x" * 90)
        for folder, user, complaint in (
            (deep, None, f"Vespra cannot be reached: {deep}/Vespra/control.sock: File name too long"),
            (self.home, 1000, f"Vespra cannot be reached: {self.support}/control.sock: Permission denied"),
        ):
            if user and os.geteuid() != 0:
                continue  # only root can be somebody else
            result = subprocess.run([BIN / "vespractl", "status"], env=dict(self.environment, XDG_DATA_HOME=folder),
                                    capture_output=True, text=True, timeout=SLOW, user=user)
            self.assertEqual((result.returncode, result.stderr), (4, f"vespractl: {complaint}\n"))

    def test_of_several_at_once_one_stays_and_after_a_kill_the_next_one_may(self):
        command = [BIN / "vespra", "--headless", "--platform", "simulated", "--idle"]
        started = [self.spawn(*command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) for _ in range(4)]
        self.wait_for(lambda: sum(each.poll() is None for each in started) == 1 and self.ctl("status").returncode == 0)
        first, = (each for each in started if each.poll() is None)
        self.assertEqual([each.returncode for each in started if each is not first], [1, 1, 1])
        self.quit(first, signal.SIGKILL)
        self.launch()


class Clients(ApplicationTest):
    def setUp(self):
        super().setUp()
        self.launch()

    def test_nonsense_gets_an_error_and_the_connection_goes_on(self):
        connection = self.connect()
        no_json, no_object = "request: expected a JSON object in one line", "request: expected an object"
        for line, complaint in (
            (b"", no_json), (b"{", no_json), (b"\xff\xfe\x00", no_json), (b'{"request":"stop"} {}', no_json),
            (b"[" * 60000 + b"]" * 5000, no_json), (b"[" * 30000 + b"]" * 30000, no_object), (b"7", no_object),
            (b"{}", "request.request: is missing"), (b'{"request":"begin"}', "request.request: "),
            (b'{"request":7}', "request.request: "),
            (b'{"request":"stop","now":true}', 'request: does not take "now" with "stop"'),
            (b'{"request":"start","timerDuration":"1s"}', "request.timerDuration: expected a length from 1m to 24h"),
            (b'{"request":"start","timerDuration":60}', "request.timerDuration: expected a text"),
            (b'{"request":"start","mode":"soon"}', 'request.mode: expected one of "timer"'),
            (b'{"request":"start","untilTime":"24:00"}', "request.untilTime: expected a time of day"),
            (b'{"request":"set","key":"energy"}', "request.value: is missing"),
            (b'{"request":"display"}', "request.on: is missing"),
            (b'{"request":"display","on":"yes"}', "request.on: expected true or false"),
            (b'{"request":"set","key":"x","value":"1"}', "expected one of energy.requiresACPower, "),
            (b'{"request":"set","key":"' + b"\xc3\xa9" * 20000 + b'","value":"1"}', "expected one of "),
            (b'{"request":"set","key":"a\\u0000b","value":"1"}', "expected one of "),
        ):
            with self.subTest(line=line[:60]):
                error = connection.ask(line + b"\n")["error"]
                self.assertEqual(error["kind"], "badRequest")
                self.assertIn(complaint, error["message"])
        self.assertEqual(connection.ask({"request": "stop"}), {"done": {"isActive": False}})

    def test_a_line_of_64_kib_is_read_and_one_byte_more_ends_the_connection(self):
        connection = self.connect()
        longest = b'{"request":"stop"}'.ljust(65536)
        self.assertEqual(connection.ask(longest + b"\n"), {"done": {"isActive": False}})
        error = connection.ask(longest + b" ")["error"]
        self.assertEqual((error["kind"], error["message"]),
                         ("badRequest", "request: expected at most 65536 bytes in a line"))
        self.assertIsNone(connection.receive())
        self.status()

    def test_many_requests_at_once_are_answered_in_order_also_in_pieces(self):
        connection = self.connect()
        connection.send(b'{"request":"stop"}\n{"request":"settings"}\n' * 500)
        for _ in range(500):
            self.assertEqual((list(connection.receive()), list(connection.receive())), (["done"], ["settings"]))
        for byte in b'{"request":"stop"}\n':
            connection.send(bytes([byte]))
        self.assertEqual(list(connection.receive()), ["done"])

    def test_who_says_nothing_reads_nothing_or_stops_in_a_line_delays_nobody(self):
        self.connect()
        self.connect().send(b'{"request":"sta')
        deaf = self.connect()
        deaf.send({"request": "watch"})
        flooding = self.connect()
        flooding.socket.setblocking(False)
        try:  # answers that it never reads, until they are not even taken any more
            while flooding.socket.send(b'{"request":"status"}\n' * 100):
                pass
        except BlockingIOError:
            pass
        other = self.connect()
        for on in (True, False) * 300:
            self.assertEqual(other.ask({"request": "display", "on": on}), {"done": {"isActive": False}})
        other.ask({"request": "start", "mode": "unlimited"})
        # What the deaf one reads in the end is how things stand now, after some of how they stood.
        lines = [deaf.receive()["status"]]
        while lines[-1]["state"] == "idle":
            lines.append(deaf.receive()["status"])
        self.assertLess(len(lines), 600)

    def test_of_seventy_connections_the_last_ones_are_served_and_those_that_wait_stay(self):
        waiting = self.connect()
        self.done("start", "unlimited")
        waiting.send({"request": "wait"})
        more = [self.connect() for _ in range(70)]
        self.assertEqual(more[-1].ask({"request": "stop"}), {"done": {"isActive": False}})
        self.assertEqual(waiting.receive()["ended"]["reason"], "stoppedByUser")
        self.assertIsNone(more[0].receive())

    def test_where_all_wait_another_one_is_told_and_gets_in_when_one_has_gone(self):
        watching = [self.connect() for _ in range(64)]
        for connection in watching:
            self.assertIn("status", connection.ask({"request": "watch"}))
        result = self.ctl("status")
        self.assertEqual((result.returncode, result.stderr), (1, "vespractl: Too many programs are connected.\n"))
        watching[0].close()
        self.wait_for(lambda: self.ctl("status").returncode == 0)

    def test_the_socket_is_the_users_alone(self):
        path = self.support / "control.sock"
        self.assertEqual((path.stat().st_mode & 0o777, path.parent.stat().st_mode & 0o777), (0o600, 0o700))
        if os.geteuid() != 0:
            self.skipTest("only root can be somebody else")
        for each in (path, path.parent, self.home):
            each.chmod(0o777)  # whoever gets as far
        stranger = """
import os, socket, sys
os.setuid(1000)
connection = socket.socket(socket.AF_UNIX)
connection.connect(sys.argv[1])
try:
    connection.sendall(b'{"request":"status"}\\n')
    print(connection.recv(100))
except OSError as error:
    print(b"")
"""
        result = subprocess.run([sys.executable, "-c", stranger, path], capture_output=True, text=True, timeout=SLOW)
        self.assertEqual((result.stdout, result.stderr), ("b''\n", ""))
        self.status()


if __name__ == "__main__":
    sys.argv[:1] = ["clients_test"]
    unittest.main()
