"""What scripts make for macOS: the icon, and the order and the kind of the signatures, with Apple's tools replaced."""

import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = {
    "codesign": 'echo "$@" >>"$CALLS"; case $* in --display*) echo TeamIdentifier=TEAM >&2 ;; esac',
    "plutil": 'case $2 in CFBundleExecutable) echo vespra ;; BrandTeamID) echo "$BUILT_FOR" ;; *) echo helper ;; esac',
}


class MacBundle(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def test_icon_shows_the_mark_in_every_size(self):
        path = self.folder / "x.icns"
        subprocess.run([sys.executable, ROOT / "scripts/make-icon", path], check=True)
        data = path.read_bytes()
        self.assertEqual(data[:8], b"icns" + struct.pack(">I", len(data)))
        at, sizes = 8, {}
        while at < len(data):
            kind, length = data[at:at + 4].decode(), struct.unpack(">I", data[at + 4:at + 8])[0]
            png, at = data[at + 8:at + length], at + length
            size, end = struct.unpack(">I", png[16:20])[0], 8 + 12 + 13
            rows = zlib.decompress(png[end + 8:end + 8 + struct.unpack(">I", png[end:end + 4])[0]])
            sizes[kind] = size

            def pixel(across, down):
                start = int(size * down) * (size * 4 + 1) + 1 + int(size * across) * 4
                return rows[start:start + 4]
            self.assertEqual(pixel(0.5, 0.5), b"\xff\xc6\x5c\xff", f"{kind}: the star")
            self.assertEqual(pixel(0, 0), bytes(4), f"{kind}: the corner")
            self.assertLess(pixel(0.5, 0.2)[0], 0x50, f"{kind}: the sky")
        self.assertEqual(sizes, {"ic11": 32, "ic12": 64, "ic07": 128, "ic13": 256, "ic08": 256, "ic14": 512, "ic09": 512,
                                 "ic10": 1024})

    def sign(self, *arguments, built_for="TEAM"):
        """The exit status, and what codesign was asked to sign in its order, each with its options."""
        app, calls = self.folder / "V.app", self.folder / "calls"
        for name in ("MacOS/vespra", "MacOS/vespra-helper", "Frameworks/Q.framework/Versions/A/Q"):
            (app / "Contents" / name).parent.mkdir(parents=True, exist_ok=True)
            (app / "Contents" / name).write_bytes(b"\xcf\xfa\xed\xfe")
        (app / "Contents/Info.plist").touch()
        for name, body in TOOLS.items():
            (self.folder / name).write_text(f"#!/bin/sh\n{body}\n")
            (self.folder / name).chmod(0o755)
        calls.write_text("")
        environment = dict(os.environ, PATH=f"{self.folder}:{os.environ['PATH']}", CALLS=calls, BUILT_FOR=built_for)
        status = subprocess.run([ROOT / "scripts/macos-sign", *arguments, app], env=environment, capture_output=True)
        signed = [line.split() for line in calls.read_text().splitlines() if "--sign" in line]
        return status.returncode, [words[-1].split("/")[-1] for words in signed], signed

    def test_signs_from_the_inside_out(self):
        for arguments, is_hardened in ((), False), (("--identity", "Developer"), True):
            status, order, signed = self.sign(*arguments)
            self.assertEqual((status, order[-1], len(order)), (0, "V.app", 4), order)
            self.assertLess(order.index("Q"), order.index("Q.framework"))
            self.assertEqual({"runtime" in words for words in signed}, {is_hardened})

    def test_refuses_what_would_not_work(self):
        self.assertEqual(self.sign("--identity", "Developer", built_for="OTHER")[0], 1)
        self.assertEqual(self.sign("--notarise", "profile")[0], 2)


if __name__ == "__main__":
    unittest.main()
