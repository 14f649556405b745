// The page as a whole: unpacks the models, and keeps picture, panel and address together.

const byId = id => document.getElementById(id);

class Page {
  constructor(models, bytes) {
    this.models = models;
    this.state = new State();
    const isCloud = models.every(model => model.kind === "cloud");
    if (this.state.points === null) this.state.points = isCloud;
    if (this.state.color === null) this.state.color = firstColor(models);
    this.view = new View(byId("canvas"), models);
    this.found = null;
    this.kept = null;
    byId("facts").textContent = models.map(m => m.name).join(", ") + ": " + Math.round(bytes / 1000).toLocaleString("en") + " kB of arrays";
    document.title = models.map(model => model.name).join(" | ");
    document.body.classList.toggle("two", models.length > 1);
    byId("layout-row").hidden = models.length < 2;
    for (const id of ["show-chips", "marks-field", "problems-field"]) byId(id).hidden = isCloud;
    if (isCloud) byId("go-element").value = "point";
    fillColors(byId("color"), models);
    this.bindPanel();
    this.bindCanvas();
    this.bindButtons();
    this.problemPlaces = fillProblems(byId("problems"), models, (model, place) => this.goTo(elementHit(model, place.element, place.index)));
    this.problemAt = -1;
  }

  // Everything that the state says, onto the screen.
  apply() {
    const {state, view} = this;
    view.together = state.layout === "together";
    this.applyTheme();
    view.orbit.up = state.up === "z" ? "z" : "y";
    document.body.classList.toggle("bare", state.bare);
    byId("fold").setAttribute("aria-expanded", String(!state.bare));
    this.applySurface();
    for (const {points} of view.layers) points.mesh.visible = state.points || points.isCloud;
    this.applySizes();
    this.applyControls();
    view.change();
  }

  applySurface() {
    const {state, view} = this, coloring = new Coloring(state.color, this.models);
    view.layers.forEach(({surface, points, model}, i) => {
      const isNew = surface.split(state.fan);
      if (isNew || surface.shading !== state.shading) surface.shade(state.shading === "smooth");
      surface.shading = state.shading;
      if (isNew || surface.painted !== state.color) {
        surface.paint(coloring, coloring.sources[i]);
        points.paint(coloring, coloring.sources[i]);
      }
      surface.painted = state.color;
      const {uniforms} = surface.material;
      uniforms.showsFaces.value = state.faces;
      uniforms.showsEdges.value = state.edges;
      uniforms.showsFan.value = state.fan;
      surface.material.transparent = !state.faces;
      surface.mesh.visible = model.kind === "mesh" && (state.faces || state.edges || state.fan);
    });
    fillLegend(byId("legend"), coloring);
  }

  applySizes() {
    const ratio = this.view.renderer.getPixelRatio();
    this.view.shared.lineWidth.value = 0.65 * ratio;
    for (const {points, selection, marks} of this.view.layers) {
      points.resize(Math.pow(2, this.state.size), ratio);
      for (const layer of [selection, ...Object.values(marks)]) layer.resize(ratio);
    }
  }

  applyTheme() {
    const {theme} = this.state, dark = theme ? theme === "dark" : matchMedia("(prefers-color-scheme: dark)").matches;
    document.documentElement.classList.toggle("dark", dark);
    this.view.renderer.setClearColor(dark ? 0x16191d : 0xf4f5f7, 1);
    this.view.shared.ink.value.set(dark ? 0x05070a : 0x14181d);
    if (!this.state.faces && dark) this.view.shared.ink.value.set(0xb9c2cc);
    this.view.layers.forEach(({surface, points}, i) => {
      const own = i > 0 ? 0xe0873f : dark ? 0x9fb0c4 : points.isCloud ? 0x7f93ab : 0xb9c7d8;
      surface.material.uniforms.plain.value.set(points.isCloud || !this.view.together ? (dark ? 0x9fb0c4 : 0xb9c7d8) : own);
      points.material.uniforms.plain.value.set(points.isCloud ? own : dark ? 0xf2f4f7 : 0x14181d);
    });
  }

  applyControls() {
    const {state} = this;
    for (const id of ["faces", "edges", "fan", "points"]) byId(id).checked = state[id];
    for (const id of ["color", "shading", "up", "layout", "size"]) byId(id).value = state[id];
    byId("size-row").hidden = !state.points && this.models.every(model => model.kind === "mesh");
    const panes = this.view.layers.length > 1 && !this.view.together ? this.view.panes() : [];
    byId("panes").replaceChildren(...panes.map(pane => {
      const name = make("span", pane.layers[0].model.name);
      name.style.left = pane.x + 12 + "px";
      name.style.top = pane.y + 10 + "px";
      return name;
    }));
    byId("canvas").setAttribute("aria-label", this.models.map(m => m.name + ", " + (m.kind === "cloud" ? "" : count(m.faceCount, "face") + ", ") +
      count(m.pointCount, "point")).join("; ") + (state.color ? ", coloured by " + state.color : ""));
  }

