// The scanner of the scene language, as far as a page needs it: tokens, the include files that a scene reads,
// the place behind a line number that runs on over all files, and the size of the picture.

const TOKEN = new RegExp(
  [
    "(?<blank>[ \\t\\n\\v\\f\\r]+)",
    "(?<comment>;[^\\n]*|\\[[^\\]]*\\]?)",
    "(?<word>[A-Za-z][A-Za-z0-9_.\\\\:]*)",
    "(?<number>[0-9+.-][0-9+.eE-]*)",
    '(?<mark>[{}<>"#])',
    "(?<other>[^])",
  ].join("|"),
  "gy",
);

/** The tokens of a text from `from` on, in order: `kind` as in the pattern above, `text`, `from` and `to`. */
export function* tokens(text, { from = 0, blanks = false } = {}) {
  TOKEN.lastIndex = from;
  for (let at = from; at < text.length;) {
    TOKEN.lastIndex = at;
    const match = TOKEN.exec(text);
    const kind = Object.keys(match.groups).find((name) => match.groups[name] !== undefined);
    const to = at + match[0].length;
    if (blanks || (kind !== "blank" && kind !== "comment")) yield { kind, text: match[0], from: at, to };
    at = to;
  }
}

/** The `include` statements of a text: `name`, and from where to where they stand. */
export function includesOf(text) {
  const found = [];
  const last = [];
  for (const token of tokens(text)) {
    last.push(token);
    if (last.length > 4) last.shift();
    const [word, open, name, close] = last;
    if (close?.text === '"' && open.text === '"' && word.text === "include")
      found.push({ name: name.text, from: word.from, to: close.to });
  }
  return found;
}

// A file that includes itself would be read until the system refuses one more stream.
const MAX_DEPTH = 50;

const linesIn = (text) => text.split("\n").length - 1;

/**
 * What the program reads, in its order, from the file `main` on: stretches of text without an include inside.
 * `textOf(name)` gives a file's text, or undefined.
 *
 * @returns stretches with `file`, `from`, `to`, the `line` of the program's count where they begin, and `opened`,
 *          how many files were opened by then. An include that cannot be read ends the list; its stretch has
 *          `missing`, the statement.
 */
export function readingOrder(main, textOf) {
  const stretches = [];
  let line = 1;
  let opened = 0;
  const read = (file, depth) => {
    const text = textOf(file);
    ++opened;
    let from = 0;
    const take = (to, missing) => {
      stretches.push({ file, from, to, line, opened, missing });
      line += linesIn(text.slice(from, to));
      from = to;
    };
    for (const include of includesOf(text)) {
      const isMissing = textOf(include.name) === undefined || depth === MAX_DEPTH;
      take(include.to, isMissing ? include : undefined);
      if (isMissing || !read(include.name, depth + 1)) return false;
    }
    take(text.length);
    return true;
  };
  if (textOf(main) !== undefined) read(main, 0);
  return stretches;
}

/** The part of `text` from `from` to `to` without the blanks and comments at its ends. */
function trimmed(text, from, to) {
  let first, last;
  for (const token of tokens(text.slice(from, to))) {
    first ??= token;
    last = token;
  }
  return first && { from: from + first.from, to: from + last.to };
}

/**
 * The place that the program means by a line of its count.
 *
 * @param opened  how many files it had opened by then: it says so of each, and a line alone may mean two places
 * @returns `file`, `from` and `to` within it, `line` counted from 1 within it; or undefined
 */
export function placeOf(line, opened, main, textOf) {
  let best;
  for (const stretch of readingOrder(main, textOf)) {
    const text = textOf(stretch.file);
    const part = text.slice(stretch.from, stretch.to).split("\n");
    const index = line - stretch.line;
    if (stretch.opened !== opened || index < 0 || index >= part.length) continue;
    const from = stretch.from + part.slice(0, index).reduce((sum, row) => sum + row.length + 1, 0);
    const range = trimmed(text, from, from + part[index].length);
    // Of two that fit, the program was at the later one, unless nothing stands there.
    if (range || !best) best = { file: stretch.file, from, to: from + part[index].length, ...range };
  }
  return best && { ...best, line: linesIn(textOf(best.file).slice(0, best.from)) + 1 };
}

/** The include statement of the first file that is missing, as a place; or undefined. */
export function missingInclude(main, textOf) {
  const stretch = readingOrder(main, textOf).find(({ missing }) => missing);
  if (!stretch) return undefined;
  const { name, from, to } = stretch.missing;
  return { file: stretch.file, from, to, name, line: linesIn(textOf(stretch.file).slice(0, from)) + 1 };
}

/** Width and height that a scene or a settings file asks for. */
export function sizeOf(main, textOf) {
  let size = [320, 240];
  let block = main.endsWith(".set") ? "settings" : undefined;
  let word;
  let numbers = [];
  for (const { file, from, to } of readingOrder(main, textOf)) {
    for (const token of tokens(textOf(file).slice(0, to), { from })) {
      if (token.kind === "word") {
        if (token.text === "settings") [block, size] = ["settings", [320, 240]];
        [word, numbers] = [token.text, []];
      } else if (token.text === "}") {
        block = undefined;
      } else if (token.kind === "number" && block && ["resolution", "display"].includes(word)) {
        numbers.push(Number.parseInt(token.text, 10) || 0);
        if (numbers.length === 2) size = numbers;
      }
    }
  }
  return size;
}

/**
 * What stands around a place in a text.
 *
 * @returns `block`, the word of the block, or `outside`; `word`, the parameter or statement before the place; and
 *          `quoted`, whether a string is open there
 */
export function surroundings(text, place, outside = "") {
  let block = outside;
  let word = "";
  let quoted = false;
  for (const token of tokens(text)) {
    if (token.from >= place || (token.kind === "word" && token.to >= place)) break;
    if (token.text === '"') quoted = !quoted;
    else if (token.text === "{") block = word || outside;
    else if (token.text === "}") block = outside;
    else if (token.kind === "word" && !quoted) word = token.text;
  }
  return { block, word, quoted };
}
