"""Every option of a tool stands in its manual page and in the completion of each shell, and no other one does."""

import re
import subprocess
import sys
import unittest
from pathlib import Path

from varlo.render import COUNTS, FORMATS, LONG_FORMATS

ROOT = Path(__file__).resolve().parents[2]


class Words(unittest.TestCase):
    def test_options(self) -> None:
        bash = (ROOT / "completions/varlo-tools.bash").read_text()
        fish = (ROOT / "completions/varlo-tools.fish").read_text()
        zsh = (ROOT / "completions/_varlo-tools").read_text()
        for tool in ("check", "render", "watch", "film"):
            said = subprocess.run([sys.executable, "-m", "varlo", tool, "--help"], check=True, capture_output=True)
            options = set(re.findall(r"(?<![\w-])--[a-z][a-z-]+", said.stdout.decode()))
            with self.subTest(tool=tool):
                self.assertIn("--help", options)
                page = (ROOT / f"man/varlo-{tool}.1").read_text().replace("Fl -no- Ns Ar name", "")
                told = {f"--{word}" for word in re.findall(r"Fl -([a-z-]+)", page)} - {"--no-"}
                told |= {f"--no-{word}" for word in re.findall(r"^\.It Cm ([a-z-]+)$", page, re.MULTILINE)}
                self.assertEqual(told | {"--help"}, options)
                case = bash.partition(f"    varlo-{tool})")[2].partition(";;")[0]
                self.assertLessEqual(options, set(re.findall(r"--[a-z][a-z-]+", case)))
                self.assertLessEqual(options, {f"--{word}" for word in re.findall(
                    rf"^complete -c varlo-{tool} .*-l ([a-z-]+)", fish, re.MULTILINE)})
                case = zsh.partition(f"\nvarlo-{tool})")[2].partition("\n    ;;")[0]
                self.assertLessEqual(options, set(re.findall(r"--[a-z][a-z-]+", case)))

    def test_options_of_the_program(self) -> None:
        table = (ROOT / "src/core/args.cpp").read_text()
        forms = set(re.findall(r'"(--?[a-z0-9]+)"', "".join(re.findall(r"\.forms = \{[^}]*\}", table))))
        known = set(COUNTS) | set(FORMATS) | set(LONG_FORMATS) | {"-i", "--input", "-3ds", "--3ds", "-o", "--output",
                                                                  "--help"}
        self.assertEqual(forms, known)
        for file in ("varlo-tools.bash", "_varlo-tools"):
            words = set(re.findall(r"(?<![\w-])--?[a-z]+", (ROOT / "completions" / file).read_text()))
            self.assertLessEqual(set(COUNTS) | set(FORMATS) | set(LONG_FORMATS), words)


if __name__ == "__main__":
    unittest.main()
