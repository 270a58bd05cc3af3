// Serves the pages on 127.0.0.1, with the two headers that let a page share memory between threads.
//
// Usage: node serve.mjs FOLDER [PORT]; PORT 0 takes a free one.
import { createReadStream, statSync } from "node:fs";
import { createServer } from "node:http";
import { extname, join, normalize } from "node:path";
import { fileURLToPath } from "node:url";

const TYPES = {
  ".html": "text/html; charset=utf-8",
  ".css": "text/css; charset=utf-8",
  ".js": "text/javascript; charset=utf-8",
  ".json": "application/json",
  ".wasm": "application/wasm",
  ".jpg": "image/jpeg",
  ".png": "image/png",
};
const ISOLATED = { "Cross-Origin-Opener-Policy": "same-origin", "Cross-Origin-Embedder-Policy": "require-corp" };

/** A server of the files below `folder`; without `isolated` it is one of those that send no such headers. */
export function serve(folder, { port = 0, isolated = true } = {}) {
  const server = createServer((request, response) => {
    const fail = (status) => response.writeHead(status).end();
    let file;
    try {
      // Normalised as an absolute path, so that no ".." leads out of the folder.
      file = join(folder, normalize(decodeURIComponent(new URL(request.url, "http://localhost").pathname)));
      if (statSync(file).isDirectory()) file = join(file, "index.html");
      const { size } = statSync(file);
      const type = TYPES[extname(file)] ?? "text/plain; charset=utf-8";
      response.writeHead(200, {
        "Content-Type": type,
        "Content-Length": size,
        "Cache-Control": "no-cache",
        ...(isolated && ISOLATED),
      });
    } catch {
      return fail(404);
    }
    return createReadStream(file)
      .on("error", () => response.destroy())
      .pipe(response);
  });
  return new Promise((resolve, reject) => {
    server.once("error", reject);
    server.listen(port, "127.0.0.1", () => resolve(server));
  });
}

if (process.argv[1] === fileURLToPath(import.meta.url)) {
  const [folder, port = "8080"] = process.argv.slice(2);
  const server = await serve(folder, { port: Number(port) });
  console.log(`varlo is at http://127.0.0.1:${server.address().port}/ until Ctrl+C`);
}
