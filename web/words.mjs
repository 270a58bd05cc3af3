// The words of the language, from the tables of docs/reference.md, which the tests hold against the program.
import { readFileSync } from "node:fs";

const reference = new URL("../docs/reference.md", import.meta.url);

const cellsOf = (row) =>
  row
    .split("|")
    .slice(1, -1)
    .map((cell) => cell.trim());
const ticked = (cell) => [...cell.matchAll(/`([^`]+)`/g)].map((match) => match[1]);

/** Text as it reads without the marks of the page. */
const plain = (cell) => cell.replace(/\[([^\]]*)\]\([^)]*\)/g, "$1").replace(/[`*]/g, "");

/**
 * Blocks by their word; each has its parameters: `word`, `value` (vector, decimal ...), `unit`, `default`, `often`,
 * `what` it does, with its range, and `choices` of a string. The settings of a model have those of other blocks too.
 *
 * @returns `blocks`, and `statements`: words that begin one, with what they do
 */
export function readWords(text = readFileSync(reference, "utf8")) {
  const blocks = {};
  const statements = [];
  for (const section of text.split(/^## /m).slice(1)) {
    const title = section.slice(0, section.indexOf("\n"));
    for (const row of section.split("\n").filter((line) => line.startsWith("| `"))) {
      const cells = cellsOf(row);
      if (title === "Statements") {
        for (const word of ticked(cells[0]).map((shown) => shown.split(" ")[0]))
          statements.push({ word, what: plain(cells[1]) });
      } else if (cells.length === 7) {
        const [words, value, unit, start, often, what] = cells;
        for (const word of ticked(words)) {
          const choices = value === "string" ? [...`${start} ${what}`.matchAll(/`"(\w+)"`/g)] : [];
          (blocks[title] ??= []).push({
            word,
            value: plain(value),
            unit: plain(unit),
            default: plain(start),
            often: plain(often),
            what: plain(what),
            choices: [...new Set(choices.map((match) => match[1]))],
          });
        }
      }
    }
  }
  // "as in settings": the row of the block that it points to, without its duty.
  for (const row of blocks["3DS settings"]) {
    const source = /^as in (\w+)/.exec(row.what)?.[1];
    const original = blocks[source]?.find(({ word }) => word === row.word);
    if (original) Object.assign(row, { ...original, often: "any", default: original.default });
  }
  blocks.smooth_triangle = blocks.patch;
  statements.push({ word: "smooth_triangle", what: "another word for patch" });
  return { blocks, statements };
}
