"""The sound that ships is what its script makes."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
SHIPPED = ROOT / "Resources/sounds/heat-alarm.wav"


class HeatAlarm(unittest.TestCase):
    def test_shipped_file_is_what_the_script_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "made.wav"
            subprocess.run([sys.executable, ROOT / "scripts/make-heat-alarm", made], check=True)
            self.assertEqual(made.read_bytes(), SHIPPED.read_bytes())


if __name__ == "__main__":
    unittest.main()
