// The parts of the playground that need no page.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { fileURLToPath } from "node:url";
import { loadVarlo } from "../node.mjs";
import { faultsIn } from "../page/faults.js";
import { commandLine, packLink, unpackLink, withFiles } from "../page/project.js";
import { sizeOf, surroundings } from "../page/scanner.js";
import { readWords } from "../words.mjs";

const root = fileURLToPath(new URL("../..", import.meta.url));
const within = (files) => (name) => files[name];

const VIEW =
  'settings { output_type "png" output_name "x" resolution 8 6 } camera { position <0 0 0> look_at <0 1 0> }';
const RED = "surface { color 1 0 0 }";
const BALL = "sphere { center <0 0 0> radius";

// The program itself says what is wrong. `at` is the text that is to be marked.
const faulty = [
  ["in the scene", { "a.vlo": `${VIEW}\n${RED}\n  ${BALL} 0 } ; none` }, "a.vlo", 3, `${BALL} 0 }`],
  ["an unknown word", { "a.vlo": `${VIEW}\nspher { }` }, "a.vlo", 2, "spher"],
  ["a character", { "a.vlo": `${VIEW}\n${BALL} = 1 }` }, "a.vlo", 2, "="],
  [
    "in an include",
    { "a.vlo": `${VIEW}\ninclude "b.inc"\n${RED}`, "b.inc": `;\n;\n\n${BALL} x }\n` },
    "b.inc",
    4,
    `${BALL} x }`,
  ],
  ["behind an include", { "a.vlo": `include "b.inc"\n${VIEW}\nsphere 1\n`, "b.inc": "\n\n\n" }, "a.vlo", 3, "sphere 1"],
  [
    "first line of an include",
    { "a.vlo": `${VIEW}\n include "b.inc" ${RED}`, "b.inc": "disc 1\n" },
    "b.inc",
    1,
    "disc 1",
  ],
  ["on the line of an include", { "a.vlo": `include "b.inc" disc 1\n`, "b.inc": `${RED}\n` }, "a.vlo", 1, "disc 1"],
  [
    "an include twice",
    { "a.vlo": 'include "b.inc"\ninclude "b.inc"\nring 1', "b.inc": `\n${RED}` },
    "a.vlo",
    3,
    "ring 1",
  ],
  [
    "nested",
    { "a.vlo": 'include "b.inc"\n', "b.inc": '\ninclude "c.inc"\n', "c.inc": "\n\nplane 1" },
    "c.inc",
    3,
    "plane 1",
  ],
  ["in a comment", { "a.vlo": '[ include "b.inc"\n]\n; include "b.inc"\nplane 1' }, "a.vlo", 4, "plane 1"],
  ["a missing file", { "a.vlo": `${VIEW}\n include "b.inc"` }, "a.vlo", 2, 'include "b.inc"'],
  ["at the end", { "a.vlo": `${VIEW}\nsphere {\n` }, "a.vlo", 3, ""],
  ["in the settings of a model", { "a.set": "{\n input_name x }" }, "a.set", 2, "input_name x }"],
  ["a missing camera", { "a.vlo": RED }, undefined, undefined, "Missing camera!"],
];

test("a fault has its place in the file that holds it", async () => {
  const varlo = await loadVarlo(join(root, "build/wasm"));
  for (const [name, files, file, line, at] of faulty) {
    let output = "";
    const [main] = Object.keys(files);
    const args = [main.endsWith(".set") ? "-3ds" : "-i", main, "-png"];
    const { status } = await varlo({ args, files, print: (text) => (output += text) });
    const [fault] = faultsIn(output, status, main, within(files));
    const marked = fault.file ? files[fault.file].slice(fault.from, fault.to) : fault.message;
    assert.deepEqual(
      { status, file: fault.file, line: fault.line, marked },
      { status: 255, file, line, marked: at },
      name,
    );
  }
});

test("a run that ends in a thread ends", async () => {
  // Slivers whose bounds overlap: a ray meets more of them than the queue holds.
  const sliver = (i) => {
    const [x, y, z] = [1, 2, 3].map((axis) => 10 * Math.sin(i * axis));
    return `triangle { vertex <${x} ${y} ${z}> vertex <${-x} ${-y} ${-z}> vertex <${0.01 - x} ${-y} ${0.01 - z}> }`;
  };
  const slivers = Array.from({ length: 3000 }, (_, i) => sliver(i + 1)).join("\n");
  const view =
    'settings { output_type "png" output_name "x" } camera { position <0.3 -80 0.2> look_at <0 0 0> fov 10 }';
  for (const build of ["wasm", "wasm-threads"]) {
    let output = "";
    const varlo = await loadVarlo(join(root, "build", build));
    const files = { "a.vlo": `${view}\n${RED}\n${slivers}` };
    const { status } = await varlo({
      args: ["-i", "a.vlo", "-ppm", "-pqs", "101"],
      files,
      print: (text) => (output += text),
    });
    assert.equal(status, 1);
    const { message } = faultsIn(output, status, "a.vlo", within(files)).find(
      ({ message }) => !/Warning/.test(message),
    );
    assert.match(message, /^VARLO is out of space/);
  }
});

test("a file that includes itself ends", () => {
  const files = { "a.vlo": 'include "a.vlo"\n' };
  const output = "\n Parsing a.vlo\n Scene file: a.vlo could no be opened\n";
  assert.equal(faultsIn(output, 255, "a.vlo", within(files))[0].file, "a.vlo");
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

test("the command line of a project", () => {
  const scene = { main: "a.vlo", files: {} };
  assert.equal(commandLine(scene, {}), "varlo -i a.vlo -png -o a");
  const choice = { size: [64, 48], sampler: "-aaa 8", threads: 4 };
  assert.equal(commandLine({ main: "m.set", files: {} }, choice), "varlo -3ds m.set -r 64 48 -aaa 8 -t 4 -png -o m");
});
