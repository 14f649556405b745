// The lists of the panel, and the legend.

const count = (n, word) => n.toLocaleString("en") + " " + word + (n === 1 ? "" : word.endsWith("x") ? "es" : "s");

function fillNames(header, models) {
  for (const model of models) {
    const hidden = model.hiddenFaces ? ", " + count(model.hiddenFaces, "face") + " cannot be drawn" : "";
    header.append(make("h1", model.name), make("p",
      (model.kind === "cloud" ? "" : count(model.faceCount, "face") + ", ") + count(model.pointCount, "point") + hidden));
    if (model.rounding)
      header.append(make("p", "real numbers rounded to 16 bits, positions by up to " + model.rounding.toPrecision(2)));
  }
}

function fillColors(select, models) {
  const labels = new Map([["", "plain"]]);
  for (const model of models)
    for (const property of model.properties)
      for (const look of property.looks()) labels.set(look.key, look.label);
  for (const [key, label] of labels) select.append(make("option", label, {value: key}));
}

// What a page without wishes shows: colours, if somebody gave some.
function firstColor(models) {
  for (const model of models)
    for (const property of model.properties)
      for (const look of property.looks()) if (look.style === "color") return look.key;
  return "";
}

function fillMarks(box, found, state, onChange) {
  for (const {key, label, color} of MARKS) {
    const n = found.reduce((sum, {counts}) => sum + counts[key], 0);
    if (found.every(({shown}) => shown[key] === false)) continue;
    const row = make("label", "", {className: n ? "" : "none"}), input = make("input", "", {type: "checkbox", id: "mark-" + key});
    input.checked = n > 0 && state.marks.has(key);
    input.disabled = n === 0;
    input.addEventListener("change", () => onChange(key, input.checked));
    const swatch = make("i");
    swatch.style.background = "#" + color.toString(16).padStart(6, "0");
    row.append(input, swatch, label, make("b", n.toLocaleString("en")));
    box.append(row);
  }
}

function fillProblems(box, models, onPlace) {
  const all = models.flatMap(model => model.problems.map(problem => ({model, problem})));
  for (const {model, problem} of all) {
    const item = make("details", "", {className: problem.severity, open: all.length <= 3}), summary = make("summary");
    summary.append(make("b", problem.count.toLocaleString("en")), " " + problem.message);
    item.append(summary);
    if (models.length > 1) item.append(make("p", model.name));
    for (const place of problem.places) {
      if (!place.element) {
        item.append(make("p", place.text));
        continue;
      }
      const button = make("button", place.text);
      button.addEventListener("click", () => onPlace(model, place));
      item.append(button);
    }
    const more = problem.count - problem.places.length;
    item.append(make("p", (more > 0 ? "and " + more.toLocaleString("en") + " more; " : "") + "what to do: " + problem.advice));
    box.append(item);
  }
  if (all.length === 0)
    box.append(make("p", models.some(m => m.kind === "mesh") ? "None: valid, and no edge stands out." : "None: a cloud has no faces."));
  return all.flatMap(({model, problem}) => problem.places.filter(p => p.element).map(place => ({model, place})));
}

function fillLegend(box, coloring) {
  box.replaceChildren();
  box.hidden = coloring.style === "plain";
  if (box.hidden) return;
  box.append(make("span", coloring.label));
  if (coloring.style === "number") {
    const bar = make("canvas", "", {width: 256, height: 1}), pen = bar.getContext("2d"), image = pen.createImageData(256, 1);
    for (let i = 0; i < 256; ++i) image.data.set([...mapColor(i / 255), 255], 4 * i);
    pen.putImageData(image, 0, 0);
    const ends = make("div");
    ends.append(make("span", shortNumber(coloring.least, true)), make("span", shortNumber(coloring.most, true)));
    box.append(bar, ends);
  }
  if (coloring.style === "id") fillIds(box, coloring);
}

// Few ids are listed; more would say nothing.
function fillIds(box, {sources}) {
  const names = new Map();
  for (const source of sources) {
    if (!source) continue;
    const {property, ids} = source;
    for (let i = 0; i < property.values.length && names.size <= 8; ++i)
      names.set(property.type === "bool" ? String(!!property.values[i]) : String(property.values[i]), ids.of(i));
  }
  if (names.size > 8) return;
  for (const [name, id] of names) {
    const row = make("div"), word = make("span"), swatch = make("i");
    swatch.style.background = "rgb(" + idColor(id).map(Math.round) + ")";
    word.append(swatch, name);
    row.append(word);
    box.append(row);
  }
}
