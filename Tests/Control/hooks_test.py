"""vespractl hooks: connects agents by itself, without the application."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

MACHINE = "Mac" if sys.platform == "darwin" else "computer"
FAILED = "vespractl: Couldn't change the agent's settings: {}\n".format


class Hooks(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.home = pathlib.Path(temporary.name)
        self.settings = self.home / ".claude/settings.json"

    def hooks(self, *arguments, home=None):
        """The exit status, and what it says."""
        result = subprocess.run([os.environ["VESPRACTL"], "hooks", "--home", home or self.home, *arguments], text=True,
                                timeout=60, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return result.returncode, result.stdout

    def test_connects_and_disconnects_without_the_application(self):
        self.settings.parent.mkdir()
        status = '{"claude":"%s","codex":"agentNotFound"}\n'
        self.assertEqual(self.hooks("status", "--json"), (0, status % "notConnected"))
        self.assertEqual(self.hooks("connect", "claude")[0], 0)
        self.assertEqual(self.hooks("status", "--json"), (0, status % "connected"))
        self.assertIn("Claude Code  Connected", self.hooks("status")[1])
        self.assertEqual(self.hooks("preview", "claude"), (0, self.settings.read_text()))
        self.assertEqual(self.hooks("disconnect", "claude")[0], 0)
        self.assertFalse(self.settings.exists())

    def test_says_what_went_wrong(self):
        self.settings.parent.mkdir()
        self.settings.write_text("{")
        self.assertEqual(self.hooks("connect", "codex"), (
            1, FAILED(self.home / ".codex/hooks.json") + f"This agent isn't installed on this {MACHINE}.\n"))
        self.assertEqual(self.hooks("disconnect", "claude"), (
            1, FAILED(self.settings) + "Its settings file couldn't be read, so it was left untouched. Fix the file, "
                                       "then try again.\n"))
        for arguments in ((), ("connect",), ("connect", "nobody"), ("status", "now"), ("preview", "claude", "codex")):
            self.assertEqual(self.hooks(*arguments)[0], 2, arguments)
        self.assertEqual(self.hooks("status", home=self.home / "none")[0], 2)

    def test_keeps_out_of_another_users_home(self):
        home, word, user = pathlib.Path("/"), "/", "root"
        if os.geteuid() == 0:
            home, word, user = self.home / "o'k; id", rf"{self.home}/o'\''k; id", "'#1234'"
            home.mkdir()
            os.chown(home, 1234, 1234)
        status, said = self.hooks("connect", "codex", home=home)
        self.assertEqual(status, 1)
        self.assertTrue(said.endswith(f"\n  sudo -u {user} vespractl hooks connect codex --home '{word}'\n"), said)


if __name__ == "__main__":
    sys.argv[:1] = ["hooks_test"]
    unittest.main()
