// The picture: one canvas, one camera, a pane for each model or for both.

class View {
  constructor(canvas, models) {
    const context = canvas.getContext("webgl2", {antialias: true, alpha: false, powerPreference: "high-performance"});
    if (!context) throw new Error("This browser offers no WebGL 2, with which the page draws.");
    this.canvas = canvas;
    this.models = models;
    this.renderer = new THREE.WebGLRenderer({canvas, context, antialias: true});
    this.renderer.autoClear = false;
    this.renderer.setPixelRatio(Math.min(2, devicePixelRatio || 1));
    this.shared = {map: {value: mapTexture()}, ink: {value: new THREE.Color()}, inkShare: {value: 0.6}, lineWidth: {value: 1},
      pixels: {value: 1}, viewport: {value: new THREE.Vector2(1, 1)}};
    this.orbit = new Orbit(() => this.change());
    this.ids = null;
    this.together = false;
    this.layers = models.map(model => this.makeLayers(model));
    this.onDraw = () => {};
    new ResizeObserver(() => this.resize()).observe(canvas);
    this.resize();
  }

  makeLayers(model) {
    const scene = new THREE.Scene(), {shared} = this;
    const surface = new Surface(model, shared), points = new PointLayer(model, shared);
    const selection = new LineLayer(shared, 0xff7a00, 3.5, 8);
    const marks = Object.fromEntries(MARKS.map(({key, color, width = 3}, i) => [key, new LineLayer(shared, color, width, 4 + 0.3 * i)]));
    scene.add(surface.mesh, points.mesh, selection.group, ...Object.values(marks).map(layer => layer.group));
    for (const layer of [selection, ...Object.values(marks)]) layer.group.visible = false;
    return {model, scene, surface, points, selection, marks};
  }

  // Where each pane is in the canvas, from its upper left corner, and what it shows.
  panes() {
    const width = this.canvas.clientWidth || 1, height = this.canvas.clientHeight || 1, {layers} = this;
    if (layers.length === 1 || this.together) return [{x: 0, y: 0, width, height, layers}];
    if (width >= height)
      return layers.map((one, i) => ({x: i * width / 2, y: 0, width: width / 2, height, layers: [one]}));
    return layers.map((one, i) => ({x: 0, y: i * height / 2, width, height: height / 2, layers: [one]}));
  }

  aspect() {
    const [{width, height}] = this.panes();
    return width / height;
  }

  resize() {
    const {clientWidth, clientHeight} = this.canvas;
    if (!clientWidth || !clientHeight) return;
    this.renderer.setSize(clientWidth, clientHeight, false);
    this.change();
  }

  // Something else has to be drawn, and whatever was known under the pointer no longer is.
  change() {
    this.ids = null;
    if (this.frame) return;
    this.frame = requestAnimationFrame(() => {
      this.frame = 0;
      this.draw();
    });
  }

  draw() {
    const {renderer} = this;
    renderer.setRenderTarget(null);
    renderer.setScissorTest(true);
    for (const pane of this.panes()) this.drawPane(pane, renderer.getPixelRatio());
    this.onDraw();
  }

  drawPane({x, y, width, height, layers}, ratio) {
    const {renderer, shared, orbit} = this, bottom = this.canvas.clientHeight - y - height;
    renderer.setViewport(x, bottom, width, height);
    renderer.setScissor(x, bottom, width, height);
    renderer.clear();
    shared.pixels.value = height * ratio / 2;
    shared.viewport.value.set(width * ratio, height * ratio);
    orbit.aim(width / height);
    for (const {scene} of layers) renderer.render(scene, orbit.camera);
  }

  // What every pixel shows, drawn once after each change and then only looked up.
  readIds() {
    const {renderer} = this, width = this.canvas.clientWidth, height = this.canvas.clientHeight, panes = this.panes();
    const target = new THREE.WebGLRenderTarget(width, height, {minFilter: THREE.NearestFilter, magFilter: THREE.NearestFilter});
    const back = renderer.getClearColor().clone(), alpha = renderer.getClearAlpha();
    renderer.setClearColor(0, 0);
    renderer.setRenderTarget(target);
    target.scissorTest = true;
    this.ids = panes.map(pane => pane.layers.map(layers => {
      const bottom = height - pane.y - pane.height;
      target.viewport.set(pane.x, bottom, pane.width, pane.height);
      target.scissor.set(pane.x, bottom, pane.width, pane.height);
      renderer.setRenderTarget(target);
      renderer.clear();
      return this.idsOf(layers, pane, bottom, target);
    }));
    renderer.setRenderTarget(null);
    renderer.setClearColor(back, alpha);
    target.dispose();
  }

  idsOf({scene, surface, points, selection, marks}, {x, width, height}, bottom, target) {
    const {orbit, renderer, shared} = this, lines = [selection, ...Object.values(marks)].filter(layer => layer.group.visible);
    for (const layer of lines) layer.group.visible = false;
    surface.mesh.material = surface.idMaterial;
    points.mesh.material = points.idMaterial;
    shared.pixels.value = height / 2;
    orbit.aim(width / height);
    renderer.render(scene, orbit.camera);
    surface.mesh.material = surface.material;
    points.mesh.material = points.material;
    for (const layer of lines) layer.group.visible = true;
    const w = Math.floor(width), h = Math.floor(height), bytes = new Uint8Array(4 * w * h);
    renderer.readRenderTargetPixels(target, Math.ceil(x), Math.ceil(bottom), w, h, bytes);
    return {ids: new Uint32Array(bytes.buffer), w, h};
  }

  // The face, corner or point at a place of the canvas: {model, face, corner, point}, null for none.
  pick(x, y) {
    const panes = this.panes(), index = panes.findIndex(p => x >= p.x && x < p.x + p.width && y >= p.y && y < p.y + p.height);
    if (index < 0) return null;
    if (!this.ids) this.readIds();
    const pane = panes[index], column = Math.floor(x - pane.x), ray = this.ray(x, y, pane);
    const hits = pane.layers.map((layers, i) => {
      const {ids, w, h} = this.ids[index][i], row = h - 1 - Math.floor(y - pane.y);
      const id = column < w && row >= 0 && row < h ? ids[row * w + column] : 0;
      if (id === 0) return null;
      if (id < 0x80000000) return layers.surface.hit(id - 1, ray);
      const point = id - 0x80000001;
      return {model: layers.model, point, place: layers.model.at(point)};
    }).filter(hit => hit);
    return nearest(hits, hit => hit.place.distanceToSquared(ray.origin) * (hit.face === undefined ? 0.99 : 1)) || null;
  }

  ray(x, y, pane) {
    this.orbit.aim(pane.width / pane.height);
    const caster = new THREE.Raycaster(), at = {x: 2 * (x - pane.x) / pane.width - 1, y: 1 - 2 * (y - pane.y) / pane.height};
    caster.setFromCamera(at, this.orbit.camera);
    return caster.ray;
  }

  select(hit) {
    const place = hit && placeOf(hit), scale = place && place.size > 0 ? 0.1 * place.size : 0.008 * this.orbit.distance;
    for (const {model, selection} of this.layers)
      selection.set(hit && hit.model === model ? outlineSegments(model, hit, scale) : new Float32Array(0));
    this.change();
  }
}
