"""Materials: what their nodes say, brought into the words of one `surface`."""

from __future__ import annotations

from collections.abc import Callable
from dataclasses import dataclass, replace
from typing import Any

import bpy
import numpy
import varlo

from .notes import Notes

Color = tuple[float, float, float]


def display(value: float) -> float:
    """A share of light as the screen gets it. varlo adds up what it writes, so its numbers are those of the screen."""
    value = max(value, 0.0)
    return 12.92 * value if value <= 0.0031308 else 1.055 * value ** (1 / 2.4) - 0.055


def display_color(color: Any) -> Color:
    """A colour of Blender's, which is linear, for the screen, each part from 0 to 1."""
    return tuple(round(min(display(float(part)), 1.0), 6) for part in color[:3])  # type: ignore[return-value]


@dataclass(frozen=True)
class Look:
    """What a shader says, in Blender's terms."""

    color: Any = (0.8, 0.8, 0.8)  # linear
    roughness: float = 0.5
    metal: float = 0.0
    highlight: float = 0.5
    clear: float = 0.0  # share of light that passes, bent by `index`
    index: float = 1.45
    glow: Any = (0.0, 0.0, 0.0)  # linear


def mixed(a: Look, b: Look, share: float) -> Look:
    """`share` of b and the rest of a."""
    def between(x: Any, y: Any) -> Any:
        return x + (y - x) * share

    colors = {name: tuple(between(x, y) for x, y in zip(getattr(a, name)[:3], getattr(b, name)[:3]))
              for name in ("color", "glow")}
    numbers = {name: between(getattr(a, name), getattr(b, name))
               for name in ("roughness", "metal", "highlight", "clear", "index")}
    return Look(**colors, **numbers)


class Reader:
    """Reads the nodes of one material."""

    def __init__(self, material: bpy.types.Material, notes: Notes) -> None:
        self.name = material.name
        self.notes = notes

    def value(self, node: bpy.types.Node, *names: str, default: Any = 0.0) -> Any:
        """What the first of the sockets that the node has holds; of a picture its mean."""
        socket = next((node.inputs[name] for name in names if name in node.inputs), None)
        if socket is None:
            return default
        while socket.is_linked:
            source = socket.links[0].from_node
            if source.type == "TEX_IMAGE":
                self.notes.add("a picture on a surface becomes its mean colour", self.name)
                return self.mean(source.image, default=socket.default_value)
            if source.type in ("RGB", "VALUE"):
                return source.outputs[0].default_value
            if source.type == "REROUTE":
                socket = source.inputs[0]
                continue
            self.notes.add(f"a {source.bl_label} node becomes the value behind it", self.name)
            break
        return socket.default_value

    def mean(self, image: bpy.types.Image | None, default: Any) -> Any:
        if image is None or not image.size[0] or not image.size[1]:
            return default
        pixels = numpy.empty(len(image.pixels), numpy.float32)
        image.pixels.foreach_get(pixels)
        mean = pixels.reshape(-1, image.channels).mean(axis=0)
        rgb = mean[:3] if image.channels >= 3 else numpy.repeat(mean[:1], 3)
        # The pixels of a byte picture are those of the screen: linear again, as all of Blender's colours.
        if not image.is_float and image.colorspace_settings.name == "sRGB":
            rgb = numpy.where(rgb <= 0.04045, rgb / 12.92, ((rgb + 0.055) / 1.055) ** 2.4)
        return tuple(float(part) for part in rgb) if hasattr(default, "__len__") else float(rgb.mean())

    def look(self, node: bpy.types.Node | None) -> Look:
        """The look of a shader node."""
        if node is None:
            return Look(color=(0, 0, 0), highlight=0)
        read = self.shaders.get(node.type)
        if read is None:
            self.notes.add(f"a {node.bl_label} node is left out", self.name)
            return Look()
        return read(self, node)

    def behind(self, node: bpy.types.Node, at: int) -> Look:
        socket = node.inputs[at]
        return self.look(socket.links[0].from_node if socket.is_linked else None)

    def principled(self, node: bpy.types.Node) -> Look:
        clear = self.value(node, "Transmission", "Transmission Weight")
        color = self.value(node, "Base Color")
        strength = self.value(node, "Emission Strength", default=1.0)
        glow = tuple(part * strength for part in self.value(node, "Emission", "Emission Color")[:3])
        for name in ("Subsurface", "Subsurface Weight", "Sheen", "Sheen Weight", "Clearcoat", "Coat Weight",
                     "Anisotropic"):
            if name in node.inputs and (node.inputs[name].is_linked or node.inputs[name].default_value):
                self.notes.add(f"{name.replace(' Weight', '').lower()} is left out", self.name)
        look = Look(color, self.value(node, "Roughness"), self.value(node, "Metallic"),
                    self.value(node, "Specular", "Specular IOR Level", default=0.5), clear,
                    self.value(node, "IOR", default=1.45), glow)
        alpha = self.value(node, "Alpha", default=1.0)
        nothing = Look(color=(1, 1, 1), highlight=0, clear=1, index=1.0)
        return look if alpha >= 1 else mixed(nothing, look, max(alpha, 0))

    def diffuse(self, node: bpy.types.Node) -> Look:
        return Look(self.value(node, "Color"), 1.0, highlight=0.0)

    def glossy(self, node: bpy.types.Node) -> Look:
        return Look(self.value(node, "Color"), self.value(node, "Roughness"), metal=1.0)

    def glass(self, node: bpy.types.Node) -> Look:
        return Look(self.value(node, "Color"), self.value(node, "Roughness"), clear=1.0,
                    index=self.value(node, "IOR"))

    def transparent(self, node: bpy.types.Node) -> Look:
        return Look(self.value(node, "Color"), highlight=0.0, clear=1.0, index=1.0)

    def emission(self, node: bpy.types.Node) -> Look:
        strength = self.value(node, "Strength")
        return Look((0, 0, 0), highlight=0.0, glow=tuple(part * strength for part in self.value(node, "Color")[:3]))

    def mix(self, node: bpy.types.Node) -> Look:
        share = node.inputs[0]
        if share.is_linked:
            self.notes.add("a mixture that changes over the surface is taken as even", self.name)
        return mixed(self.behind(node, 1), self.behind(node, 2), min(max(share.default_value, 0), 1))

    def sum(self, node: bpy.types.Node) -> Look:
        a, b = self.behind(node, 0), self.behind(node, 1)
        if not any(b.color[:3]) or not any(a.color[:3]):  # one of them only glows
            shown = a if any(a.color[:3]) else b
            return replace(shown, glow=tuple(x + y for x, y in zip(a.glow, b.glow)))
        return mixed(a, b, 0.5)

    shaders: dict[str, Callable[[Reader, Any], Look]] = {
        "BSDF_PRINCIPLED": principled, "BSDF_DIFFUSE": diffuse, "BSDF_GLOSSY": glossy, "BSDF_ANISOTROPIC": glossy,
        "BSDF_GLASS": glass, "BSDF_REFRACTION": glass, "BSDF_TRANSPARENT": transparent, "EMISSION": emission,
        "MIX_SHADER": mix, "ADD_SHADER": sum,
    }


