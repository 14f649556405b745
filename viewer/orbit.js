// The camera, which turns around a target, and what moves it.

class Orbit {
  constructor(onChange) {
    this.camera = new THREE.PerspectiveCamera(30, 1, 0.01, 10);
    this.onChange = onChange;
    this.up = "y";
    this.half = [1, 1, 1];
    this.target = new THREE.Vector3();
    this.yaw = 0.6;
    this.pitch = 0.42;
    this.distance = 4;
  }

  // A unit vector from the target to the eye.
  direction(yaw = this.yaw, pitch = this.pitch) {
    const a = Math.cos(pitch) * Math.sin(yaw), b = Math.cos(pitch) * Math.cos(yaw), c = Math.sin(pitch);
    return this.up === "y" ? new THREE.Vector3(a, c, b) : new THREE.Vector3(a, -b, c);
  }

  aim(aspect) {
    const {camera} = this;
    camera.up.set(0, this.up === "y" ? 1 : 0, this.up === "z" ? 1 : 0);
    camera.position.copy(this.target).addScaledVector(this.direction(), this.distance);
    camera.lookAt(this.target);
    camera.aspect = aspect;
    camera.near = Math.max(this.distance / 400, this.distance - 2.5);
    camera.far = this.distance + 4;
    camera.updateProjectionMatrix();
    camera.updateMatrixWorld();
  }

  // As near as the box of half sizes `half` around the centre fits into the view.
  fit(aspect, margin = 1.08) {
    this.target.set(0, 0, 0);
    this.distance = 4;
    this.aim(aspect);
    const tan = Math.tan(this.camera.fov * Math.PI / 360), view = this.camera.matrixWorldInverse, p = new THREE.Vector3();
    let distance = 0.2;  // of a single point, too
    for (let i = 0; i < 8; ++i) {
      p.set(...this.half.map((h, k) => i >> k & 1 ? h : -h)).applyMatrix4(view);
      const depth = p.z + this.distance;
      distance = Math.max(distance, depth + margin * Math.abs(p.y) / tan, depth + margin * Math.abs(p.x) / (tan * aspect));
    }
    this.distance = distance;
    this.onChange();
  }

  turn(dx, dy) {
    this.yaw -= dx;
    this.pitch = Math.max(-1.5607, Math.min(1.5607, this.pitch + dy));
    this.onChange();
  }

  // By shares of the view's height.
  move(dx, dy) {
    const scale = 2 * this.distance * Math.tan(this.camera.fov * Math.PI / 360), axes = this.camera.matrixWorld.elements;
    for (const [k, d] of [[0, -dx * scale], [4, dy * scale]])
      this.target.add(new THREE.Vector3(axes[k], axes[k + 1], axes[k + 2]).multiplyScalar(d));
    this.onChange();
  }

  zoom(factor) {
    this.distance = Math.max(1e-4, Math.min(50, this.distance * factor));
    this.onChange();
  }

  // Flies to a place, from where its surface faces, if that lies behind it now.
  goTo(place, distance, normal) {
    const from = {target: this.target.clone(), yaw: this.yaw, pitch: this.pitch, distance: this.distance};
    const to = {target: place.clone(), yaw: this.yaw, pitch: this.pitch, distance};
    if (normal && normal.dot(this.direction()) < 0.3) {
      const [a, b, c] = this.up === "y" ? [normal.x, normal.y, normal.z] : [normal.x, normal.z, -normal.y];
      to.yaw = Math.atan2(a, c) + 0.3;
      to.pitch = Math.max(-1.4, Math.min(1.4, Math.asin(Math.max(-1, Math.min(1, b))) + 0.2));
    }
    to.yaw = from.yaw + Math.atan2(Math.sin(to.yaw - from.yaw), Math.cos(to.yaw - from.yaw));
    const start = performance.now(), length = matchMedia("(prefers-reduced-motion: reduce)").matches ? 0 : 450;
    const step = now => {
      const t = length ? Math.min(1, Math.max(0, (now - start) / length)) : 1, s = t * t * (3 - 2 * t);
      this.target.lerpVectors(from.target, to.target, s);
      this.yaw = from.yaw + s * (to.yaw - from.yaw);
      this.pitch = from.pitch + s * (to.pitch - from.pitch);
      this.distance = from.distance * Math.pow(to.distance / from.distance, s);
      this.onChange();
      if (t < 1) this.flight = requestAnimationFrame(step);
    };
    cancelAnimationFrame(this.flight);
    step(start);
  }
}

// Pointers, wheel and keys of the canvas -> the camera. `onTap` gets a place that was clicked or touched.
function bindOrbit(canvas, orbit, onTap) {
  const pointers = new Map();
  let travelled = 0;
  const middle = () => {
    const all = [...pointers.values()], n = all.length;
    const x = all.reduce((s, p) => s + p.x, 0) / n, y = all.reduce((s, p) => s + p.y, 0) / n;
    return {x, y, spread: n > 1 ? Math.hypot(all[0].x - all[1].x, all[0].y - all[1].y) : 0};
  };
  canvas.addEventListener("pointerdown", event => {
    cancelAnimationFrame(orbit.flight);
    canvas.setPointerCapture(event.pointerId);
    pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
    if (pointers.size === 1) travelled = 0;
  });
  canvas.addEventListener("pointermove", event => {
    if (!pointers.has(event.pointerId)) return;
    const before = middle();
    pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
    const now = middle(), dx = now.x - before.x, dy = now.y - before.y, height = canvas.clientHeight;
    travelled += Math.abs(dx) + Math.abs(dy) + Math.abs(now.spread - before.spread);
    if (travelled < 4) return;
    const moves = pointers.size > 1 || event.shiftKey || event.buttons & 6;
    if (moves) orbit.move(dx / height, dy / height); else orbit.turn(dx * 3.2 / height, dy * 3.2 / height);
    if (before.spread > 0 && now.spread > 0) orbit.zoom(before.spread / now.spread);
  });
  const end = event => {
    if (!pointers.delete(event.pointerId)) return;
    if (event.type === "pointerup" && travelled < 4 && pointers.size === 0) onTap(event);
  };
  canvas.addEventListener("pointerup", end);
  canvas.addEventListener("pointercancel", end);
  canvas.addEventListener("contextmenu", event => event.preventDefault());
  canvas.addEventListener("wheel", event => {
    event.preventDefault();
    const lines = event.deltaMode === 1 ? 30 : 1;
    orbit.zoom(Math.exp(Math.max(-300, Math.min(300, event.deltaY * lines)) * 0.0015));
  }, {passive: false});
  canvas.addEventListener("keydown", event => {
    const arrow = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]}[event.key];
    if (!arrow || event.altKey || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    if (event.shiftKey) orbit.move(-0.05 * arrow[0], -0.05 * arrow[1]); else orbit.turn(-0.1 * arrow[0], -0.1 * arrow[1]);
  });
}
