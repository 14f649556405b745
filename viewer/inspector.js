// What is known of a place: which elements are there, and every value that they have.

function make(tag, text = "", properties = {}) {
  const element = document.createElement(tag);
  if (text !== "") element.textContent = text;
  return Object.assign(element, properties);
}

function valueTable(model, component, element, extra = []) {
  const table = make("table"), row = (name, text) => {
    const tr = make("tr");
    tr.append(make("th", name, {scope: "row"}), make("td", text));
    table.append(tr);
  };
  for (const [name, text] of extra) row(name, text);
  for (const property of model.properties)
    if (property.component === component) row(property.name, property.text(element));
  return table;
}

function title(text, note = "") {
  const heading = make("h3", text);
  if (note) heading.append(" ", make("small", note));
  return heading;
}

function describe(hit, models) {
  const parts = [], {model, face, corner, point} = hit;
  if (models.length > 1) parts.push(make("small", model.name));
  if (face !== undefined) {
    const size = model.offsets[face + 1] - model.offsets[face];
    parts.push(title("Face " + face, size + " corners"), valueTable(model, "face", face));
  }
  if (corner !== undefined)
    parts.push(title("Corner " + corner, face !== undefined && !hit.isCorner ? "nearest" : ""), valueTable(model, "corner", corner));
  if (point !== undefined && point < model.pointCount) {
    const at = [0, 1, 2].map(k => shortNumber(model.positions[3 * point + k], true)).join("  ");
    parts.push(title("Point " + point), valueTable(model, "point", point, [["position", at]]));
  }
  return parts;
}

// An element of a model by its number, as something that can be selected; null where there is none.
function elementHit(model, kind, index) {
  if (!Number.isInteger(index) || index < 0) return null;
  if (kind === "point") return index < model.pointCount ? {model, point: index} : null;
  if (kind === "corner") {
    if (index >= model.corners.length) return null;
    return {model, face: model.faceCount ? model.faceOfCorner(index) : undefined, corner: index, point: model.corners[index], isCorner: true};
  }
  return index < model.faceCount ? {model, face: index} : null;
}

// Where an element lies, how large it is and whither it faces; null where it has no place.
function placeOf({model, face, corner, point}) {
  const points = face !== undefined ? model.outline(face).map(c => model.corners[c]) : [];
  if (point !== undefined && model.isDrawable(point)) points.push(point);
  if (points.length === 0) return null;
  const middle = new THREE.Vector3(), all = points.map(p => model.at(p));
  for (const p of all) middle.addScaledVector(p, 1 / all.length);
  const size = Math.max(...all.map(p => p.distanceTo(middle)));
  const range = face !== undefined && model.drawableFace(face);
  const normal = range ? new THREE.Vector3(...areaVector(model, range[0], range[1] - range[0])).normalize() : null;
  return {middle: point !== undefined && corner !== undefined && model.isDrawable(point) ? model.at(point) : middle, size, normal};
}
