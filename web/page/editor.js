// The editor: one view, and a state for each file, so that each keeps its own history and place.
import { autocompletion, closeBrackets, closeBracketsKeymap, completionKeymap } from "@codemirror/autocomplete";
import { defaultKeymap, history, historyKeymap } from "@codemirror/commands";
import { bracketMatching, HighlightStyle, indentUnit, syntaxHighlighting } from "@codemirror/language";
import { forceLinting, linter, lintKeymap } from "@codemirror/lint";
import { highlightSelectionMatches, searchKeymap } from "@codemirror/search";
import { EditorState } from "@codemirror/state";
import {
  drawSelection,
  EditorView,
  highlightActiveLine,
  highlightActiveLineGutter,
  highlightSpecialChars,
  keymap,
  lineNumbers,
} from "@codemirror/view";
import { tags } from "@lezer/highlight";
import { sceneLanguage } from "./language.js";

// The values are in page.css, light and dark.
const colours = HighlightStyle.define([
  { tag: tags.comment, color: "var(--comment)" },
  { tag: tags.string, color: "var(--string)" },
  { tag: tags.number, color: "var(--number)" },
  { tag: tags.keyword, color: "var(--keyword)", fontWeight: "600" },
  { tag: tags.propertyName, color: "var(--property)" },
  { tag: tags.variableName, color: "var(--name)" },
  { tag: tags.invalid, color: "var(--fault)" },
]);

/**
 * Makes the editor in `parent`.
 *
 * @param page  `changed(name, text)`, `render()`, `fileNames()`, `faults(name)`: of each `from`, `to`, `message`
 */
export function makeEditor(parent, page) {
  const states = new Map();
  let shown;
  const view = new EditorView({ parent });

  const stateOf = (name, doc, isFixed) =>
    EditorState.create({
      doc,
      extensions: [
        keymap.of([{ key: "Mod-Enter", run: () => (page.render(), true), preventDefault: true }]),
        lineNumbers(),
        highlightActiveLineGutter(),
        highlightSpecialChars(),
        history(),
        drawSelection(),
        bracketMatching({ brackets: "{}<>" }),
        closeBrackets(),
        autocompletion(),
        highlightActiveLine(),
        highlightSelectionMatches(),
        syntaxHighlighting(colours),
        indentUnit.of("  "),
        sceneLanguage(name, page.fileNames),
        EditorState.readOnly.of(isFixed),
        linter(
          (editor) => {
            const length = editor.state.doc.length;
            // A mark of no width would not be seen.
            const within = ({ from, to }) =>
              to > length ? { from: Math.max(0, length - 1), to: length } : { from, to };
            return page.faults(name).map(({ message, ...range }) => ({ severity: "error", message, ...within(range) }));
          },
          { delay: 1e9 },
        ), // the page says when
        // Tab goes on to the next control: Escape is not needed to leave the editor by keyboard.
        keymap.of([
          ...closeBracketsKeymap,
          ...defaultKeymap,
          ...searchKeymap,
          ...historyKeymap,
          ...completionKeymap,
          ...lintKeymap,
        ]),
        EditorView.contentAttributes.of({ "aria-label": `Text of ${name}` }),
        EditorView.updateListener.of((update) => {
          if (update.docChanged) page.changed(name, update.state.doc.toString());
        }),
      ],
    });

  return {
    view,
    /** Forgets all files. */
    clear: () => states.clear(),
    /** Shows a file with its text; `isFixed` is one of which the text only tells. */
    show(name, text, isFixed) {
      if (shown !== undefined && states.has(shown)) states.set(shown, view.state);
      if (states.get(name)?.doc.toString() !== text) states.set(name, stateOf(name, text, isFixed));
      shown = name;
      view.setState(states.get(name));
    },
    /** Marks the faults of the file that is shown. */
    mark: () => forceLinting(view),
    /** Takes the cursor to a place, and the keyboard with it. */
    go(place) {
      view.dispatch({ selection: { anchor: Math.min(place, view.state.doc.length) }, scrollIntoView: true });
      view.focus();
    },
  };
}
