// The parts of the playground that need no page.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { loadVarlo } from "../node.mjs";
import { faultsIn } from "../page/faults.js";
import { packLink, unpackLink, withFiles } from "../page/project.js";
import { sizeOf, surroundings } from "../page/scanner.js";
import { readWords } from "../words.mjs";

const root = fileURLToPath(new URL("../..", import.meta.url));
const within = (files) => (name) => files[name];

/** The status of a run, and the first fault that its output tells of. */
async function faultOf(build, files, ...options) {
  const varlo = await loadVarlo(join(root, "build", build));
  const [main] = Object.keys(files);
  const args = [main.endsWith(".set") ? "-3ds" : "-i", main, "-png", ...options];
  let output = "";
  const { status } = await varlo({ args, files, print: (text) => (output += text) });
  return { status, ...faultsIn(output, status, main, within(files))[0] };
}

const VIEW =
  'settings { output_type "png" output_name "x" resolution 8 6 } camera { position <0 0 0> look_at <0 1 0> }';
const RED = "surface { color 1 0 0 }";
const BALL = "sphere { center <0 0 0> radius";

// Of each the texts of a scene, or of settings that begin with a brace, of b.inc and of c.inc. The program itself says
// what is wrong; what is to be marked stands between « and ».
const faulty = {
  "in the scene": [`${VIEW}\n${RED}\n  «${BALL} 0 }» ; none`],
  "an unknown word": [`${VIEW}\n«spher» { }`],
  "a character": [`${VIEW}\n${BALL} «=» 1 }`],
  "in an include": [`${VIEW}\ninclude "b.inc"\n${RED}`, `;\n;\n\n«${BALL} x }»\n`],
  "behind an include": [`include "b.inc"\n${VIEW}\n«sphere 1»\n`, "\n\n\n"],
  "first line of an include": [`${VIEW}\n include "b.inc" ${RED}`, "«disc 1»\n"],
  "on the line of an include": [`include "b.inc" «disc 1»\n`, `${RED}\n`],
  "an include twice": ['include "b.inc"\ninclude "b.inc"\n«ring 1»', `\n${RED}`],
  nested: ['include "b.inc"\n', '\ninclude "c.inc"\n', "\n\n«plane 1»"],
  "in a comment": ['[ include "b.inc"\n]\n; include "b.inc"\n«plane 1»'],
  "a missing file": [`${VIEW}\n «include "b.inc"»`],
  "a file that includes itself": ['«include "a.vlo"»\n'],
  "at the end": [`${VIEW}\nsphere {\n«»`],
  "in the settings of a model": ["{\n «input_name x }»"],
};

test("a fault has its place in the file that holds it", async () => {
  for (const [name, marked] of Object.entries(faulty)) {
    const files = {};
    let wanted;
    marked.forEach((text, i) => {
      const file = [text.startsWith("{") ? "a.set" : "a.vlo", "b.inc", "c.inc"][i];
      const from = text.indexOf("«");
      if (from >= 0) wanted = { file, from, to: text.indexOf("»") - 1, line: text.slice(0, from).split("\n").length };
      files[file] = text.replace(/[«»]/g, "");
    });
    const { status, file, from, to, line } = await faultOf("wasm", files);
    assert.deepEqual({ status, file, from, to, line }, { status: 255, ...wanted }, name);
  }
});

test("a fault without a place", async () => {
  assert.deepEqual(await faultOf("wasm", { "a.vlo": RED }), { status: 255, message: "Missing camera!" });
  // Slivers whose bounds overlap: a ray meets more of them than the queue holds. It is a thread that ends the run, often
  // while another one adds to the bar, and others render on.
  const sliver = (_, i) => {
    const [x, y, z] = [1, 2, 3].map((axis) => 10 * Math.sin((i + 1) * axis));
    return `triangle { vertex <${x} ${y} ${z}> vertex <${-x} ${-y} ${-z}> vertex <${0.01 - x} ${-y} ${0.01 - z}> }`;
  };
  const settings = 'settings { output_type "png" output_name "x" resolution 8 8 }';
  const camera = "camera { position <0.3 -80 0.2> look_at <0 1 10> fov 10 }";
  const scene = [settings, camera, RED, ...Array.from({ length: 3000 }, sliver)].join("\n");
  for (const build of ["wasm", ...Array(5).fill("wasm-threads")]) {
    const { status, message } = await faultOf(build, { "a.vlo": scene }, "-pqs", "101", "-t", "8");
    assert.deepEqual([status, message.slice(0, 21)], [1, "VARLO is out of space"], build);
  }
});

