"""vespra --headless as whole processes."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import subprocess
import sys
import termios
import time
import unittest

from application import BIN, SLOW, ApplicationTest

MACHINE = "Mac" if sys.platform == "darwin" else "computer"
SLEEP = {"graceDelay": 900, "waitingCountsAsFinished": True, "endAction": "sleepNow"}


class Headless(ApplicationTest):
    def started(self, *options, settings=None, **more):
        """A process whose first line has come, and that line."""
        process = self.spawn(BIN / "vespra", "--headless", "--platform", "simulated", *options,
                             *self.settings_option(settings), stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)
        return process, process.stdout.readline()

    def finish(self, process):
        out, err = process.communicate(timeout=SLOW)
        return process.returncode, out, err

    def test_bad_arguments_name_the_option_and_exit_with_2(self):
        for options, complaint in {
            ("--timer", "10s"): "--timer: expected a length from 1m to 24h",
            ("--grace", "16m"): "--grace: expected a length from 0s to 15m",
            ("--settings", "/none"): "--settings: cannot read /none",
            ("--platform", "amiga"): "--platform: expected linux, macos or simulated",
            ("--timer", "5m", "--unlimited"): "--timer",
            ("--headles",): 'there is no "--headles"; did you mean "--headless"?',
            ("-headless",): 'there is no "-headless"; did you mean "--headless"?', ("",): 'there is no ""',
        }.items():
            with self.subTest(options=options):
                status, out, err = self.finish(self.spawn(BIN / "vespra", *options, stdout=subprocess.PIPE,
                                                          stderr=subprocess.PIPE))
                self.assertEqual((status, out), (2, ""))
                self.assertTrue(err.startswith(f"vespra: {complaint}"), err)

    def test_signals_end_the_session_unless_they_were_ignored_and_control_c_is_passed_on(self):
        for number, status in ((signal.SIGINT, -signal.SIGINT), (signal.SIGTERM, 0), (signal.SIGHUP, 0)):
            with self.subTest(signal=number):
                process, line = self.started("--unlimited")
                self.assertEqual(line, "Awake until you stop it.\n")
                process.send_signal(number)
                self.assertEqual(self.finish(process), (status, "Session ended\n", ""))
                process, _ = self.started("--unlimited", preexec_fn=lambda: signal.signal(number, signal.SIG_IGN))
                process.send_signal(number)
                self.assertEqual(self.status()["state"], "active")
                self.done("stop")
                self.assertEqual(self.finish(process), (0, "Session ended\n", ""))
                self.assertFalse((self.support / "agent.sock").exists())

    def test_where_agents_cannot_report_no_session_waits_for_them(self):
        self.environment["XDG_DATA_HOME"] = "/dev/null"
        status, out, err = self.finish(self.spawn(BIN / "vespra", "--headless", "--platform", "simulated", "--agent",
                                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE))
        self.assertEqual((status, out), (3, ""))
        self.assertIn("vespra: No agent can report: /dev/null/Vespra/agent.sock cannot be made.\n", err)

    def on_terminal(self, foreground=True, **variables):
        """What an unlimited session draws on a terminal of 40 columns, from before an agent reports until its end."""
        reader, terminal = pty.openpty()
        self.addCleanup(os.close, reader)
        fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("4H", 24, 40, 0, 0))
        self.environment |= {"TERM": "xterm", "VESPRA_TRACE_AGENTS": "1", **variables}

        def take_terminal():
            os.setsid()
            fcntl.ioctl(terminal, termios.TIOCSCTTY, 0)

        in_background = () if foreground else ("bash", "-mc", '"$0" "$@" & wait $!')
        process = self.spawn(*in_background, BIN / "vespra", "--headless", "--platform", "simulated", "--unlimited",
                             stdout=terminal, stderr=terminal, preexec_fn=take_terminal)
        os.close(terminal)
        self.wait_for(lambda: self.ctl("status").returncode == 0)
        self.hook("UserPromptSubmit", cwd="/" + "\u5bbf\U0001f469" * 20)
        self.wait_for(lambda: self.status()["agents"])
        time.sleep(1.1)
        self.done("stop")
        drawn = b""
        while process.poll() is None or select.select([reader], [], [], 0)[0]:
            try:
                drawn += os.read(reader, 65536)
            except OSError:  # nobody writes any more
                break
        return drawn.decode()

    def test_the_live_line_is_drawn_in_the_foreground_and_mixes_with_nothing(self):
        drawn = self.on_terminal()
        pieces = re.split("\r\x1b\\[K|\r\n", drawn)
        live = [each for each in pieces if re.match(r"0:\d\d awake", each)]
        self.assertGreater(len(live), 2, drawn)
        widths = [sum(2 if ord(letter) > 0x2fff else 1 for letter in each) for each in live]
        self.assertTrue(max(widths) in (38, 39), drawn)
        self.assertRegex(drawn, "\r\x1b\\[Kagent-event claude working a /[^\r]*\r\n0:")
        for piece in pieces:
            self.assertRegex(piece, r"\A(0:\d\d awake.*|agent-event .*|Awake until you stop it\.|Session ended|)\Z")
        for more in ({"foreground": False}, {"TERM": "dumb"}):
            self.assertRegex(self.on_terminal(**more), r"\AAwake until you stop it\.\r\nagent-event .*\r\nSession ended\r\n(\[1\].*\s*)?\Z")

    def test_closed_lid_mode_is_told_of_and_ends_by_heat(self):
        process, line = self.started("--unlimited", "--closed-lid")
        self.assertEqual((line, process.stdout.readline()), ("Awake until you stop it.\n", "Closed lid: Not set up\n"))
        self.done("machine", "set", "helper=ready")
        self.assertEqual(process.stdout.readline(), "Closed lid: Checking…\n")
        self.assertEqual(process.stdout.readline(), "Closed lid: You can close the lid\n")
        self.done("machine", "set", "thermal=serious")
        self.assertEqual(self.finish(process)[:2], (15, f"Session ended — {MACHINE} too hot\n"))

    def test_the_end_action_follows_unless_it_is_cancelled(self):
        self.connect_agent()
        process, _ = self.started("--agent", "--grace", "1s", settings={"agents": SLEEP})
        self.hook("UserPromptSubmit")
        self.hook("Stop")
        self.assertEqual(process.stdout.readline(), "Session ended — agents finished\n")
        self.assertIn("will sleep in 1 minute.", process.stdout.readline())
        # A session that is started now is not ended by what was to follow the one before.
        self.done("start", "unlimited")
        self.assertEqual(process.stdout.readline(), "Awake until you stop it.\n")
        time.sleep(0.2)
        self.done("stop")
        self.assertEqual(self.finish(process)[:2], (0, "Session ended\n"))

    def test_the_session_outlives_the_reader_of_its_output(self):
        process, _ = self.started("--unlimited")
        process.stdout.close()
        process.stderr.close()
        self.done("machine", "set", "thermal=serious")  # prints a warning into nothing
        self.hook("Stop")
        self.assertIsNone(process.poll())
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(SLOW), 0)


if __name__ == "__main__":
    sys.argv[:1] = ["headless_test"]
    unittest.main()
