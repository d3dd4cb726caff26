"""What a desktop's own notification service shows, and what its buttons do."""

import json
import subprocess
import unittest

from lab import BIN, LAB, LabTest, SLOW

SLEEP_AT_ONCE = {"agents": {"graceDelay": 0, "waitingCountsAsFinished": True, "endAction": "sleepNow"}}


class Notifications(LabTest):
    notifications = "xfce"

    def start_with_agents(self):
        """A session that puts the laptop to sleep a minute after the agents."""
        settings = self.folder / "settings.json"
        settings.write_text(json.dumps(SLEEP_AT_ONCE))
        process = subprocess.Popen(
            [LAB / "run", "env", f"XDG_DATA_HOME={self.folder}",
             BIN / "vespra", "--headless", "--agent", "--settings", settings],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(lambda: (process.kill(), process.communicate()))
        self.assertNotEqual(process.stdout.readline(), "")
        return process

    def hook(self, event):
        text = json.dumps({"hook_event_name": event, "session_id": "a", "cwd": "/x"})
        subprocess.run([BIN / "vespra-agent", "claude"], input=text, text=True, check=True,
                       env=dict(self.environment, VESPRA_AGENT_SOCKET=str(self.folder / "Vespra/agent.sock")))

    def test_the_button_cancels_the_end_action_and_the_notification_goes(self):
        vespra = self.start_with_agents()
        self.hook("UserPromptSubmit")
        self.hook("Stop")
        self.lab("ui", "wait", "The computer will sleep in 1 minute.", str(SLOW))
        self.lab("ui", "click", "Cancel")
        vespra.communicate(timeout=SLOW)
        self.assertEqual(vespra.returncode, 0)
        self.assertEqual(self.events("asleep"), [])
        self.wait_for(lambda: "Cancel" not in self.lab("ui", "list"), "the end of the notification")


if __name__ == "__main__":
    unittest.main()
