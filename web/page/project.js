// A project is what the program reads: `main`, the name of its scene or settings file, and `files`, text or bytes
// by name. Here: what a file is taken for, the arguments of a run, links, and what the browser keeps.

const encoder = new TextEncoder();

/** The name under which a file can stand in a scene: one word of the language. */
export function wordName(name) {
  const word = name.replace(/[^A-Za-z0-9_.]/g, "_");
  return /^[A-Za-z]/.test(word) ? word : `x${word}`;
}

const isModel = (name) => /\.3ds$/i.test(name);
export const isMain = (name) => /\.(vlo|set)$/i.test(name);
export const stemOf = (name) => name.replace(/\.[^.]*$/, "");

/** A settings file for a model, with all that one likes to change. */
const settingsFor = (model) => `{ input_name "${model}"  output_name "${stemOf(model)}"  output_type "png"
  resolution 640 480  antialiasing "adaptive"  aa_distance 16
  background 0.55 0.7 0.9
  [ camera_index 0 ] }
`;

/**
 * The project of files that were opened or dropped, on top of `project`, unless they bring a scene of their own.
 *
 * @param added  `name` and `bytes` of each
 */
export function withFiles(project, added) {
  const files = {};
  for (const { name, bytes } of added) {
    // The reader wants the name's end in lower case.
    const word = wordName(name).replace(/\.3ds$/i, ".3ds");
    files[word] = isModel(word) ? bytes : new TextDecoder().decode(bytes);
  }
  const names = Object.keys(files);
  const model = names.find(isModel);
  let main = names.find(isMain);
  if (model && !main) {
    main = `${stemOf(model)}.set`;
    files[main] = settingsFor(model);
  }
  return main ? { main, files } : { ...project, files: { ...project.files, ...files } };
}

/** The arguments that `choice` stands for; what it leaves to the scene is left out. */
function chosenOptions({ size, sampler, threads }) {
  return [
    ...(size ? ["-r", String(size[0]), String(size[1])] : []),
    ...(sampler ? sampler.split(" ") : []),
    ...(threads ? ["-t", String(threads)] : []),
  ];
}

const input = (project) => [project.main.endsWith(".set") ? "-3ds" : "-i", project.main];

/** The arguments of a run in the page, whose picture is the PNG that the page shows. */
export const argumentsOf = (project, choice) => [
  ...input(project),
  ...chosenOptions(choice),
  ...["-png", "-o", stemOf(project.main)],
];

/** What one would type for the same picture. */
export const commandLine = (project, choice) =>
  ["varlo", ...argumentsOf(project, choice)].map((word) => (/^[\w.+-]+$/.test(word) ? word : `'${word}'`)).join(" ");

// ---- links ----

const through = (bytes, stream) => new Response(new Blob([bytes]).stream().pipeThrough(stream)).arrayBuffer();

function toBase64(buffer) {
  let text = "";
  for (const byte of new Uint8Array(buffer)) text += String.fromCharCode(byte);
  return btoa(text).replace(/\+/g, "-").replace(/\//g, "_").replace(/=+$/, "");
}

const fromBase64 = (text) =>
  Uint8Array.from(atob(text.replace(/-/g, "+").replace(/_/g, "/")), (character) => character.charCodeAt(0));

/** A project and the choices beside it as text for a link: compressed, without characters that a link escapes. */
export async function packLink({ main, files }, choice) {
  const held = Object.entries(files).map(([name, content]) =>
    typeof content === "string" ? [name, content] : [name, toBase64(content), 1],
  );
  const text = JSON.stringify({ main, files: held, choice });
  return toBase64(await through(encoder.encode(text), new CompressionStream("deflate-raw")));
}

/** What packLink packed: `project` and `choice`. Throws for a text that is none of its own. */
export async function unpackLink(packed) {
  const bytes = await through(fromBase64(packed), new DecompressionStream("deflate-raw"));
  const { main, files, choice } = JSON.parse(new TextDecoder().decode(bytes));
  const entries = files.map(([name, content, isBytes]) => [name, isBytes ? fromBase64(content) : String(content)]);
  const project = { main, files: Object.fromEntries(entries) };
  if (typeof project.files[main] !== "string") throw new Error("a link without a scene");
  return { project, choice };
}

// ---- what the browser keeps ----

const KEPT = 8; // projects that were changed

const done = (request) =>
  new Promise((resolve, reject) => {
    request.onsuccess = () => resolve(request.result);
    request.onerror = () => reject(request.error);
  });

async function store(mode) {
  const request = indexedDB.open("varlo", 1);
  request.onupgradeneeded = () => request.result.createObjectStore("projects", { keyPath: "id" });
  return (await done(request)).transaction("projects", mode).objectStore("projects");
}

/** The projects that were changed here, the latest first: each with `id`, `time`, `project` and `choice`. */
export async function keptProjects() {
  const all = await done((await store("readonly")).getAll());
  return all.sort((a, b) => b.time - a.time);
}

/** Keeps a project for the next visit, and lets go of the oldest. */
export async function keep(entry) {
  await done((await store("readwrite")).put({ ...entry, time: Date.now() }));
  for (const { id } of (await keptProjects()).slice(KEPT)) await done((await store("readwrite")).delete(id));
}
