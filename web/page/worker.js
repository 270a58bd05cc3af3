// The worker of one run. The page sends the run when it likes; by then the program's script is loaded.
import { runVarlo } from "./run.js";

const script = new URLSearchParams(location.search).get("script");
importScripts(script); // defines createVarlo

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
