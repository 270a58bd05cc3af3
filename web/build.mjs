// Builds the static pages: the playground, and "edit and render" beside the scenes of the manual and its gallery.
//
// Usage: node build.mjs VARLO PAGES
//
// VARLO renders the small pictures of the scenes. PAGES is the folder of the site; the manual is in PAGES/manual.
import { execFileSync } from "node:child_process";
import {
  appendFileSync,
  cpSync,
  existsSync,
  mkdirSync,
  readdirSync,
  readFileSync,
  rmSync,
  writeFileSync,
} from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import * as esbuild from "esbuild";
import { readScene } from "./node.mjs";
import { sizeOf } from "./page/scanner.js";
import { stemOf } from "./page/project.js";
import { readWords } from "./words.mjs";

const [varlo, pages] = process.argv.slice(2).map((path) => resolve(path));
const root = fileURLToPath(new URL("..", import.meta.url));
const page = join(root, "web/page");
const run = (command, args, options) =>
  execFileSync(command, args, { stdio: ["ignore", "pipe", "inherit"], ...options });

// Some scenes stand around models in other formats.
const importer = join(dirname(varlo), "tools/import/varlo-import");

// ---- the playground ----

const wordsOfTheManual = {
  name: "words",
  setup(build) {
    build.onResolve({ filter: /^virtual:words$/ }, ({ path }) => ({ path, namespace: "words" }));
    build.onLoad({ filter: /.*/, namespace: "words" }, () => ({
      contents: JSON.stringify(readWords()),
      loader: "json",
    }));
  },
};

async function buildPlayground() {
  const options = { bundle: true, minify: true, outdir: pages, target: "es2022", logLevel: "warning" };
  await esbuild.build({
    ...options,
    format: "esm",
    entryPoints: [join(page, "main.js")],
    plugins: [wordsOfTheManual],
  });
  const workers = ["worker.js", "thread.js"].map((file) => join(page, file));
  await esbuild.build({ ...options, format: "iife", entryPoints: workers });
  await esbuild.build({ ...options, entryPoints: [join(page, "page.css")] });
  cpSync(join(page, "index.html"), join(pages, "index.html"));
  for (const [build, folder] of [
    ["wasm", "varlo"],
    ["wasm-threads", "varlo-threads"],
  ]) {
    mkdirSync(join(pages, folder), { recursive: true });
    for (const file of ["varlo.js", "varlo.wasm", "varlo.worker.js"]) {
      const from = join(root, "build", build, file);
      if (existsSync(from)) cpSync(from, join(pages, folder, file));
    }
  }
}

// ---- the scenes ----

/** A folder of the site with the scenes of `folder`, and the models and includes that scripts write for them. */
function gatherScenes(folder, name) {
  const target = join(pages, "scenes", name);
  rmSync(target, { recursive: true, force: true });
  mkdirSync(target, { recursive: true });
  for (const file of readdirSync(join(root, folder)))
    if (/\.(vlo|inc|set)$/.test(file)) cpSync(join(root, folder, file), join(target, file));
  run(join(root, "examples/generate_models"), [target]);
  if (name === "gallery")
    return run(join(root, "examples/generate"), [target], { env: { ...process.env, VARLO_IMPORT: importer } });
  const place = ["--geometry", "--size", "3", "--turn", "0", "0", "30", "-o", join(target, "robot.inc")];
  return run(importer, [...place, join(root, folder, "robot.gltf")]);
}

/** Renders the picture of a scene for the lists, 240 pixels wide or high; returns its address in the site. */
function renderSmall(folder, id, files) {
  const size = sizeOf(files[0], (name) =>
    files.includes(name) ? readFileSync(join(folder, name), "utf8") : undefined,
  );
  const [width, height] = size.map((pixels) => String(Math.round((pixels * 240) / Math.max(...size))));
  const how = files[0].endsWith(".set") ? "-3ds" : "-i";
  run(varlo, [how, files[0], "-r", width, height, "-jpg", "-o", stemOf(files[0])], { cwd: folder });
  return `scenes/${id}.jpg`;
}

