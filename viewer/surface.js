// The faces of a model: one call that draws triangles, their polygons' edges and their colours.

class Surface {
  constructor(model, shared) {
    this.model = model;
    this.geometry = new THREE.BufferGeometry();
    this.material = new THREE.RawShaderMaterial({vertexShader: SURFACE_VERTEX, fragmentShader: SURFACE_FRAGMENT,
      side: THREE.DoubleSide, polygonOffset: true, polygonOffsetFactor: 1, polygonOffsetUnits: 1, transparent: false,
      uniforms: {...shared, style: {value: 0}, picksTint: {value: false}, showsFaces: {value: true}, showsEdges: {value: true},
        showsFan: {value: false}, usualSide: {value: 1}, plain: {value: new THREE.Color()}}});
    this.idMaterial = new THREE.RawShaderMaterial({vertexShader: SURFACE_ID_VERTEX, fragmentShader: SURFACE_ID_FRAGMENT,
      side: THREE.DoubleSide});
    this.mesh = new THREE.Mesh(this.geometry, this.material);
    this.mesh.frustumCulled = false;
  }

  // Splits faces anew; then shade() and paint() have to follow.
  split(asFans) {
    if (this.triangles && this.asFans === asFans) return false;
    this.asFans = asFans;
    const {model} = this, triangles = this.triangles = new Triangles(model, asFans), count = 3 * triangles.count;
    const positions = new Float32Array(3 * count);
    for (let v = 0; v < count; ++v) {
      const p = 3 * model.corners[triangles.corners[v]];
      positions[3 * v] = model.placed[p];
      positions[3 * v + 1] = model.placed[p + 1];
      positions[3 * v + 2] = model.placed[p + 2];
    }
    this.normals = new Int16Array(4 * count);
    for (let v = 0; v < count; ++v) this.normals[4 * v + 3] = triangles.sides[Math.floor(v / 3)];
    this.values = new Float32Array(2 * count);
    this.tints = new Uint8Array(4 * count);
    this.material.uniforms.usualSide.value = usualSide(model, triangles);
    this.geometry.dispose();
    this.geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
    this.geometry.setAttribute("normal", new THREE.BufferAttribute(this.normals, 4, true));
    this.geometry.setAttribute("value", new THREE.BufferAttribute(this.values, 2));
    this.geometry.setAttribute("tint", new THREE.BufferAttribute(this.tints, 4, true));
    return true;
  }

  shade(isSmooth) {
    const {corners, faces, count} = this.triangles, normalAt = isSmooth ? smoothNormals(this.model) : flatNormals(this.model);
    const n = [0, 0, 0];
    for (let v = 0; v < 3 * count; ++v) {
      normalAt(corners[v], faces[Math.floor(v / 3)], n);
      const length = Math.hypot(n[0], n[1], n[2]) || 1;
      for (let k = 0; k < 3; ++k) this.normals[4 * v + k] = Math.round(32767 * n[k] / length) || 0;
    }
    this.geometry.attributes.normal.needsUpdate = true;
  }

  paint(coloring, source) {
    const {uniforms} = this.material, {corners, faces, count} = this.triangles, {model, values, tints} = this;
    uniforms.style.value = !source ? 0 : {number: 1, checker: 3}[coloring.style] || 2;
    uniforms.picksTint.value = coloring.style === "id";
    if (!source) return;
    const {component} = source.property, elements = component === "corner" ? corners.subarray(0, 3 * count) : new Uint32Array(3 * count);
    if (component === "point") for (let v = 0; v < 3 * count; ++v) elements[v] = model.corners[corners[v]];
    if (component === "face") for (let v = 0; v < 3 * count; ++v) elements[v] = faces[Math.floor(v / 3)];
    scatter(source.property, coloring.rows(source), elements, values, new Uint32Array(tints.buffer));
    this.geometry.attributes.value.needsUpdate = true;
    this.geometry.attributes.tint.needsUpdate = true;
  }

  // The triangle's face and the corner of it that is nearest to where the ray meets the triangle.
  hit(triangle, ray) {
    const {model, triangles} = this, face = triangles.faces[triangle], [a, b, c] = [0, 1, 2].map(
      k => model.at(model.corners[triangles.corners[3 * triangle + k]]));
    const place = new THREE.Vector3();
    if (!ray.intersectTriangle(a, b, c, false, place)) place.copy(a).add(b).add(c).divideScalar(3);
    const corner = nearest(model.outline(face), c2 => model.at(model.corners[c2]).distanceToSquared(place));
    return {model, face, corner, point: model.corners[corner], place};
  }
}

// The middle one of lengths of sides, of some thousand triangles.
function usualSide(model, {corners, count}) {
  const lengths = [], step = Math.max(1, Math.floor(count / 3000));
  for (let t = 0; t < count; t += step)
    lengths.push(model.at(model.corners[corners[3 * t + 1]]).distanceTo(model.at(model.corners[corners[3 * t + 2]])));
  return lengths.sort((a, b) => a - b)[lengths.length >> 1] || 1;
}

function nearest(candidates, distance) {
  let best = candidates[0], least = Infinity;
  for (const candidate of candidates) {
    const d = distance(candidate);
    if (d < least) [best, least] = [candidate, d];
  }
  return best;
}

function flatNormals(model) {
  let last = -1, n = null;
  return (corner, face, out) => {
    if (face !== last) {
      n = areaVector(model, model.offsets[face], model.offsets[face + 1] - model.offsets[face]);
      last = face;
    }
    out[0] = n[0];
    out[1] = n[1];
    out[2] = n[2];
  };
}

// The mesh's own normals; without them, of all faces around a point in proportion to their areas.
function smoothNormals(model) {
  const own = model.properties.find(p => p.name === "normal" && p.columns === 3 && p.isReal);
  if (own)
    return (corner, face, out) => {
      const element = own.component === "corner" ? corner : own.component === "point" ? model.corners[corner] : face;
      const index = own.index(element);
      for (let k = 0; k < 3; ++k) out[k] = index < 0 ? 0 : own.values[3 * index + k];
    };
  const sums = new Float32Array(3 * model.pointCount);
  for (let face = 0; face < model.faceCount; ++face) {
    const range = model.drawableFace(face);
    if (!range) continue;
    const n = areaVector(model, range[0], range[1] - range[0]);
    for (let c = range[0]; c < range[1]; ++c) for (let k = 0; k < 3; ++k) sums[3 * model.corners[c] + k] += n[k];
  }
  return (corner, face, out) => {
    for (let k = 0; k < 3; ++k) out[k] = sums[3 * model.corners[corner] + k];
  };
}
