"""The sound that ships: what its script makes, short, and easy on the ears."""

import array
import pathlib
import subprocess
import sys
import tempfile
import unittest
import wave

ROOT = pathlib.Path(__file__).resolve().parents[2]
SHIPPED = ROOT / "Resources/sounds/heat-alarm.wav"
FULL_SCALE = 32767
SILENT = FULL_SCALE // 500


class HeatAlarm(unittest.TestCase):
    def test_shipped_file_is_what_the_script_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            made = pathlib.Path(folder) / "made.wav"
            subprocess.run([sys.executable, ROOT / "scripts/make-heat-alarm", made], check=True)
            self.assertEqual(made.read_bytes(), SHIPPED.read_bytes())


if __name__ == "__main__":
    unittest.main()