/** The tables of the gallery: under each title its scenes, with the idea of each. */
function galleryGroups() {
  const sections = readFileSync(join(root, "gallery/README.md"), "utf8").split(/^## /m).slice(1);
  const groups = sections.map((section) => ({
    title: section.slice(0, section.indexOf("\n")),
    scenes: [...section.matchAll(/^\| \[\w+\]\(\.\.\/examples\/([\w.]+)\) \| (.*?) \|/gm)].map(([, file, idea]) => ({
      file,
      idea,
    })),
  }));
  return groups.filter(({ scenes }) => scenes.length > 0);
}

/** The manual's scenes, each with what its picture shows. */
function manualGroup() {
  const names = readdirSync(join(root, "docs"));
  const texts = names
    .filter((file) => file.endsWith(".md"))
    .map((file) => readFileSync(join(root, "docs", file), "utf8"));
  const scenes = readdirSync(join(root, "docs/scenes"))
    .filter((file) => /\.(vlo|set)$/.test(file))
    .map((file) => {
      const shown = new RegExp(`!\\[([^\\]]*)\\]\\(pictures/${stemOf(file)}\\.`);
      return { file, idea: shown.exec(texts.join("\n"))?.[1] ?? "" };
    });
  return { title: "Manual", scenes };
}

/** Writes the index of the scenes, with their files and small pictures. Returns it. */
function indexScenes() {
  gatherScenes("examples", "gallery");
  gatherScenes("docs/scenes", "manual");
  const complete =
    (name) =>
    ({ title, scenes }) => ({
      title,
      scenes: scenes.map(({ file, idea }) => {
        const folder = join(pages, "scenes", name);
        const id = `${name}/${stemOf(file)}`;
        const files = Object.keys(readScene(folder, file));
        return { id, name: stemOf(file), idea, files, picture: renderSmall(folder, id, files) };
      }),
    });
  const index = [...galleryGroups().map(complete("gallery")), complete("manual")(manualGroup())];
  writeFileSync(join(pages, "scenes/index.json"), JSON.stringify(index));
  return index;
}

// ---- the manual ----

/** A block of a page as it was before it became HTML. */
const unescaped = (html) =>
  html
    .replace(/<[^>]*>/g, "")
    .replace(/&lt;/g, "<")
    .replace(/&gt;/g, ">")
    .replace(/&quot;/g, '"')
    .replace(/&amp;/g, "&");

// What shows a scene: a picture or a block of text, which say of which file they are; one of several pictures of a
// scene, NAME_variant; another block of the language, which may be part of a scene; an entry of the gallery.
const SHOWN = new RegExp(
  [
    '<img[^>]*data-scene="(?<picture>[^"]+)"[^>]*>',
    '<img[^>]*src="pictures/(?<variant>[a-z]+)_\\w+\\.[^>]*>',
    '<div class="sourceCode"(?<block>[^>]*)><pre[^>]*\\bvlo\\b[^>]*><code[^>]*>(?<text>[^]*?)</code></pre></div>',
    '<a href="scene-(?<entry>\\w+)\\.html">[^]*?</a>(?=</li>)',
  ].join("|"),
  "g",
);

/** Puts "edit and render" behind what shows a scene, and the playground into the navigation. */
function linkManual(index) {
  const ids = new Set(index.flatMap(({ scenes }) => scenes.map(({ id }) => id)));
  const parts = index.at(-1).scenes.map(({ id, files }) => {
    const texts = files.filter((file) => !file.endsWith(".3ds"));
    return { id, text: texts.map((file) => readFileSync(join(pages, "scenes/manual", file), "utf8")).join("\n") };
  });
  const idOfFile = (path) => stemOf(path.replace(/^scenes\//, "manual/").replace(/^examples\//, "gallery/"));
  const idOf = ({ picture, variant, block, text, entry }) => {
    if (variant) return `manual/${variant}`;
    const path = picture ?? (entry && `examples/${entry}.`) ?? /data-scene="([^"]+)"/.exec(block)?.[1];
    return path ? idOfFile(path) : parts.find((scene) => scene.text.includes(unescaped(text).trim()))?.id;
  };

  const linked = new Set();
  const folder = join(pages, "manual");
  for (const file of readdirSync(folder).filter((name) => name.endsWith(".html"))) {
    let last;
    const html = readFileSync(join(folder, file), "utf8")
      .replace(/(<nav aria-label="Manual">\s*<ul>)/, '$1\n<li><a href="../index.html">Playground</a></li>')
      .replace(SHOWN, (found, ...rest) => {
        const id = idOf(rest.at(-1));
        if (!ids.has(id) || id === last) return found;
        linked.add((last = id));
        return `${found} <a class="try" href="../index.html#${id}">edit and render</a>`;
      });
    writeFileSync(join(folder, file), html);
  }
  const without = [...ids].filter((id) => !linked.has(id));
  if (without.length > 0) throw new Error(`no page of the manual shows ${without.join(", ")}`);
  appendFileSync(
    join(folder, "style.css"),
    "a.try { color: var(--link); font-size: .85rem; text-decoration: underline; white-space: nowrap; }\n",
  );
}

mkdirSync(pages, { recursive: true });
await buildPlayground();
linkManual(indexScenes());
console.log(`The pages are in ${pages}/index.html`);
