"""The installed helper and the lid."""

import os
import subprocess
import time

from lab import HELPER as NAME, LAB, LabTest

LOCK = "sleep:handle-lid-switch:block"
# Asks the helper what it reads, a method a line.
CLIENT = f"""
import dbus, sys
bus = dbus.SystemBus()
for line in sys.stdin:
    try:
        print(bus.call_blocking("{NAME}", "/app/vespra/Helper", "{NAME}", line.strip(), "", ()), flush=True)
    except dbus.DBusException as error:
        print(error.get_dbus_name(), flush=True)
"""


class ClosedLidTest(LabTest):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        # The user has to reach the bus.
        os.chmod(cls.folder.parent, 0o755)
        cls.install_helper()

    def setUp(self):
        super().setUp()
        self.set(polkit="defaults", sleep_for=0.2)
        self.user = subprocess.Popen([LAB / "run", "-u", "1000", "/usr/bin/python3", "-c", CLIENT],
                                     env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.addCleanup(lambda: (self.user.kill(), self.user.communicate()))

    def ask(self, method):
        self.user.stdin.write(method + "\n")
        self.user.stdin.flush()
        return self.user.stdout.readline().strip()

    def test_the_lid_counts_again_only_when_closed_lid_mode_ends(self):
        for desktop in ("none", "gnome", "kde", "xfce"):
            with self.subTest(desktop=desktop):
                self.set(desktop=desktop)
                before = len(self.events("asleep"))
                self.assertEqual(self.ask("EnableClosedLid"), "None")
                self.assertIn(LOCK, self.held())
                self.set(lid="closed")
                time.sleep(0.5)
                self.assertEqual(self.ask("Heartbeat"), "1")
                self.assertEqual(len(self.events("asleep")), before)
                self.assertEqual(self.ask("RestoreSleep"), "None")
                self.wait_for(lambda: len(self.events("asleep")) > before, "sleep")
                self.set(lid="open")
