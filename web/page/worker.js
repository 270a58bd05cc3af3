// The worker of one run. The page sends the run when it likes; by then the program's script is loaded.
import { runVarlo } from "./run.js";

const script = new URLSearchParams(location.search).get("script");
importScripts(script); // defines createVarlo

// The page makes the workers of the threads, since Chromium may keep those of a worker that is ended, and that worker
// with them. The program's script talks to a port as to a worker.
self.Worker = function (script) {
  const { port1, port2 } = new MessageChannel();
  postMessage({ thread: { script, port: port2 } }, [port2]);
  port1.terminate = () => port1.close();
  return port1;
};

let text = "";
function print(character) {
  text += character;
  if (character === "\n" || character === "▒") send();
}
function send() {
  if (text) postMessage({ text });
  text = "";
}

onmessage = async ({ data: { module, run, shared } }) => {
  let width = 0;
  try {
    const { status } = await runVarlo(
      createVarlo,
      module,
      { ...run, script },
      {
        print,
        // The page looks into memory that it shares by itself, and is sent rows of any other.
        picture: (memory, address, columns, rows) => {
          width = columns;
          postMessage({ picture: { width, height: rows, ...(shared && { memory, address }) } });
        },
        row: (memory, address, y) => {
          const bytes = new Uint8ClampedArray(memory.buffer, address, 4 * width).slice();
          postMessage({ row: { y, bytes } }, [bytes.buffer]);
        },
      },
    );
    send();
    postMessage({ status });
  } catch (fault) {
    send();
    postMessage({ text: `\n${fault}\n` });
    postMessage({ status: 1 });
  }
};
