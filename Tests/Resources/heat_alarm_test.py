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

    def test_sound_is_short_unclipped_and_silent_at_both_ends(self):
        with wave.open(str(SHIPPED)) as file:
            self.assertEqual((file.getnchannels(), file.getsampwidth()), (1, 2))
            rate, frames = file.getframerate(), file.getnframes()
            samples = array.array("h", file.readframes(frames))
        if sys.byteorder == "big":
            samples.byteswap()
        loudness = [abs(sample) for sample in samples]
        self.assertTrue(1 < frames / rate < 5, frames / rate)
        self.assertTrue(FULL_SCALE / 4 < max(loudness) < FULL_SCALE * 0.9, max(loudness))
        five_milliseconds = rate // 200
        self.assertLessEqual(max(loudness[:five_milliseconds]), SILENT)
        self.assertLessEqual(max(loudness[-five_milliseconds:]), SILENT)


if __name__ == "__main__":
    unittest.main()
