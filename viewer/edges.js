// The edges of polygons, and which of them stand out.

// Sides of faces by the larger point of each, so that all sides of an edge come together.
class Sides {
  constructor(model) {
    this.model = model;
    const {corners, pointCount} = model;
    this.next = new Uint32Array(corners.length);
    this.present = new Uint8Array(corners.length);
    for (let face = 0; face < model.faceCount; ++face) {
      const range = model.drawableFace(face);
      if (!range) continue;
      for (let c = range[0]; c < range[1]; ++c) {
        this.next[c] = c + 1 < range[1] ? c + 1 : range[0];
        this.present[c] = 1;
      }
    }
    this.offset = new Uint32Array(pointCount + 1);
    const larger = c => Math.max(corners[c], corners[this.next[c]]);
    for (let c = 0; c < corners.length; ++c) if (this.present[c]) ++this.offset[larger(c)];
    for (let p = 1; p <= pointCount; ++p) this.offset[p] += this.offset[p - 1];
    this.list = new Uint32Array(this.offset[pointCount]);
    for (let c = corners.length; c-- > 0;) if (this.present[c]) this.list[--this.offset[larger(c)]] = c;
  }

  smaller(corner) {
    return Math.min(this.model.corners[corner], this.model.corners[this.next[corner]]);
  }

  // Calls visit(corners) with the corners at which the sides of an edge start, in order.
  forEach(visit) {
    for (let point = 0; point < this.model.pointCount; ++point) {
      const list = this.list.subarray(this.offset[point], this.offset[point + 1]);
      if (list.length > 1) list.sort((a, b) => this.smaller(a) - this.smaller(b) || a - b);
      for (let begin = 0, end = 1; begin < list.length; begin = end++) {
        while (end < list.length && this.smaller(list[end]) === this.smaller(list[begin])) ++end;
        visit(list.subarray(begin, end));
      }
    }
  }
}

// As the table of edges pairs them: a side after an opposite pair starts anew.
function runsTheSameWay(model, sides) {
  for (let k = 0; k + 1 < sides.length; k += 2)
    if (model.corners[sides[k]] === model.corners[sides[k + 1]]) return true;
  return false;
}

// Whether the values of a corner property part along an edge of two faces.
function isSeam(property, next, sides) {
  if (sides.length !== 2) return false;
  const [a, b] = sides, at = property.indices || null, value = c => at ? at[c] : c;
  return value(a) !== value(next[b]) || value(next[a]) !== value(b);
}

const MARKS = [
  {key: "boundary", label: "Boundaries", color: 0x1f8fff},
  {key: "nonmanifold", label: "More than two faces", color: 0xe5484d, width: 6},  // others may lie on it
  {key: "samedirection", label: "Faces run the same way", color: 0xd14fc9},
  {key: "crease", label: "Creases", color: 0xf08c00},
  {key: "seam", label: "Seams", color: 0x12a594},
  {key: "places", label: "Other problems", color: 0xf7b500},
];

// Segments of marked edges by kind, how many they are, and which kinds of this mesh there could be.
function findMarks(model) {
  const sides = new Sides(model), {next} = sides;
  const marks = Object.fromEntries(MARKS.map(({key}) => [key, []]));
  const creases = model.properties.filter(p => p.component === "corner" && p.columns === 1 && /crease/i.test(p.name));
  const seamed = model.properties.filter(p => p.component === "corner" && p.indices);
  sides.forEach(list => {
    const first = list[0], isLoop = model.corners[first] === model.corners[next[first]];
    if (list.length === 1 && !isLoop) marks.boundary.push(first);
    if (list.length > 2 && !isLoop) marks.nonmanifold.push(first);
    if (runsTheSameWay(model, list)) marks.samedirection.push(first);
    if (creases.some(p => list.some(c => p.index(c) >= 0 && Number(p.values[p.index(c)]) > 0))) marks.crease.push(first);
    if (seamed.some(p => isSeam(p, next, list))) marks.seam.push(first);
  });
  const segments = Object.fromEntries(MARKS.map(({key}) => [key, segmentsOf(model, marks[key], c => next[c])]));
  const places = placesOfProblems(model);
  const shown = {crease: creases.length > 0, seam: seamed.length > 0, places: places.length > 0};
  segments.places = Float32Array.from(places.flatMap(part => [...part]));
  const counts = Object.fromEntries(MARKS.map(({key}) => [key, key === "places" ? places.length : marks[key].length]));
  return {segments, counts, shown};
}

// What the list of problems names beside edges that are marked anyway: outlines of faces, crosses at points.
function placesOfProblems(model) {
  const parts = [];
  for (const {code, places} of model.problems) {
    if (code === "concave-face") continue; // common in good meshes; the list leads to them
    if (code === "same-direction" || code === "non-manifold-edge") continue;
    for (const {element, index} of places) {
      const hit = element ? elementHit(model, element, index) : null, place = hit && placeOf(hit);
      const segments = place ? outlineSegments(model, hit, place.size > 0 ? 0.1 * place.size : 0.03) : [];
      if (segments.length > 0) parts.push(segments);
    }
  }
  return parts;
}
