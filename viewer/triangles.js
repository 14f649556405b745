// The triangles that faces are drawn as.

// Which sides of a triangle are sides of its polygon, as bits: side k leads from corner k to the next.
const sideBits = (a, b, c, size) =>
  [[a, b], [b, c], [c, a]].reduce((bits, [from, to], k) => bits | ((to - from + size) % size === 1 ? 1 << k : 0), 0);

class Triangles {
  // As the kernels split faces, each into a fan around its first corner; or such that concave faces look as
  // they are.
  constructor(model, asFans) {
    let most = 0;
    for (let face = 0; face < model.faceCount; ++face) {
      const range = model.drawableFace(face);
      if (range) most += range[1] - range[0] - 2;
    }
    this.corners = new Uint32Array(3 * most);
    this.faces = new Uint32Array(most);
    this.sides = new Uint8Array(most);
    this.count = 0;
    for (let face = 0; face < model.faceCount; ++face) {
      const range = model.drawableFace(face);
      if (range) this.addFace(model, face, ...range, asFans);
    }
  }

  addFace(model, face, first, end, asFans) {
    const size = end - first;
    const split = size > 3 && !asFans ? splitConcave(model, first, size) : null;
    if (split) {
      for (const [a, b, c] of split) this.add(face, first + a, first + b, first + c, sideBits(a, b, c, size));
      return;
    }
    for (let k = 1; k + 1 < size; ++k)
      this.add(face, first, first + k, first + k + 1, (k === 1 ? 1 : 0) | 2 | (k === size - 2 ? 4 : 0));
  }

  add(face, a, b, c, sides) {
    const t = this.count++;
    this.corners[3 * t] = a;
    this.corners[3 * t + 1] = b;
    this.corners[3 * t + 2] = c;
    this.faces[t] = face;
    this.sides[t] = sides;
  }
}

// Twice the area of a face as a vector along its normal.
function areaVector(model, first, size) {
  const {placed, corners} = model, n = [0, 0, 0], o = 3 * corners[first];
  for (let k = 1; k + 1 < size; ++k) {
    const a = 3 * corners[first + k], b = 3 * corners[first + k + 1];
    const ax = placed[a] - placed[o], ay = placed[a + 1] - placed[o + 1], az = placed[a + 2] - placed[o + 2];
    const bx = placed[b] - placed[o], by = placed[b + 1] - placed[o + 1], bz = placed[b + 2] - placed[o + 2];
    n[0] += ay * bz - az * by;
    n[1] += az * bx - ax * bz;
    n[2] += ax * by - ay * bx;
  }
  return n;
}

// Triangles of a concave face, as places of its corners; null for one that is convex, where a fan will do.
function splitConcave(model, first, size) {
  const n = areaVector(model, first, size), axis = Math.abs(n[0]) > Math.abs(n[1]) ? (Math.abs(n[0]) > Math.abs(n[2]) ? 0 : 2) :
    (Math.abs(n[1]) > Math.abs(n[2]) ? 1 : 2);
  const sign = Math.sign(n[axis]), u = (axis + 1) % 3, w = (axis + 2) % 3;
  const x = k => model.placed[3 * model.corners[first + k % size] + u];
  const y = k => sign * model.placed[3 * model.corners[first + k % size] + w];
  const turn = (a, b, c) => (x(b) - x(a)) * (y(c) - y(b)) - (y(b) - y(a)) * (x(c) - x(b));
  const slack = 1e-4 * Math.abs(n[axis]);
  let concave = false;
  for (let k = 0; k < size && !concave; ++k) concave = turn(k, k + 1, k + 2) < -slack;
  if (!concave || sign === 0) return null;
  const outline = Array.from({length: size}, (_, k) => new THREE.Vector2(x(k), y(k)));
  const split = THREE.ShapeUtils.triangulateShape(outline, []);
  if (split.length !== size - 2) return null;
  return split.map(([a, b, c]) => turn(a, b, c) < 0 ? [a, c, b] : [a, b, c]);
}
