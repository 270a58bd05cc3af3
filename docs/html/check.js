// Opens every page of the manual in Chromium, on a narrow and on a wide screen, and asks what a shell cannot:
// `node check.js FOLDER`. Exit status 1 with a line for each fault.
//
// - axe-core finds no fault of accessibility, on light and on dark paper;
// - no page is wider than its screen, nothing fails to load, and no script fails;
// - the search box, where there is one, finds the page of a word.
import { readFileSync, readdirSync } from "node:fs";
import { join, resolve } from "node:path";
import { chromium } from "playwright-core";

const folder = resolve(process.argv[2]);
const axe = readFileSync(new URL("node_modules/axe-core/axe.min.js", import.meta.url), "utf8");
const flags = "--no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking";
const browser = await chromium.launch({
  executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
  args: [...flags.split(" "), "--disable-component-update", "--disable-sync"],
});
const pages = readdirSync(folder).filter((name) => name.endsWith(".html"));
let faults = 0;
const fault = (page, text) => {
  faults++;
  console.log(`${page}: ${text}`);
};

// Of the many pages of single pictures, which are made alike, every tenth is opened.
const opened = pages.filter((name, at) => !name.startsWith("scene-") || at % 10 === 0);
for (const [width, colorScheme] of [
  [400, "light"],
  [1400, "dark"],
  [1400, "light"],
]) {
  const context = await browser.newContext({ viewport: { width, height: 900 }, colorScheme });
  const tab = await context.newPage();
  let name;
  tab.on("pageerror", (error) => fault(name, `script: ${error.message}`));
  tab.on("requestfailed", (request) => fault(name, `not loaded: ${request.url()}`));
  for (name of opened) {
    await tab.goto(`file://${join(folder, name)}`);
    const wide = await tab.evaluate(() => document.documentElement.scrollWidth);
    if (wide > width) fault(name, `${wide} pixels wide on a screen of ${width}`);
    await tab.evaluate(axe);
    const { violations } = await tab.evaluate(() => axe.run({ preload: false }));
    for (const { id, help, nodes } of violations)
      fault(name, `${width} pixels, ${colorScheme}: ${id}: ${help}: ${nodes[0].html.slice(0, 120)} (${nodes.length})`);
  }
  await context.close();
}

const tab = await browser.newPage();
await tab.goto(`file://${join(folder, "index.html")}`);
if ((await tab.locator("#search").count()) > 0) {
  for (const [words, page] of [
    ["refraction_index", "reference.html"],
    ["smooth shadows", "tutorial.html"],
    ["exit status", "command-line.html#exit-status"],
  ]) {
    await tab.fill("#search input", words);
    await tab.waitForSelector("#search ol a", { timeout: 5000 }).catch(() => {});
    const found = await tab.locator("#search ol a").evaluateAll((all) => all.map((link) => link.getAttribute("href")));
    if (!found.some((address) => address.startsWith(page))) fault("index.html", `"${words}" finds ${found}`);
  }
  await tab.fill("#search input", "zzzz");
  if ((await tab.locator("#search ol").innerText()) !== "Nothing found") fault("index.html", "zzzz is found");
}
await browser.close();
console.log(faults > 0 ? `${faults} faults` : `No fault in ${opened.length} of ${pages.length} pages`);
process.exit(faults > 0 ? 1 : 0);
