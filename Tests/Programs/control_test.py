"""vespractl against the application, as whole processes: each verb, each exit status."""

import json
import os
import re
import resource
import signal
import subprocess
import sys
import unittest

from application import BIN, HELD_BY_A_SESSION, SLOW, ApplicationTest

KEYS = ["state", "mode", "endsAt", "remaining", "elapsed", "lastEnd", "deadline", "canExtend", "requirements",
        "guardrails", "closedLidStatus", "checklist", "phase", "agents", "lastFinished", "settings", "preferences",
        "power", "thermal", "helper", "connections", "pendingAction", "platform"]
DATE = r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d(\.\d+)?Z"
TIME = r"\d\d?:\d\d( [AP]M)?"
SIMULATED = "This laptop is simulated: nothing keeps the real one awake.\n"
FOREVER = f"Awake until you stop it.\n{SIMULATED}"


class Verbs(ApplicationTest):
    def expect(self, *steps):
        """Each step: a command, the exit status, and what its output and its complaint are like as a whole, the latter
        without the program's name."""
        for command, status, output, complaint in steps:
            with self.subTest(command=command):
                result = self.ctl(*command.split())
                self.assertEqual(result.returncode, status, result.stderr)
                self.assertRegex(result.stdout, rf"\A(?:{output})\Z")
                self.assertRegex(result.stderr, rf"\A(?:{complaint and 'vespractl: ' + complaint})\Z")

    def test_without_an_application_every_verb_says_so_and_exits_with_4(self):
        self.expect(*((verb, 4, "", "Vespra is not running.\n") for verb in (
            "status", "status --json", "status --watch", "status --watch --json", "start", "start timer 45m", "stop",
            "toggle", "extend", "keep-awake", "cancel", "display on", "closed-lid off", "closed-lid set-up", "settings get",
            "settings list", "settings set agents.graceDelay 2m", "wait")))
        self.expect(("run touch nothing", 125, "", "Vespra is not running.\n"))
        self.assertFalse(os.path.exists("nothing"))
        self.expect(("machine get", 4, "", "machine: no simulated laptop is running .*\n"),
                    ("machine set battery=5", 4, "", "machine: no simulated laptop is running .*\n"))

    def test_what_cannot_be_meant_names_the_place_and_exits_with_2(self):
        self.launch()
        for command, complaint in {
            "": 'expected a verb; "vespractl --help" lists', "begin": 'no "begin"; "vespractl --help" lists',
            "machine turn": 'there is no "turn"; "vespractl machine --help" lists what there is',
            "simulate /none": "scenario: cannot read /none: No such file or directory\n",
            "simulate -": "scenario: line 1, column 1: expected JSON\n",
            "status --all": '"--all"', "stop now": '"now"', "statsu --json": 'no "statsu"; did you mean "status"?',
            "start timr 5m": 'did you mean "timer"?', "start timer --dispaly": 'did you mean "--display"?',
            "-headless": 'there is no "-headless"; "vespractl --help"', "start -help": 'did you mean "--help"?',
            "start timer 59s": "timer: expected a length from 1m to 24h", "start timer 5m unlimited": "unlimited",
            "start until 24:00": "until: expected a time of day", "start --lid": "--lid",
            "display": "STATE is required", "display maybe": 'STATE: expected on or off, not "maybe"',
            "closed-lid 1": 'expected on, off, set-up or remove, not "1"', "start --display=no": "--display takes no value",
            "hooks status --home": "--home: expected DIRECTORY",
            "hooks status --home /none": '--home: expected a directory that exists, not "/none"',
            "settings": "expected a verb",
            "settings get agents.grace": 'expected one of energy.requiresACPower, ',
            "settings set playHeatAlarm off": ', not "playHeatAlarm"; did you mean "playsHeatAlarm"?',
            "settings set agents.graceDelay": "VALUE is required",
            "settings set agents.graceDelay 901s": "agents.graceDelay: expected a length from 0s to 15m",
            "machine set battery=101": "battery takes 0..100|none", "machine set wind=1": '"wind" is nothing to set',
            "machine set []": '"[]" is not of the form', "machine set lid=open [battery=5]": '"[battery" is nothing',
        }.items():
            with self.subTest(command=command):
                result = self.ctl(*command.split())
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertRegex(result.stderr, rf"\Avespractl: .*{re.escape(complaint)}")
        for command in ([""], ["start", ""], ["settings", "get", ""]):
            result = self.ctl(*command)
            self.assertEqual((result.returncode, result.stdout), (2, ""), command)
            self.assertIn('""', result.stderr)
        self.assertEqual((self.status()["state"], self.stored.exists()), ("idle", False))

    def test_each_verb_does_what_it_says_also_a_second_time(self):
        self.launch()
        idle = f"No session is running.*\nClosed lid: Not set up .*\n{SIMULATED}"
        self.expect(
            ("status", 0, idle, ""), ("stop", 0, "", ""), ("cancel", 0, "", ""),
            ("extend", 1, "", "There is no session that can be extended.\n"),
            ("keep-awake", 1, "", "There is no agent session.\n"),
            ("wait", 1, "", "No session has run.\n"),
            ("start unlimited --display", 0, FOREVER, ""),
            ("start", 1, "", "A session is already running.\n"),
            ("start timer 5m", 1, "", "A session is already running.\n"),
            ("extend", 1, "", "There is no session that can be extended.\n"),
            ("status", 0, rf"Awake until you stop it. 0:0\d awake\nClosed lid: .*\n{SIMULATED}", ""))
        self.assertEqual([each["type"] for each in self.machine()["held"]],
                         ["activity", "PreventUserIdleSystemSleep", "PreventUserIdleDisplaySleep"])
        self.expect(("display off", 0, "", ""), ("display off", 0, "", ""))
        self.assertEqual(sorted(each["type"] for each in self.machine()["held"]), HELD_BY_A_SESSION)
        self.expect(
            ("stop", 0, "", ""), ("stop", 0, "", ""), ("wait", 10, "Session ended\n", ""),
            ("status", 0, f"No session is running. The last one ended at {TIME}: Stopped.\nClosed lid: .*\n{SIMULATED}", ""),
            ("start timer 23h55m", 0, f"Awake until {TIME}.\n{SIMULATED}", ""), ("extend", 0, f"Awake until {TIME}.\n", ""),
            ("toggle", 0, "", ""), ("toggle", 0, f"Awake until {TIME}.\n{SIMULATED}", ""), ("stop", 0, "", ""),
            ("start until 18:30", 0, f"Awake until (18:30|6:30 PM).\n{SIMULATED}", ""), ("stop", 0, "", ""),
            ("start agent", 1, "", 'No agent is connected. "vespractl hooks connect" connects one.\n'))
        self.assertEqual(self.machine()["held"], [])
        # A start is for once; what the panel remembers is another matter.
        self.assertEqual(self.status()["preferences"], {
            "mode": "timer", "timerDuration": 3600, "untilTime": {"hour": 18, "minute": 0},
            "options": {"keepsDisplayAwake": False, "closedLid": False}})

    def test_of_opposite_options_the_last_one_counts_and_before_what_is_preferred(self):
        self.launch()
        for preferred, options, keeps in (("on", "", True), ("off", "", False), ("on", "--no-display", False),
                                          ("on", "--display --no-display", False), ("off", "--display", True),
                                          ("off", "--no-display --display", True)):
            self.done("display", preferred)
            self.done("start", "unlimited", *options.split())
            self.assertEqual(self.status()["requirements"]["preventsDisplaySleep"], keeps, (preferred, options))
            self.done("stop")

    def test_refusals_exit_with_1_and_their_text_and_change_nothing(self):
        self.launch()
        self.done("machine", "set", "charger=off", "battery=15")
        self.expect(("start unlimited", 1, "", "Plug in the charger to start.\n"),
                    ("toggle", 1, "", "Plug in the charger to start.\n"),
                    ("run touch started", 125, "", "Plug in the charger to start.\n"),
                    ("settings set energy.requiresACPower off", 0, "", ""),
                    ("start unlimited", 1, "", "Battery at 15%, too low to start.\n"),
                    ("machine set helper=ready battery=90", 0, "", ""))
        self.wait_for(lambda: self.status()["helper"] == "ready")
        self.expect(("start unlimited", 0, FOREVER, ""),
                    ("closed-lid on", 1, "", "Plug in the charger to start.\n"))
        status = self.status()
        self.assertEqual((status["closedLidStatus"], status["preferences"]["options"]["closedLid"]), ("off", False))
        self.expect(("stop", 0, "", ""), ("machine set charger=on thermal=serious", 0, "", ""),
                    ("start unlimited --closed-lid", 1, "", "(Mac|Computer) is too hot for closed-lid mode.\n"))
        self.assertFalse((self.home / "started").exists())

    def test_closed_lid_mode_that_cannot_come_into_force_exits_with_5(self):
        self.launch()
        no = "Closed lid: {}\n".format
        self.expect(("closed-lid on", 5, "", no("Not set up")),
                    ("closed-lid set-up", 5, "", no("Waiting for your approval")),
                    ("start unlimited", 5, FOREVER, no("Waiting for your approval")),
                    ("run true", 0, "", no("Waiting for your approval")), ("stop", 0, "", ""),
                    ("machine set helper=ready", 0, "", ""), ("closed-lid set-up", 0, "", ""),
                    ("start unlimited --closed-lid", 0, FOREVER, ""))
        self.assertEqual(self.status()["closedLidStatus"], "canCloseLid")
        self.expect(("closed-lid remove", 0, "", ""), ("closed-lid on", 5, "", no("Not set up")),
                    ("machine set helper=refusing", 0, "", ""), ("closed-lid remove", 1, "", "The component is still .*\n"),
                    ("closed-lid on", 5, "", no("Component not responding")),
                    ("stop", 0, "", ""), ("machine set helper=stuck", 0, "", ""),
                    ("toggle", 5, "Awake until .*\n.*\n", no("Component not responding")))

    def test_an_agent_session_is_kept_awake_and_its_forced_action_cancelled(self):
        self.connect_agent()
        self.launch()
        self.expect(("settings set agents.graceDelay 0s", 0, "", ""),
                    ("settings set agents.endAction sleepNow", 0, "", ""),
                    ("start agent", 0, f"Awake until your agents have finished, until {TIME} at the latest.\n{SIMULATED}", ""))
        self.hook("UserPromptSubmit")
        self.wait_for(lambda: self.status()["phase"] == "working")
        self.expect(("keep-awake", 0, "", ""), ("keep-awake", 0, "", ""))
        self.hook("Stop")
        self.wait_for(lambda: self.status()["agents"][0]["activity"] == "idle")
        status = self.status()
        self.assertEqual((status["state"], status["phase"]), ("active", "keptAwake"))
        self.expect(("stop", 0, "", ""), ("start agent", 0, ".*\n.*\n", ""))
        self.hook("UserPromptSubmit")
        self.hook("Stop")
        self.wait_for(lambda: self.status()["pendingAction"])
        self.assertRegex(self.done("status"), "will sleep in 1 minute")
        self.assertEqual(self.status()["pendingAction"]["action"], "sleepNow")
        self.expect(("cancel", 0, "", ""), ("cancel", 0, "", ""), ("wait", 0, "Session ended — agents finished\n", ""))
        status = self.status()
        self.assertEqual((status["pendingAction"], status["lastEnd"]["reason"]), (None, "agentsFinished"))

    def test_wait_exits_by_the_reason_of_the_end(self):
        for status, last in ((10, "stop"), (12, "machine set charger=off"), (17, "machine set sleep=now"), (18, None)):
            with self.subTest(last=last):
                application = self.launch()
                self.done("start", "unlimited")
                waiting = self.ctl_later("wait")
                self.wait_until_connected()
                self.assertIsNone(waiting.poll())
                if last:
                    self.done(*last.split())
                else:
                    self.quit(application)
                _, complaint = waiting.communicate(timeout=SLOW)
                self.assertEqual((waiting.returncode, complaint), (status, ""))
                self.quit(application)


