// The search box. The index comes with the first use, as a script, since a page that was opened as a file may not
// fetch anything else. It sets `manual`: the sections of all pages, and lunr's index of their words.
const box = document.querySelector("#search input");
const list = document.querySelector("#search ol");
let index = null;

function load() {
  const script = document.createElement("script");
  script.src = "search-index.js";
  script.onload = () => {
    index = lunr.Index.load(manual.index);
    search();
  };
  document.head.append(script);
}

// Every word of the box has to occur, as the beginning of one; so the plural finds the singular without its s.
function find(text) {
  const words = text.toLowerCase().match(/[a-z0-9_.]{2,}/g) ?? [];
  if (index === null || words.length === 0) return [];
  return index.query((query) => {
    for (const word of words)
      query.term(word.replace(/(?<=[a-z]{3})s$/, ""), {
        wildcard: lunr.Query.wildcard.TRAILING,
        presence: lunr.Query.presence.REQUIRED,
      });
  });
}

function search() {
  const found = find(box.value).slice(0, 12);
  list.replaceChildren(
    ...found.map(({ ref }) => {
      const { page, title, address } = manual.sections[ref];
      const link = document.createElement("a");
      link.href = address;
      link.textContent = title === page ? page : `${page}: ${title}`;
      const item = document.createElement("li");
      item.append(link);
      return item;
    }),
  );
  if (found.length === 0) list.append(Object.assign(document.createElement("li"), { textContent: "Nothing found" }));
  list.hidden = index === null || box.value.trim().length < 2;
}

box.addEventListener("focus", load, { once: true });
box.addEventListener("input", search);
document.addEventListener("keydown", (event) => {
  if (event.key === "/" && !/INPUT|TEXTAREA/.test(document.activeElement.tagName)) {
    event.preventDefault();
    box.focus();
  }
  if (event.key === "Escape") list.hidden = true;
});
document.addEventListener("click", (event) => {
  if (!event.target.closest("#search")) list.hidden = true;
});
