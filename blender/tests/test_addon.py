"""Runs in Blender: blender -b --factory-startup -P blender/tests/test_addon.py -- ADDON.zip"""

import math
import os
import signal
import sys
import threading
import time
import unittest
from pathlib import Path

import bpy

sys.path.insert(0, str(Path(__file__).parent))
from support import FOLDER, covered, fresh, grown, number, numbers, rendered, statement, written  # noqa: E402


def add(kind: str, **words: object) -> bpy.types.Object:
    getattr(bpy.ops.mesh, f"primitive_{kind}_add")(**words)
    return bpy.context.object


class Silhouettes(unittest.TestCase):
    def test_the_same_pixels_are_covered_in_blenders_own_picture(self) -> None:
        """Up to a pixel at the edge: by a mirrored object with modifiers, and by a collection that is there twice."""
        for size, lens in (((100, 140), {"sensor_fit": "HORIZONTAL", "lens": 60}), ((100, 160), {"angle": 0.9}),
                           ((160, 90), {"sensor_fit": "VERTICAL", "sensor_height": 18})):
            with self.subTest(size):
                eye = fresh(*size).camera.data
                for word, value in lens.items():
                    setattr(eye, word, value)
                item = add("cube", size=1, location=(-1.2, 0, 1.8))
                item.scale = (0.8, -0.3, 1.2)
                item.modifiers.new("rows", "ARRAY").count = 3
                item.modifiers.new("round", "SUBSURF").render_levels = 2
                pair = bpy.data.collections.new("pair")
                pair.objects.link(add("cone", location=(0.5, 0, 0)))
                for turn in (0.4, 2.5):
                    bpy.ops.object.collection_instance_add(collection="pair", rotation=(0, turn, 0))
                own, theirs = covered("VARLO"), covered("CYCLES")
                self.assertTrue(50 < theirs.sum() < 0.8 * theirs.size, theirs.sum())
                self.assertFalse((own & ~grown(theirs)).any(), "varlo's is larger")
                self.assertFalse((theirs & ~grown(own)).any(), "varlo's is smaller")


class Geometry(unittest.TestCase):
    def test_counts_and_shading(self) -> None:
        fresh()
        add("uv_sphere", segments=16, ring_count=8).scale.x = -1
        for angle, counts in ((1, (0, 224)), (0.01, (224, 0))):
            bpy.ops.object.shade_smooth(use_auto_smooth=True, auto_smooth_angle=angle)
            self.assertEqual((written().count("\ntriangle {"), written().count("\npatch {")), counts)

    def test_materials_of_single_faces(self) -> None:
        fresh()
        cube = add("cube")
        for color in ((1, 0, 0, 1), (0, 1, 0, 1)):
            material = bpy.data.materials.new("paint")
            material.diffuse_color = color
            cube.data.materials.append(material)
        cube.data.polygons[3].material_index = 1
        add("cube").hide_render = True
        red, green = written().split("surface {")[1:]
        self.assertEqual((red.count("\ntriangle"), green.count("\ntriangle")), (10, 2))
        self.assertEqual((numbers("color", red), numbers("color", green)), ([1, 0, 0], [0, 1, 0]))

    def test_exact_shapes(self) -> None:
        fresh().varlo.scale = 10
        shapes = {"sphere": (2, 2, 2), "cylinder": (1, 1, 3), "cone": (1, 1, 2), "disc": (3, 3, 1), "plane": (1, 1, 1)}
        for kind, scale in (*shapes.items(), ("sphere", (1, 2, 1))):  # of the uneven sphere there is a remark
            bpy.ops.object.empty_add(location=(1, 0, 0))
            bpy.context.object["varlo"], bpy.context.object.scale = kind, scale
        text = written()
        self.assertEqual({kind: text.count(f"\n{kind} {{") for kind in shapes}, dict.fromkeys(shapes, 1))
        ball = statement("sphere")
        self.assertEqual((numbers("center", ball), number("radius", ball)), ([10, 0, 0], 20))


