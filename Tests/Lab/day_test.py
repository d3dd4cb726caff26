"""A day with the application, steered by vespractl alone: every plan, and the ends that no other test has on a laptop."""

import datetime
import os
import signal
import subprocess
import unittest

from lab import BIN, LAB, SLOW, LabTest

DELAY, IDLE, LID = "sleep:delay", "idle:block", "sleep:handle-lid-switch:block"
A_MINUTE = 60 + SLOW  # seconds


class Day(LabTest):
    notifications = "xfce"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.install_helper()
        (cls.folder / "home/.claude").mkdir(parents=True)

    def setUp(self):
        super().setUp()
        self.done("hooks", "connect", "claude")

    def agents_work_and_finish(self):
        self.hook("UserPromptSubmit")
        self.hook("Stop")

    def session(self, *plan, held=(DELAY, IDLE)):
        """Starts it, and the wait for its end."""
        self.assertIn("Awake until", self.done("start", *plan))
        self.wait_until_held(*held)
        waiting = self.ctl_later("wait")
        self.wait_until_connected()
        return waiting

    def expect_end(self, waiting, status, words, limit=SLOW):
        said, _ = waiting.communicate(timeout=limit)
        self.assertEqual((waiting.returncode, said), (status, f"Session ended{words}\n"))
        self.wait_until_held()

    def test_the_day(self):
        other = self.session_with_a_safety_limit()
        application = self.launch()
        self.stop_and_time_up()
        self.extend_by_the_button_and_lose_the_charger()
        self.run_down_the_battery()
        self.close_the_lid_and_get_hot()
        self.settings_for_agents()
        self.finish_and_call_the_sleep_off()
        self.finish_and_sleep()
        self.expect_sleep()

        waiting = self.session("agent")
        application.send_signal(signal.SIGTERM)
        self.expect_end(waiting, 18, "")
        self.assertEqual(application.wait(SLOW), 0)
        self.assertEqual(self.ctl("status").returncode, 4)
        said, _ = other.communicate(timeout=SLOW)
        self.assertEqual((other.returncode, said), (16, "Session ended — safety limit reached\n"))

    def session_with_a_safety_limit(self):
        """In an application of its own, beside the other one, for a limit is at least a minute; and the wait for it."""
        self.store({"agentSafetyCap": 60})
        self.addCleanup(self.stored.unlink)
        home = ("env", f"XDG_DATA_HOME={self.folder}/other")
        self.spawn(*home, BIN / "vespra", "--headless", "--platform", "simulated", "--idle",
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait_for((self.folder / "other/Vespra/control.sock").exists, "the other application")
        subprocess.run([LAB / "run", *home, BIN / "vespractl", "start", "agent"], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)
        return self.spawn(*home, BIN / "vespractl", "wait", stdout=subprocess.PIPE)

    def stop_and_time_up(self):
        waiting = self.session("unlimited")
        self.done("stop")
        self.expect_end(waiting, 10, "")
        self.expect_end(self.session("timer", "1m"), 0, " — time is up", A_MINUTE)

    def extend_by_the_button_and_lose_the_charger(self):
        # The warning comes with the next full minute.
        end = datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(minutes=6)
        waiting = self.session("until", f"{end:%H:%M}")
        before = self.status()["endsAt"]
        self.lab("ui", "wait", "5 minutes left", str(A_MINUTE))
        self.assertNotIn("time is up", self.lab("ui", "list"))  # that was the session before
        if shot := os.environ.get("VESPRA_LAB_SHOT"):
            self.lab("shot", shot)
        self.lab("ui", "click", "+15 min")
        self.wait_for(lambda: self.status()["endsAt"] != before, "the extension")
        first, second = (datetime.datetime.fromisoformat(text.rstrip("Z")) for text in (before, self.status()["endsAt"]))
        self.assertEqual(second - first, datetime.timedelta(minutes=15))
        self.wait_for(lambda: "+15 min" not in self.lab("ui", "list"), "the end of the notification")
        self.set(ac=0)
        self.expect_end(waiting, 12, " — charger unplugged")

    def run_down_the_battery(self):
        refused = self.ctl("start", "unlimited")
        self.assertEqual((refused.returncode, refused.stderr), (1, "vespractl: Plug in the charger to start.\n"))
        self.done("settings", "set", "energy.requiresACPower", "off")
        waiting = self.session("unlimited")
        for level in (55, 30, 21):
            self.set(battery=level)
        self.assertEqual(self.status()["state"], "active")
        self.set(battery=20)
        self.expect_end(waiting, 11, " — battery at 20%")
        self.set(ac=1)

    def close_the_lid_and_get_hot(self):
        waiting = self.session("unlimited", "--closed-lid", held=(DELAY, IDLE, LID))
        self.wait_for(lambda: self.status()["closedLidStatus"] == "canCloseLid", "the component's word")
        asleep = len(self.events("asleep"))
        self.set(lid="closed")
        self.done("status")
        self.assertEqual(len(self.events("asleep")), asleep)
        self.set(thermal="critical")
        self.expect_end(waiting, 15, " — computer too hot", A_MINUTE)
        self.wait_for(lambda: len(self.events("asleep")) > asleep, "the sleep of the closed laptop")
        self.set(lid="open", thermal="nominal")

    def settings_for_agents(self):
        self.done("settings", "set", "agents.graceDelay", "0s")
        self.done("settings", "set", "agents.endAction", "sleepNow")

    def finish_and_call_the_sleep_off(self):
        asleep = len(self.events("asleep"))
        waiting = self.session("agent")
        self.agents_work_and_finish()
        self.expect_end(waiting, 0, " — agents finished")
        self.assertEqual(self.status()["pendingAction"]["action"], "sleepNow")
        self.lab("ui", "wait", "The computer will sleep in 1 minute.", str(SLOW))
        self.lab("ui", "click", "Cancel")
        self.wait_for(lambda: self.status()["pendingAction"] is None, "the cancellation")
        self.wait_for(lambda: "Cancel" not in self.lab("ui", "list"), "the end of the notification")
        self.assertEqual(len(self.events("asleep")), asleep)

    def finish_and_sleep(self):
        asleep = len(self.events("asleep"))
        waiting = self.session("agent")
        self.agents_work_and_finish()
        self.expect_end(waiting, 0, " — agents finished")
        pending = self.status()["pendingAction"]
        self.assertEqual(pending["action"], "sleepNow")
        self.wait_for(lambda: len(self.events("asleep")) > asleep, "the forced sleep", A_MINUTE)
        self.assertGreaterEqual(datetime.datetime.now(datetime.timezone.utc).isoformat(), pending["deadline"][:19])
        self.wait_for(lambda: self.status()["pendingAction"] is None, "the end of the countdown")

    def expect_sleep(self):
        waiting = self.session("unlimited")
        self.set(sleep="now")
        self.expect_end(waiting, 17, "")


if __name__ == "__main__":
    unittest.main()
