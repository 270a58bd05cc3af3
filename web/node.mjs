// The compiled program in Node, for what is done with it outside of a page.
import { existsSync, readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { runVarlo } from "./page/run.js";
import { includesOf } from "./page/scanner.js";

/** Loads the build in a folder. Returns a function that makes one run of `args` and `files`, telling `print`. */
export async function loadVarlo(build) {
  const script = resolve(build, "varlo.js");
  const create = createRequire(import.meta.url)(script);
  const module = await WebAssembly.compile(readFileSync(resolve(build, "varlo.wasm")));
  return ({ args, files, print = () => {} }) => runVarlo(create, module, { args, files, script }, { print });
}

/** The bytes by name of a scene or settings file in a folder and of all that it reads, itself first. */
export function readScene(folder, main) {
  const files = {};
  const read = (name) => {
    if (!name || Object.hasOwn(files, name) || !existsSync(join(folder, name))) return;
    files[name] = readFileSync(join(folder, name));
    if (name.endsWith(".3ds")) return;
    const text = files[name].toString();
    includesOf(text).forEach((include) => read(include.name));
    read(/input_name\s+"([^"]+)"/.exec(text)?.[1]);
  };
  read(main);
  return files;
}
