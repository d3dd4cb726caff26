"""The shells' completions and the manual pages know every verb and option that the programs' help lists."""

import functools
import os
import pathlib
import re
import shutil
import subprocess
import unittest

BIN = pathlib.Path(os.environ["VESPRA_BIN"])
RESOURCES = pathlib.Path(__file__).parents[2] / "Resources"
COMPLETIONS, MANUALS = RESOURCES / "completions", RESOURCES / "man"
# The words before the cursor are the arguments, of which the last one is being typed.
BASH = """
source "$1"; shift
compopt() { :; }
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
"_$1"
printf '%s\\n' "${COMPREPLY[@]}"
"""


# The completions ask the program for its settings.
ENVIRONMENT = dict(os.environ, PATH=f"{BIN}:{os.environ['PATH']}")


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True, timeout=60, env=ENVIRONMENT).stdout


def settings():
    """The key, range and meaning of each, as the help lists them."""
    text = output(BIN / "vespractl", "settings", "set", "--help").partition("Usage")[0]
    return re.findall(r"^  (\S+) (.+)\n      (.+)$", text, re.MULTILINE)


def help_of(program, *verbs):
    """The options and the verbs below these, as the help lists them."""
    text = output(BIN / program, *verbs, "--help")
    assert max(map(len, text.splitlines())) <= 80 and text.startswith(text[0].upper()), text
    assert not re.search(r"REQUIRED|TEXT|Positionals|Subcommand|Option Group", text), text
    options = re.findall(r"^  (?:-\w, )?(--[a-z-]+)", text, re.MULTILINE)
    _, _, below = text.partition("Verbs:\n")
    return options, re.findall(r"^  ([a-z][a-z-]*)", below, re.MULTILINE)


def levels(program, *verbs):
    """Each level of the command line: the verbs up to there, its options, and the verbs below."""
    options, below = help_of(program, *verbs)
    yield verbs, options, below
    for verb in below:
        yield from levels(program, *verbs, verb)


def bash(*words):
    return output("bash", "-c", BASH, "bash", COMPLETIONS / f"{words[0]}.bash", *words).split()


def fish(line):
    program, _, _ = line.partition(" ")
    command = f'source {COMPLETIONS}/{program}.fish; complete -C "{line}"'
    return [each.split("\t")[0] for each in output("fish", "--no-config", "-c", command).splitlines()]


