"""Faults with their places, held against the program, and warnings with their switches."""

import contextlib
import io
import os
import unittest
from pathlib import Path

from scenes import HEAD, SCENE, InFolder
from varlo.check import WARNINGS, check, main
from varlo.scan import decimal, integer

# Lines on which no fault can be put, because they lie in a comment that goes on, end with a colon.
SCATTERED = {
    "main.vlo": '''; a fault on each of these lines is found where it is
include "view.inc" [ of two
lines:] include "light.inc"
surface { color 1 1 1 ; }
[ { ]  diffuse 1 }
declare "} color 1 1 1
''',
    "view.inc": '''camera { position <0 -5 0>
         look_at <0 0 0> }
settings { output_type "ppm"
           output_name "include" resolution 8 6 } include "light.inc"
[ [ a:
b ]
''',
    "light.inc": '''light {
  position <0 -5 5> [ until
  here:] color 1 1 1 }
declare """ color 1 0 0
surface { color #} diffuse 1 }''',
}
SCATTERED["main.vlo"] = SCATTERED["main.vlo"].replace('"}', '"}"')


class Faults(InFolder):
    def places(self, name: str = "main.vlo") -> list[str]:
        found = [finding for finding in check(self.folder / name) if finding.name is None]
        return [f"{finding.file.name}:{finding.line}: {finding.message}" for finding in found]

    def test_on_every_line_of_a_scattered_scene(self) -> None:
        for name, text in SCATTERED.items():
            self.write(name, text)
        self.assertEqual(self.places(), [])
        for name, text in SCATTERED.items():
            lines = text.split("\n")
            for number, line in enumerate(lines, 1):
                if line.endswith((":", " two", " until")):
                    continue
                with self.subTest(file=name, line=number):
                    bad = [*lines[:number - 1], line.partition(";")[0] + " =", *lines[number:]]
                    self.write(name, "\n".join(bad))
                    self.assertEqual(self.places(),
                                     [f"{name}:{number}: Syntaxic analyser stopped on character: '='"])
            self.write(name, text)

    def test_places(self) -> None:
        cases = [
            (SCENE + "sphere { center <0 0 0>\n radius 0 }", "", "main.vlo:7: sphere radius must be greater than 0"),
            (SCENE + 'include "a.inc"\nmove', "\n\n; {\n", "main.vlo:7: Unkown term 'move'"),
            (SCENE + 'include "a.inc" modify', "[\n]", "main.vlo:6: Unkown term 'modify'"),
            (SCENE + 'include "a.inc"\n\n', "\n\nmodify", "a.inc:3: Unkown term 'modify'"),
            (SCENE + 'include "a.inc" }', "\nsphere { center <0 0 0>", "a.inc:2: Unkown parameter in sphere structure"),
            (SCENE + 'include "a.inc" cone { }', "\nsphere { }", "a.inc:2: error in sphere structure declaration"),
            (SCENE + 'include "a.inc" cone { }', "\n", "main.vlo:6: Error in cone structure"),
            (SCENE + 'include "a.inc"\nplane [\n', "", "main.vlo:7: unterminated comment"),
            (SCENE + '\ninclude "none.inc"', "", "main.vlo:7: Scene file: none.inc could no be opened"),
            (SCENE + '\ninclude "a-b"', "", "main.vlo:7: '\"' string delimiter expected"),
            (SCENE + 'include "a.inc"', 'include\n"main.vlo"',
             "a.inc:1: main.vlo is being read already, and would be read for ever"),
            (SCENE + 'settings { output_type "ppm" output_name "a"\nresolution 0.9 5 }', "",
             "main.vlo:7: A picture of 0 x 5 pixels cannot be rendered"),
            ("", "", "main.vlo:1: Missing camera!"),
        ]
        for text, included, place in cases:
            with self.subTest(place=place):
                self.write("main.vlo", text)
                self.write("a.inc", included)
                self.assertEqual(self.places(), [place])

    def test_settings_files(self) -> None:
        self.write("a.set", '{ input_name\n"none.3ds" }')
        self.assertEqual(self.places("a.set"), ["a.set:1: Unable to find the file: none.3ds!"])
        self.write("a.set", '{ input_name "none.3ds"\n radius 0 }')
        self.assertEqual(self.places("a.set"), ["a.set:2: smooth light radius must be greater than 0"])
        self.write("a.obj", "v 1 2 3\n")
        self.assertEqual(self.places("a.obj"), ["a.obj:1: this is neither a scene nor a settings file"])

    def test_numbers(self) -> None:
        for text, real, whole in (("1e3", 1000, 1), ("2.9", 2.9, 2), ("1-2", 1, 1), ("+.5", .5, 0), ("--", 0, 0),
                                  ("-1e", -1, -1), ("4294967297", 4294967297, 1), ("9" * 30, 1e30, -1)):
            with self.subTest(text=text):
                self.assertEqual((decimal(text), integer(text)), (real, whole))


