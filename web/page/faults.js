// What the program says is wrong, as places in the files that it read.
import { missingInclude, placeOf } from "./scanner.js";

/** The word or character that the lines before a fault name, if it stands in the place's text. */
function narrowed(place, output, text) {
  const named = /'([^']+)'\s*(?:\n Please review the script)?\s*$/.exec(output)?.[1];
  const at = named === undefined ? -1 : text.slice(place.from, place.to).indexOf(named);
  return at < 0 ? place : { ...place, from: place.from + at, to: place.from + at + named.length };
}

// Lines that tell of nothing amiss, at the end of a run that failed.
const ORDINARY =
  /^ ?(?:VARLO v|Parsing |Reading |Computing |Number of |Multi-threaded|Running |Rendering |Resolution:|0%|▒)/;

/**
 * The fault that ended a run, and what it warned of.
 *
 * @returns of each `message` and, where there is one, its place: `file`, `line`, `from` and `to`
 */
export function faultsIn(output, status, main, textOf) {
  const found = [];
  if (/Warning: scene doesn't contain any light/.test(output))
    found.push({ message: "Warning: scene doesn't contain any light." });
  if (status === 0) return found;

  const fault = /\n Parser Error - line: (\d+)(?: - *(.*))?/.exec(output);
  if (fault) {
    // It says so of each file that it opens but of a model's settings.
    const opened = Math.max(1, output.split("\n Parsing ").length - 1);
    const place = placeOf(Number(fault[1]), opened, main, textOf);
    const before = output.slice(0, fault.index);
    const message = fault[2]?.trim() || before.trim().split("\n").slice(-2).join(" ").trim();
    return [{ message, ...(place && narrowed(place, before, textOf(place.file))) }, ...found];
  }
  const name = /Scene file: (.*) could no be opened/.exec(output)?.[1];
  const place = name && missingInclude(main, textOf);
  if (place) return [{ message: `Scene file: ${name} could no be opened`, ...place }, ...found];

  // What a scene lacks is said on the line that names its file.
  const lacking = /Missing \w+!/.exec(output)?.[0];
  if (lacking) return [{ message: lacking }, ...found];
  const lines = output.split("\n").map((line) => line.trim());
  const message = lines
    .filter((line) => line && !ORDINARY.test(line))
    .slice(-2)
    .join(" ");
  return [{ message: message || `The program ended with status ${status}.` }, ...found];
}
