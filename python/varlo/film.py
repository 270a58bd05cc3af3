"""varlo-film: frames from one template, on one machine or on many, and a film of them."""

import argparse
import hashlib
import os
import shlex
import shutil
import subprocess
import sys
import time
from collections.abc import Sequence
from pathlib import Path

from varlo.frames import Frames, from_command, from_template
from varlo.render import FORMATS, Job, Usage, need, read_arguments
from varlo.run import VarloError, ended_by_signals, scratch_folder
from varlo.slurm import write_jobs

ENCODERS = {
    ".mp4": ["-vf", "pad=ceil(iw/2)*2:ceil(ih/2)*2", "-c:v", "libx264", "-crf", "17", "-pix_fmt", "yuv420p",
             "-movflags", "+faststart"],
    ".webm": ["-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0", "-row-mt", "1", "-pix_fmt", "yuv420p"],
    ".gif": ["-vf", "split[a][b];[a]palettegen=stats_mode=diff[p];[b][p]paletteuse=dither=sierra2_4a", "-loop", "0"],
}
THREADS = 2  # of a frame, unless the options say more
ATTEMPTS = 3  # at a frame, each on another machine where there are more
# A machine that is gone has to be noticed, and none may ask for a password.
SSH = "ssh -o BatchMode=yes -o ServerAliveInterval=10 -o ServerAliveCountMax=2"

DESCRIPTION = """
Renders the frames of a film and puts them together. In TEMPLATE, a scene, @t@ stands for a number from 0 in the first
frame to 1 in the last, @frame@ for the number of the frame from 0 on, @frames@ for how many there are, and
@(EXPRESSION)@ for arithmetic with them, such as @(4*cos(tau*frame/frames))@. Options of varlo-render stand behind `--`.
Scenes, pictures and logs of the frames lie in a folder named like the film; pictures there that are whole are kept, so
that a second run finishes the first. The status is 0 when the film is there, 1 when a frame failed, which is named,
and 2 for wrong arguments.
"""


def options_parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="varlo-film", description=DESCRIPTION,
        usage="varlo-film -n FRAMES [OPTION...] TEMPLATE [-- OPTION-OF-VARLO-RENDER...]\n"
        "       varlo-film -n FRAMES [OPTION...] --command COMMAND [-- OPTION-OF-VARLO-RENDER...]")
    parser.add_argument("template", metavar="TEMPLATE", type=Path, nargs="?", help="a scene with places for numbers")
    parser.add_argument("-n", "--frames", metavar="FRAMES", type=int, required=True, help="how many frames")
    parser.add_argument("-r", "--rate", type=float, default=25, help="frames in a second (25)")
    parser.add_argument("-o", "--output", metavar="FILM", type=Path,
                        help="the film, .mp4, .webm or .gif, encoded by ffmpeg; left out, there are frames alone")
    parser.add_argument("--command", help="in place of TEMPLATE a command of the shell that prints the scene of a "
                        "frame, whose number it is given as its last argument")
    parser.add_argument("--folder", type=Path,
                        help="where the frames lie (a folder named like FILM or TEMPLATE, with the ending .frames)")
    parser.add_argument("-j", "--jobs", type=int, help="frames at once (so many that each has two processors)")
    parser.add_argument("--sshlogin", metavar="HOST,...", help="renders on these machines, by ssh; varlo-tools is "
                        "installed there; the name : is this one")
    parser.add_argument("--slurm", action="store_true", help="renders nothing, but writes a Slurm array job for the "
                        "frames that are missing, and a job behind it that puts the film together")
    parser.add_argument("--assemble", action="store_true", help="renders nothing, but puts the film together")
    return parser


def threads_of(job: Job) -> int:
    """How many threads the options give to a frame."""
    given = [job.options[i + 1] for i, word in enumerate(job.options[:-1]) if word in ("-t", "--thread")]
    return int(given[-1]) if given and given[-1].isdigit() else THREADS


def frame_options(words: Sequence[str]) -> tuple[list[str], str, int]:
    """What varlo-render is given for each frame, the ending of the pictures, and the threads of a frame."""
    job = read_arguments(["SCENE", *words])
    if job.picture is not None or job.open:
        raise Usage("-o and --open have no place among the options of a frame")
    has_threads = any(word in ("-t", "--thread") for word in words)
    options = [*words, *([] if has_threads else ["-t", str(THREADS)])]
    return options, FORMATS[job.format or "-png"], threads_of(job) if has_threads else THREADS


# ---- rendering ----


def tool(name: str, is_remote: bool = False) -> list[str]:
    """The command of an installed tool, or where it is not installed, on this machine, of this very package."""
    if is_remote or shutil.which(f"varlo-{name}"):
        return [f"varlo-{name}"]
    return ["env", f"PYTHONPATH={Path(__file__).resolve().parents[1]}", sys.executable, "-m", "varlo", name]