class Status(ApplicationTest):
    def test_json_has_its_keys_in_order_and_dates_as_text(self):
        self.connect_agent()
        self.launch()
        idle = self.status()
        self.assertEqual({key for key in KEYS if idle[key] is None}, {
            "mode", "endsAt", "remaining", "elapsed", "lastEnd", "deadline", "phase", "lastFinished", "pendingAction"})
        self.assertEqual((idle["connections"], idle["helper"], idle["thermal"], list(idle["power"])),
                         ({"claude": "connected", "codex": "agentNotFound"}, "notInstalled", "nominal",
                          ["isOnACPower", "batteryLevel"]))
        self.done("start", "timer", "10m")
        active = self.status()
        self.done("stop")
        ended = self.status()
        self.assertEqual([list(each) for each in (idle, active, ended)], [KEYS] * 3)
        self.assertEqual((active["state"], active["mode"], active["canExtend"]), ("active", "timer", True))
        for date in (active["endsAt"], active["deadline"], ended["lastEnd"]["at"]):
            self.assertRegex(date, rf"\A{DATE}\Z")
        self.assertAlmostEqual(active["remaining"] + active["elapsed"], 600, places=4)
        self.assertEqual(ended["lastEnd"]["reason"], "stoppedByUser")

    def test_watch_has_one_line_for_each_change_and_none_for_anything_else(self):
        application = self.launch()
        reading, watching = self.ctl_later("status", "--watch"), self.ctl_later("status", "--watch", "--json")
        self.assertEqual(reading.stdout.readline(), "No session is running.\n")
        first = json.loads(watching.stdout.readline())
        self.assertEqual((first["state"], list(first)), ("idle", KEYS))
        for command, path, value in (
            ("start unlimited", ("state",), "active"),
            ("display on", ("preferences", "options", "keepsDisplayAwake"), True),
            ("display on", None, None),
            ("extend", None, None),
            ("settings set agents.graceDelay 5m", ("settings", "agents", "graceDelay"), 300),
            ("settings set agents.graceDelay 5m", None, None),
            ("machine set battery=41", ("power", "batteryLevel"), 41),
            ("machine set thermal=fair", ("thermal",), "fair"),
            ("stop", ("state",), "idle"),
            ("stop", None, None),
            ("display off", ("preferences", "options", "keepsDisplayAwake"), False),
        ):
            self.ctl(*command.split())
            if path:
                line = json.loads(watching.stdout.readline())
                for key in path:
                    line = line[key]
                self.assertEqual(line, value, command)
        self.quit(application, signal.SIGKILL)
        gone = "vespractl: Vespra has gone without an answer.\n"
        self.assertEqual((watching.communicate(timeout=SLOW), watching.returncode), (("", gone), 4))
        self.assertEqual((reading.communicate(timeout=SLOW)[1], reading.returncode), (gone, 4))

    def test_a_watch_ends_when_nobody_reads_it(self):
        self.launch()
        for options in ((), ("--json",)):
            watching = self.ctl_later("status", "--watch", *options)
            watching.stdout.readline()
            watching.stdout.close()
            self.assertEqual((watching.wait(SLOW), watching.stderr.read()), (0, ""))


