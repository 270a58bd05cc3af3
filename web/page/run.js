// One run of the program: a fresh instance of the module, its files and arguments, what it printed and left.
// The page's worker and the command for Node both go through here.

/** How the program's text reaches a reader: bytes are characters, and the marks of its bar are full blocks. */
const toText = (byte) => (byte === 0xb1 ? "▒" : String.fromCharCode(byte));

// Stops the threads of a program that ends. Emscripten would first give back the stacks of those that still render,
// which then fall over what they read from them; here all memory goes with the run.
function stopThreads({ runningWorkers, unusedWorkers }) {
  [...runningWorkers, ...unusedWorkers].forEach((worker) => worker.terminate());
}

/**
 * Runs the program once.
 *
 * @param create  what the compiled script exports
 * @param module  the compiled WebAssembly.Module
 * @param run     `args`; `files`, bytes or text by name, in the folder in which the program runs; `script`, the
 *                address of the compiled script, from which threads start
 * @param page    what hears of the run: `print(text)`, `picture(memory, address, width, height)` when it begins
 *                and `row(memory, address, y)` for each row, where the memory cannot be shared
 * @returns `status`, and `files` by name as they are at the end
 */
export async function runVarlo(create, module, { args, files, script }, page) {
  const print = (byte) => page.print(toText(byte & 0xff));
  // The program asks for as many threads as its argument says, else for two.
  const threads = Number(args[args.lastIndexOf("-t") + 1]);
  let status, memory;
  const varlo = await create({
    threads: [2, 4, 8].includes(threads) ? threads : 2,
    mainScriptUrlOrBlob: script,
    locateFile: (name) => script.replace(/[^/]*$/, name),
    instantiateWasm: (imports, receive) => {
      WebAssembly.instantiate(module, imports).then((instance) => {
        // Shared memory comes from the script, any other from the module, under a name that its linker chose.
        memory = Object.values(instance.exports).find((value) => value instanceof WebAssembly.Memory);
        receive(instance, module);
      });
      return {};
    },
    preRun: [(self) => self.FS.init(() => null, print, print)],
    picture: (address, width, height) => page.picture?.(memory ?? varlo.wasmMemory, address, width, height),
    row: (address, y) => page.row?.(memory ?? varlo.wasmMemory, address, y),
    onExit: (code) => (status = code & 0xff),
    // Emscripten's own would end Node besides.
    quit: (_, thrown) => {
      throw thrown;
    },
  });
  if (varlo.PThread) varlo.PThread.terminateAllThreads = () => stopThreads(varlo.PThread);
  varlo.FS.mkdir("/run");
  varlo.FS.chdir("/run");
  for (const [name, content] of Object.entries(files)) varlo.FS.writeFile(name, content);
  varlo.callMain(args);
  const names = varlo.FS.readdir("/run").filter((name) => !/^\.\.?$/.test(name));
  return { status, files: Object.fromEntries(names.map((name) => [name, varlo.FS.readFile(name)])) };
}
