"""vespra with windows, on a display of the test's own that has no tray and no window manager."""

import signal
import subprocess
import unittest

from application import BIN, SLOW, ApplicationTest


class Desktop(ApplicationTest):
    def open_display(self):
        server = self.spawn("Xvfb", "-noreset", "-displayfd", "1", "-nolisten", "tcp", stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL)
        self.environment["DISPLAY"] = ":" + server.stdout.readline().strip()
        self.environment.pop("WAYLAND_DISPLAY", None)
        self.environment.pop("QT_QPA_PLATFORM", None)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/none"

    def start(self, *options):
        return self.spawn(BIN / "vespra", "--platform", "simulated", *options, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE)

    def panels(self):
        """The windows that are on the screen."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Vespra$"], env=self.environment,
                               capture_output=True, text=True, timeout=SLOW)
        return found.stdout.split()

    def test_without_a_display_it_runs_in_the_terminal_and_says_so(self):
        for variables in ({}, {"DISPLAY": ":4711"}, {"WAYLAND_DISPLAY": "none", "XDG_RUNTIME_DIR": "/none"}):
            with self.subTest(**variables):
                self.environment.pop("QT_QPA_PLATFORM", None)
                self.environment |= variables
                process = self.start("--unlimited")
                self.assertEqual(process.stdout.readline(), "Awake until you stop it.\n")
                process.terminate()
                self.assertEqual(process.communicate(timeout=SLOW), (
                    "Session ended\n",
                    "vespra: There is no display: it runs in the terminal, as with --headless.\n"))

    def test_with_nothing_to_click_elsewhere_it_is_a_window_and_ends_by_signals(self):
        self.open_display()
        for number, status in (signal.SIGTERM, 0), (signal.SIGINT, -signal.SIGINT):
            process = self.start("--timer", "1h", "--closed-lid")
            self.wait_for(self.panels, "the window")
            self.wait_for(lambda: self.ctl("status").returncode == 0 and self.status()["state"] == "active", "a session")
            again = subprocess.run([BIN / "vespra"], env=self.environment, timeout=SLOW, capture_output=True, text=True)
            self.assertEqual((again.returncode, again.stderr), (0, ""))
            process.send_signal(number)
            self.assertEqual(process.communicate(timeout=SLOW)[0], "")
            self.assertEqual(process.returncode, status)
            self.assertFalse((self.support / "control.sock").exists())

    def test_closing_the_window_quits_unless_a_session_runs(self):
        self.open_display()
        process = self.start()
        self.wait_for(self.panels, "the window")
        self.wait_for(lambda: self.ctl("start", "unlimited").returncode == 0, "a session")
        close = ["xdotool", "windowquit", *self.panels()[:1]]
        subprocess.run(close, env=self.environment, check=True, timeout=SLOW)
        self.assertEqual(self.status()["state"], "active")
        self.done("stop")
        subprocess.run(close, env=self.environment, check=True, timeout=SLOW)
        process.communicate(timeout=SLOW)
        self.assertEqual(process.returncode, 0)

    def test_a_refused_session_is_explained_and_the_panel_shown(self):
        self.open_display()
        self.environment["XDG_DATA_HOME"] = "/dev/null"  # nowhere for the agents to report
        process = self.start("--agent")
        self.assertIn("No agent can report", process.stderr.readline())
        self.wait_for(self.panels, "the window")
        self.quit(process)


if __name__ == "__main__":
    unittest.main()