class Warnings(InFolder):
    def said(self, scene: Path, *switches: str) -> tuple[int, str]:
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = main([str(scene), *switches])
        return status, output.getvalue().replace(f"{self.folder}/", "")

    def test_each_and_its_switch(self) -> None:
        lamp = "light { position <0 0 9000>\n color 3 3 3"
        shown = 'settings { output_type "ppm" output_name "a"\n '
        cases = [
            ("early-object", "sphere { center <0 0 0> radius 1 }" + HEAD, "", 1),
            ("dim-lamp", SCENE + lamp + " }", SCENE + lamp + ' attenuation_type "d" }', 7),
            ("dim-lamp", SCENE + lamp + " }", SCENE + lamp.replace("9000", "14") + " }", 7),
            ("dim-lamp", SCENE + lamp + " }", SCENE + lamp.replace("3 3 3", ".4 .4 .4") + " }", 7),
            ("dim-lamp", SCENE + lamp + " }", SCENE + lamp + " } plane { normal <1 0 0> distance 2 }", 7),
            ("glowing-rim", SCENE + "surface { refraction 1\ncolor 1 1 .9 }",
             SCENE + "surface { refraction 1 color 1 1 1 }", 7),
            ("stretched", SCENE + shown + "resolution 20 20 }", SCENE + shown + "resolution 20 15 }", 7),
            ("jagged", SCENE + shown + 'antialiasing "adaptive" }',
             SCENE + shown + 'antialiasing "adaptive" aa_distance 32 }', 6),
            ("low-index", SCENE + "surface { refraction_index 0.5 }", SCENE + "surface { refraction_index 1 }", 6),
            ("unlit", SCENE.replace("light", "surface { }\n; "), "", 1),
        ]
        for name, bad, good, line in cases:
            with self.subTest(name=name, line=line):
                scene = self.write("a.vlo", bad)
                status, output = self.said(scene)
                self.assertEqual(status, 0)
                self.assertRegex(output, rf"^a.vlo:{line}: warning: .* \[{name}\]\n$")
                self.assertEqual(self.said(scene, f"--no-{name}"), (0, ""))
                if good:
                    self.assertEqual(self.said(self.write("a.vlo", good)), (0, ""))
        self.assertEqual({case[0] for case in cases} | {"far-include"}, set(WARNINGS))

    def test_an_include_in_the_working_folder(self) -> None:
        (self.folder / "sub").mkdir()
        self.write("a.inc", "; nothing\n")
        scene = self.write("sub/a.vlo", SCENE + 'include "a.inc"')
        before = os.getcwd()
        self.addCleanup(os.chdir, before)
        self.assertRegex(self.said(scene)[1], "^sub/a.vlo:6: Scene file: a.inc could no be opened\n$")
        os.chdir(self.folder)
        self.assertRegex(self.said(Path("sub/a.vlo"))[1], r"^sub/a.vlo:6: warning: a.inc .*\[far-include\]\n$")


if __name__ == "__main__":
    unittest.main()
