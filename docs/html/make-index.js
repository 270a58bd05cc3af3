// Makes the index of the search box from the pages: `node make-index.js FOLDER` writes FOLDER/search-index.js.
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import lunr from "lunr";

const folder = process.argv[2];
const entities = { "&lt;": "<", "&gt;": ">", "&quot;": '"', "&amp;": "&", "&#39;": "'" };
const plain = (html) =>
  html
    .replace(/<[^>]*>/g, " ")
    .replace(/&(lt|gt|quot|amp|#39);/g, (entity) => entities[entity])
    .replace(/\s+/g, " ")
    .trim();

// A section begins with a heading that has a name, and goes on up to the next one.
const sections = [];
for (const file of readdirSync(folder).filter((name) => name.endsWith(".html")).sort()) {
  const [, main] = readFileSync(join(folder, file), "utf8").match(/<main[^>]*>([^]*)<\/main>/) ?? [];
  if (main === undefined) continue; // not a page of the manual
  let page;
  for (const [, level, id, title, text] of main.matchAll(
    /<h([1-3])[^>]* id="([^"]*)"[^>]*>([^]*?)<\/h\1>([^]*?)(?=<h[1-3][^>]* id=|$)/g,
  )) {
    page ??= plain(title);
    sections.push({ page, title: plain(title), address: level === "1" ? file : `${file}#${id}`, text: plain(text) });
  }
}

// Neither stems nor stop words: the language's words are names, and the box takes the beginnings of words.
const index = lunr(function () {
  this.pipeline.reset();
  this.pipeline.add(lunr.trimmer);
  this.searchPipeline.reset();
  this.ref("number");
  this.field("title", { boost: 8 });
  this.field("text");
  sections.forEach(({ title, text }, number) => this.add({ number, title, text: text.replace(/[<>{}"]/g, " ") }));
});
for (const section of sections) delete section.text;
writeFileSync(join(folder, "search-index.js"), `const manual = ${JSON.stringify({ sections, index })};\n`);
console.log(`The search box knows ${sections.length} sections`);
