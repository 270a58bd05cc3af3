"""Jobs of Slurm for the frames of a film, and one behind them that puts it together."""

import shlex
from collections.abc import Sequence
from pathlib import Path

from varlo.frames import Frames

LARGEST_ARRAY = 1000  # tasks; what slurm.conf allows where nobody has changed it

FRAMES = """#!/bin/sh
#SBATCH --job-name={name}
#SBATCH --array=1-{tasks}
#SBATCH --cpus-per-task={threads}
#SBATCH --output=logs/task-%a

# Each task renders every {tasks}th of the frames in todo.
status=0
for frame in $(awk -v task="$SLURM_ARRAY_TASK_ID" '(NR - task) % {tasks} == 0' todo); do
    {render} "$frame.vlo" -o "$frame{suffix}" --quiet >"logs/$frame" 2>&1 || status=1
done
exit $status
"""

FILM = """#!/bin/sh
#SBATCH --job-name={name}-film
#SBATCH --cpus-per-task={threads}
#SBATCH --output=logs/film

cd -- {origin} && exec {film}
"""

# Behind the frames however they end: what is missing is then named.
SUBMIT = """#!/bin/sh
# Submits the frames, and the film behind them; arguments go to sbatch, such as --partition=NAME.
set -eu
cd -- {folder}
frames=$(sbatch --parsable "$@" frames.sbatch)
sbatch --parsable --dependency="afterany:$frames" "$@" film.sbatch
"""


def write_jobs(frames: Frames, render: Sequence[str], threads: int, film: Sequence[str]) -> None:
    """Writes frames.sbatch, film.sbatch and submit into the folder of the frames, which all machines see."""
    missing = frames.missing()
    values = {
        "name": shlex.quote(frames.folder.name.removesuffix(".frames")),
        "tasks": max(1, min(len(missing), LARGEST_ARRAY)), "threads": threads, "suffix": frames.suffix,
        "render": shlex.join([*render, *frames.options]), "film": shlex.join(film),
        "origin": shlex.quote(str(Path.cwd())),
        "folder": shlex.quote(str(frames.folder.absolute())),
    }
    frames.folder.joinpath("todo").write_text("".join(f"{name}\n" for name in missing))
    for name, text in (("frames.sbatch", FRAMES), ("film.sbatch", FILM), ("submit", SUBMIT)):
        frames.folder.joinpath(name).write_text(text.format_map(values))
    frames.folder.joinpath("submit").chmod(0o755)
