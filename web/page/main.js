// The playground: a project in the editor, and its picture beside it.
import { makeEditor } from "./editor.js";
import { faultsIn } from "./faults.js";
import {
  argumentsOf,
  commandLine,
  isMain,
  keep,
  keptProjects,
  packLink,
  stemOf,
  unpackLink,
  withFiles,
  wordName,
} from "./project.js";
import { hasThreads, start, stop } from "./renderer.js";
import { showScenes, fetchScene } from "./scenes.js";
import { sizeOf } from "./scanner.js";

const $ = (id) => document.getElementById(id);

const FIRST_SCENE = "gallery/endgame";
const PAUSE = 500; // ms after the last key until the picture is made anew
const SMALL = 160; // pixels of the longer side of the picture that comes first
const LONGEST_LINK = 200_000;

let project = { main: "scene.vlo", files: { "scene.vlo": "" } };
let active = project.main;
let kept = { id: undefined, dirty: false }; // under which name the browser keeps the project, and whether it has to
let faults = [];
let output = "";

const textOf = (name) => {
  const content = Object.hasOwn(project.files, name) ? project.files[name] : undefined;
  return typeof content === "string" ? content : undefined;
};

const editor = makeEditor($("editor"), {
  changed(name, text) {
    if (project.files[name] === text) return;
    project.files[name] = text;
    changed();
  },
  render: () => render(),
  fileNames: () => Object.keys(project.files).filter((name) => name !== project.main && textOf(name) !== undefined),
  faults: (name) => faults.filter((fault) => fault.file === name),
});

// ---- the choices ----

function choice() {
  const factor = $("size").value;
  const scene = sizeOf(project.main, textOf);
  let size;
  if (factor === "own") size = [$("width").valueAsNumber || 1, $("height").valueAsNumber || 1];
  else if (factor !== "1") size = scene.map((pixels) => Math.max(1, Math.round(pixels * Number(factor))));
  return { size, sampler: $("sampler").value, threads: Number($("threads").value) };
}

function showSizes(chosen = $("size").value || "1") {
  const [width, height] = sizeOf(project.main, textOf);
  const label = (factor) => `${Math.round(width * factor)} × ${Math.round(height * factor)}`;
  const options = [0.5, 1, 1.5, 2, 3, 4].map(
    (factor) => new Option(label(factor) + (factor === 1 ? " (scene)" : ""), String(factor)),
  );
  $("size").replaceChildren(...options, new Option("other…", "own"));
  $("size").value = chosen;
  $("own-size").hidden = chosen !== "own";
}

function restoreChoice({ size, sampler = "", threads } = {}) {
  if (size) [$("width").value, $("height").value] = size;
  $("sampler").value = sampler;
  if (threads) $("threads").value = String(threads);
  showSizes(size ? "own" : "1");
}

// ---- the picture ----

const canvas = $("picture");
const paint = canvas.getContext("2d", { willReadFrequently: true });

/** Gives the canvas the size of a picture. What it showed stays, larger or smaller, until the rows come. */
function beginPicture(width, height) {
  if (canvas.width === width && canvas.height === height) return;
  const last = document.createElement("canvas");
  [last.width, last.height] = [canvas.width, canvas.height];
  last.getContext("2d").drawImage(canvas, 0, 0);
  [canvas.width, canvas.height] = [width, height];
  paint.drawImage(last, 0, 0, width, height);
}

/** A small picture that is shown in the size of a large one. */
function smallPicture(width, height, full) {
  const small = document.createElement("canvas");
  [small.width, small.height] = [width, height];
  const context = small.getContext("2d");
  const [across, down] = [full[0] / width, full[1] / height];
  beginPicture(...full);
  return (row, y) => {
    context.putImageData(row, 0, y);
    paint.drawImage(small, 0, y, width, 1, 0, y * down, width * across, down);
  };
}

const say = (text) => ($("status").textContent = text);

function print(text) {
  output += text;
  $("output").textContent = output.replace(/^\n/, "");
  $("output").scrollTop = $("output").scrollHeight;
}

/** One run, whose picture is shown as it is or in the size `full`. Returns its status. */
async function pass(options, label, full) {
  output = "";
  print("");
  let rows = 0;
  let total = 1;
  let show = (row, y) => paint.putImageData(row, 0, y);
  const seen = new Set();
  return start(
    { args: argumentsOf(project, options), files: project.files },
    {
      print,
      begin(width, height) {
        total = height;
        if (full) show = smallPicture(width, height, full);
        else beginPicture(width, height);
      },
      row(y, bytes) {
        show(new ImageData(bytes, bytes.length / 4, 1), y);
        if (seen.has(y)) return;
        seen.add(y);
        const percent = Math.floor((100 * ++rows) / total);
        if (rows === total || percent % 5 === 0) say(`${label}: ${percent} %`);
      },
    },
  );
}

