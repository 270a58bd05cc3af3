"""The render engine: writes the scene, runs varlo, and shows its picture."""

from __future__ import annotations

from contextlib import ExitStack
from pathlib import Path

import bpy
import varlo
from varlo import run

from .export import export, picture_size
from .notes import Notes


class Cancelled(Exception):
    """The user pressed Esc."""


class VarloRender(bpy.types.RenderEngine):
    bl_idname = "VARLO"
    bl_label = "varlo"
    bl_use_preview = False
    bl_use_shading_nodes_custom = False

    def render(self, depsgraph: bpy.types.Depsgraph) -> None:
        notes = Notes()
        try:
            with ExitStack() as stack:
                folder = self.folder(depsgraph.scene, stack)
                picture = self.make_picture(depsgraph, folder, notes)
                self.show(picture, picture_size(depsgraph.scene))
        except Cancelled:
            pass
        except (varlo.VarloError, OSError) as error:
            self.report({"ERROR"}, f"varlo: {error}")
            self.error_set(f"varlo: {error}")
        notes.report(self.report)

    def folder(self, scene: bpy.types.Scene, stack: ExitStack) -> Path:
        """Where scene and picture go: the folder of the settings, or one that is gone at the end."""
        if not scene.varlo.folder:
            return stack.enter_context(run.scratch_folder())
        folder = Path(bpy.path.abspath(scene.varlo.folder))
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def make_picture(self, depsgraph: bpy.types.Depsgraph, folder: Path, notes: Notes) -> Path:
        """Writes the scene and has it rendered. Returns the picture; raises `Cancelled`, or what went wrong."""
        scene = depsgraph.scene
        name = f"frame{scene.frame_current:04d}"
        self.update_stats("varlo", "writing the scene")
        export(depsgraph, picture_size(scene), notes).write(folder / f"{name}.vlo")
        self.idle()
        self.update_stats("varlo", "rendering")
        run.run(["-i", f"{name}.vlo", "-o", name, "-png", "-t", scene.varlo.threads, "-pqs", str(scene.varlo.queue)],
                cwd=folder, binary=run.find_binary(bpy.path.abspath(scene.varlo.binary) or None),
                progress=self.progress, idle=self.idle).check()
        return folder / f"{name}.png"

    def progress(self, share: float) -> None:
        self.update_progress(share)
        self.idle()

    def idle(self) -> None:
        if self.test_break():
            raise Cancelled

    def show(self, picture: Path, size: tuple[int, int]) -> None:
        result = self.begin_result(0, 0, *size)
        result.layers[0].load_from_file(str(picture))
        self.end_result(result)


def register() -> None:
    bpy.utils.register_class(VarloRender)


def unregister() -> None:
    bpy.utils.unregister_class(VarloRender)
