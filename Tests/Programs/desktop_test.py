"""vespra with windows, on a display of the test's own that has no tray and no window manager."""

import ctypes
import signal
import subprocess
import unittest

from application import BIN, SLOW, ApplicationTest


class Message(ctypes.Structure):
    """Xlib's XClientMessageEvent, as large as any event."""

    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("kind", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("rest", ctypes.c_long * 12)]


def close_window(name, window):
    """What a window manager sends when its button is pressed."""
    client_message = 33
    xlib = ctypes.CDLL("libX11.so.6")
    xlib.XOpenDisplay.restype = ctypes.c_void_p
    xlib.XInternAtom.restype = ctypes.c_ulong
    display = ctypes.c_void_p(xlib.XOpenDisplay(name.encode()))
    atom = [xlib.XInternAtom(display, each, False) for each in (b"WM_PROTOCOLS", b"WM_DELETE_WINDOW")]
    message = Message(type=client_message, window=window, kind=atom[0], format=32)
    message.data[0] = atom[1]
    xlib.XSendEvent(display, ctypes.c_ulong(window), False, ctypes.c_long(0), ctypes.byref(message))
    xlib.XCloseDisplay(display)


class Desktop(ApplicationTest):
    def open_display(self):
        server = self.spawn("Xvfb", "-noreset", "-displayfd", "1", "-nolisten", "tcp", stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL)
        self.environment["DISPLAY"] = ":" + server.stdout.readline().strip()
        self.environment.pop("WAYLAND_DISPLAY", None)
        self.environment.pop("QT_QPA_PLATFORM", None)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/none"
        self.environment["XDG_RUNTIME_DIR"] = str(self.home)

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
        window = int(self.panels()[0])
        close_window(self.environment["DISPLAY"], window)
        self.assertEqual(self.status()["state"], "active")
        self.done("stop")
        close_window(self.environment["DISPLAY"], window)
        process.communicate(timeout=SLOW)
        self.assertEqual(process.returncode, 0)

    def test_a_refused_session_is_explained_and_the_panel_shown(self):
        self.open_display()
        self.environment["XDG_DATA_HOME"] = "/dev/null"  # nowhere for the agents to report
        process = self.start("--agent")
        # The log has its say before.
        self.assertTrue(any("No agent can report" in line for line in process.stderr))
        self.wait_for(self.panels, "the window")
        self.quit(process)


if __name__ == "__main__":
    unittest.main()