def parallel_command(frames: Frames, options: argparse.Namespace, threads: int, resume: bool) -> list[str]:
    render = shlex.join([*tool("render", bool(options.sshlogin)), *frames.options, "--quiet"])
    job = f"{render} {{}}.vlo -o {{}}{frames.suffix} 2>&1"
    command = ["parallel", "--plain", "--will-cite", "--arg-file", "todo", "--joblog", "joblog", "--results", "logs/{}",
               "--jobs"]
    if options.sshlogin:
        need("rsync", "rsync")
        command += [str(options.jobs or f"{100 // threads}%"), "--retries", str(ATTEMPTS), "--ssh", SSH, "--sshlogin",
                    options.sshlogin, "--workdir", remote_folder(frames), "--cleanup", "--transferfile", "{}.vlo",
                    "--return", f"{{}}{frames.suffix}"]
        for name in frames.included:
            command += ["--basefile", name]
        # The folder below the home is for the others: nothing is carried to this machine.
        job = f"[ \"$PARALLEL_SSHLOGIN\" != : ] || cd {shlex.quote(str(frames.folder.absolute()))}; {job}"
    else:
        command.append(str(options.jobs or max(1, len(os.sched_getaffinity(0)) // threads)))
    if resume:
        command.append("--resume-failed")
    if sys.stderr.isatty():
        command += ["--eta", "--bar"]
    return [*command, job]


def remote_folder(frames: Frames) -> str:
    """Below the home of the other machine, and for this film alone."""
    folder = hashlib.sha256(os.fsencode(frames.folder.absolute())).hexdigest()[:16]
    return f".cache/varlo-film/{os.uname().nodename}-{folder}"


def resumable(folder: Path, missing: Sequence[str], command: str) -> bool:
    """Whether the log of the last run tells of these very frames that they are to be done."""
    try:
        if folder.joinpath("command").read_text() != command:
            return False
        todo = folder.joinpath("todo").read_text().split()
        rows = [line.split("\t") for line in folder.joinpath("joblog").read_text().splitlines()[1:]]
        good = {todo[int(row[0]) - 1] for row in rows if row[6] == row[7] == "0"}
    except (OSError, ValueError, IndexError):
        return False
    return set(missing) == set(todo) - good


def render(frames: Frames, options: argparse.Namespace, threads: int) -> None:
    """Has GNU parallel render what is missing."""
    missing = frames.missing()
    if not missing:
        return
    need("parallel", "parallel")
    fresh = shlex.join(parallel_command(frames, options, threads, False))
    resume = resumable(frames.folder, missing, fresh)
    if not resume:
        frames.folder.joinpath("joblog").unlink(missing_ok=True)
        frames.folder.joinpath("command").write_text(fresh)
        frames.folder.joinpath("todo").write_text("".join(f"{name}\n" for name in missing))
    with subprocess.Popen(parallel_command(frames, options, threads, resume), cwd=frames.folder,
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL) as process:
        try:
            process.wait()
        finally:
            for _ in range(2):  # the first one lets the running frames end, the second does not
                if process.poll() is None:
                    process.terminate()
                    time.sleep(0.2)


def complain(frames: Frames, missing: Sequence[str]) -> None:
    for name in missing:
        log = frames.log(name)
        text = log.read_text(errors="replace").strip() if log.is_file() else ""
        print(f"frame {int(name)} failed: {os.path.relpath(log)}{': ' if text else ''}{text.split(chr(10))[-1]}",
              file=sys.stderr)


def encode(frames: Frames, film: Path, rate: float) -> None:
    """Makes the film, which takes its place when it is whole."""
    with scratch_folder(film.absolute().parent, ".varlo-") as scratch:
        new = scratch / film.name
        pattern = f"{frames.folder.absolute()}/%0{len(frames.name(0))}d{frames.suffix}".replace("%%", "%")
        done = subprocess.run([need("ffmpeg", "ffmpeg"), "-nostdin", "-loglevel", "error", "-framerate", f"{rate:g}",
                               "-i", pattern, "-frames:v", str(frames.count), *ENCODERS[film.suffix], str(new)],
                              stderr=subprocess.PIPE, text=True, errors="replace", check=False)
        if done.returncode != 0:
            raise VarloError(f"ffmpeg: {done.stderr.strip()}")
        os.replace(new, film)


def make(options: argparse.Namespace, words: Sequence[str]) -> int:
    start = time.monotonic()
    film: Path | None = options.output
    if film is not None and film.suffix not in ENCODERS:
        raise Usage(f"{film}: a film ends with {', '.join(ENCODERS)}")
    if film is not None and not options.slurm:
        need("ffmpeg", "ffmpeg")
    render_options, suffix, threads = frame_options(words)
    named = film or options.template or Path("film")
    folder = options.folder or named.with_name(f"{named.name.partition('.')[0]}.frames")
    frames = Frames(folder, options.frames, suffix, render_options)
    if not options.assemble:
        if options.command is not None:
            from_command(frames, options.command)
        else:
            from_template(frames, options.template)
    if options.slurm:
        again = [word for word in options.words if word != "--slurm"]
        write_jobs(frames, tool("render"), threads, [*tool("film"), "--assemble", *again])
        print(f"Submit {frames.folder / 'submit'}")
        return 0
    if not options.assemble:
        render(frames, options, threads)
    if missing := frames.missing():
        complain(frames, missing)
        print(f"varlo-film: {len(missing)} of {frames.count} frames are missing", file=sys.stderr)
        return 1
    if film is not None:
        encode(frames, film, options.rate)
    print(f"{film or folder}: {frames.count} frames, {frames.count / options.rate:.3g} s at {options.rate:g} a second, "
          f"made in {time.monotonic() - start:.1f} s")
    return 0


def main(arguments: Sequence[str] | None = None) -> int:
    words = list(sys.argv[1:] if arguments is None else arguments)
    split = words.index("--") if "--" in words else len(words)
    parser = options_parser()
    options = parser.parse_args(words[:split], argparse.Namespace(words=words))
    if (options.template is None) == (options.command is None):
        parser.error("one of TEMPLATE and --command is needed")
    if options.frames < 1 or options.rate <= 0 or (options.jobs or 1) < 1:
        parser.error("-n, -r and -j have to be above 0")
    try:
        with ended_by_signals():
            return make(options, words[split + 1:])
    except Usage as error:
        parser.error(str(error))
    except (VarloError, OSError) as error:
        print(f"varlo-film: {error}", file=sys.stderr)
    except KeyboardInterrupt:
        return 130
    return 1


if __name__ == "__main__":
    sys.exit(main())
