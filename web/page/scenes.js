// The scenes that come with the page: those of the gallery and of the manual.

const index = fetch("scenes/index.json").then((answer) => answer.json());
index.catch(() => {}); // whoever needs it reports it

/** The files of a scene, by its name in the index, as a project. Throws where there is none of that name. */
export async function fetchScene(id) {
  const scene = (await index).flatMap(({ scenes }) => scenes).find((each) => each.id === id);
  if (!scene) throw new Error(`there is no scene ${id}`);
  const folder = `scenes/${id.split("/")[0]}/`;
  const files = await Promise.all(
    scene.files.map(async (name) => {
      const answer = await fetch(folder + name);
      if (!answer.ok) throw new Error(`${name}: ${answer.statusText}`);
      return [name, name.endsWith(".3ds") ? new Uint8Array(await answer.arrayBuffer()) : await answer.text()];
    }),
  );
  return { main: scene.files[0], files: Object.fromEntries(files) };
}

function sceneButton({ name, idea, picture }, choose) {
  const button = document.createElement("button");
  button.type = "button";
  if (picture) {
    const image = new Image();
    Object.assign(image, { src: picture, alt: "", loading: "lazy" });
    button.append(image);
  }
  const title = document.createElement("span");
  title.textContent = name;
  const small = document.createElement("small");
  small.textContent = idea;
  button.append(title, small);
  button.onclick = choose;
  const item = document.createElement("li");
  item.append(button);
  return item;
}

/**
 * Lets the user choose a scene.
 *
 * @param kept  the projects that the browser keeps
 * @returns the scene with its `id`; or a kept `project` with its `choice` and, as `kept`, its id; or undefined
 */
export async function showScenes(kept) {
  const dialog = document.getElementById("scenes");
  const list = document.getElementById("scene-list");
  const search = document.getElementById("search");
  let chosen;
  const choose = (entry) => () => {
    chosen = entry;
    dialog.close();
  };
  const yours = kept.map(({ id, time, project, choice }) => ({
    name: project.main,
    idea: new Date(time).toLocaleString(),
    entry: { project, choice, kept: id },
  }));
  const empty = { name: "empty", idea: "a camera, a light, a surface", entry: { project: emptyProject() } };
  const groups = [
    { title: "Yours", scenes: [empty, ...yours] },
    ...(await index).map(({ title, scenes }) => ({
      title,
      scenes: scenes.map((scene) => ({ ...scene, entry: { id: scene.id } })),
    })),
  ];
  const show = () => {
    const wanted = search.value.toLowerCase();
    list.replaceChildren(
      ...groups.flatMap(({ title, scenes }) => {
        const fitting = scenes.filter(({ name, idea }) => `${name} ${idea}`.toLowerCase().includes(wanted));
        if (fitting.length === 0) return [];
        const head = document.createElement("h3");
        head.textContent = title;
        const items = document.createElement("ul");
        items.append(...fitting.map((scene) => sceneButton(scene, choose(scene.entry))));
        return [head, items];
      }),
    );
  };
  search.value = "";
  search.oninput = show;
  show();
  dialog.showModal();
  await new Promise((resolve) => dialog.addEventListener("close", resolve, { once: true }));
  return chosen;
}

const emptyProject = () => ({
  main: "scene.vlo",
  files: {
    "scene.vlo": `settings { output_type "png"  output_name "scene"  resolution 640 480
           antialiasing "adaptive"  aa_distance 16  background 0.55 0.7 0.9 }
camera { position <0 -8 3>  look_at <0 0 1>  fov 45 }
light { position <-4 -6 8>  color 0.9 0.9 0.9  attenuation_type "none" }

surface { color 0.8 0.8 0.8  ambient 0.2  diffuse 0.8 }
plane { normal <0 0 1>  distance 0 }
`,
  },
});
