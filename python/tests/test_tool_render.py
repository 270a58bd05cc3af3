"""A picture is the old one or the new one, and whole, whatever happens."""

import contextlib
import io
import os
import random
import signal
import struct
import subprocess
import sys
import time
import unittest

from scenes import SCENE, InFolder
from varlo.bar import Bar
from varlo.pictures import READERS, NotWhole, whole_size
from varlo.render import main, read_arguments, threads
from varlo.run import find_binary

FORMATS = {".ppm": "-ppm", ".tga": "-tga", ".bmp": "-bmp", ".png": "-png", ".jpg": "-jpg", ".tif": "-tif"}


class Pictures(InFolder):
    def test_whole_ones_and_every_cut(self) -> None:
        self.write("a.vlo", SCENE)
        for suffix, option in FORMATS.items():
            for size in ((1, 2), (3, 2), (5, 7)):
                with self.subTest(format=suffix, size=size):
                    subprocess.run([find_binary(), "-i", "a.vlo", option, "-o", "a", "-r", *map(str, size)], check=True,
                                   cwd=self.folder, stdout=subprocess.DEVNULL)
                    picture = self.folder / f"a{suffix}"
                    self.assertEqual(whole_size(picture), size)
                    data = picture.read_bytes()
                    for length in range(len(data)):
                        picture.write_bytes(data[:length])
                        with self.assertRaises(NotWhole):
                            whole_size(picture)
                    for other in READERS:
                        if READERS[other] is not READERS[suffix]:
                            with self.assertRaises(NotWhole):
                                self.folder.joinpath(f"b{other}").write_bytes(data)
                                whole_size(self.folder / f"b{other}")

    def test_what_has_its_length_but_is_damaged(self) -> None:
        self.write("a.vlo", SCENE)
        for option in ("-png", "-tif"):
            subprocess.run([find_binary(), "-i", "a.vlo", option, "-o", "a"], check=True, cwd=self.folder,
                           stdout=subprocess.DEVNULL)
        picture = self.folder / "a.png"
        data = bytearray(picture.read_bytes())
        data[len(data) // 2] ^= 1
        picture.write_bytes(data)
        with self.assertRaisesRegex(NotWhole, "chunk .* damaged"):
            whole_size(picture)
        picture = self.folder / "a.tif"  # without its last row, as a full disk leaves it
        data = bytearray(picture.read_bytes())
        lengths = struct.pack("<6H", *[24] * 6)
        self.assertIn(lengths, data)
        picture.write_bytes(data.replace(lengths, lengths[:10] + bytes(2)))
        with self.assertRaises(NotWhole):
            whole_size(picture)


class Rendering(InFolder):
    def setUp(self) -> None:
        super().setUp()
        (self.folder / "scenes").mkdir()
        self.write("scenes/a.inc", SCENE)
        self.scene = self.write("scenes/a.vlo", 'include "a.inc"')
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)

    def ended(self, *arguments: str) -> tuple[int, str]:
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors), contextlib.redirect_stdout(io.StringIO()):
            status = main([*arguments])
        return status, errors.getvalue().replace(f"{self.folder.resolve()}/", "")

    def here(self) -> list[str]:
        return sorted(path.name for path in self.folder.iterdir())

    def test_names_and_formats(self) -> None:
        cases = [("", "picture.ppm"), ("-png", "picture.png"), ("-o b -jpg", "b.jpg"), ("-o b.tiff", "b.tiff"),
                 ("-o b.JPEG", "b.JPEG"), ("-o b.c", "b.c.ppm"), ("-o scenes/b.bmp -w 3 --bmp", "scenes/b.bmp")]
        for words, name in cases:
            with self.subTest(name=name):
                self.assertEqual(self.ended("scenes/a.vlo", "--quiet", *words.split()), (0, ""))
                self.assertEqual(whole_size(self.folder / name), (3 if "-w" in words else 8, 6))

    def test_wrong_arguments(self) -> None:
        for words in ("a.vlo b.vlo", "", "a.vlo -r 1", "a.vlo -x", "a.vlo -i b", "a.vlo -o b.png -jpg"):
            with self.subTest(words=words):
                self.assertEqual(self.ended(*words.split())[0], 2)
        self.assertEqual(read_arguments(["a", "-t", "4"]).options, ["-t", "4"])
        self.assertEqual(read_arguments(["a"]).options, ["-t", str(threads())])

    def test_faults_keep_the_old_picture(self) -> None:
        self.write("b.ppm", "old")
        cases = [("plane { }", "real", "scenes/a.inc:6: error in plane structure declaration\n"),
                 ("", "short", "b.ppm: the new picture is not whole: the pixels are not all there\n"),
                 ("", "none", "scenes/a.vlo: varlo ended well and left no picture\n"),
                 ("", "kill", "scenes/a.vlo:1: ended by signal 9\n")]
        programs = {"short": 'printf "P6 2 2 255\\n+++" >"$out.ppm"', "none": ":", "kill": "kill -9 $$"}
        for text, program, message in cases:
            with self.subTest(message=message), contextlib.ExitStack() as stack:
                if program in programs:
                    fake = self.write("fake", f'#!/bin/sh\nfor out; do :; done\n{programs[program]}\n')
                    fake.chmod(0o755)
                    stack.callback(fake.unlink)
                    stack.callback(os.environ.__setitem__, "VARLO_BINARY", str(find_binary()))
                    os.environ["VARLO_BINARY"] = str(fake)
                self.write("scenes/a.inc", SCENE + text)
                self.assertEqual(self.ended("scenes/a.vlo", "-o", "b.ppm", "--quiet"), (1, message))
            self.assertEqual(((self.folder / "b.ppm").read_text(), self.here()), ("old", ["b.ppm", "scenes"]))

    def test_killed_at_twenty_moments(self) -> None:
        options = "-o b.png -r 640 480 -aaa 4 --quiet".split()
        arguments = [sys.executable, "-m", "varlo", "render", str(self.scene), *options]
        start = time.monotonic()
        subprocess.run(arguments, check=True, timeout=60)
        needed = time.monotonic() - start
        new = (self.folder / "b.png").read_bytes()
        states = set()
        for moment in range(20):
            (self.folder / "b.png").write_bytes(b"old")
            number = (signal.SIGTERM, signal.SIGKILL)[moment % 2]
            with self.subTest(moment=moment, signal=number), subprocess.Popen(arguments) as child:
                time.sleep(needed * 1.1 * (moment + random.random()) / 20)
                child.send_signal(number)
                child.wait(10)
                deadline = time.monotonic() + 5
                while self.here() != ["b.png", "scenes"] and time.monotonic() < deadline:
                    time.sleep(0.02)
                self.assertEqual(self.here(), ["b.png", "scenes"])
                states.add((self.folder / "b.png").read_bytes())
        self.assertLessEqual(states, {b"old", new})
        self.assertIn(b"old", states)

    def test_a_model_goes_through_the_importer(self) -> None:
        fake = self.write("varlo-import", f'#!/bin/sh\n[ "$1" = m.obj ] && cp "{self.folder}/scenes/a.inc" "$3"\n')
        fake.chmod(0o755)
        self.addCleanup(os.environ.__setitem__, "PATH", os.environ["PATH"])
        self.write("m.obj", "v 1 2 3\n")
        os.environ["PATH"] = "/nowhere"
        self.assertIn("apt-get install varlo-tools", self.ended("m.obj")[1])
        os.environ["PATH"] = f"{self.folder}:/usr/bin:/bin"
        self.assertEqual(self.ended("m.obj", "--quiet"), (0, ""))
        self.assertEqual(whole_size(self.folder / "picture.ppm"), (8, 6))


class Terminal(io.TextIOWrapper):
    def isatty(self) -> bool:
        return True


class Bars(unittest.TestCase):
    def test_a_log_has_a_line_for_every_tenth(self) -> None:
        log = io.StringIO()
        with Bar(log) as bar:
            for share in (0.04, 0.1, 0.19, 0.35, 1.0):
                bar(share)
        self.assertEqual([line.split(" %")[0].strip() for line in log.getvalue().splitlines()],
                         [str(share) for share in range(10, 101, 10)])

    def test_a_terminal(self) -> None:
        for encoding, bar in (("utf-8", "███████▌░"), ("latin-1", "########..")):
            binary = io.BytesIO()
            with Bar(Terminal(binary, encoding=encoding)) as shown:
                shown.start -= 90
                shown(0.25)
            text = binary.getvalue().decode(encoding)
            self.assertIn(bar, text)
            self.assertIn(" 25 %  1:30 used, 4:30 left", text)


if __name__ == "__main__":
    unittest.main()
