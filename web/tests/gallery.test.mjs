// The pictures of the gallery from the compiled program, against the checksums of those that the native one makes.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { createHash } from "node:crypto";
import { cpSync, existsSync, mkdtempSync, readFileSync, readdirSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { loadVarlo, readScene } from "../node.mjs";

const root = fileURLToPath(new URL("../..", import.meta.url));
const checksums = new Map(
  readFileSync(join(root, "tests/gallery/checksums"), "utf8")
    .trim()
    .split("\n")
    .map((row) => row.split(" "))
    .map(([name, ...sums]) => [name, { 2: sums[0], 4: sums[1], 8: sums[2] }]),
);
const script = readFileSync(join(root, "tests/gallery/checksums_test.sh"), "utf8");
const size = /-r (\d+) (\d+)/.exec(script).slice(1); // of the pictures that the checksums are of
const folder = mkdtempSync(join(tmpdir(), "varlo-"));
after(() => rmSync(folder, { recursive: true }));
cpSync(join(root, "examples"), folder, { recursive: true });
execFileSync(join(folder, "generate"), [folder], {
  env: { ...process.env, VARLO_IMPORT: join(root, "build/release/tools/import/varlo-import") },
});
// Without varlo-import there is no model for the one scene that shows its work.
const scenes = readdirSync(folder).filter(
  (name) => /\.(vlo|set)$/.test(name) && (name !== "teatime.vlo" || existsSync(join(folder, "teapot.inc"))),
);

// Each number of threads once: without random sampling all have the same checksum.
for (const [build, counts] of [
  ["wasm", [2, 8]],
  ["wasm-threads", [4]],
])
  test(`gallery, ${build}`, async () => {
    const varlo = await loadVarlo(join(root, "build", build));
    const different = [];
    for (const scene of scenes)
      for (const count of counts) {
        const name = scene.replace(/\.\w+$/, "");
        const how = scene.endsWith(".set") ? "-3ds" : "-i";
        const args = [how, scene, "-o", name, "-ppm", "-r", ...size, "-t", String(count)];
        const { status, files } = await varlo({ args, files: readScene(folder, scene) });
        const sum = status !== 0 ? "" : createHash("sha256").update(files[`${name}.ppm`]).digest("hex");
        if (sum.slice(0, 16) !== checksums.get(name)?.[count]) different.push(`${name}-${count}`);
      }
    assert.deepEqual(different, []);
    assert.ok(scenes.length > 40);
  });
