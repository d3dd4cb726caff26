"""Random requests, agents' events and readings, sound and broken, from many sides at once, against one application.

VESPRA_STORM_EVENTS: how many (6000). VESPRA_STORM_SEED: repeats the choices of a storm that is printed; how the sides
take turns is up to the machine.
"""

import json
import os
import random
import secrets
import sys
import threading
import traceback
import unittest

from application import ApplicationTest, Connection

EVENTS = int(os.environ.get("VESPRA_STORM_EVENTS", "6000"))
SEED = int(os.environ.get("VESPRA_STORM_SEED", str(secrets.randbelow(10**9))))
REPLIES = {"done", "error", "status", "lines", "settings", "machine"}
PLAIN = ["status", "stop", "toggle", "extend", "keepAwake", "cancel", "settings", "setUpClosedLid", "removeClosedLid"]
VALUES = {"energy.requiresACPower": ["on", "off"], "energy.lowBatteryThreshold": ["10", "80", "11"],
          "energy.batteryTimeLimit": ["off", "15m"], "agents.endAction": ["letSleep", "sleepNow", "shutDown"],
          "agents.graceDelay": ["0s", "1s", "15m"], "agentSafetyCap": ["off", "1h"], "none": ["1"]}
READINGS = {"battery": ["none", "0", "20", "21", "100", "101"], "charger": ["on", "off"], "lid": ["open", "closed"],
            "display": ["internal", "external"], "thermal": ["nominal", "nominal", "serious", "critical", "hot"],
            "helper": ["ready", "ready", "failed", "refusing", "outdated", "stuck"], "sleep": ["now"],
            "press": ["session.endingSoon/session.extend", "agents.finished/agents.cancelForcedAction"]}
SIGNALS = ["sessionStarted", "working", "waitingForApproval", "finished", "finished", "sessionEnded", "none"]
HELD_FOR = {"preventsIdleSystemSleep": ["PreventUserIdleSystemSleep", "activity"],
            "preventsDisplaySleep": ["PreventUserIdleDisplaySleep"]}


def request(chance):
    kind = chance.randrange(10)
    if kind < 4:
        options = {"mode": chance.choice(["timer", "until", "unlimited", "agent"]), "timerDuration": "1h",
                   "untilTime": "18:30", "keepsDisplayAwake": chance.random() < 0.5, "closedLid": chance.random() < 0.5}
        return {"request": "start", **{key: value for key, value in options.items() if chance.random() < 0.6}}
    if kind < 5:
        return {"request": chance.choice(["display", "closedLid"]), "on": chance.random() < 0.5}
    if kind < 7:
        key = chance.choice(list(VALUES))
        return {"request": "set", "key": key, "value": chance.choice(VALUES[key])}
    return {"request": chance.choice(PLAIN)}


def agent_event(chance):
    return {"agent": chance.choice(["claude", "codex"]), "sessionID": chance.choice("abcdefgh"),
            "cwd": "/" + "x" * chance.choice([1, 4000]), "signal": chance.choice(SIGNALS),
            "date": chance.choice([0, 1e9, 1e300])}


def reading(chance):
    return {"set": {key: chance.choice(values) for key, values in READINGS.items()
                    if chance.random() < (0.05 if key == "sleep" else 0.2)}}


def line(chance, make):
    """What `make` makes, or now and then nothing that is meant."""
    text = json.dumps(make(chance)).encode()
    return text if chance.random() < 0.8 else chance.choice([
        chance.randbytes(200).replace(b"\n", b""), b"[" * 60000, b'{"request":"\\ud800"}', text[:9], b"\xff" + text])


