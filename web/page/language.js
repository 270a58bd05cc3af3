// The scene language for the editor: colours of the text, completion, and what a word means under the pointer.
import { snippetCompletion } from "@codemirror/autocomplete";
import { LanguageSupport, StreamLanguage, syntaxTree } from "@codemirror/language";
import { hoverTooltip } from "@codemirror/view";
import { surroundings, tokens } from "./scanner.js";
import words from "virtual:words"; // made of the manual's tables when the page is built

const { blocks, statements } = words;
const statementWords = new Set(statements.map(({ word }) => word));
const parameterWords = new Set(Object.values(blocks).flatMap((rows) => rows.map(({ word }) => word)));

/** The class of the text at the stream's place, one token further on. */
function tokenClass(stream, state) {
  if (state.comment || stream.eat("[")) {
    state.comment = !stream.skipTo("]");
    if (state.comment) stream.skipToEnd();
    else stream.next();
    return "comment";
  }
  if (stream.eatSpace()) return null;
  if (stream.eat(";")) {
    stream.skipToEnd();
    return "comment";
  }
  if (stream.match(/^"[^"\s]*"?/)) return "string";
  if (stream.match(/^#[A-Za-z][\w.\\:]*/)) return "variableName";
  if (stream.match(/^[0-9+.-][0-9+.eE-]*/)) return "number";
  if (stream.match(/^[A-Za-z][\w.\\:]*/)) {
    const word = stream.current();
    return statementWords.has(word) ? "keyword" : parameterWords.has(word) ? "propertyName" : "invalid";
  }
  return /[{}<>]/.test(stream.next()) ? "bracket" : "invalid";
}

const language = StreamLanguage.define({
  name: "vlo",
  startState: () => ({ comment: false }),
  token: tokenClass,
  languageData: {
    commentTokens: { line: ";", block: { open: "[", close: "]" } },
    closeBrackets: { brackets: ["{", "<", '"'] },
  },
});

/** Outside of braces a settings file has nothing; its one block is that of the model. */
const outsideOf = (fileName) => (fileName.endsWith(".set") ? "3DS settings" : "");

/** The manual's row of a word, as one says it: value and unit, default, how often, what it does. */
function describe(row) {
  const lines = [row.what];
  const value = [row.value, row.unit && row.unit !== row.value ? `(${row.unit})` : ""].join(" ").trim();
  const often = row.often === "any" ? "" : row.often === "once" ? "has to stand once" : `stands ${row.often}`;
  const start = row.default ? `default ${row.default}` : "";
  const facts = [value, start, often].filter(Boolean).join("; ");
  return [facts, ...lines].filter(Boolean).join("\n");
}

const VALUES = { vector: "<${0} 0 0>", colour: "${1} ${1} ${1}", string: '"${}"' };

/** A statement with its block, and the parameters that it cannot do without. */
function statementCompletion({ word, what }) {
  if (!blocks[word]) {
    const rest = word === "include" ? ' "${name.inc}"' : ' "${name}" color ${1} ${1} ${1}';
    return snippetCompletion(word + rest, { label: word, type: "keyword", info: what });
  }
  const duty = blocks[word].filter(({ often }) => often !== "any");
  const inside = duty.map((row) => `${row.word} ${VALUES[row.value] ?? "${1}"}`).join("  ");
  return snippetCompletion(`${word} { ${inside || "${}"} }`, { label: word, type: "keyword", info: what });
}
const statementCompletions = statements.map(statementCompletion);

const parameterCompletions = Object.fromEntries(
  Object.entries(blocks).map(([block, rows]) => [
    block,
    rows.map((row) => {
      const start = row.value === "string" && row.default ? row.default.replace(/"/g, "") : undefined;
      const value = start ? `"\${${start}}"` : row.default ? `\${${row.default}}` : (VALUES[row.value] ?? "${1}");
      return snippetCompletion(`${row.word} ${value}`, {
        label: row.word,
        detail: row.default || (row.often === "any" ? "" : "needed"),
        type: "property",
        info: describe(row),
        boost: row.often === "any" ? 0 : 1,
      });
    }),
  ]),
);

/** Completion of what may stand at the cursor. `fileNames()` lists the files that can be included. */
function complete(fileNames, fileName) {
  return (context) => {
    const text = context.state.doc.toString();
    if (/comment/.test(syntaxTree(context.state).resolveInner(context.pos, -1).name)) return null;
    const name = context.matchBefore(/#\w*$/);
    if (name) {
      const declared = [...declaredColours(text)].map((label) => ({ label: `#${label}`, type: "variable" }));
      return { from: name.from, options: declared };
    }
    const before = context.matchBefore(/[A-Za-z][\w.]*$/);
    if (!before && !context.explicit && !/"$/.test(text.slice(0, context.pos))) return null;
    const from = before?.from ?? context.pos;
    const { block, word, quoted } = surroundings(text, from, outsideOf(fileName));
    if (quoted) {
      const labels =
        word === "include" ? fileNames() : (blocks[block]?.find((row) => row.word === word)?.choices ?? []);
      return { from, options: labels.map((label) => ({ label, type: "text" })) };
    }
    const options = block ? parameterCompletions[block] : statementCompletions;
    return options ? { from, options, validFor: /^\w*$/ } : null;
  };
}

/** The names that `declare` gives colours in a text. */
function* declaredColours(text) {
  const last = [];
  for (const token of tokens(text)) {
    last.push(token.text);
    if (last.length > 4) last.shift();
    if (last[0] === "declare" && last[1] === '"' && last[3] === '"') yield last[2];
  }
}

/** What the manual says of the word under the pointer. */
const wordTooltip = (fileName) =>
  hoverTooltip((view, at) => {
    const range = view.state.wordAt(at);
    if (!range) return null;
    const word = view.state.sliceDoc(range.from, range.to);
    const { block } = surroundings(view.state.doc.toString(), range.from, outsideOf(fileName));
    const row = block
      ? blocks[block]?.find((each) => each.word === word)
      : statements.find((each) => each.word === word);
    if (!row) return null;
    const dom = document.createElement("div");
    dom.className = "word-info";
    dom.textContent = block ? describe(row) : row.what;
    return { pos: range.from, end: range.to, create: () => ({ dom }) };
  });

/** The language of one file. */
export const sceneLanguage = (fileName, fileNames) =>
  new LanguageSupport(language, [
    language.data.of({ autocomplete: complete(fileNames, fileName) }),
    wordTooltip(fileName),
  ]);