class Eyes(unittest.TestCase):
    def test_lens_and_fisheye(self) -> None:
        scene = fresh()
        scene.varlo.scale = 10
        dof = scene.camera.data.dof
        dof.use_dof, dof.focus_distance, dof.aperture_fstop = True, 4, 2
        text = statement("camera")
        radius = 10 * 0.05 / (2 * 2)
        self.assertAlmostEqual((2 * number("aperture", text)) ** 2, math.pi * radius ** 2, 6)
        self.assertAlmostEqual(number("focal_length", text), 40, 4)
        scene.camera.data.type, scene.camera.data.cycles.panorama_type = "PANO", "FISHEYE_EQUIDISTANT"
        scene.camera.data.cycles.fisheye_fov = 2
        self.assertIn('projection_type "fisheye"', statement("camera"))
        self.assertAlmostEqual(number("fov", statement("camera")), math.degrees(2), 4)

    def test_what_varlo_has_not_is_refused(self) -> None:
        scene = fresh()
        for owner, word, value in (scene.camera.data, "type", "ORTHO"), (scene.varlo, "binary", "/nowhere/varlo"):
            setattr(owner, word, value)
            with self.assertRaisesRegex(RuntimeError, "orthographic|/nowhere"):
                rendered()
            scene.camera.data.type = "PERSP"


class Lights(unittest.TestCase):
    def test_kinds(self) -> None:
        fresh().varlo.scale = 10
        for kind, words, expected in (
                ("POINT", {"shadow_soft_size": 0.5}, {"radius": 5}),
                ("SPOT", {"spot_size": 1.0, "spot_blend": 0.25}, {"max_angle": 57.2958, "min_angle": 42.9718}),
                ("AREA", {"size": 2}, {"radius": 10, "max_angle": 180}),
                ("SUN", {"angle": 0}, {})):
            bpy.ops.object.light_add(type=kind)
            for word, value in words.items():
                setattr(bpy.context.object.data, word, value)
            text = statement("light")
            self.assertEqual({word: round(number(word, text), 4) for word in expected}, expected)
            self.assertEqual("smooth" in text, kind != "SUN")
        bpy.context.scene.varlo.exposure = 20
        self.assertEqual(numbers("color", statement("light")), [1, 1, 1])  # the brightest gives full light

    def test_light_falls_where_it_does_in_blender(self) -> None:
        """A lamp of each kind to the left: the mean of each half of the picture is near that of Blender's own."""
        for kind, energy in (("POINT", 400), ("SPOT", 400), ("AREA", 200), ("SUN", 2)):
            with self.subTest(kind):
                scene = fresh(60, 40)
                add("plane", size=30, location=(0, 3, -1))
                scene.world.color = (0, 0, 0)
                bpy.ops.object.light_add(type=kind, location=(-2, 0, 3), rotation=(0, -0.6, 0))
                bpy.context.object.data.energy = energy
                own = rendered()[:18, :, :3]
                scene.render.engine = "CYCLES"
                scene.cycles.samples, scene.cycles.use_denoising, scene.cycles.max_bounces = 16, False, 0
                theirs = rendered()[:18, :, :3]
                for half in (slice(0, 30), slice(30, 60)):
                    self.assertAlmostEqual(own[:, half].mean(), theirs[:, half].mean(), delta=0.2)


