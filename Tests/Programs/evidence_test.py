"""What agents really do, by their files and processes: the real hook tool, the real socket, files that tear."""

import datetime
import json
import os
import subprocess
import sys
import threading
import time
import unittest

from application import ApplicationTest
from driver import BIN

# Takes lines of hook input and runs the hook for each, as an agent would, and is otherwise asleep.
AGENT = """
import os, subprocess, sys
for line in sys.stdin:
    subprocess.run([sys.argv[1], sys.argv[2]], input=line.encode(), check=True)
    print(flush=True)
"""
SETTINGS = {"agents": {"graceDelay": 900, "waitingCountsAsFinished": True}}
FEW_LOOKS = 45  # seconds


class Agent:
    """A sleeping process with the files that an agent of its kind writes."""

    def __init__(self, test, kind, session):
        self.kind, self.session = kind, session
        self.home = test.home / f"{kind}-{session}"
        self.transcript = self.home / "projects/p" / f"{session}.jsonl"
        self.transcript.parent.mkdir(parents=True)
        (self.home / "sessions").mkdir()
        self.process = test.spawn(sys.executable, "-c", AGENT, BIN / "vespra-agent", kind, stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE)
        self.status_file = self.home / "sessions" / f"{self.process.pid}.json"

    def hook(self, event, **more):
        self.process.stdin.write(json.dumps(dict(
            more, session_id=self.session, hook_event_name=event, transcript_path=str(self.transcript))) + "\n")
        self.process.stdin.flush()
        self.process.stdout.readline()

    def status(self, status):
        return json.dumps({"pid": self.process.pid, "sessionId": self.session, "status": status, "kind": "interactive",
                           "statusUpdatedAt": int(time.time() * 1000)}).encode()

    def write(self, status):
        self.status_file.write_bytes(self.status(status))

    def append(self, kind):
        now = datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%S.%fZ")
        line = json.dumps({"timestamp": now, "type": "event_msg", "payload": {"type": kind}}, separators=(",", ":"))
        with open(self.transcript, "a") as file:
            file.write(line[:40])
            file.flush()
            time.sleep(0.05)
            file.write(line[40:] + "\n")


class Tearing(threading.Thread):
    """Rewrites a status file in place for ever, and leaves it half-written most of the time."""

    def __init__(self, agent, status):
        super().__init__(daemon=True)
        self.agent, self.told, self.ends = agent, status, threading.Event()
        agent.write(status)
        self.start()

    def run(self):
        text = self.agent.status(self.told)
        descriptor = os.open(self.agent.status_file, os.O_RDWR)
        while not self.ends.wait(0.002):
            for piece in (text[:60], text + b'rmission prompt"}', text[:150], text):
                os.pwrite(descriptor, piece, 0)
                os.ftruncate(descriptor, len(piece))
        os.close(descriptor)


class Evidence(ApplicationTest):
    def agents(self):
        return {agent["id"].split(":")[1]: (agent["activity"], agent["evidence"]) for agent in self.status()["agents"]}

    def wait_until(self, session, *state):
        self.wait_for(lambda: self.agents().get(session) in ([state] if state else [None]), f"{session} {state}",
                      FEW_LOOKS)

    def test_the_files_and_processes_of_agents_correct_what_their_events_say(self):
        self.environment["VESPRA_TRACE_AGENTS"] = "1"
        self.launch(settings=SETTINGS)
        self.connect_agent()
        killed, pressed, torn, compacts, silent = (
            Agent(self, "claude", name) for name in ("killed", "pressed", "torn", "compacts", "silent"))
        approved, failed, dies = (Agent(self, "codex", name) for name in ("approved", "failed", "dies"))
        everyone = (killed, pressed, torn, compacts, silent, approved, failed, dies)
        time.sleep(1.1)  # what runs for less than a second might only run the hook
        for agent in everyone:
            agent.hook("UserPromptSubmit")
            if agent.kind == "codex":
                agent.append("task_started")
            elif agent is not silent:
                agent.write("busy")
        self.done("start", "agent")
        compacts.hook("SessionStart", source="compact")
        self.assertEqual(self.agents()["compacts"], ("working", "statusFile"))
        os.mkfifo(silent.transcript)
        os.mkfifo(silent.status_file)
        approved.hook("PermissionRequest")
        time.sleep(1.2)
        approved.append("token_count")
        failed.append("task_complete")
        pressed.write("idle")
        tearing = Tearing(torn, "busy")
        torn.hook("Stop")
        for agent in (killed, dies):
            agent.process.kill()
        with self.subTest("killed, although nobody fetches what is left of it"):
            self.wait_until("killed")
            self.wait_until("dies")
        self.wait_until("pressed", "idle", "statusFile")
        self.wait_until("torn", "working", "statusFile")
        self.wait_until("approved", "working", "transcript")
        self.wait_until("failed", "idle", "transcript")
        tearing.ends.set()
        tearing.join()
        self.assertEqual(self.agents()["compacts"], ("working", "statusFile"))
        self.assertEqual(self.agents()["silent"], ("working", "hooks"), "pipes are no files, and nothing waited for them")
        doctor = self.done("doctor")
        for line in ("claude:torn: working since .*, by its own status file", "codex:approved: working .*, by its transcript",
                     "claude:silent: working since .*, by hooks only"):
            self.assertRegex(doctor, line)
        self.assertIn("Claude Code has been working since", self.done("status"))
        trace = self.output.read_text()
        for line in ("agent-correction claude:killed sessionEnded", "agent-correction claude:pressed idle statusFile",
                     "agent-correction codex:approved working transcript"):
            self.assertIn(line, trace)

    def test_without_an_agent_session_nothing_is_opened(self):
        process = self.launch(settings=SETTINGS)
        agent = Agent(self, "claude", "a")
        agent.write("busy")
        agent.hook("UserPromptSubmit")
        os.utime(agent.status_file, (0, 0))
        os.utime(agent.home / "sessions", (0, 0))
        agent.process.kill()
        time.sleep(12)
        self.assertEqual(self.agents()["a"], ("working", "hooks"))
        self.assertEqual(os.stat(agent.status_file).st_atime, 0)
        self.assertIsNone(process.poll())


if __name__ == "__main__":
    unittest.main()
