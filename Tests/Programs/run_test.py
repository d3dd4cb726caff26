"""vespractl run: a session for as long as a command runs."""

import os
import signal
import subprocess
import sys
import unittest

from application import BIN, SLOW, ApplicationTest


class Run(ApplicationTest):
    def test_the_command_is_started_as_it_stands_and_its_end_passed_on(self):
        self.launch()
        text, script = self.home / "text", self.home / "script"
        text.write_text("no program")
        script.write_text("echo $1; exit 5\n")
        script.chmod(0o700)
        ignored = ("grep", "SigIgn", "/proc/self/status")
        for arguments, status, output in (
            (("true",), 0, ""), (("--", "sh", "-c", "exit 7"), 7, ""),
            (("sh", "-c", "kill -TERM $$"), -signal.SIGTERM, ""), (("sh", "-c", "kill -KILL $$"), -signal.SIGKILL, ""),
            (("/none",), 127, ""), (("--", "--"), 127, ""), (("",), 127, ""), ((text,), 126, ""),
            ((script, "word"), 5, "word\n"),
            (ignored, 0, subprocess.run(ignored, text=True, stdout=subprocess.PIPE).stdout),  # the caller's
            (("--display", "printf", "%s|", "[1,2,3]", "[]", "", "--display", "--", "-x"), 0,
             "[1,2,3]|[]||--display|--|-x|"),
            ((), 125, ""), (("--none", "echo"), 125, ""),
        ):
            with self.subTest(arguments=arguments):
                result = self.ctl("run", *arguments)
                self.assertEqual((result.returncode, result.stdout), (status, output), result.stderr)
                self.wait_for(lambda: self.status()["state"] == "idle")

    def running(self, *options, script="echo up; exec sleep 60", prefix=(), **more):
        """A run whose command has started."""
        process = self.spawn(*prefix, BIN / "vespractl", "run", *options, "sh", "-c", script, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE, start_new_session=True, **more)
        self.addCleanup(lambda: self.kill_group(process))
        self.assertEqual(process.stdout.readline(), "up\n")
        return process

    @staticmethod
    def kill_group(process):
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def test_runs_share_a_session_that_ends_with_the_last_of_them_also_when_it_is_killed(self):
        self.launch()
        first, second = self.running(), self.running("--display")
        status = self.status()
        self.assertEqual((status["mode"], status["requirements"]["preventsDisplaySleep"]), ("unlimited", True))
        second.kill()
        self.wait_for(lambda: not self.status()["requirements"]["preventsDisplaySleep"])
        self.assertEqual(self.status()["state"], "active")
        first.kill()
        self.wait_for(lambda: self.status()["state"] == "idle")
        self.assertEqual(self.machine()["held"], [])

    def test_the_command_goes_on_when_the_application_has_gone(self):
        application = self.launch()
        run = self.running(script="echo up; read line; exit 3", stdin=subprocess.PIPE)
        self.quit(application, signal.SIGKILL)
        self.assertEqual(run.stderr.readline(), "vespractl: Vespra has gone; the command goes on.\n")
        self.assertEqual((run.communicate("\n", timeout=SLOW), run.returncode), (("", ""), 3))

    def test_a_run_that_is_gone_before_it_is_answered_leaves_no_session(self):
        self.launch()
        for _ in range(20):
            connection = self.connect()
            connection.send({"request": "run"})
            connection.close()
        self.wait_for(lambda: self.status()["state"] == "idle")
        self.assertEqual(self.machine()["held"], [])

    def test_the_command_goes_on_when_its_session_is_stopped_and_gets_the_signals(self):
        self.launch()
        run = self.running(script='trap "echo told; exit 3" TERM; echo up; while :; do sleep 0.05; done')
        self.done("stop")
        self.assertEqual(run.stderr.readline(), "vespractl: Session ended\n")
        self.done("start", "timer", "5m")  # one of the user's own, which the end of the run leaves alone
        self.assertIsNone(run.poll())
        run.terminate()
        self.assertEqual((run.wait(SLOW), run.stdout.read()), (3, "told\n"))
        self.assertEqual(self.status()["mode"], "timer")

    def test_a_signal_that_was_ignored_before_stays_ignored(self):
        self.launch()
        run = self.running(script="echo up; sleep 1; echo survived", prefix=("nohup",))
        os.killpg(run.pid, signal.SIGHUP)
        self.assertEqual(run.wait(SLOW), 0)
        self.assertEqual(run.stdout.read(), "survived\n")


if __name__ == "__main__":
    sys.argv[:1] = ["run_test"]
    unittest.main()
