"""What is listed as held, before and after."""

import os
import signal
import subprocess
import time
import unittest

from lab import LAB, LabTest

DELAY, IDLE = "sleep:delay", "idle:block"
SESSION_MANAGER, SCREEN_SAVER = "org.gnome.SessionManager", "org.freedesktop.ScreenSaver"
POWER_MANAGEMENT = "org.freedesktop.PowerManagement.Inhibit"


class Assertions(LabTest):
    def test_each_desktop_gets_what_it_understands_and_all_is_given_back(self):
        for desktop, variables, idle, display in (
            ("none", {}, [IDLE], []),
            ("gnome", {"XDG_CURRENT_DESKTOP": "GNOME"}, [IDLE, f"{SESSION_MANAGER} 4"], [f"{SCREEN_SAVER} 0"]),
            ("kde", {"XDG_CURRENT_DESKTOP": "KDE"}, [f"{POWER_MANAGEMENT} 0"], [IDLE, f"{SCREEN_SAVER} 0"]),
            ("xfce", {}, [IDLE, f"{POWER_MANAGEMENT} 0"], [f"{POWER_MANAGEMENT} 0"]),
        ):
            with self.subTest(desktop=desktop):
                self.set(desktop=desktop)
                self.assertEqual(self.held(), [])
                vespra = self.start(**variables)
                self.wait_until_held(DELAY, *idle)
                vespra.terminate()
                self.assertEqual(self.last_words(vespra), ["Session ended"])
                self.wait_until_held()

                vespra = self.start("--display", **variables)
                self.wait_until_held(DELAY, *idle, *display)
                vespra.terminate()
                self.last_words(vespra)
                self.wait_until_held()

    def test_services_that_crash_are_asked_again(self):
        self.set(desktop="gnome")
        vespra = self.start()
        expected = [DELAY, IDLE, f"{SESSION_MANAGER} 4"]
        self.wait_until_held(*expected)
        self.restart_services()
        self.set(desktop="gnome")
        self.wait_until_held(*expected)
        services = {each["name"]: each["verdict"] for each in self.doctor()[1]["services"]}
        self.assertEqual(services, {"logind": "listed", SESSION_MANAGER: "unknown"})  # this one does not say who
        self.set(ac=0)  # and the readings are followed again
        self.assertEqual(self.last_words(vespra, 12), ["Session ended — charger unplugged"])

    def test_idle_action_is_blocked_exactly_during_a_session(self):
        vespra = self.start()
        self.wait_until_held(DELAY, IDLE)
        self.set(sleep="idle")
        vespra.terminate()
        self.last_words(vespra)
        self.wait_until_held()
        self.set(sleep="idle")
        self.assertEqual([event["blocked"] for event in self.events("idle-action")], [True, False])

    def test_suspend_ends_the_session_before_the_machine_goes(self):
        vespra = self.start()
        self.wait_until_held(DELAY, IDLE)
        self.set(sleep="now")
        self.assertEqual(self.last_words(vespra), ["Session ended"])
        self.wait_for(lambda: self.events("resumed"), "the resume")
        order = [event["event"] for event in self.events("release", "asleep", "resumed")]
        self.assertEqual(order, ["release", "release", "asleep", "resumed"])
        self.assertEqual(self.held(), [])

    def test_a_stopped_process_keeps_what_it_holds_and_catches_up(self):
        vespra = self.start()
        self.wait_until_held(DELAY, IDLE)
        os.kill(vespra.pid, signal.SIGSTOP)
        self.assertEqual(self.doctor()[1]["verdict"], "listed")
        self.set(sleep="now")  # after 5 s the machine waits no longer
        self.wait_for(lambda: self.events("resumed"), "the resume")
        self.assertEqual(self.held(), sorted([DELAY, IDLE]))
        os.kill(vespra.pid, signal.SIGCONT)
        self.assertEqual(self.last_words(vespra), ["Session ended"])
        self.wait_until_held()

    def test_the_doctor_finds_out_that_a_lock_is_gone(self):
        vespra = self.start()
        self.wait_until_held(DELAY, IDLE)
        status, report = self.doctor()
        self.assertEqual((status, report["verdict"], report["session"]["pid"]), (0, "listed", vespra.pid))
        os.kill(self.services(), signal.SIGSTOP)
        begun = time.monotonic()
        self.assertEqual(self.doctor()[1]["services"], [{"name": "logind", "isSilent": True, "verdict": "unknown"}])
        self.assertLess(time.monotonic() - begun, 7, "UPower and logind were each asked once")
        os.kill(self.services(), signal.SIGCONT)
        os.kill(vespra.pid, signal.SIGSTOP)
        self.restart_services()  # logind forgets, and the stopped process cannot ask again
        self.assertEqual(self.held(), [])
        status, report = self.doctor()
        self.assertEqual((status, report["verdict"]), (1, "missing"))
        os.kill(vespra.pid, signal.SIGCONT)
        self.wait_until_held(DELAY, IDLE)
        self.assertEqual(self.doctor()[0], 0)

    def test_the_doctor_names_other_programs(self):
        other = subprocess.Popen(
            [LAB / "run", "systemd-inhibit", "--what=idle", "--who=Backup", "--why=Writing", "sleep", "60"],
            env=self.environment)
        self.addCleanup(lambda: (other.terminate(), other.wait()))
        self.wait_until_held(IDLE)
        lock, = self.doctor()[1]["inhibitors"]
        self.assertEqual((lock["who"], lock["why"], lock["process"]), ("Backup", "Writing", "systemd-inhibit"))


if __name__ == "__main__":
    unittest.main()
