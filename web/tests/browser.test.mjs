// The pages in a browser: what a user does, at the width of a phone and of a desk.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { createHash } from "node:crypto";
import { mkdirSync, readdirSync, readFileSync, writeFileSync } from "node:fs";
import { cpus, loadavg } from "node:os";
import { extname, join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import axe from "axe-core";
import { chromium } from "playwright-core";
import { serve } from "../serve.mjs";

const root = fileURLToPath(new URL("../..", import.meta.url));
const pages = join(root, "build/web");
const shots = join(root, "build/web-test");
const varlo = join(root, "build/release/varlo");
const FLAGS =
  "--no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking " +
  "--disable-component-update --disable-sync";

mkdirSync(shots, { recursive: true });
const browser = await chromium.launch({ executablePath: "/usr/bin/chromium", args: FLAGS.split(" ") });
const [isolated, plain] = [await serve(pages), await serve(pages, { isolated: false })];
after(async () => {
  await browser.close();
  for (const server of [isolated, plain]) server.close();
});

const addressOf = (server) => `http://127.0.0.1:${server.address().port}/`;

/** A page of a user of its own; what goes wrong in it fails the test. */
async function open(t, { path = "", server = isolated, width = 1400, ...options } = {}) {
  const context = await browser.newContext({ viewport: { width, height: 900 }, ...options });
  await context.grantPermissions(["clipboard-read", "clipboard-write"]);
  const page = await context.newPage();
  const troubles = [];
  page.on("pageerror", (error) => troubles.push(error.message));
  page.on("console", (message) => message.type() === "error" && troubles.push(message.text()));
  page.on("request", (request) => {
    if (!/^(blob:|data:|http:\/\/127\.0\.0\.1:)/.test(request.url())) troubles.push(request.url());
  });
  t.after(async () => {
    await context.close();
    // A run that is stopped while its threads load their script says so.
    assert.deepEqual(
      troubles.filter((trouble) => !/importScripts/.test(trouble)),
      [],
    );
  });
  await page.goto(addressOf(server) + path);
  return page;
}

const says = (page, pattern, timeout = 30_000) =>
  page.waitForFunction(
    (source) => new RegExp(source).test(document.querySelector("#status").textContent),
    pattern.source,
    { timeout },
  );
const rendered = (page) => says(page, /^\d+ × \d+ pixels in/);

async function type(page, text) {
  await page.locator(".cm-content").click();
  await page.keyboard.press("Control+A");
  await page.keyboard.insertText(text);
}

/** The checksum of what the canvas shows, as of the program's own PPM of it. */
const pictureIn = (page) =>
  page.evaluate(async () => {
    const canvas = document.querySelector("#picture");
    const { data, width, height } = canvas.getContext("2d").getImageData(0, 0, canvas.width, canvas.height);
    const file = new Blob([`P6\n${width} ${height}\n255\n`, data.filter((_, i) => i % 4 < 3)]);
    const sum = await crypto.subtle.digest("SHA-256", await file.arrayBuffer());
    return btoa(String.fromCharCode(...new Uint8Array(sum)));
  });

/** The same of the native program's picture. */
function nativePicture(files, args) {
  for (const [name, content] of Object.entries(files)) writeFileSync(join(shots, name), content);
  execFileSync(varlo, `${args} -ppm -o picture`.split(" "), { cwd: shots, stdio: "ignore" });
  return createHash("sha256")
    .update(readFileSync(join(shots, "picture.ppm")))
    .digest("base64");
}

const SCENE = `settings { output_type "png" output_name "x" resolution 240 180 antialiasing "adaptive" aa_distance 8 }
camera { position <0 -8 3> look_at <0 0 1> }
light { position <-4 -6 8> color 0.9 0.9 0.9 attenuation_type "none" }
include "part.inc"
surface { color 0.8 0.2 0.1 ambient 0.2 diffuse 0.8 reflection 0.3 }
sphere { center <0 0 1> radius 1 }
`;
const PART = "surface { color 0.8 0.8 0.8 ambient 0.2 diffuse 0.8 }\nplane { normal <0 0 1> distance 0 }\n";
const HEAVY = SCENE.replace("240 180", "1600 1200")
  .replace('"none"', '"none" shadow_type "smooth" radius 1 light_samples 24')
  .replace(/include.*\n/, "");

for (const width of [400, 1400])
  test(`edit, include, fault, at ${width} pixels`, async (t) => {
    const page = await open(t, { width });
    await rendered(page);
    await page.screenshot({ path: join(shots, `open-${width}.png`) });
    const scrollWidth = await page.evaluate(() => document.documentElement.scrollWidth);
    assert.ok(scrollWidth <= width, `${scrollWidth} pixels wide`);

    // A file that is missing, then there.
    await type(page, SCENE);
    await says(page, /^endgame\.vlo, line 4: Scene file: part\.inc/);
    assert.equal(await page.locator(".cm-lintRange-error").innerText(), 'include "part.inc"');
    await page.click("#add");
    await page.fill("#name-text", "part.inc");
    await page.keyboard.press("Enter");
    await type(page, PART);
    await rendered(page);
    const files = { "a.vlo": SCENE, "part.inc": PART };
    assert.equal(await pictureIn(page), nativePicture(files, "-i a.vlo"));

    // A fault in the include is marked there and named in the scene's tab as well.
    await type(page, `${PART}sphere { radius 1 }\n`);
    await says(page, /^part\.inc, line 3: error in sphere structure declaration/);
    assert.equal(await page.locator(".cm-lintRange-error").innerText(), "sphere { radius 1 }");
    await page.getByRole("tab", { name: "endgame.vlo" }).click();
    await page.locator("#faults button").click();
    assert.equal(await page.getByRole("tab", { selected: true }).textContent(), "part.inc");
    await page.screenshot({ path: join(shots, `fault-${width}.png`) });

    // What was typed is there at the next visit.
    await page.waitForTimeout(400);
    await page.goto("about:blank");
    await page.goto(addressOf(isolated));
    await says(page, /^part\.inc, line 3/);
  });

test("threads and one thread give the native bytes, and the page says which", async (t) => {
  const scene = {
    "a.vlo": SCENE.replace(/include.*\n/, "").replace('none"', 'none" shadow_type "smooth" radius 1 light_samples 4'),
  };
  for (const [server, mode, label] of [
    [isolated, /side by side/, "Threads"],
    [plain, /^One thread/, "Bands"],
  ]) {
    const page = await open(t, { server });
    assert.match(await page.textContent("#mode"), mode);
    assert.equal(await page.textContent("#threads-name"), label);
    await rendered(page);
    await type(page, scene["a.vlo"]);
    await page.selectOption("#threads", "4");
    await page.keyboard.press("Control+Enter");
    await says(page, /^240 × 180 pixels/);
    assert.equal(await pictureIn(page), nativePicture(scene, "-i a.vlo -t 4"));
    assert.match(await page.textContent("#output"), / Running 4 threads\n[^]*Rendering time/);
  }
});

test("a small picture comes first, rows come as they finish, and a run stops at once", async (t) => {
  for (const server of [isolated, plain]) {
    const page = await open(t, { server });
    await rendered(page);
    await type(page, HEAVY);
    await says(page, /^Small picture|^Picture/);
    await says(page, /^Picture: [1-9]\d? %/);
    // In one step within the page: its threads may keep a small machine busy until they have ended.
    const told = await page.evaluate(() => {
      document.querySelector("#stop").click();
      return document.querySelector("#status").textContent;
    });
    assert.equal(told, "Stopped");
    const before = await pictureIn(page);
    assert.equal(await page.getAttribute("#picture", "width"), "1600");
    await page.waitForTimeout(300);
    assert.equal(await pictureIn(page), before);
    assert.ok(await page.isDisabled("#png"), "no file of half a picture");
    for (const begun = Date.now(); page.workers().length > 1 && Date.now() - begun < 120_000;)
      await page.waitForTimeout(50);
    assert.equal(page.workers().length, 1, "only the worker of the next run is left");

    // A change stops a run too, and the picture of the change comes.
    await page.click("#render");
    await says(page, /^Picture/);
    await type(page, HEAVY.replace("1600 1200", "32 24"));
    await says(page, /^32 × 24 pixels/, 120_000);
  }
});

test("size, sampler, PNG, command line and link", async (t) => {
  const page = await open(t, { path: "#manual/first" });
  await rendered(page);
  await page.selectOption("#size", "own");
  await page.fill("#width", "64");
  await page.fill("#height", "48");
  await page.selectOption("#sampler", "-aaa 64");
  await says(page, /^64 × 48 pixels/);
  const files = { "first.vlo": readFileSync(join(root, "docs/scenes/first.vlo")) };
  const wanted = nativePicture(files, "-i first.vlo -r 64 48 -aaa 64");
  assert.equal(await pictureIn(page), wanted);

  await page.click("#command");
  const clipboard = () => page.evaluate(() => navigator.clipboard.readText());
  assert.equal(await clipboard(), "varlo -i first.vlo -r 64 48 -aaa 64 -png -o first");
  const [download] = await Promise.all([page.waitForEvent("download"), page.click("#png")]);
  assert.equal(download.suggestedFilename(), "first.png");
  assert.equal(readFileSync(await download.path()).toString("latin1", 1, 4), "PNG");

  await page.click("#link");
  await says(page, /clipboard/);
  const link = await clipboard();
  const other = await open(t, { path: new URL(link).hash });
  await says(other, /^64 × 48 pixels/);
  assert.equal(await pictureIn(other), wanted);
  const broken = await open(t, { path: "#z=AAAA" });
  await broken.waitForSelector("#faults:has-text('The link cannot be opened')");
});

test("a 3DS model that is dropped gets its settings", async (t) => {
  const page = await open(t);
  await rendered(page);
  await page.evaluate(async () => {
    const model = await (await fetch("scenes/manual/donut.3ds")).blob();
    const dataTransfer = new DataTransfer();
    dataTransfer.items.add(new File([model], "My donut.3DS"));
    document.querySelector("main").dispatchEvent(new DragEvent("drop", { dataTransfer, bubbles: true }));
  });
  await says(page, /^640 × 480 pixels/);
  const settings = await page.locator(".cm-content").innerText();
  assert.match(settings, /input_name "My_donut\.3ds"/);
  await type(page, settings.replace("640 480", "120 90"));
  await says(page, /^120 × 90 pixels/);
  const model = readFileSync(join(pages, "scenes/manual/donut.3ds"));
  const files = { "m.set": settings.replace("640 480", "120 90"), "My_donut.3ds": model };
  assert.equal(await pictureIn(page), nativePicture(files, "-3ds m.set"));
});

test("completion by block, by keyboard alone, and a new scene", async (t) => {
  const page = await open(t);
  await rendered(page);
  await type(page, "settings { antial");
  await page.waitForSelector(".cm-tooltip-autocomplete");
  await page.waitForTimeout(150); // it takes no key for so long
  await page.waitForSelector(".cm-completionInfo:has-text('default \"none\"')");
  assert.deepEqual(await page.locator(".cm-completionLabel").allTextContents(), ["antialiasing"]);
  await page.keyboard.press("Enter");
  assert.match(await page.locator(".cm-content").innerText(), /settings \{ antialiasing "none"/);
  await type(page, 'light { shadow_type "');
  await page.keyboard.press("Control+Space");
  await page.waitForSelector(".cm-tooltip-autocomplete");
  assert.deepEqual(await page.locator(".cm-completionLabel").allTextContents(), ["sharp", "smooth"]);
  await page.keyboard.press("Escape");

  await page.keyboard.press("Tab"); // out of the editor
  assert.notEqual(await page.evaluate(() => document.activeElement.className), "cm-content");
  await page.focus("#new");
  await page.keyboard.press("Enter");
  await page.waitForSelector("#scene-list button");
  await page.keyboard.type("chess");
  await page.screenshot({ path: join(shots, "scenes.png") });
  await page.keyboard.press("Tab");
  await page.keyboard.press("Tab");
  await page.keyboard.press("Enter");
  await rendered(page);
  assert.match(page.url(), /#gallery\/endgame$/);
});

test("names for screen readers and contrast, light and dark", async (t) => {
  for (const colorScheme of ["light", "dark"])
    for (const width of [360, 1400, 2560]) {
      const page = await open(t, { width, colorScheme, path: "#gallery/vases" });
      await rendered(page);
      await type(page, "{ input_name 1 }");
      await says(page, /line 1/);
      for (const state of ["fault", "scenes"]) {
        if (state === "scenes") await page.click("#new");
        await page.evaluate(axe.source);
        const { violations } = await page.evaluate(() => globalThis.axe.run());
        const found = violations.map(({ id, nodes }) => `${id}: ${nodes.map(({ html }) => html).join(" ")}`);
        assert.deepEqual(found, [], `${colorScheme}, ${width} pixels, ${state}`);
        await page.screenshot({ path: join(shots, `${state}-${colorScheme}-${width}.png`) });
      }
    }
});

test("edit and render leads from the manual and its gallery to a picture", async (t) => {
  for (const [path, link] of [
    ["manual/reference.html", "manual/object_disc"],
    ["manual/gallery.html", "gallery/endgame"],
  ]) {
    const page = await open(t, { path });
    await page.locator(`a.try[href="../index.html#${link}"]`).first().click();
    await rendered(page);
    assert.equal(await page.getByRole("tab", { selected: true }).textContent(), `${link.split("/")[1]}.vlo`);
  }
});

test("weight and first picture", async (t) => {
  const namesIn = (folder) => readdirSync(join(pages, folder)).map((name) => join(folder, name));
  const parts = ["", "varlo-threads"].flatMap(namesIn).filter((name) => extname(name));
  const weight = parts.reduce((sum, part) => sum + gzipSync(readFileSync(join(pages, part))).length, 0);
  t.diagnostic(`page and program: ${Math.round(weight / 1000)} KB compressed`);
  assert.ok(weight < 700_000);
  assert.ok(parts.every((name) => extname(name) !== ".map"));

  const opening = [];
  for (let i = 0; i < 3; ++i) {
    const page = await open(t);
    await says(page, /picture: 100 %|^Picture|pixels in/);
    opening.push(await page.evaluate(() => performance.now()));
  }
  t.diagnostic(`first picture after ${opening.map(Math.round).join(", ")} ms`);
  // On a busy machine each waits for its turn.
  assert.ok(Math.min(...opening) < 2000 * Math.max(1, loadavg()[0] / cpus().length));
});
