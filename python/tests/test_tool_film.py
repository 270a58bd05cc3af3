"""Films: what a template may say, which frames are made again, and what becomes of a frame that fails."""

import contextlib
import io
import os
import shutil
import subprocess
import unittest

from scenes import SCENE, InFolder
from varlo.film import main, resumable
from varlo.pictures import whole_size
from varlo.run import VarloError
from varlo.template import evaluate, fill, number


class Templates(unittest.TestCase):
    def test_values(self) -> None:
        cases = [("1+2*3", 7), ("2**-1", .5), ("-7 // 2", -4), ("sin(pi/6)", .5), ("hypot(3, 4)", 5), ("max(t, 2)", 2),
                 ("1 if t < .5 <= 1 else 2", 1), ("round(2.6) % 2", 1), ("+frame", 3), ("floor(1e300)", 1e300)]
        for text, value in cases:
            with self.subTest(text=text):
                self.assertAlmostEqual(evaluate(text, {"t": .25, "frame": 3}), value)

    def test_what_is_refused(self) -> None:
        for text in ("9**9**9**9", "(-1)**.5", "1/0", "log(0)", "1e999", "9" * 999, "__import__('os')", "(1).real",
                     "True", "'a'*9", "[1]", "lambda: 0", "x", "f(1)", "max()", "max(1, key=2)", "sin(*[1])", "sin",
                     "1 if t else 2", "t := 3", "(" * 400 + "1" + ")" * 400, "-" * 2000 + "1", "1 if 1 in 2 else 3",
                     "", "1j"):
            with self.subTest(text=text[:40]), self.assertRaises(VarloError):
                evaluate(text, {"t": .25})

    def test_places(self) -> None:
        self.assertEqual([fill("@t@,@frame@/@frames@ @(t*2)@ a@b", frame, 3) for frame in range(3)],
                         ["0,0/3 0 a@b", "0.5,1/3 1 a@b", "1,2/3 2 a@b"])
        self.assertEqual(fill("@t@", 0, 1), "0")
        self.assertEqual([number(value) for value in (-0.0, 1e16, 0.1, 1e-7)], ["0", "1e+16", "0.1", "1e-07"])
        with self.assertRaisesRegex(VarloError, "^2: @time@: time is not known here; there are e, frame, frames, pi"):
            fill("\n @time@", 0, 1)


@unittest.skipUnless(shutil.which("parallel"), "GNU parallel is not installed")
class Films(InFolder):
    def setUp(self) -> None:
        super().setUp()
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        self.write("a.inc", SCENE)
        self.write("a.vlo.in", 'include "a.inc"\nsphere { center <@t@ 0 @frame@> radius @(1+t)@ }')

    def ended(self, *words: str) -> tuple[int, str]:
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors), contextlib.redirect_stdout(io.StringIO()):
            try:
                status = main(words)
            except SystemExit as end:
                status = int(str(end.code))
        return status, errors.getvalue()

    def times(self) -> dict[str, int]:
        return {path.name: path.stat().st_mtime_ns for path in self.folder.glob("a.frames/*.png")}

    def test_only_what_is_missing_or_changed_is_rendered(self) -> None:
        film = ("-n", "4", "a.vlo.in", "--", "-r", "9", "7")
        self.assertEqual(self.ended(*film), (0, ""))
        first = self.times()
        self.assertEqual(sorted(first), ["0000.png", "0001.png", "0002.png", "0003.png"])
        self.assertEqual(whole_size(self.folder / "a.frames/0003.png"), (9, 7))

        picture = self.folder / "a.frames/0001.png"
        for rest in (b"", picture.read_bytes()[:-1]):
            picture.write_bytes(rest)
            self.assertEqual(self.ended(*film), (0, ""))
            self.assertEqual([name for name, time in self.times().items() if first.get(name) != time], ["0001.png"])
            first = self.times()

        changes = [("a.vlo.in", 'include "a.inc"\nsphere { center <@t@ 0 @(max(frame, 1))@> radius @(1+t)@ }', 1),
                   ("a.inc", SCENE + " ", 4)]
        for name, text, count in changes:
            self.write(name, text)
            self.assertEqual(self.ended(*film), (0, ""))
            self.assertEqual(sum(first[name] != time for name, time in self.times().items()), count)
            first = self.times()
        self.assertEqual(self.ended(*film[:-1], "8"), (0, ""))
        self.assertFalse(set(first.values()) & set(self.times().values()))

    def test_a_frame_that_fails_is_named(self) -> None:
        self.write("a.vlo.in", 'include "a.inc"\nsphere { center <0 0 0> radius @(2-frame)@ }')
        message = "0002.vlo:2: sphere radius must be greater than 0\n"
        for _ in range(2):  # the second time by the log of the first
            status, errors = self.ended("-n", "3", "a.vlo.in")
            self.assertEqual(status, 1)
            self.assertIn(f"frame 2 failed: a.frames/logs/0002: {message}", errors)
            self.assertIn("1 of 3 frames are missing", errors)
        rows = (self.folder / "a.frames/joblog").read_text().splitlines()[1:]
        self.assertEqual([row.split()[0] for row in rows if row.split()[6] == "1"], ["3", "3"])
        command = (self.folder / "a.frames/command").read_text()
        self.assertTrue(resumable(self.folder / "a.frames", ["0002"], command))
        self.assertFalse(resumable(self.folder / "a.frames", ["0001", "0002"], command))
        self.assertFalse(resumable(self.folder / "a.frames", ["0002"], command + " "))

    def test_frames_from_a_command(self) -> None:
        self.write("simulate", 'echo $1 >>calls\n[ "$1" -lt 3 ] && cat a.inc && echo "; step $1"')
        film = ("--command", "sh simulate", "--folder", "a.frames")
        self.assertEqual(self.ended(*film, "-n", "2"), (0, ""))
        self.assertEqual(self.ended(*film, "-n", "3"), (0, ""))
        self.assertEqual(sorted((self.folder / "calls").read_text().split()), ["0", "1", "2"])
        self.assertIn("; step 2\n", (self.folder / "a.frames/0002.vlo").read_text())
        status, errors = self.ended(*film, "-n", "4")
        self.assertEqual((status, errors), (1, "varlo-film: frame 3: status 1 from: sh simulate 3\n\n"))

    def test_jobs_of_slurm(self) -> None:
        self.assertEqual(self.ended("-n", "3", "--slurm", "a.vlo.in"), (0, ""))
        folder = self.folder / "a.frames"
        for script in ("submit", "frames.sbatch", "film.sbatch"):
            subprocess.run(["sh", "-n", folder / script], check=True)
        for task in range(1, 4):  # what Slurm does with them
            subprocess.run(["sh", "frames.sbatch"], cwd=folder, check=True,
                           env={**os.environ, "SLURM_ARRAY_TASK_ID": str(task)})
        self.assertEqual(len(self.times()), 3)
        subprocess.run(["sh", folder / "film.sbatch"], check=True, stdout=subprocess.DEVNULL)
        (folder / "0001.png").unlink()
        self.assertEqual(subprocess.run(["sh", folder / "film.sbatch"], check=False, capture_output=True).returncode, 1)

    def test_wrong_arguments(self) -> None:
        for words in ("a.vlo.in", "-n 0 a.vlo.in", "-n 2", "-n 2 a.vlo.in --command x", "-n 2 -o a.avi a.vlo.in",
                      "-n 2 a.vlo.in -- -x", "-n 2 a.vlo.in -- -o b.png"):
            with self.subTest(words=words):
                self.assertEqual(self.ended(*words.split())[0], 2)


if __name__ == "__main__":
    unittest.main()