class Materials(unittest.TestCase):
    def surface(self, node: str, **values: object) -> str:
        fresh()
        add("cube")
        material = bpy.data.materials.new("paint")
        material.use_nodes = True
        nodes = material.node_tree.nodes
        shader = nodes.new(f"ShaderNode{node}")
        for name, value in values.items():
            shader.inputs[name.replace("_", " ")].default_value = value
        material.node_tree.links.new(shader.outputs[0], nodes["Material Output"].inputs["Surface"])
        bpy.context.object.data.materials.append(material)
        return statement("surface")

    def test_shaders(self) -> None:
        grey = (0.2140, 0.2140, 0.2140, 1)  # half of what the screen can do
        for node, values, expected in (
                ("BsdfPrincipled", {"Base_Color": grey, "Roughness": 0.5}, {"diffuse": 1, "roughness": 30}),
                ("BsdfPrincipled", {"Metallic": 1.0, "Roughness": 0.0}, {"reflection": 0.7, "diffuse": 0.4}),
                ("BsdfGlass", {"IOR": 1.33}, {"refraction": 1, "refraction_index": 1.33}),
                ("BsdfPrincipled", {"Transmission": 0.5, "IOR": 1.5}, {"refraction": 0.5, "diffuse": 0.5}),
                ("BsdfPrincipled", {"Alpha": 0.25}, {"refraction": 0.75}),
                ("Emission", {"Color": grey, "Strength": 1.0}, {"color": 0.5, "ambient": 1})):
            text = self.surface(node, **values)
            self.assertEqual({word: round(number(word, text), 3) for word in expected}, expected, node)
        self.assertNotIn("diffuse", text)
        self.assertGreater(number("reflection_radius", self.surface("BsdfGlossy", Roughness=0.3)), 0)

    def test_a_picture_becomes_its_mean(self) -> None:
        self.surface("BsdfPrincipled")
        tree = bpy.data.materials["paint"].node_tree
        image = bpy.data.images.new("half", 4, 4)
        image.pixels = [0, 0, 0, 1] * 8 + [1, 1, 1, 1] * 8
        node = tree.nodes.new("ShaderNodeTexImage")
        node.image = image
        tree.links.new(node.outputs[0], tree.nodes[-2].inputs["Base Color"])
        # The mean of the shares on the screen: that is what the eye takes from a fine pattern of them here.
        self.assertAlmostEqual(numbers("color", statement("surface"))[1], 0.5, 2)


class Engine(unittest.TestCase):
    def test_pictures_of_an_animation(self) -> None:
        scene = fresh(64, 48)
        add("cube").driver_add("location", 0).driver.expression = "frame"
        scene.frame_end = 2
        scene.varlo.folder = str(FOLDER / "kept")
        scene.render.filepath = str(FOLDER / "film")
        bpy.ops.render.render(animation=True)
        names = sorted(path.name for path in (FOLDER / "kept").iterdir())
        self.assertEqual(names, [f"frame000{at}.{kind}" for at in (1, 2) for kind in ("png", "vlo")])
        self.assertNotEqual(*((FOLDER / f"film000{at}.png").read_bytes() for at in (1, 2)))

    def test_esc_ends_it_and_leaves_nothing(self) -> None:
        scene = fresh(3840, 2160)  # minutes of work
        add("plane", size=30)
        bpy.ops.object.light_add(type="POINT", location=(3, -5, 4))
        scene.varlo.light_samples = 1024
        running: list[str] = []

        def press_esc() -> None:
            while not running:
                time.sleep(0.05)
                children = Path(f"/proc/self/task/{os.getpid()}/children").read_text().split()
                running.extend(pid for pid in children if Path(f"/proc/{pid}/comm").read_text() == "varlo\n")
            os.kill(os.getpid(), signal.SIGINT)  # what Esc is to a Blender without a window

        threading.Thread(target=press_esc).start()
        start = time.monotonic()
        bpy.ops.render.render()
        self.assertLess(time.monotonic() - start, 30)
        self.assertFalse(Path("/proc", running[0]).exists())
        self.assertEqual(list(FOLDER.glob("varlo-*")), [])


if __name__ == "__main__":
    bpy.ops.preferences.addon_install(filepath=os.path.abspath(sys.argv[sys.argv.index("--") + 1]), overwrite=True)
    outcome = unittest.main(argv=[sys.argv[0], *sys.argv[sys.argv.index("--") + 2:]], exit=False, verbosity=2).result
    print(f"{outcome.testsRun - len(outcome.failures) - len(outcome.errors)} passed, "
          f"{len(outcome.failures) + len(outcome.errors)} failed", flush=True)
    sys.exit(0 if outcome.wasSuccessful() else 1)
