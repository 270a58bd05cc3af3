// Builds the static pages: the playground, the gallery, and "edit and render" beside the scenes of the manual.
//
// Usage: node build.mjs VARLO PAGES
//
// VARLO renders the small pictures of the scenes. PAGES is the folder of the site; the manual is in PAGES/manual.
import { execFileSync } from "node:child_process";
import { cpSync, existsSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import * as esbuild from "esbuild";
import { readScene } from "./node.mjs";
import { sizeOf } from "./page/scanner.js";
import { stemOf } from "./page/project.js";
import { readWords } from "./words.mjs";

const [varlo, pages] = process.argv.slice(2).map((path) => resolve(path));
const root = fileURLToPath(new URL("..", import.meta.url));
const page = join(root, "web/page");
const run = (command, args, options) => execFileSync(command, args, { stdio: ["ignore", "pipe", "inherit"], ...options });

// ---- the playground ----

const wordsOfTheManual = {
  name: "words",
  setup(build) {
    build.onResolve({ filter: /^virtual:words$/ }, ({ path }) => ({ path, namespace: "words" }));
    build.onLoad({ filter: /.*/, namespace: "words" }, () => ({ contents: JSON.stringify(readWords()), loader: "json" }));
  },
};

async function buildPlayground() {
  const options = { bundle: true, minify: true, outdir: pages, target: "es2022", logLevel: "warning" };
  await esbuild.build({
    ...options, format: "esm", entryPoints: [join(page, "main.js")], plugins: [wordsOfTheManual],
  });
  await esbuild.build({ ...options, format: "iife", entryPoints: [join(page, "worker.js")] });
  await esbuild.build({ ...options, entryPoints: [join(page, "page.css")] });
  cpSync(join(page, "index.html"), join(pages, "index.html"));
  for (const [build, folder] of [["wasm", "varlo"], ["wasm-threads", "varlo-threads"]]) {
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
  if (name === "gallery") return run(join(root, "examples/generate"), [target]);
  const awk = ["-f", join(root, folder, "obj2inc.awk"), join(root, folder, "donut.obj")];
  return writeFileSync(join(target, "donut.inc"), run("awk", awk));
}

/** Renders the picture of a scene for the lists, 240 pixels wide or high; returns its address in the site. */
function renderSmall(folder, id, files) {
  const size = sizeOf(files[0], (name) => (files.includes(name) ? readFileSync(join(folder, name), "utf8") : undefined));
  const [width, height] = size.map((pixels) => String(Math.round((pixels * 240) / Math.max(...size))));
  const how = files[0].endsWith(".set") ? "-3ds" : "-i";
  run(varlo, [how, files[0], "-r", width, height, "-jpg", "-o", stemOf(files[0])], { cwd: folder });
  return `scenes/${id}.jpg`;
}

/** The tables of the gallery: under each title its scenes, with the idea and the words that each shows. */
function galleryGroups() {
  const folder = join(pages, "scenes/gallery");
  const sections = readFileSync(join(root, "gallery/README.md"), "utf8").split(/^## /m).slice(1);
  const groups = sections.map((section) => ({
    title: section.slice(0, section.indexOf("\n")),
    scenes: [...section.matchAll(/^\| \[\w+\]\(\.\.\/examples\/([\w.]+)\) \| (.*?) \| (.*?) \|$/gm)].map(
      ([, file, idea, shows]) => ({ file, idea, shows }),
    ),
  }));
  const listed = new Set(groups.flatMap(({ scenes }) => scenes.map(({ file }) => file)));
  const others = readdirSync(folder).filter((file) => /\.(vlo|set)$/.test(file) && !listed.has(file));
  const models = others.map((file) => ({ file, idea: firstComment(folder, file), shows: "" }));
  return [...groups, { title: "Models", scenes: models }].filter(({ scenes }) => scenes.length > 0);
}

/** The first sentence of the comment at a scene's head. */
const firstComment = (folder, file) =>
  /^; *(.*?)[.:](?:\s|$)/.exec(readFileSync(join(folder, file), "utf8"))?.[1] ?? stemOf(file);

/** The manual's scenes, each with what its picture shows. */
function manualGroup() {
  const texts = readdirSync(join(root, "docs")).filter((file) => file.endsWith(".md"))
    .map((file) => readFileSync(join(root, "docs", file), "utf8")).join("\n");
  const scenes = readdirSync(join(root, "docs/scenes")).filter((file) => /\.(vlo|set)$/.test(file)).map((file) => {
    const shown = new RegExp(`!\\[([^\\]]*)\\]\\(pictures/${stemOf(file)}\\.|pictures/${stemOf(file)}_.*?alt="(.*?)"`);
    const [, alt, large] = shown.exec(texts) ?? [];
    return { file, idea: alt ?? large ?? stemOf(file), shows: "" };
  });
  return { title: "Manual", scenes };
}

function indexScenes() {
  gatherScenes("examples", "gallery");
  gatherScenes("docs/scenes", "manual");
  const complete = (name) => ({ title, scenes }) => ({
    title,
    scenes: scenes.map(({ file, idea, shows }) => {
      const folder = join(pages, "scenes", name);
      const id = `${name}/${stemOf(file)}`;
      const files = Object.keys(readScene(folder, file));
      return { id, name: stemOf(file), idea, shows, files, picture: renderSmall(folder, id, files) };
    }),
  });
  const gallery = galleryGroups().map(complete("gallery"));
  const manual = complete("manual")(manualGroup());
  const index = [...gallery, manual].map((group) => ({
    ...group, scenes: group.scenes.map(({ shows, ...scene }) => scene),
  }));
  writeFileSync(join(pages, "scenes/index.json"), JSON.stringify(index));
  return { gallery, manual };
}

// ---- the pages around ----

const escaped = (text) => text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;");
const withCode = (text) => escaped(text).replace(/`([^`]*)`/g, "<code>$1</code>");

const galleryItem = ({ id, name, idea, shows, picture }) => `<li><a href="./#${id}"><img src="${picture}" loading="lazy"
  alt=""> edit and render <b>${name}</b></a> <p>${withCode(idea)}</p> <p class="shows">${withCode(shows)}</p></li>`;

function writeGallery(groups) {
  const sections = groups.map(({ title, scenes }) =>
    `<section><h2>${escaped(title)}</h2><ul>${scenes.map(galleryItem).join("\n")}</ul></section>`);
  const template = readFileSync(join(page, "gallery.html"), "utf8");
  writeFileSync(join(pages, "gallery.html"), template.replace("<!-- scenes -->", () => sections.join("\n")));
}

/** A block of a page as it was before it became HTML. */
const unescaped = (html) =>
  html.replace(/<[^>]*>/g, "").replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&amp;/g, "&");

/** Puts "edit and render" behind each picture of the manual that a scene made, and behind what stands in a scene. */
function linkManual(scenes) {
  const sources = scenes.map(({ id, name, files }) => {
    const texts = files.filter((file) => !file.endsWith(".3ds"));
    return { id, name, text: texts.map((file) => readFileSync(join(pages, "scenes/manual", file), "utf8")).join("\n") };
  });
  const ofPicture = (name) =>
    sources.find((scene) => scene.name === name) ?? sources.find((scene) => scene.name === name.replace(/_[^_]*$/, ""));
  const ofText = (text) => sources.find((scene) => scene.text.includes(text));

  const linked = new Set();
  const shown = /<img[^>]*src="pictures\/(?<picture>\w+)\.\w+"[^>]*>|<pre[^>]*\bvlo\b[^>]*><code[^>]*>(?<text>[^]*?)<\/code><\/pre>/g;
  const folder = join(pages, "manual");
  for (const file of readdirSync(folder).filter((name) => name.endsWith(".html"))) {
    let last;
    const html = readFileSync(join(folder, file), "utf8").replace(/ ?<a class="try"[^>]*>[^<]*<\/a>/g, "");
    const withLinks = html.replace(shown, (found, ...rest) => {
      const { picture, text } = rest.at(-1);
      const scene = picture ? ofPicture(picture) : ofText(unescaped(text).trim());
      if (!scene || scene.id === last) return found;
      linked.add((last = scene.id));
      return `${found} <a class="try" href="../index.html#${scene.id}">edit and render</a>`;
    });
    writeFileSync(join(folder, file), withLinks);
  }
  const without = sources.filter(({ id }) => !linked.has(id));
  if (without.length > 0) throw new Error(`no page of the manual shows ${without.map(({ id }) => id).join(", ")}`);
}

mkdirSync(pages, { recursive: true });
await buildPlayground();
const { gallery, manual } = indexScenes();
writeGallery(gallery);
linkManual(manual.scenes);
console.log(`The pages are in ${pages}/index.html`);
