#!/usr/bin/python3
"""Makes the n-th call of each kind fail, once and from then on, for n = 1 until a run passes unharmed.

Usage: sweep_test.py VARLO PRELOAD [all]

PRELOAD is the library of failing_calls.cpp. Every input is rendered in two formats with one sampler each, or with
`all` in every format with every sampler.

A run has to end by itself, with a status and a message. Status 0 is for whole pictures, but for the two ends
that the manual tells: a thread that cannot be started and a row of a TIFF picture that cannot be written. What
is whole is not judged by the program: a picture is that of the undisturbed run, or ImageMagick reads it.
"""
import concurrent.futures
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

KINDS = ["alloc", "open", "read", "write", "seek", "close", "thread"]
FORMATS = ["tga", "bmp", "ppm", "png", "jpg", "tif"]  # as options and as extensions
SAMPLERS = [["-aan"], ["-aaq"], ["-aaa", "10"]]
SIZE = (24, 10)

# The two ends with status 0 and no whole picture: a thread, and what the library says of a row of a TIFF picture.
TOLD = re.compile("Thread creation failed!!|TIFFWriteScanline|TIFFAppendToStrip|StripByteCounts|StripOffsets"
                  "|TIFFWriteBufferSetup")

CAMERA = 'settings { output_type "ppm" output_name "x" }\ncamera { position <0 -6 1> look_at <0 0 0> }\n'
LAMP = 'light { position <-4 -5 6> color 1 1 1 attenuation_type "none" }\n'
SCENES = {
    "spheres.vlo": CAMERA + LAMP + 'surface { color 0.9 0.5 0.1 diffuse 0.8 ambient 0.2 }\n'
    + "".join(f"sphere {{ center <{x} {y} 0> radius 0.4 }}\n" for x in range(-2, 3) for y in range(-1, 2)),
    "parts.vlo": 'include "more.inc"\n' + LAMP + 'surface { color #red diffuse 0.8 reflection 0.3 }\n'
    'polygon { 4 vertex <-1 0 0> vertex <1 0 0> vertex <1 0 1> vertex <-1 0 1> }\n'
    'cone { base <0 0 0> cap <1 0 1> base_radius 1 cap_radius 0.5 }\n',
    "soft.vlo": CAMERA + 'light { position <-4 -5 6> color 1 1 1 shadow_type "smooth" radius 1 light_samples 4 }\n'
    'surface { color 1 1 1 diffuse 1 }\nplane { normal <0 0 1> distance -1 }\nsphere { center <0 0 0> radius 1 }\n',
}
INCLUDED = {"more.inc": CAMERA + 'declare "red" color 1 0.1 0.1\n'}

MODELS = ["studio"]
EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples" / "models"


class Run:
    """One run of the program: what it left behind and how it ended."""

    def __init__(self, command, image, output, failure=""):
        self.picture = f"{output}.{image}"
        if os.path.exists(self.picture):
            os.remove(self.picture)
        with tempfile.TemporaryFile() as told:
            told_by = told.fileno()
            preload = {"LD_PRELOAD": PRELOAD, "VARLO_FAIL": failure, "VARLO_FAIL_TOLD": str(told_by)}
            done = subprocess.run([VARLO, *command, "-o", output, "-" + image], capture_output=True, timeout=60,
                                  check=False, env=os.environ | preload, pass_fds=[told_by])
            self.failed = os.fstat(told_by).st_size > 0
        self.status = done.returncode
        self.errors = done.stderr.decode("latin-1")
        lines = done.stdout.decode("latin-1").splitlines() + self.errors.splitlines()
        self.lines = {line for line in lines if "Rendering time" not in line}
        self.bytes = b""
        if os.path.exists(self.picture):
            with open(self.picture, "rb") as file:
                self.bytes = file.read()

    def pixels(self):
        """The pixels as another program reads them; empty if it meets fewer, or has a complaint."""
        reader = subprocess.run(["convert", self.picture, "-depth", "8", "rgb:-"], capture_output=True, check=False)
        whole = len(reader.stdout) == 3 * SIZE[0] * SIZE[1]
        return reader.stdout if whole and reader.returncode == 0 and not reader.stderr else b""

    def fault(self, whole):
        """What is wrong with this run, beside `whole`, the one in which nothing failed; empty if nothing is."""
        if self.status not in (0, 1, 255):
            return f"status {self.status}"
        says = self.lines - whole.lines
        if self.status != 0:
            return "" if says else f"status {self.status} without a word"
        if self.bytes == whole.bytes or any(TOLD.search(line) for line in says):
            return ""
        pixels = self.pixels()
        if not pixels:
            return "status 0, but no whole picture"
        return "" if says or pixels == whole.pixels() else "another picture, without a word"


def sweep(case):
    """All failures of one case: how many runs there were, and the faults."""
    number, (source, image, sampler) = case
    command = ["-3ds" if source.endswith("set") else "-i", source, "-r", *map(str, SIZE), *sampler]
    whole = Run(command, image, f"out{number}")
    if whole.status != 0 or not whole.pixels():
        return 1, [f"{source} {image}: {whole.status} {whole.errors}"]
    runs, faults = 1, []
    for kind in KINDS:
        for mode in ("once", "on"):
            n, failed = 0, True
            while failed:
                n += 1
                run = Run(command, image, f"out{number}", f"{kind} {n} {mode}")
                failed = run.failed
                fault = run.fault(whole)
                if fault:
                    faults.append(f"{source} {image} {sampler[0]}: {kind} {n} {mode}: {fault}: {run.errors.strip()}")
            runs += n
    return runs, faults


def main():
    with tempfile.TemporaryDirectory() as work:
        os.chdir(work)
        for name, text in (SCENES | INCLUDED).items():
            with open(name, "w", encoding="ascii") as file:
                file.write(text)
        for name in MODELS:
            shutil.copy(EXAMPLES / f"{name}.3ds", work)
            with open(name + ".set", "w", encoding="ascii") as file:
                file.write(f'{{ input_name "{name}.3ds" camera_index 0 }}')
        sources = [*SCENES, *(name + ".set" for name in MODELS)]
        cases = [(sources[i // 18], FORMATS[i // 3 % 6], SAMPLERS[i % 3]) for i in range(18 * len(sources))]
        if not ALL:
            cases = [(sources[i // 2], FORMATS[i % 6], SAMPLERS[i % 3]) for i in range(2 * len(sources))]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            results = list(pool.map(sweep, enumerate(cases)))
        os.chdir("/")
    faults = [fault for result in results for fault in result[1]]
    print("\n".join(faults))
    print(f"{sum(result[0] for result in results)} runs, {len(faults)} faults")
    return 1 if faults else 0


VARLO, PRELOAD = (os.path.abspath(argument) for argument in sys.argv[1:3])
ALL = sys.argv[3:] == ["all"]
sys.exit(main())
