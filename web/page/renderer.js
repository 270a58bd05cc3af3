// Runs of the program in workers, for a page that shows one at a time.

/** Whether this page may share memory between threads; only then can a run have more than one. */
export const hasThreads = globalThis.crossOriginIsolated === true && typeof SharedArrayBuffer === "function";

const folder = new URL(hasThreads ? "varlo-threads/" : "varlo/", document.baseURI);
const script = new URL("varlo.js", folder).href;

// Compiled once for all runs.
const compiled = WebAssembly.compileStreaming(fetch(new URL("varlo.wasm", folder)));
compiled.catch(() => {}); // a run reports it

const newWorker = () => new Worker(`worker.js?script=${encodeURIComponent(script)}`);
let spare = newWorker();
let running;

/** Ends the run at once, wherever it is. */
export function stop() {
  if (running) running.cancel();
}

/**
 * Starts a run, in place of one that is still under way.
 *
 * @param run   `args` and `files`
 * @param page  what hears of it: `print(text)`, `begin(width, height)`, `row(y, bytes)` with 4 bytes for each pixel
 * @returns a promise of the exit status; it never comes true for a run that is stopped
 */
export async function start(run, page) {
  stop();
  const worker = spare ?? newWorker();
  spare = undefined;
  const workers = [worker];
  let frame, shared;
  // Rows that are there are opaque; `all` takes them again, since a row may be seen while it is written.
  const look = (all) => {
    const { width, height, memory, address, seen } = shared;
    const bytes = new Uint8Array(memory.buffer, address, 4 * width * height);
    for (let y = 0; y < height; ++y) {
      if (!all && (seen[y] || bytes[4 * width * (y + 1) - 1] === 0)) continue;
      seen[y] = 1;
      page.row(y, new Uint8ClampedArray(bytes.subarray(4 * width * y, 4 * width * (y + 1))));
    }
  };
  const watch = () => {
    look(false);
    frame = requestAnimationFrame(watch);
  };
  const end = () => {
    cancelAnimationFrame(frame);
    for (const each of workers) each.terminate();
    if (running?.worker === worker) running = undefined;
  };
  running = { worker, cancel: end };

  let module;
  try {
    module = await compiled;
  } catch (fault) {
    end();
    page.print(`The program cannot be loaded: ${fault.message}\n`);
    return 1;
  }
  return new Promise((resolve) => {
    const fail = ({ message }) => {
      if (running?.worker !== worker) return;
      end();
      page.print(`\n${message}\n`);
      resolve(1);
    };
    worker.onerror = fail;
    worker.onmessage = ({ data }) => {
      if (running?.worker !== worker) return; // stopped with messages on their way
      if (data.thread) {
        const thread = new Worker("thread.js");
        thread.onerror = fail;
        thread.postMessage(data.thread, [data.thread.port]);
        workers.push(thread);
      }
      if (data.text) page.print(data.text);
      if (data.row) page.row(data.row.y, data.row.bytes);
      if (data.picture) {
        const { width, height, memory } = data.picture;
        page.begin(width, height);
        if (memory) {
          shared = { ...data.picture, seen: new Uint8Array(height) };
          watch();
        }
      }
      if (data.status !== undefined) {
        if (shared) look(true);
        end();
        resolve(data.status);
      }
    };
    if (running?.worker !== worker) return; // stopped before the program was there
    worker.postMessage({ module, run, shared: hasThreads });
    spare = newWorker(); // the next run finds its worker ready
  });
}