test("the size of the picture", () => {
  const cases = [
    [{ "a.vlo": VIEW }, [8, 6]],
    [{ "a.vlo": "settings { }" }, [320, 240]],
    [{ "a.vlo": "settings { resolution 8 6 display 4 3.9 }" }, [4, 3]],
    [{ "a.vlo": 'include "b.inc" camera { resolution }', "b.inc": "settings { display 9 [ 8 ] 7 }" }, [9, 7]],
    [{ "a.set": "{ resolution 5 4 }" }, [5, 4]],
  ];
  for (const [files, size] of cases) {
    const main = Object.keys(files)[0];
    assert.deepEqual(sizeOf(main, within(files)), size, files[main]);
  }
});

test("what stands around the cursor, which is at the |", () => {
  const cases = [
    ["sphere { center <0 0 0> rad|", { block: "sphere", word: "center", quoted: false }],
    ["sphere { } |", { block: "", word: "sphere", quoted: false }],
    ['settings { antialiasing "qu|', { block: "settings", word: "antialiasing", quoted: true }],
    ['settings { output_type "png" |', { block: "settings", word: "output_type", quoted: false }],
    ["[ light { ] plane { |", { block: "plane", word: "plane", quoted: false }],
  ];
  for (const [text, wanted] of cases)
    assert.deepEqual(surroundings(text.replace("|", ""), text.indexOf("|")), wanted, text);
});

test("the manual's tables have every word that the scanner finds", () => {
  const { blocks, statements } = readWords();
  const known = {
    statement: new Set(statements.map(({ word }) => word)),
    parameter: new Set(Object.values(blocks).flatMap((rows) => rows.map(({ word }) => word))),
  };
  const rows = readFileSync(join(root, "editors/keywords.txt"), "utf8")
    .split("\n")
    .filter((row) => /^\w/.test(row));
  const absent = rows.map((row) => row.split(" ")).filter(([word, kind]) => known[kind] && !known[kind].has(word));
  assert.deepEqual(absent, []);
  const { value, default: start, choices } = blocks.settings.find(({ word }) => word === "aa_type");
  assert.deepEqual([value, start, choices], ["string", '"none"', ["none", "quick", "adaptive"]]);
});

test("a link holds the whole project", async () => {
  const project = { main: "a.set", files: { "a.set": "{ ° }", "m.3ds": new Uint8Array([0, 128, 255]) } };
  const choice = { size: [3, 2], sampler: "-aan", threads: 4 };
  const packed = await packLink(project, choice);
  assert.match(packed, /^[\w-]+$/);
  assert.deepEqual(await unpackLink(packed), { project, choice });
  for (const broken of [packed.slice(0, -9), "", "AAAA"]) await assert.rejects(unpackLink(broken), undefined, broken);
});

test("files that are opened or dropped", () => {
  const project = { main: "a.vlo", files: { "a.vlo": "old" } };
  const file = (name, text) => ({ name, bytes: new TextEncoder().encode(text) });
  const cases = [
    [[file("b.inc", "x")], "a.vlo", ["a.vlo", "b.inc"]],
    [[file("c.inc", "x"), file("b.vlo", "y")], "b.vlo", ["b.vlo", "c.inc"]],
    [[file("My Car-2.3DS", "M")], "My_Car_2.set", ["My_Car_2.3ds", "My_Car_2.set"]],
    [[file("1.3ds", "M"), file("s.set", "{ }")], "s.set", ["s.set", "x1.3ds"]],
  ];
  for (const [added, main, names] of cases) {
    const next = withFiles(project, added);
    assert.deepEqual([next.main, Object.keys(next.files).sort()], [main, names]);
  }
  assert.match(withFiles(project, cases[2][0]).files["My_Car_2.set"], /input_name "My_Car_2.3ds"/);
});
