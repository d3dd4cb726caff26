"""Random requests, agents' events and readings, sound and broken, from many sides at once, against one application.

VESPRA_STORM_EVENTS: how many (6000). VESPRA_STORM_SEED: repeats the choices of a storm that is printed; how the sides
take turns is up to the machine.
"""

import collections
import json
import os
import random
import re
import secrets
import signal
import socket
import sys
import threading
import traceback
import unittest

from application import SLOW, ApplicationTest, Connection

EVENTS = int(os.environ.get("VESPRA_STORM_EVENTS", "6000"))
SEED = int(os.environ.get("VESPRA_STORM_SEED", str(secrets.randbelow(10**9))))
REPLIES = {"done", "error", "status", "lines", "settings"}
PLAIN = ["status", "describe", "stop", "toggle", "extend", "keepAwake", "cancel", "settings", "showPanel", "setUpClosedLid",
         "removeClosedLid"]
VALUES = {
    "energy.requiresACPower": ["on", "off", "off", "off"], "energy.stopsOnLowBattery": ["on", "off"],
    "energy.lowBatteryThreshold": ["10", "80", "11"], "energy.batteryTimeLimit": ["off", "15m", "8h", "9h"],
    "closedLid.continuesOnBattery": ["on", "off"], "agents.endAction": ["letSleep", "sleepNow", "shutDown", "none"],
    "agents.graceDelay": ["0s", "1s", "15m"], "agents.waitingCountsAsFinished": ["on", "off"],
    "agentSafetyCap": ["off", "1h", "24h"], "none": ["1"],
}
READINGS = {
    "battery": ["none", "0", "5", "20", "21", "80", "100", "101"], "charger": ["on", "on", "off"],
    "lid": ["open", "closed"], "display": ["internal", "external"], "screen": ["on", "off"],
    "thermal": ["nominal", "nominal", "fair", "serious", "critical", "hot"],
    "helper": ["ready", "ready", "notInstalled", "awaitingApproval", "failed", "noBuiltInDisplay", "unsignedBuild",
               "refusing", "outdated", "stuck"],
    "sleep": ["now", "later"], "wind": ["1"],
}
HELD_FOR = {"preventsIdleSystemSleep": ["PreventUserIdleSystemSleep", "activity"],
            "preventsDisplaySleep": ["PreventUserIdleDisplaySleep"]}


def broken(chance):
    """A line that is no request, or none that is meant so."""
    return chance.choice([
        lambda: chance.randbytes(chance.randrange(200)).replace(b"\n", b""),
        lambda: b"[" * chance.randrange(60000),
        lambda: b'{"a":' * chance.randrange(10000),
        lambda: json.dumps({"request": chance.choice(["stop", 1, None, [], "none"]), "x": "\ud800"}).encode(),
        lambda: b'{"request":"set","key":"\xf0\x9f\x98\x80' + b"k" * chance.randrange(60000) + b'","value":"1"}',
        lambda: b'{"request":"start","mode":"timer","timerDuration":"%dh"}' % chance.randrange(10**18),
        lambda: json.dumps(request(chance)).encode()[:chance.randrange(12)],
    ])()


def request(chance):
    kind = chance.randrange(10)
    if kind < 4:
        options = {"mode": chance.choice(["timer", "until", "unlimited", "agent", "agent"]), "timerDuration": "1h",
                   "untilTime": "18:30", "keepsDisplayAwake": chance.random() < 0.5, "closedLid": chance.random() < 0.5}
        kept = {key: value for key, value in options.items() if chance.random() < 0.6}
        return {"request": "start", **kept}
    if kind < 5:
        return {"request": chance.choice(["display", "closedLid"]), "on": chance.random() < 0.5}
    if kind < 7:
        key = chance.choice(list(VALUES))
        return {"request": "set", "key": key, "value": chance.choice(VALUES[key])}
    return {"request": chance.choice(PLAIN)}


def agent_event(chance):
    if chance.random() < 0.2:
        return broken(chance)
    signals = ["sessionStarted", "working", "waitingForApproval", "finished", "finished", "sessionEnded", "none"]
    return json.dumps({"agent": chance.choice(["claude", "codex"]), "sessionID": chance.choice("abcdefgh"),
                       "cwd": "/" + "x" * chance.choice([1, 40, 4000]), "signal": chance.choice(signals),
                       "date": chance.choice([0, 1e9, -1e300, 1e300])}).encode()


class Side(threading.Thread):
    """One who sends until the storm is over. What goes wrong is kept."""

    def __init__(self, storm, index):
        super().__init__(daemon=True)
        self.storm = storm
        self.chance = random.Random(f"{SEED}/{index}")
        self.problem = None

    def run(self):
        try:
            while self.storm.goes_on():
                self.act()
        except Exception:  # told of by the test
            self.problem = traceback.format_exc()
        finally:
            self.leave()

    def leave(self):
        pass