def look_of(material: bpy.types.Material | None, notes: Notes) -> Look:
    """What a material says: its nodes, or without nodes its colour in the viewport."""
    if material is None:
        return Look()
    if not material.use_nodes or material.node_tree is None:
        return Look(material.diffuse_color, material.roughness, material.metallic, material.specular_intensity)
    output = material.node_tree.get_output_node("ALL") or material.node_tree.get_output_node("CYCLES")
    if output is None or not output.inputs["Surface"].is_linked:
        return Look(color=(0, 0, 0), highlight=0)
    for name, what in (("Displacement", "displacement"), ("Volume", "a volume")):
        if output.inputs[name].is_linked:
            notes.add(f"{what} is left out", material.name)
    return Reader(material, notes).look(output.inputs["Surface"].links[0].from_node)


def surface_of(look: Look, ambient: float, distance: float, size: float, samples: int) -> varlo.surface:
    """One surface of varlo's for a look.

    `ambient`: the light of the world around, 0 to 1. `distance`: from the eye to the object, over which varlo measures
    the blur of a mirror. `size`: of the object; light that passes takes on its colour over this way. `samples`: rays of
    a rough mirror.
    """
    rough = min(max(look.roughness, 0.0), 1.0)
    metal, clear = min(max(look.metal, 0.0), 1.0), min(max(look.clear, 0.0), 1.0)
    glow = max(map(float, look.glow[:3]))
    color, lit = display_color(look.color), 1.0
    if glow > 0:  # it shines by itself, which lamps have no part in
        color = display_color([part / max(glow, 1.0) for part in look.glow[:3]])
        ambient, lit = 1.0, 0.0
    words: dict[str, Any] = {"color": color, "ambient": ambient * (1 - clear),
                             "diffuse": lit * (1 - clear) * (1 - 0.6 * metal)}
    # A lobe of roughness r looks like a highlight with this exponent (Walter et al., 2007, Microfacet Models).
    exponent = min(max(2 / max(rough, 0.03) ** 4 - 2, 1.0), 2000.0)
    specular = lit * (1 - rough) ** 2 * max(look.highlight, metal) * (0.5 + 0.5 * metal)
    if specular > 0.005:
        words.update(specular=specular, roughness=exponent)
    mirror = lit * max(0.7 * metal, 0.15 * look.highlight * (1 - rough) ** 4 * (1 if rough < 0.2 else 0))
    if mirror > 0.01:
        words["reflection"] = mirror
        if rough > 0.05:
            words.update(reflection_type="fuzzy", reflection_radius=0.6 * rough * distance, reflection_samples=samples)
    if clear > 0.001:
        # A colour with one part at 1 and another below would glow at the rim: all below, or all 1.
        tint = [min(part, 0.999) for part in color] if min(color) < 1 else list(color)
        words.update(color=tuple(max(part, 0.001) ** (1 / size) for part in tint), refraction=clear,
                     refraction_index=max(look.index, 1.0001))
    return varlo.surface(**words)
