// What lies over the surface: points and wide lines.

const LIFT = 1.5e-4;  // towards the eye, so that a line on a face is not half in it

class PointLayer {
  constructor(model, shared) {
    this.model = model;
    const positions = model.placed.slice();
    for (let p = 0; p < model.pointCount; ++p)
      if (!model.isDrawable(p)) positions.fill(1e9, 3 * p, 3 * p + 3);  // out of sight
    this.values = new Float32Array(2 * model.pointCount);
    this.tints = new Uint8Array(4 * model.pointCount);
    this.geometry = new THREE.BufferGeometry();
    this.geometry.setAttribute("position", new THREE.BufferAttribute(positions, 3));
    this.geometry.setAttribute("value", new THREE.BufferAttribute(this.values, 2));
    this.geometry.setAttribute("tint", new THREE.BufferAttribute(this.tints, 4, true));
    this.isCloud = model.kind === "cloud";
    this.material = new THREE.RawShaderMaterial({vertexShader: POINT_VERTEX, fragmentShader: POINT_FRAGMENT, transparent: true,
      uniforms: {...shared, style: {value: 0}, plain: {value: new THREE.Color()}, worldSize: {value: 0},
        least: {value: 4}, lift: {value: this.isCloud ? 0 : 2 * LIFT}, asId: {value: false}}});
    this.idMaterial = this.material.clone();
    this.idMaterial.uniforms = {...this.material.uniforms, asId: {value: true}};
    this.idMaterial.transparent = false;
    this.mesh = new THREE.Points(this.geometry, this.material);
    this.mesh.frustumCulled = false;
    this.mesh.renderOrder = 2;
  }

  // Of a cloud as balls that touch at its usual distance, of a mesh as dots.
  resize(factor, pixelRatio) {
    const {uniforms} = this.material;
    uniforms.worldSize.value = this.isCloud ? factor * this.model.spacing() : 0;
    uniforms.least.value = (this.isCloud ? 1.5 : 5 * factor) * pixelRatio;
  }

  paint(coloring, source) {
    const {uniforms} = this.material, isOfPoints = source && source.property.component === "point";
    uniforms.style.value = !isOfPoints ? 0 : {number: 1, checker: 3}[coloring.style] || 2;
    if (!isOfPoints) return;
    const points = Uint32Array.from({length: this.model.pointCount}, (_, p) => p);
    scatter(source.property, coloring.rows(source), points, this.values, new Uint32Array(this.tints.buffer));
    this.geometry.attributes.value.needsUpdate = true;
    this.geometry.attributes.tint.needsUpdate = true;
  }
}

// Segments as strips of constant width; where something hides them, they shine through faintly.
class LineLayer {
  constructor(shared, color, width, order) {
    this.geometry = new THREE.InstancedBufferGeometry();
    this.geometry.setAttribute("position", new THREE.BufferAttribute(Float32Array.of(0, -1, 0, 0, 1, 0, 1, 1, 0, 1, -1, 0), 3));
    this.geometry.setIndex([0, 1, 2, 0, 2, 3]);
    this.geometry.maxInstancedCount = 0;
    this.width = width;
    this.group = new THREE.Group();
    const material = (opacity, depthTest) => new THREE.RawShaderMaterial({vertexShader: LINE_VERTEX, fragmentShader: LINE_FRAGMENT,
      transparent: true, depthTest, depthWrite: false, side: THREE.DoubleSide,
      uniforms: {...shared, plain: {value: new THREE.Color(color)}, width: {value: width}, opacity: {value: opacity}, lift: {value: 2 * LIFT}}});
    this.materials = [material(0.25, false), material(1, true)];
    this.materials.forEach((m, k) => {
      const mesh = new THREE.Mesh(this.geometry, m);
      mesh.frustumCulled = false;
      mesh.renderOrder = order + 0.1 * k;
      this.group.add(mesh);
    });
  }

  // Three coordinates of one end and of the other one, per segment.
  set(segments) {
    const ends = new THREE.InstancedInterleavedBuffer(segments, 6, 1);
    this.geometry.setAttribute("start", new THREE.InterleavedBufferAttribute(ends, 3, 0));
    this.geometry.setAttribute("end", new THREE.InterleavedBufferAttribute(ends, 3, 3));
    this.geometry.maxInstancedCount = segments.length / 6;
    this.group.visible = segments.length > 0;
  }

  resize(pixelRatio) {
    for (const material of this.materials) material.uniforms.width.value = this.width * pixelRatio;
  }
}

// The sides that start at these corners.
function segmentsOf(model, starts, next) {
  const segments = new Float32Array(6 * starts.length);
  starts.forEach((corner, i) => {
    const a = 3 * model.corners[corner], b = 3 * model.corners[next(corner)];
    for (let k = 0; k < 3; ++k) {
      segments[6 * i + k] = model.placed[a + k];
      segments[6 * i + 3 + k] = model.placed[b + k];
    }
  });
  return segments;
}

// The face around a selection, and a small cross where a corner or a point was asked for.
function outlineSegments(model, {face, point, isCorner}, scale) {
  const corners = face === undefined ? [] : model.outline(face);
  const around = corners.length > 1 ? segmentsOf(model, corners, c => corners[(corners.indexOf(c) + 1) % corners.length]) : [];
  const marksPoint = point !== undefined && (corners.length < 2 || isCorner) && model.isDrawable(point);
  return Float32Array.from([...around, ...(marksPoint ? crossSegments(model.at(point).toArray(), scale) : [])]);
}

function crossSegments(middle, scale) {
  const segments = [];
  for (let k = 0; k < 3; ++k)
    for (const sign of [-1, 1]) segments.push(...middle.map((x, i) => i === k ? x + sign * scale : x));
  return segments;
}
