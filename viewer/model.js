// A mesh or a cloud as the page has it, and what of it can be drawn: a mesh may have errors.

class Model {
  static async load(description, arrays) {
    const model = new Model();
    Object.assign(model, {name: description.name, kind: description.kind, problems: description.problems});
    model.positions = await arrays.load(description.points);
    model.offsets = await arrays.load(description.offsets || null) || new Uint32Array(1);
    model.corners = await arrays.load(description.corners || null) || new Uint32Array(0);
    model.properties = [];
    for (const property of description.properties)
      model.properties.push(new Property(property, await arrays.load(property.values),
        await arrays.load(property.indices || null)));
    model.rounding = description.points.scale ? Math.max(...description.points.scale.map(([, step]) => step / 2)) : 0;
    model.pointCount = model.positions.length / 3;
    model.faceCount = Math.max(0, model.offsets.length - 1);
    return model;
  }

  // The least and the largest coordinates; points that are not finite lie nowhere.
  bounds() {
    const least = [Infinity, Infinity, Infinity], most = [-Infinity, -Infinity, -Infinity];
    const {positions} = this;
    for (let p = 0; p < positions.length; p += 3) {
      if (!Number.isFinite(positions[p] + positions[p + 1] + positions[p + 2])) continue;
      for (let k = 0; k < 3; ++k) {
        if (positions[p + k] < least[k]) least[k] = positions[p + k];
        if (positions[p + k] > most[k]) most[k] = positions[p + k];
      }
    }
    return {least, most};
  }

  // Positions in the room of the view: around its centre, and so large that it is of radius 1.
  place({centre, radius}) {
    this.placed = new Float32Array(this.positions.length);
    for (let i = 0; i < this.placed.length; ++i)
      this.placed[i] = (this.positions[i] - centre[i % 3]) / radius;
  }

  isDrawable(point) {
    const p = 3 * point, {placed} = this;
    return point < this.pointCount && Number.isFinite(placed[p] + placed[p + 1] + placed[p + 2]);
  }

  // First and past-the-last corner of a face that can be drawn, else null.
  drawableFace(face) {
    const first = this.offsets[face], end = this.offsets[face + 1];
    if (!(end - first >= 3 && end <= this.corners.length)) return null;
    for (let c = first; c < end; ++c)
      if (!this.isDrawable(this.corners[c])) return null;
    return [first, end];
  }

  // The corners of a face, drawable or not, that are at drawable points.
  outline(face) {
    const corners = [];
    for (let c = this.offsets[face]; c < Math.min(this.offsets[face + 1], this.corners.length); ++c)
      if (this.isDrawable(this.corners[c])) corners.push(c);
    return corners;
  }

  faceOfCorner(corner) {
    let low = 0, high = this.faceCount;
    while (high - low > 1) {
      const middle = (low + high) >> 1;
      if (this.offsets[middle] <= corner) low = middle; else high = middle;
    }
    return low;
  }

  at(point) {
    return new THREE.Vector3(this.placed[3 * point], this.placed[3 * point + 1], this.placed[3 * point + 2]);
  }

  elementCount(component) {
    return component === "point" ? this.pointCount : component === "face" ? this.faceCount : this.corners.length;
  }

  // How far apart the points of a cloud are, in the room of the view: the middle one of distances to the
  // nearest neighbour, by a grid, of some thousand points.
  spacing() {
    if (this.spacingFound === undefined) this.spacingFound = nearestDistance(this);
    return this.spacingFound;
  }
}

function nearestDistance(model) {
  const {placed, pointCount} = model, size = 2 / Math.cbrt(Math.max(1, pointCount) * 4), cells = new Map();
  const key = (x, y, z) => (x + 512) * 1048576 + (y + 512) * 1024 + z + 512;
  const cell = i => Math.max(-511, Math.min(510, Math.floor(placed[i] / size)));
  const points = [];
  for (let p = 0; p < pointCount; ++p) if (model.isDrawable(p)) points.push(p);
  for (const p of points) {
    const k = key(cell(3 * p), cell(3 * p + 1), cell(3 * p + 2));
    const list = cells.get(k);
    if (list) list.push(p); else cells.set(k, [p]);
  }
  const found = [], step = Math.max(1, Math.floor(points.length / 2000));
  for (let i = 0; i < points.length; i += step) {
    const p = 3 * points[i];
    let least = Infinity;
    for (let n = 0; n < 27; ++n) {
      const near = cells.get(key(cell(p) + n % 3 - 1, cell(p + 1) + Math.floor(n / 3) % 3 - 1, cell(p + 2) + Math.floor(n / 9) - 1));
      for (const q of near ? near.slice(0, 200) : []) {
        const d = Math.hypot(placed[p] - placed[3 * q], placed[p + 1] - placed[3 * q + 1], placed[p + 2] - placed[3 * q + 2]);
        if (d > 0 && d < least) least = d;
      }
    }
    if (least < Infinity) found.push(least);
  }
  found.sort((a, b) => a - b);
  return found.length ? found[found.length >> 1] : 0.02;
}