let shownLink = ""; // the address's part that the page has taken in
let timer;
let pictureNumber = 0;

function halt(message) {
  clearTimeout(timer);
  stop();
  ++pictureNumber;
  $("stop").disabled = true;
  if (message) say(message);
}

async function render() {
  halt();
  const number = pictureNumber;
  const options = choice();
  const full = options.size ?? sizeOf(project.main, textOf);
  const scale = SMALL / Math.max(...full);
  $("stop").disabled = false;
  $("png").disabled = true;
  say("Rendering");
  const begun = performance.now();

  let status = 0;
  if (scale < 0.7 && full.every((pixels) => pixels > 0)) {
    const size = full.map((pixels) => Math.max(1, Math.round(pixels * scale)));
    status = await pass({ ...options, size, sampler: "-aan" }, "Small picture", full);
  }
  if (status === 0) status = await pass(options, "Picture");
  if (number !== pictureNumber) return;

  $("stop").disabled = true;
  $("png").disabled = status !== 0;
  showFaults(faultsIn(output, status, project.main, textOf));
  if (status === 0) {
    const seconds = ((performance.now() - begun) / 1000).toFixed(2);
    say(`${canvas.width} × ${canvas.height} pixels in ${seconds} s`);
    canvas.setAttribute("aria-label", `Picture of ${project.main}, ${canvas.width} by ${canvas.height} pixels`);
  } else {
    const { message, file, line } = faults[0];
    say(file ? `${file}, line ${line}: ${message}` : message);
  }
}

// ---- faults ----

function showFaults(list) {
  faults = list;
  const items = list.map(({ message, file, line, from }) => {
    const item = document.createElement("li");
    const text = document.createElement(file ? "button" : "span");
    text.textContent = file ? `${file}, line ${line}: ${message}` : message;
    if (file) {
      text.type = "button";
      text.onclick = () => {
        showFile(file);
        editor.go(from);
      };
    }
    item.append(text);
    return item;
  });
  $("faults").replaceChildren(...items);
  $("faults").hidden = items.length === 0;
  editor.mark();
  showTabs();
}

// ---- files ----

function showTabs() {
  const names = Object.keys(project.files).sort((a, b) => (b === project.main) - (a === project.main));
  const tabs = names.map((name) => {
    const tab = document.createElement("button");
    tab.type = "button";
    tab.role = "tab";
    tab.textContent = name;
    tab.id = `tab-${name}`;
    tab.ariaSelected = String(name === active);
    tab.tabIndex = name === active ? 0 : -1;
    tab.setAttribute("aria-controls", "editor");
    if (faults.some((fault) => fault.file === name)) {
      tab.className = "faulty";
      tab.setAttribute("aria-label", `${name}, has a fault`);
    }
    tab.onclick = () => showFile(name);
    return tab;
  });
  const focused = $("tabs").contains(document.activeElement);
  $("tabs").replaceChildren(...tabs);
  $("editor").setAttribute("aria-labelledby", `tab-${active}`);
  if (focused) document.getElementById(`tab-${active}`).focus();
  $("remove").disabled = active === project.main;
}

function showFile(name) {
  active = name;
  const text = textOf(name);
  const bytes = text === undefined ? project.files[name].length : 0;
  editor.show(name, text ?? `; ${name}: a model of ${bytes} bytes\n`, text === undefined);
  editor.mark();
  showTabs();
}

$("tabs").onkeydown = (event) => {
  const names = [...$("tabs").children].map((tab) => tab.textContent);
  const at = names.indexOf(active);
  const to = { ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: names.length - 1 }[event.key];
  if (to === undefined) return;
  event.preventDefault();
  showFile(names[(to + names.length) % names.length]);
};

/** Takes a project into the page, and renders it. */
function load(next, { options, id, dirty = false } = {}) {
  project = { main: next.main, files: { ...next.files } };
  kept = { id: id ?? crypto.randomUUID(), dirty };
  editor.clear();
  faults = [];
  showFile(project.main);
  showFaults([]);
  restoreChoice(options);
  document.title = `${project.main} - varlo`;
  render();
}

/** What has to happen after each change of the project. */
function changed() {
  kept.dirty = true;
  // The address names another scene now, and coming back to it must not bring that one.
  if (location.hash) history.replaceState(null, "", location.pathname);
  shownLink = "";
  halt("Waiting for the end of typing");
  showSizes();
  if (faults.length > 0) showFaults([]);
  timer = setTimeout(render, PAUSE);
  keepSoon();
}

let keepTimer;
const keepNow = () => {
  clearTimeout(keepTimer);
  if (kept.dirty) keep({ id: kept.id, project, choice: choice() }).catch((fault) => say(`Not kept: ${fault.message}`));
  kept.dirty = false;
};
const keepSoon = () => {
  clearTimeout(keepTimer);
  keepTimer = setTimeout(keepNow, 250);
};
addEventListener("pagehide", keepNow);
document.addEventListener("visibilitychange", () => document.hidden && keepNow());