class Terminal(Side):
    """Asks and reads each answer; now and then breaks off, floods, or stays connected without reading."""

    def __init__(self, storm, index):
        super().__init__(storm, index)
        self.connection, self.kept = None, collections.deque()

    def connect(self):
        return Connection(self.storm.support / "control.sock")

    def act(self):
        if self.connection is None:
            self.connection = self.connect()
        what = self.chance.random()
        if what < 0.75:
            line = broken(self.chance) if self.chance.random() < 0.25 else json.dumps(request(self.chance)).encode()
            self.connection.send(line + b"\n")
            self.expect_reply()
        elif what < 0.85:
            self.storm.count(9)
            self.connection.send(b"".join(json.dumps(request(self.chance)).encode() + b"\n" for _ in range(10)))
            for _ in range(10):
                self.expect_reply()
        elif what < 0.97:
            self.keep_another()
        else:
            self.break_off()

    def expect_reply(self):
        reply = self.connection.receive()
        if not reply or len(reply) != 1 or not set(reply) <= REPLIES:
            raise AssertionError(f"not a reply: {reply}")

    def keep_another(self):
        """It waits for something, or for nothing, for a while; nobody reads what it gets."""
        other = self.connect()
        lines = [{"request": each} for each in ("watch", "wait", "run", "status", "watch")]
        other.send(json.dumps(self.chance.choice(lines)).encode() + self.chance.choice([b"\n", b"\n", b"", b'\n{"re']))
        self.kept.append(other)
        if len(self.kept) > 6:
            self.kept.popleft().close()

    def break_off(self):
        """In the middle of a line, or beyond what a line may hold."""
        line = self.chance.choice([b'{"request":', b"x" * 70000, b"\x00" * 65537])
        try:
            self.connection.send(line)
        except OSError:  # the application ends it before it has read all of that
            if len(line) < 65537:
                raise
        self.leave()

    def leave(self):
        for each in (self.connection, *self.kept):
            if each:
                each.close()
        self.connection, self.kept = None, collections.deque()


class Agent(Side):
    def act(self):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(str(self.storm.support / "agent.sock"))
            connection.settimeout(SLOW)
            lines = [agent_event(self.chance) for _ in range(self.chance.choice([1, 1, 1, 5]))]
            try:
                connection.sendall(b"\n".join(lines) + self.chance.choice([b"\n", b""]))
            except BrokenPipeError:  # too long: the rest is not read
                pass


class Laptop(Side):
    def act(self):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(str(self.storm.support / "machine.sock"))
            connection.settimeout(SLOW)
            settings = {key: self.chance.choice(values) for key, values in READINGS.items()
                        if self.chance.random() < (0.05 if key in ("sleep", "wind") else 0.2)}
            if self.chance.random() < 0.2:
                settings["press"] = self.chance.choice(
                    ["session.endingSoon/session.extend", "agents.finished/agents.cancelForcedAction", "session.ended"])
            line = broken(self.chance) if self.chance.random() < 0.1 else json.dumps({"set": settings}).encode()
            connection.sendall(line + b"\n")
            answer = json.loads(connection.makefile().readline())
            if "machine" not in answer and "error" not in answer:
                raise AssertionError(f"not an answer: {answer}")


class Storm(ApplicationTest):
    def setUp(self):
        super().setUp()
        self.left = EVENTS
        self.lock = threading.Lock()

    def count(self, events):
        with self.lock:
            self.left -= events

    def goes_on(self):
        self.count(1)
        return self.left >= 0 and self.application.poll() is None

    def test_the_application_stays_up_holds_what_it_should_and_agrees_with_its_own_log(self):
        print(f"storm: {EVENTS} events, seed {SEED}", flush=True)
        self.connect_agent()
        self.application = self.launch()
        sides = [side(self, index) for index, side in enumerate([Terminal] * 4 + [Agent] * 2 + [Laptop] * 2)]
        for side in sides:
            side.start()
        for side in sides:
            side.join()
        self.assertIsNone(self.application.poll(), self.last_output())
        problems = [side.problem for side in sides if side.problem]
        self.assertFalse(problems, "\n".join(problems))
        self.check_settled_state()
        self.quit(self.application)
        self.assertEqual(self.application.returncode, 0, self.last_output())
        self.assertEqual([path.name for path in self.support.glob("*.sock")], [])

    def last_output(self):
        return self.output.read_text(errors="replace")[-10000:]

    def check_settled_state(self):
        """What was asked last is carried out in turns of its own."""
        self.done("machine", "set", "charger=on", "helper=ready", "thermal=nominal")
        for command in (None, "stop", "start unlimited"):
            if command:
                self.done(*command.split())
            self.wait_for(self.is_held_as_required)
            self.check_log(self.status()["state"] == "active")
        self.assertEqual(self.status()["state"], "active")

    def is_held_as_required(self):
        requirements = self.status()["requirements"]
        wanted = [each for key, types in HELD_FOR.items() if requirements[key] for each in types]
        return sorted(each["type"] for each in self.machine()["held"]) == sorted(wanted)

    def check_log(self, is_active):
        """Nothing is said of a session that has ended, and no session ends twice."""
        started = re.compile(r"Awake until ")
        ended = re.compile(r"Session ended")
        runs, starts = False, 0
        for line in self.output.read_text().splitlines():
            if started.match(line):
                starts += not runs
                runs = True
            elif ended.match(line):
                self.assertTrue(runs, line)
                runs = False
            elif not runs:
                self.assertNotRegex(line, "5 minutes left|running hot")
        self.assertEqual(runs, is_active)
        self.assertGreater(starts, EVENTS / 200)  # or this was no storm


if __name__ == "__main__":
    sys.argv[:1] = ["control_storm"]
    unittest.main()