class Output(ApplicationTest):
    def test_what_cannot_be_written_fails_every_verb(self):
        self.launch()
        for command in ("status", "status --json", "status --watch", "status --watch --json", "start timer 5m", "extend",
                        "settings get", "settings get --json", "settings get agents.graceDelay", "machine get",
                        "machine get --json", "hooks status", "hooks preview claude", "doctor", "--help"):
            with self.subTest(command=command), open("/dev/full", "w") as full:
                process = self.spawn(BIN / "vespractl", *command.split(), stdout=full, stderr=subprocess.PIPE)
                self.assertEqual((process.wait(SLOW), process.stderr.read()), (
                    1, "vespractl: cannot write to standard output: No space left on device\n"))
                self.assertEqual(self.spawn(BIN / "vespra", "--help", stdout=full, stderr=subprocess.PIPE).wait(SLOW), 1)

    def test_no_file_takes_the_place_of_a_closed_descriptor(self):
        for program in (("vespra", "--headless", "--platform", "simulated", "--unlimited"), ("vespractl", "status")):
            process = self.spawn("sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-', BIN / program[0], *program[1:])
            self.wait_for(lambda: process.poll() is not None or self.ctl("status").returncode == 0)
            if program[0] == "vespra":
                files = [os.readlink(f"/proc/{process.pid}/fd/{number}") for number in range(3)]
                self.assertEqual(files, ["/dev/null"] * 3)
        self.assertEqual(process.wait(SLOW), 0)
        self.assertEqual(self.status()["state"], "active")


class Settings(ApplicationTest):
    def settings(self):
        return json.loads(self.done("settings", "get", "--json"))

    def test_they_are_set_kept_and_listed_and_refuse_nonsense(self):
        application = self.launch()
        wanted = self.settings() | {"energy.lowBatteryThreshold": "35", "preferences.untilTime": "06:05",
                                    "playsHeatAlarm": "off"}
        for key in ("energy.lowBatteryThreshold", "preferences.untilTime", "playsHeatAlarm"):
            self.assertEqual(self.done("settings", "set", key, wanted[key]), "")
        self.done("display", "on")
        self.ctl("closed-lid", "on")
        self.quit(application, signal.SIGKILL)
        self.launch()
        wanted |= {"preferences.options.keepsDisplayAwake": "on", "preferences.options.closedLid": "on"}
        self.assertEqual(list(self.settings().items()), list(wanted.items()))
        self.assertEqual(self.done("settings", "get"), "".join(f"{key}={value}\n" for key, value in wanted.items()))
        self.assertEqual(self.done("settings", "get", "playsHeatAlarm"), "off\n")
        listed = json.loads(self.done("settings", "list", "--json"))
        self.assertEqual({each["key"]: each["value"] for each in listed}, wanted)
        lines = self.done("settings", "list").splitlines()
        for name in ("value", "range", "meaning"):
            self.assertEqual({line.find(f"  {each[name]}") for line, each in zip(lines, listed)} - {-1},
                             {lines[0].index(f"  {listed[0][name]}")})

    def test_what_cannot_be_stored_counts_until_the_next_start_and_is_told(self):
        application = self.launch()
        self.done("settings", "set", "agents.graceDelay", "3m")
        before = self.stored.read_bytes()
        limits = resource.prlimit(application.pid, resource.RLIMIT_FSIZE)
        resource.prlimit(application.pid, resource.RLIMIT_FSIZE, (10, limits[1]))  # the disk is full
        for command in ("settings set agents.graceDelay 4m", "display on"):
            result = self.ctl(*command.split())
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertEqual(result.stderr, "vespractl: This counts until Vespra quits, but it could not be saved.\n")
            self.assertEqual(self.done("settings", "get", "agents.graceDelay"), "4m\n")
        self.assertEqual(self.stored.read_bytes(), before)
        resource.prlimit(application.pid, resource.RLIMIT_FSIZE, limits)
        self.done("settings", "set", "agentSafetyCap", "off")
        self.quit(application, signal.SIGKILL)
        self.launch()
        self.assertEqual((self.settings()["agents.graceDelay"], self.settings()["agentSafetyCap"]), ("4m", "off"))

    def test_a_folder_in_the_files_place_stops_nothing(self):
        self.stored.mkdir(parents=True)
        self.launch()
        self.assertEqual(self.ctl("settings", "set", "agents.graceDelay", "4m").returncode, 1)
        self.assertEqual((self.settings()["agents.graceDelay"], self.settings()["agentSafetyCap"]), ("4m", "12h"))
        self.assertEqual(list(self.stored.iterdir()), [])


if __name__ == "__main__":
    sys.argv[:1] = ["control_test"]
    unittest.main()