async function addFiles(list) {
  if (list.length === 0) return;
  keepNow();
  const added = await Promise.all(
    [...list].map(async (file) => ({ name: file.name, bytes: new Uint8Array(await file.arrayBuffer()) })),
  );
  const next = withFiles(project, added);
  if (next.main !== project.main || added.some(({ name }) => isMain(name))) {
    load(next, { dirty: true });
  } else {
    project = next;
    showFile(wordName(added[0].name));
    changed();
  }
  keepSoon();
}

// ---- buttons ----

function download(name, content) {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

async function copy(text, what) {
  try {
    await navigator.clipboard.writeText(text);
    say(`${what} is in the clipboard`);
  } catch {
    print(`\n${text}\n`);
    say(`${what} stands below the picture: this browser gives no access to the clipboard`);
  }
}

$("render").onclick = render;
$("stop").onclick = () => halt("Stopped");
$("open").onclick = () => $("files").click();
$("files").onchange = async () => {
  await addFiles($("files").files);
  $("files").value = "";
};
$("save").onclick = () => download(active, new Blob([project.files[active]]));
$("png").onclick = () => canvas.toBlob((blob) => download(`${stemOf(project.main)}.png`, blob));
$("command").onclick = () => {
  const { threads, ...rest } = choice();
  copy(commandLine(project, { ...rest, threads: threads === 2 ? undefined : threads }), "The command");
};
$("link").onclick = async () => {
  const packed = await packLink(project, choice());
  if (packed.length > LONGEST_LINK) return say("This project is too large for a link: save its files instead");
  history.replaceState(null, "", `#z=${packed}`);
  shownLink = location.hash;
  copy(location.href, "The link");
};
for (const id of ["size", "sampler", "threads", "width", "height"])
  $(id).onchange = () => {
    showSizes();
    render();
  };

$("new").onclick = async () => {
  keepNow();
  const entry = await showScenes(await keptProjects().catch(() => []));
  if (!entry) return;
  history.replaceState(null, "", entry.id ? `#${entry.id}` : location.pathname);
  shownLink = location.hash;
  if (entry.project) load(entry.project, { options: entry.choice, id: entry.kept });
  else load(await fetchScene(entry.id));
};

$("add").onclick = () => $("name").showModal();
$("name-cancel").onclick = () => $("name").close();
$("name-form").onsubmit = () => {
  const name = $("name-text").value;
  if (!Object.hasOwn(project.files, name)) {
    project.files[name] = "";
    changed();
  }
  showFile(name);
};
$("remove").onclick = () => {
  delete project.files[active];
  showFile(project.main);
  changed();
};

addEventListener("keydown", (event) => {
  if (event.key === "Enter" && (event.ctrlKey || event.metaKey) && !event.defaultPrevented) render();
});

// ---- files that are dropped ----

const hasFiles = (event) => event.dataTransfer?.types.includes("Files");
addEventListener(
  "dragover",
  (event) => {
    if (!hasFiles(event)) return;
    event.preventDefault();
    $("drop").hidden = false;
  },
  true,
);
addEventListener("dragleave", (event) => !event.relatedTarget && ($("drop").hidden = true));
addEventListener(
  "drop",
  (event) => {
    if (!hasFiles(event)) return;
    event.preventDefault();
    event.stopPropagation();
    $("drop").hidden = true;
    addFiles(event.dataTransfer.files);
  },
  true,
);

// ---- the beginning ----

/** The scene that the address names, as `#gallery/endgame` or packed; or undefined. */
async function fromLink() {
  shownLink = location.hash;
  const name = decodeURIComponent(location.hash.slice(1));
  if (name === "") return undefined;
  if (name.startsWith("z=")) {
    const { project: packed, choice: options } = await unpackLink(name.slice(2));
    return [packed, { options }];
  }
  return [await fetchScene(name)];
}

async function begin() {
  let first;
  let trouble;
  try {
    first = await fromLink();
  } catch (fault) {
    trouble = `The link cannot be opened: ${fault.message}`;
  }
  const [last] = first ? [] : await keptProjects().catch(() => []);
  if (last) first = [last.project, { options: last.choice, id: last.id }];
  load(...(first ?? [await fetchScene(FIRST_SCENE)]));
  if (trouble) showFaults([{ message: trouble }]);
}

addEventListener("hashchange", () => location.hash !== shownLink && (keepNow(), begin()));

$("mode").textContent = hasThreads
  ? "Threads run side by side."
  : "One thread: this host does not send the headers that threads need. The bands of the picture are rendered " +
    "one after another, in the same bytes.";
if (!hasThreads) $("threads-name").textContent = "Bands";
begin();
