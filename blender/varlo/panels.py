"""What the user sees: the render panel, Blender's own panels for this engine, and the entry in the menu Export."""

from __future__ import annotations

from pathlib import Path

import bpy
import varlo
from bpy.props import StringProperty
from bpy_extras.io_utils import ExportHelper

from .export import export, picture_size
from .notes import Notes

# Of the panels that Blender shows for each engine without any of its own, those that say nothing here.
HIDDEN = ("VIEWLAYER_PT_filter", "VIEWLAYER_PT_layer_passes", "RENDER_PT_simplify", "RENDER_PT_freestyle",
          "VIEWLAYER_PT_freestyle")


class VARLO_PT_render(bpy.types.Panel):
    bl_label = "varlo"
    bl_space_type = "PROPERTIES"
    bl_region_type = "WINDOW"
    bl_context = "render"
    COMPAT_ENGINES = {"VARLO"}

    @classmethod
    def poll(cls, context: bpy.types.Context) -> bool:
        return context.engine in cls.COMPAT_ENGINES

    def draw(self, context: bpy.types.Context) -> None:
        self.layout.use_property_split = True
        own = context.scene.varlo
        for heading, names in (
                ("Picture", ("antialiasing", "aa_distance", "jitter")),
                ("Light", ("exposure", "light_samples", "reflection_samples", "lens_samples", "fisheye")),
                ("Program", ("threads", "queue", "scale", "binary", "folder"))):
            column = self.layout.column(heading=heading)
            for name in names:
                column.prop(own, name)


class EXPORT_SCENE_OT_varlo(bpy.types.Operator, ExportHelper):
    """Write the scene as a text that varlo renders"""

    bl_idname = "export_scene.varlo"
    bl_label = "Export varlo scene"
    filename_ext = ".vlo"
    filter_glob: StringProperty(default="*.vlo", options={"HIDDEN"})

    def execute(self, context: bpy.types.Context) -> set[str]:
        notes = Notes()
        try:
            export(context.evaluated_depsgraph_get(), picture_size(context.scene), notes).write(Path(self.filepath))
        except (varlo.VarloError, OSError) as error:
            self.report({"ERROR"}, f"varlo: {error}")
            return {"CANCELLED"}
        notes.report(self.report)
        return {"FINISHED"}


def menu_export(self: bpy.types.Menu, _: bpy.types.Context) -> None:
    self.layout.operator(EXPORT_SCENE_OT_varlo.bl_idname, text="varlo scene (.vlo)")


def common_panels() -> list[type]:
    return [panel for panel in bpy.types.Panel.__subclasses__()
            if "BLENDER_RENDER" in getattr(panel, "COMPAT_ENGINES", ()) and panel.__name__ not in HIDDEN]


def register() -> None:
    for each in (VARLO_PT_render, EXPORT_SCENE_OT_varlo):
        bpy.utils.register_class(each)
    bpy.types.TOPBAR_MT_file_export.append(menu_export)
    for panel in common_panels():
        panel.COMPAT_ENGINES.add("VARLO")


def unregister() -> None:
    for panel in common_panels():
        panel.COMPAT_ENGINES.discard("VARLO")
    bpy.types.TOPBAR_MT_file_export.remove(menu_export)
    for each in (EXPORT_SCENE_OT_varlo, VARLO_PT_render):
        bpy.utils.unregister_class(each)
