"""vespra-agent as a process: what it sends, and that whatever happens it is silent, quick and ends with 0."""

import datetime
import json
import os
import pathlib
import resource
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

TOOL = pathlib.Path(os.environ["VESPRA_AGENT"])
STOP = json.dumps({"session_id": "s", "cwd": "/p", "hook_event_name": "Stop"}).encode()
LIMIT = 16 * 1024 * 1024  # bytes of input
REFERENCE = datetime.datetime(2001, 1, 1, tzinfo=datetime.timezone.utc)


def hook_input(size, key="tool_response"):
    """A "PostToolUse" of `size` bytes, nearly all of them under `key`."""
    head, tail = b'{"session_id":"s","hook_event_name":"PostToolUse","%s":"' % key.encode(), b'"}'
    return head + b"x" * (size - len(head) - len(tail)) + tail


class AgentTool(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="vespra-")
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)
        self.path = self.folder / "agent.sock"
        self.environment = {"VESPRA_AGENT_SOCKET": self.path, "HOME": self.folder}

    def application(self, path=None, backlog=16):
        """The application's end: listens, and accepts only when asked."""
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        listener.bind(str(path or self.path))
        listener.listen(backlog)
        listener.setblocking(False)
        return listener

    @staticmethod
    def received(application):
        """What the next client that waits has written; none if none waits."""
        try:
            connection, _ = application.accept()
        except BlockingIOError:
            return None
        with connection:
            connection.setblocking(True)
            return b"".join(iter(lambda: connection.recv(65536), b""))

    def run_tool(self, *pieces, arguments=("claude",), closed=(), tool=TOOL, stays_open=False, between=0.0, stdin=None,
                 memory=None):
        """How many seconds it ran with `pieces` as its input, written with `between` seconds between them."""
        def prepare():
            for descriptor in closed:
                os.close(descriptor)
            if memory:
                resource.setrlimit(resource.RLIMIT_AS, (memory, memory))

        with tempfile.TemporaryFile() as output:
            start = time.monotonic()
            process = subprocess.Popen([tool, *arguments], stdin=stdin or subprocess.PIPE, stdout=output, stderr=output,
                                       env=self.environment, preexec_fn=prepare)
            for number, piece in enumerate(pieces):
                time.sleep(between if number else 0)
                process.stdin.write(piece)  # fails if it does not take everything
                process.stdin.flush()
            if process.stdin and not stays_open:
                process.stdin.close()
            self.assertEqual(process.wait(20), 0)
            seconds = time.monotonic() - start
            if process.stdin:
                process.stdin.close()
            output.seek(0)
            self.assertEqual(output.read(), b"")
            return seconds

    def test_sends_the_event_of_each_agent(self):
        application = self.application()
        for agent in ("claude", "codex"):
            self.run_tool(STOP, arguments=(agent,))
            text = self.received(application)
            event, now = json.loads(text), (datetime.datetime.now(datetime.timezone.utc) - REFERENCE).total_seconds()
            self.assertEqual((text[-1:], event["agent"], event["sessionID"], event["cwd"], event["signal"]),
                             (b"\n", agent, "s", "/p", "finished"))
            self.assertAlmostEqual(event["date"], now, delta=2)

    def test_says_which_process_calls_it(self):
        def start(pid):
            return int(pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(") ", 1)[1].split()[19])

        application = self.application()
        time.sleep(1.1)  # what runs for less than a second might only run the hook
        sleeper = subprocess.Popen(["sleep", "60"])
        self.addCleanup(lambda: (sleeper.kill(), sleeper.wait()))
        nested = tuple(f"{shell} -c '{{}}; true'" for shell in ("sh", "bash", "sh"))
        for agent, named, shells, expected in (
            ("claude", sleeper.pid, (), sleeper.pid), ("claude", "x", (), os.getpid()), ("claude", 0, (), os.getpid()),
            ("claude", -1, (), os.getpid()), ("claude", 2**22 + 1, (), os.getpid()), ("codex", sleeper.pid, (), os.getpid()),
            ("codex", "", nested[:1], os.getpid()), ("codex", "", nested[:2], os.getpid()),
        ):
            with self.subTest(agent=agent, named=named, shells=shells):
                command = f"{TOOL} {agent}"
                for shell in shells:
                    command = shell.format(command.replace("'", "'\\''"))
                subprocess.run(command if shells else command.split(), shell=bool(shells), input=STOP, check=True,
                               env=dict(self.environment, CLAUDE_PID=str(named), PATH=os.environ["PATH"]))
                process = json.loads(self.received(application))["process"]
                self.assertEqual((process["pid"], process["start"], process["isCertain"]),
                                 (expected, start(expected), True))
                self.assertEqual(process["space"], os.stat("/proc/self/ns/pid").st_ino)
        subprocess.run(["timeout", "20", TOOL, "codex"], input=STOP, check=True,
                       env=dict(self.environment, PATH=os.environ["PATH"]))
        process = json.loads(self.received(application))["process"]
        self.assertNotEqual(process["pid"], os.getpid())
        self.assertNotIn("isCertain", process)

    def test_passes_on_what_its_input_says_beside_the_activity(self):
        application = self.application()
        self.run_tool(json.dumps({
            "session_id": "s", "hook_event_name": "Stop", "transcript_path": "/t", "agent_id": "a", "source": "compact",
            "background_tasks": [{"type": "shell", "status": "running"}, {"type": "subagent", "status": "running"}],
        }).encode())
        event = json.loads(self.received(application))
        event.pop("process")
        event.pop("date")
        self.assertEqual(event, {"agent": "claude", "sessionID": "s", "signal": "finished", "transcript": "/t",
                                 "subagent": "a", "leavesAgentsRunning": True})

    def test_does_not_wait_for_the_end_of_the_input(self):
        application = self.application()
        self.assertLess(self.run_tool(STOP, stays_open=True), 0.5)
        self.assertTrue(self.received(application))
        self.assertTrue(0.9 <= self.run_tool(STOP[:20], stays_open=True) < 1.5)
        # A read that does not return, though there is something.
        reader, writer = socket.socketpair()
        reader.setsockopt(socket.SOL_SOCKET, socket.SO_RCVLOWAT, 1000)
        with reader, writer:
            writer.sendall(STOP)
            self.assertLess(self.run_tool(stdin=reader), 2.5)
        self.assertIsNone(self.received(application))

    def test_accepts_sixteen_megabytes_and_takes_but_drops_more(self):
        application = self.application()
        for size in (700_000, LIMIT, LIMIT + 1, 20_000_000):
            self.run_tool(hook_input(size))
            self.assertEqual(self.received(application) is not None, size <= LIMIT, size)

    def test_says_nothing_and_exits_with_zero_whatever_goes_wrong(self):
        application = self.application()
        for given, arguments, closed, arrives in (
            (STOP, (), (), False), (STOP, ("Claude",), (), False), (STOP, ("claude", "codex"), (), False),
            (STOP, ("--help",), (), False), (b"", ("claude",), (), False), (b"Stop", ("claude",), (), False),
            (b"}" * 200_000, ("claude",), (), False), (b"{" * 200_000, ("claude",), (), False),
            (b'{"session_id":"s","hook_event_name":"PreToolUse"}', ("claude",), (), False),
            (b"", ("claude",), (0,), False), (STOP, ("claude",), (1, 2), True), (b"", ("claude",), (0, 1, 2), False),
        ):
            with self.subTest(given=given[:60], arguments=arguments, closed=closed):
                self.assertLess(self.run_tool(given, arguments=arguments, closed=closed), 0.9)
                self.assertEqual(self.received(application) is not None, arrives)

    def test_says_nothing_when_the_application_cannot_be_reached(self):
        (self.folder / "file").touch()
        for unreachable in (self.path, self.folder / "file", self.folder, self.folder / ("x" * 200), "/nowhere/a.sock"):
            self.environment["VESPRA_AGENT_SOCKET"] = unreachable
            self.assertLess(self.run_tool(STOP), 0.4, unreachable)

    def test_waits_half_a_second_for_an_application_that_hangs(self):
        application = self.application(backlog=0)
        waiting = [socket.socket(socket.AF_UNIX) for _ in range(8)]
        for client in waiting:
            self.addCleanup(client.close)
            client.setblocking(False)
            client.connect_ex(str(self.path))  # until the backlog is full
        self.assertTrue(0.45 <= self.run_tool(STOP) < 0.9)
        # What it waited for the input does not count.
        self.assertTrue(1.35 <= self.run_tool(STOP[:-1], STOP[-1:], between=0.9) < 1.9)
        for client in waiting:
            client.close()
        late = threading.Timer(0.2, lambda: all(self.received(application) == b"" for _ in range(9)))
        late.start()
        self.assertLess(self.run_tool(STOP), 0.45)
        late.join()

    def test_sends_more_than_the_socket_holds_to_a_slow_reader_and_gives_up_on_one_that_stops(self):
        application = self.application()
        long = STOP.replace(b"/p", b"/" * 2_000_000)
        texts = []
        slow = threading.Timer(0.2, lambda: texts.append(self.received(application)))
        slow.start()
        self.run_tool(long)
        slow.join()
        self.assertEqual(len(json.loads(texts[0])["cwd"]), 2_000_000)
        self.assertTrue(0.45 <= self.run_tool(long) < 0.9)

    @unittest.skipUnless(os.environ.get("VESPRA_CAN_LIMIT_MEMORY") == "1", "sanitizers need more, macOS has no limit")
    def test_takes_the_input_also_without_the_memory_for_it(self):
        application = self.application()
        for key in ("tool_response", "message"):
            self.run_tool(hook_input(8_000_000, key), memory=8_192_000)
            self.assertEqual(self.received(application) is None, key == "message", "only what is wanted takes memory")

    def test_finds_the_socket_beside_itself_before_the_support_folder(self):
        for name in ("data/Vespra", "beside"):
            (self.folder / name).mkdir(parents=True)
        copy = shutil.copy2(TOOL, self.folder / "beside")
        self.environment = {"HOME": "/", "XDG_DATA_HOME": self.folder / "data"}
        support = self.application(self.folder / "data/Vespra/agent.sock")
        self.run_tool(STOP, tool=copy)
        self.assertTrue(self.received(support))
        beside = self.application(self.folder / "beside/agent.sock")
        self.run_tool(STOP, tool=copy)
        self.assertTrue(self.received(beside))
        self.assertIsNone(self.received(support))


if __name__ == "__main__":
    sys.argv[:1] = ["agent_tool_test"]
    unittest.main()
