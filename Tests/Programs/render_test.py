"""vespra --render as a whole process."""

import os
import pathlib
import subprocess
import tempfile
import unittest

VESPRA = pathlib.Path(os.environ["VESPRA_BIN"]) / "vespra"


def render(*arguments, **environment):
    return subprocess.run([VESPRA, "--render", *arguments], capture_output=True, text=True,
                          env=os.environ | environment)


class Render(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def pictures(self, name, **environment):
        folder = self.folder / "new" / name / str(len(environment))
        done = render(folder, "--only", name, **environment)
        self.assertEqual(done.returncode, 0, done.stderr)
        return {path.name: path.read_bytes() for path in folder.iterdir()}

    def test_pictures_are_the_same_on_every_desktop(self):
        elsewhere = {"TZ": "Asia/Tokyo", "LC_ALL": "C", "LANGUAGE": "de", "QT_SCALE_FACTOR": "1.5",
                     "QT_FONT_DPI": "144", "HOME": str(self.folder)}
        for name in ("panel-6", "panel-9", "settings-power", "status-item-time"):
            with self.subTest(name=name):
                first = self.pictures(name)
                self.assertEqual(first, self.pictures(name, **elsewhere))
                self.assertEqual(set(first), {f"{name}-{look}@{scale}x.png"
                                              for look in ("light", "dark") for scale in (1, 2)})
                self.assertEqual(len(set(first.values())), 4)

    def test_what_cannot_be_drawn_is_refused(self):
        for arguments, status, complaint in (
            ([self.folder, "--only", "panel-0"], 2, 'there is no "panel-0"; there are: panel-1, '),
            (["/proc/none"], 1, '"/proc/none" cannot be made'),
            (["/proc/self", "--only", "controls"], 1, 'cannot write "controls" into "/proc/self"'),
        ):
            with self.subTest(complaint=complaint):
                done = render(*arguments)
                self.assertEqual(done.returncode, status)
                self.assertIn(f"vespra: --render: {complaint}", done.stderr)


if __name__ == "__main__":
    unittest.main()