class Completions(unittest.TestCase):
    def test_bash_completes_what_is_begun(self):
        for words, expected in {
            ("vespractl", "st"): ["status", "start", "stop"], ("vespractl", "status", "--w"): ["--watch"],
            ("vespractl", "start", "--display", "un"): ["until", "unlimited"],
            ("vespractl", "settings", "set", "agents."):
                ["agents.endAction", "agents.graceDelay", "agents.waitingCountsAsFinished"],
            ("vespractl", "settings", "set", "agents.endAction", "s"): ["sleepNow", "shutDown"],
            ("vespractl", "settings", "set", "playsHeatAlarm", ""): ["on", "off"],
            ("vespractl", "settings", "set", "energy.requiresACPower", "on", ""): [],
            ("vespractl", "hooks", "--home", "/x", "connect", "c"): ["claude", "codex"],
            ("vespractl", "machine", "set", "th"): ["thermal="],
            ("vespractl", "machine", "set", "thermal", "=", "s"): ["serious"],
            ("vespractl", "machine", "set", "lid", "="): ["open", "closed"],
            ("vespra", "--un"): ["--until", "--unlimited"],
            ("vespra", "--platform", "s"): ["simulated"],
        }.items():
            with self.subTest(words=words):
                self.assertEqual(bash(*words), expected)
        self.assertIn("mkfifo", bash("vespractl", "run", "--", "mkfif"))
        self.assertEqual(bash("vespractl", "settings", "set", ""), [key for key, _, _ in settings()])

    def test_fish_completes_the_command_of_run_and_agents_of_another_home(self):
        if not shutil.which("fish"):
            self.skipTest("fish is not here")
        for line, expected in (("run mkfif", ["mkfifo"]), ("run --display -- mkfif", ["mkfifo"]),
                               ("hooks --home /x connect c", ["claude", "codex"]),
                               ("settings get agentSa", ["agentSafetyCap"]), ("settings set agentSafetyCap o", ["off"]),
                               ("hooks connect --home /x co", ["codex"]), ("hooks --home /x disc", ["disconnect"])):
            self.assertEqual(fish(f"vespractl {line}"), expected, line)

    def test_every_verb_and_option_is_completed_in_its_place(self):
        for program in ("vespractl", "vespra"):
            zsh = (COMPLETIONS / f"_{program}").read_text()
            for verbs, options, below in levels(program):
                with self.subTest(program=program, verbs=verbs):
                    self.assertIn("--help", options)
                    if verbs[-2:] != ("settings", "set") and verbs[-2:] != ("machine", "set"):
                        offered = bash(program, *verbs, "") + bash(program, *verbs, "--")
                        if verbs != ("simulate",):
                            self.assertEqual(set(options) - set(offered), set())
                    self.assertEqual(set(below) - set(bash(program, *verbs, "")), set())
                    for each in options + below:
                        self.assertRegex(zsh, rf"(?<![\w-]){each}(?![\w-])")
                    if shutil.which("fish"):
                        line = " ".join((program, *verbs))
                        self.assertEqual(set(options) - set(fish(f"{line} --")), set())
                        self.assertEqual(set(below) - set(fish(f"{line} ")), set())

    def test_no_verb_is_completed_that_there_is_not(self):
        for verbs, _, below in levels("vespractl"):
            if below:
                offered = [each for each in bash("vespractl", *verbs, "") if not each.startswith("-")]
                self.assertEqual(sorted(offered), sorted(below))

    def test_the_shells_accept_their_files(self):
        for shell, files in (("bash", "*.bash"), ("zsh", "_*"), ("fish", "*.fish")):
            if not shutil.which(shell):
                print(f"completions: {shell} is not here, its files are not checked by it")
                continue
            for path in sorted(COMPLETIONS.glob(files)):
                self.assertEqual(output(shell, "-n", path), "")


class Manuals(unittest.TestCase):
    def test_every_verb_and_option_has_its_place(self):
        for program in ("vespractl", "vespra"):
            source = (MANUALS / f"{program}.1").read_text()
            for verbs, options, below in levels(program):
                for each in options:
                    self.assertRegex(source, rf"Fl -{each[2:]}(?![\w-])", (program, verbs))
                for each in below:
                    place = rf"(?m)^\.It Cm {verbs[0]}\b.*\b{each}\b" if verbs and verbs != ("start",) else (
                        rf"Cm {each}(?![\w-])" if verbs else rf"(?m)^\.(It )?Cm {each}(?![\w-])")
                    self.assertRegex(source, place, (program, verbs))

    def test_they_name_every_setting_and_exit_status(self):
        source = (MANUALS / "vespractl.1").read_text()
        listed = re.findall(r"^\.It Cm (\S+) (\S*(?:\||\.\.).*)\n(.+)", source, re.MULTILINE)
        # The page is the same on a Mac.
        words = (("Mac", "computer"), ("menu bar", "system tray"))
        self.assertEqual([(key, taken, functools.reduce(lambda text, pair: text.replace(*pair), words, meaning))
                          for key, taken, meaning in settings()], listed)
        waiting = output(BIN / "vespractl", "wait", "--help")
        statuses = re.findall(r"\b1\d\b", waiting.partition("Usage")[0])
        self.assertGreater(len(statuses), 5)
        for status in statuses:
            self.assertIn(f".It {status}\n", source)


if __name__ == "__main__":
    unittest.main()
