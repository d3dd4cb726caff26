"""What the laptop does, and what that does to a session."""

import unittest

from lab import ON_BATTERY, LabTest


class Readings(LabTest):
    def test_a_single_bad_sample_does_not(self):
        self.set(battery=57, ac=0)
        vespra = self.start(settings={"energy": ON_BATTERY})
        self.set(battery=0)
        self.set(battery=56)
        self.set(battery=0)
        self.assertIsNone(vespra.poll())
        # Nothing better comes for 10 s: it is believed.
        self.assertEqual(self.last_words(vespra, 11), ["Session ended — battery at 0%"])

    def test_a_closed_lid_matters_only_without_an_external_display(self):
        vespra = self.start()
        self.set(display="external")
        self.set(lid="closed")
        self.assertEqual(self.events("lid-suspend"), [])
        self.assertIsNone(vespra.poll())
        status, report = self.doctor()
        readings = {each["name"]: each["reading"] for each in report["facilities"] if "reading" in each}
        self.assertEqual((status, readings["Lid"], readings["External display"]), (0, "closed", "connected"))
        self.set(display="internal")
        self.assertEqual(len(self.events("lid-suspend")), 1)
        self.assertEqual(self.last_words(vespra), ["Session ended"])


if __name__ == "__main__":
    unittest.main()