class Side(threading.Thread):
    """One who sends to a socket until the storm is over. What goes wrong is kept."""

    def __init__(self, storm, index, name, make):
        super().__init__(daemon=True)
        self.path, self.make = storm.support / name, make
        self.storm, self.chance = storm, random.Random(f"{SEED}/{index}")
        self.connection, self.kept, self.problem = None, [], None

    def run(self):
        try:
            while self.storm.goes_on():
                self.connection = self.connection or Connection(self.path)
                self.act()
        except Exception:  # told of by the test
            self.problem = traceback.format_exc()
        finally:
            self.leave()

    def act(self):
        what = self.chance.random()
        if self.path.name == "agent.sock":
            try:
                self.connection.send(b"\n".join(line(self.chance, self.make) for _ in range(3)))
            except BrokenPipeError:  # too long: the rest is not read
                pass
            self.leave()
        elif what < 0.85:
            count = self.chance.choice([1, 1, 1, 10]) if self.path.name == "control.sock" else 1
            self.connection.send(b"".join(line(self.chance, self.make) + b"\n" for _ in range(count)))
            for _ in range(count):
                reply = self.connection.receive()
                if not reply or not set(reply) & REPLIES:
                    raise AssertionError(f"not a reply: {reply}")
            if self.path.name == "machine.sock":
                self.leave()  # it answers one request
        elif what < 0.97:  # one that waits for something, and reads nothing
            self.kept.append(Connection(self.storm.support / "control.sock"))
            self.kept[-1].send({"request": self.chance.choice(["watch", "wait", "run", "status"])})
            if len(self.kept) > 6:
                self.kept.pop(0).close()
        else:  # breaks off within a line, or beyond what a line may hold
            try:
                self.connection.send(self.chance.choice([b'{"request":', b"\x00" * 70000]))
            except OSError:  # the application ends it before it has read all of that
                pass
            self.leave()

    def leave(self):
        for each in (self.connection, *self.kept):
            if each:
                each.close()
        self.connection, self.kept = None, []


class Storm(ApplicationTest):
    def goes_on(self):
        with self.lock:
            self.left -= 1
        return self.left >= 0 and self.application.poll() is None

    def test_the_application_stays_up_holds_what_it_should_and_agrees_with_its_own_log(self):
        print(f"storm: {EVENTS} events, seed {SEED}", flush=True)
        self.left, self.lock = EVENTS, threading.Lock()
        self.connect_agent()
        self.application = self.launch()
        kinds = [("control.sock", request)] * 4 + [("agent.sock", agent_event)] * 2 + [("machine.sock", reading)] * 2
        sides = [Side(self, index, *kind) for index, kind in enumerate(kinds)]
        for side in sides:
            side.start()
        for side in sides:
            side.join()
        last_output = self.output.read_text(errors="replace")[-10000:]
        self.assertIsNone(self.application.poll(), last_output)
        problems = [side.problem for side in sides if side.problem]
        self.assertFalse(problems, "\n".join(problems))
        self.done("machine", "set", "charger=on", "helper=ready", "thermal=nominal")
        for command in ("status", "stop", "start unlimited"):
            self.done(*command.split())
            self.wait_for(self.is_held_as_required)
            self.check_log(self.status()["state"] == "active")
        self.quit(self.application)
        self.assertEqual(self.application.returncode, 0, last_output)
        self.assertEqual([path.name for path in self.support.glob("*.sock")], [])

    def is_held_as_required(self):
        requirements = self.status()["requirements"]
        wanted = [each for key, types in HELD_FOR.items() if requirements[key] for each in types]
        return sorted(each["type"] for each in self.machine()["held"]) == sorted(wanted)

    def check_log(self, is_active):
        """Nothing is said of a session that has ended, and no session ends twice."""
        runs, starts = False, 0
        for said in self.output.read_text().splitlines():
            if said.startswith("Awake until "):
                starts += not runs
                runs = True
            elif said.startswith("Session ended"):
                self.assertTrue(runs, said)
                runs = False
            elif not runs:
                self.assertNotRegex(said, "5 minutes left|running hot")
        self.assertEqual(runs, is_active)
        self.assertGreater(starts, EVENTS / 600)  # or this was no storm: how many vary with the load


if __name__ == "__main__":
    sys.argv[:1] = ["control_storm"]
    unittest.main()
