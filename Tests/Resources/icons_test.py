"""Every icon that the application names has a drawing, and every drawing is named."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
OTHERS = "System", "MenuBar", "Render"
PROPERTIES = {"opacity"}


def named():
    """{name: file}: what stands in plain words where symbols, icons or notes are spoken of."""
    found = {}
    for path in sorted((ROOT / "App").rglob("*.cpp")):
        text = re.sub(r"//.*", "", path.read_text())
        if path.relative_to(ROOT / "App").parts[0] not in OTHERS and re.search("symbol|[iI]con|NoteKind", text):
            found |= dict.fromkeys(re.findall(r'"([a-z]+(?:\.[a-z0-9]+)*)"', text), str(path))
    return {name: path for name, path in found.items() if name not in PROPERTIES}


class Icons(unittest.TestCase):
    def test_names_and_drawings_are_the_same(self):
        names, drawings = named(), {path.stem for path in (ROOT / "Resources/icons").glob("*.svg")}
        self.assertEqual({name: path for name, path in names.items() if name not in drawings}, {})
        self.assertEqual(drawings - names.keys(), set())


if __name__ == "__main__":
    unittest.main()