  set(changes) {
    Object.assign(this.state, changes);
    this.apply();
    this.save();
  }

  save() {
    clearTimeout(this.saving);
    this.saving = setTimeout(() => this.state.write(this.view.orbit), 300);
  }

  bindPanel() {
    for (const id of ["faces", "edges", "fan", "points"])
      byId(id).addEventListener("change", () => this.set({[id]: byId(id).checked}));
    for (const id of ["color", "shading", "up", "layout"])
      byId(id).addEventListener("change", () => {
        this.set({[id]: byId(id).value});
        if (id === "up" || id === "layout") this.view.orbit.fit(this.view.aspect());
      });
    byId("size").addEventListener("input", () => this.set({size: Number(byId("size").value)}));
    // No form: where a notebook shows the page, forms are forbidden.
    byId("go").querySelector("button").addEventListener("click", () => this.goToNumber());
    byId("go-number").addEventListener("keydown", event => event.key === "Enter" && this.goToNumber());
  }

  goToNumber() {
    const kind = byId("go-element").value, index = Number(byId("go-number").value);
    const hit = this.models.map(model => elementHit(model, kind, index)).find(h => h);
    if (hit) this.goTo(hit); else this.say("There is no " + kind + " " + index + ".");
  }

  bindButtons() {
    byId("reset").addEventListener("click", () => this.reset());
    byId("theme").addEventListener("click", () => this.toggleTheme());
    byId("about").addEventListener("click", () => this.showHelp());
    byId("help").querySelector("button").addEventListener("click", () => byId("help").close());
    byId("fold").addEventListener("click", () => this.set({bare: !this.state.bare}));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.apply());
    addEventListener("resize", () => this.apply());
    addEventListener("hashchange", () => location.reload());
    document.addEventListener("keydown", event => this.key(event));
  }

  key(event) {
    const {state} = this;
    if (event.ctrlKey || event.metaKey || event.altKey || byId("help").open || /^(SELECT|INPUT)$/.test(event.target.tagName) &&
      event.target.type !== "checkbox") return;
    const actions = {
      0: () => this.reset(), Home: () => this.reset(), "+": () => this.view.orbit.zoom(0.87), "=": () => this.view.orbit.zoom(0.87),
      "-": () => this.view.orbit.zoom(1.15), f: () => this.set({faces: !state.faces}), e: () => this.set({edges: !state.edges}),
      d: () => this.set({fan: !state.fan}), p: () => this.set({points: !state.points}), t: () => this.toggleTheme(),
      s: () => this.set({shading: state.shading === "flat" ? "smooth" : "flat"}), c: () => this.nextColor(),
      n: () => this.nextProblem(), h: () => this.set({bare: !state.bare}), "?": () => this.showHelp(), Escape: () => this.keep(null),
    };
    if (actions[event.key]) {
      actions[event.key]();
      event.preventDefault();
    }
  }

  bindCanvas() {
    const canvas = byId("canvas"), {view} = this;
    const at = event => {
      const box = canvas.getBoundingClientRect();
      return view.pick(event.clientX - box.left, event.clientY - box.top);
    };
    bindOrbit(canvas, view.orbit, event => this.keep(at(event)));
    let waiting = 0;
    canvas.addEventListener("pointermove", event => {
      if (event.buttons || event.pointerType === "touch" || this.kept) return;
      cancelAnimationFrame(waiting);
      waiting = requestAnimationFrame(() => this.inspect(at(event)));
    });
    canvas.addEventListener("pointerleave", () => {
      cancelAnimationFrame(waiting);
      if (!this.kept) this.inspect(null);
    });
    canvas.addEventListener("dblclick", event => {
      const hit = at(event);
      if (hit) view.orbit.goTo(hit.place, view.orbit.distance * 0.6);
    });
    view.onDraw = () => this.save();
  }

  inspect(hit) {
    const box = byId("inspector");
    box.hidden = !hit;
    box.classList.toggle("kept", !!this.kept);
    box.setAttribute("aria-live", this.kept ? "polite" : "off");  // nobody wants to hear all that a pointer passes
    box.replaceChildren(...(hit ? describe(hit, this.models) : []));
  }

  keep(hit) {
    this.kept = hit;
    this.say("");
    this.state.select = !hit ? "" : hit.face !== undefined && !hit.isCorner ? "face:" + hit.face : hit.corner !== undefined ?
      "corner:" + hit.corner : "point:" + hit.point;
    this.view.select(hit);
    this.inspect(hit);
  }

  goTo(hit) {
    if (!hit) return;
    this.keep(hit);
    const place = placeOf(hit);
    if (!place) return this.say("It has no place: no point of it can be drawn.");
    this.view.orbit.goTo(place.middle, Math.max(10 * place.size, 0.05), place.normal);
  }

  nextProblem() {
    if (this.problemPlaces.length === 0) return;
    this.problemAt = (this.problemAt + 1) % this.problemPlaces.length;
    const {model, place} = this.problemPlaces[this.problemAt];
    this.goTo(elementHit(model, place.element, place.index));
  }

  showHelp() {
    byId("help").showModal();
    byId("help").querySelector("button").focus();
  }

  nextColor() {
    const keys = [...byId("color").options].map(option => option.value);
    this.set({color: keys[(keys.indexOf(this.state.color) + 1) % keys.length]});
  }

  toggleTheme() {
    this.set({theme: document.documentElement.classList.contains("dark") ? "light" : "dark"});
  }

  reset() {
    Object.assign(this.view.orbit, {yaw: 0.6, pitch: 0.42});
    this.view.orbit.fit(this.view.aspect());
  }

  say(text) {
    byId("state").textContent = text;
  }

  // Edges are looked through once the first picture is there: a large mesh takes a second.
  findMarks() {
    this.found = this.models.map(findMarks);
    this.found.forEach(({segments}, i) => {
      for (const {key} of MARKS) this.view.layers[i].marks[key].set(segments[key]);
    });
    const show = () => {
      for (const {marks} of this.view.layers)
        for (const {key} of MARKS) marks[key].group.visible = this.state.marks.has(key);
      this.view.change();
    };
    fillMarks(byId("marks"), this.found, this.state, (key, isOn) => {
      if (isOn) this.state.marks.add(key); else this.state.marks.delete(key);
      show();
    });
    show();
  }

  start() {
    const {state, view} = this, hidden = model => {
      let n = 0;
      for (let face = 0; face < model.faceCount; ++face) n += model.drawableFace(face) ? 0 : 1;
      return n;
    };
    for (const model of this.models) model.hiddenFaces = hidden(model);
    fillNames(byId("names"), this.models);
    this.apply();
    if (state.camera && state.camera.length === 6 && state.camera.every(Number.isFinite)) {
      [view.orbit.yaw, view.orbit.pitch, view.orbit.distance] = state.camera;
      view.orbit.target.set(...state.camera.slice(3));
    } else {
      view.orbit.fit(view.aspect());
    }
    const [kind, index] = state.select.split(":");
    if (index !== undefined) this.keep(this.models.map(model => elementHit(model, kind, Number(index))).find(h => h) || null);
    this.say("");
    view.draw();
  }
}

// The box around all models, in which they are placed.
function frameOf(models) {
  const least = [Infinity, Infinity, Infinity], most = [-Infinity, -Infinity, -Infinity];
  for (const bounds of models.map(model => model.bounds()))
    for (let k = 0; k < 3; ++k) {
      least[k] = Math.min(least[k], bounds.least[k]);
      most[k] = Math.max(most[k], bounds.most[k]);
    }
  if (!(least[0] <= most[0])) return {centre: [0, 0, 0], radius: 1, half: [1, 1, 1]};
  const centre = least.map((x, k) => x / 2 + most[k] / 2), half = most.map((x, k) => x / 2 - least[k] / 2);
  const radius = Math.hypot(...half) || 1;
  return {centre, radius, half: half.map(h => h / radius)};
}

function loadLibrary(bytes) {
  document.head.append(make("script", new TextDecoder().decode(bytes)));
  if (!window.THREE) throw new Error("This browser did not run the page's library.");
}

const pause = () => new Promise(resolve => setTimeout(resolve, 0));

async function main() {
  document.body.classList.toggle("bare", new State().bare);
  loadLibrary(await inflate(bytesOfBase64(byId("library").textContent)));
  const contents = JSON.parse(byId("contents").textContent), arrays = new Arrays(contents.encoding), models = [];
  for (const description of contents.models) models.push(await Model.load(description, arrays));
  const frame = frameOf(models);
  for (const model of models) model.place(frame);
  const page = new Page(models, contents.bytes);
  page.view.orbit.half = frame.half;
  page.start();
  await pause();
  page.findMarks();
  page.view.draw();
  document.documentElement.dataset.ready = "yes";
}

main().catch(error => {
  byId("state").textContent = error.message;
  document.documentElement.dataset.ready = "failed";
  console.error(error);
});
