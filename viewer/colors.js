// From values to colours.

// viridis, whose steps look alike and which stays readable without colour vision.
const MAP_STOPS = [
  0x440154, 0x481467, 0x482576, 0x453781, 0x404688, 0x39558c, 0x33638d, 0x2d718e, 0x287d8e, 0x238a8d,
  0x1f968b, 0x20a386, 0x29af7f, 0x3cbc75, 0x56c667, 0x74d055, 0x94d840, 0xb8de29, 0xdce318, 0xfde725,
].map(rgb => [rgb >> 16, rgb >> 8 & 255, rgb & 255]);

function mapColor(t) {
  const x = Math.min(1, Math.max(0, t)) * (MAP_STOPS.length - 1);
  const i = Math.min(MAP_STOPS.length - 2, Math.floor(x)), f = x - i;
  return [0, 1, 2].map(k => Math.round(MAP_STOPS[i][k] * (1 - f) + MAP_STOPS[i + 1][k] * f));
}

function mapTexture() {
  const data = new Uint8Array(4 * 256);
  for (let i = 0; i < 256; ++i) data.set([...mapColor(i / 255), 255], 4 * i);
  const texture = new THREE.DataTexture(data, 256, 1, THREE.RGBAFormat);
  texture.minFilter = texture.magFilter = THREE.LinearFilter;
  texture.needsUpdate = true;
  return texture;
}

// Ids that follow each other lie a golden angle apart on the wheel of hues, and three lightnesses take turns.
const idColors = new Map();
function idColor(id) {
  let color = idColors.get(id);
  if (!color) {
    const hue = (id * 0.61803398875 + 0.55) % 1, light = [0.62, 0.48, 0.74][id % 3], strength = [0.55, 0.6, 0.65][id % 3];
    const part = k => {
      const h = (k + hue * 12) % 12;
      return 255 * (light - strength * Math.min(light, 1 - light) * Math.max(-1, Math.min(h - 3, 9 - h, 1)));
    };
    idColors.set(id, color = [part(0), part(8), part(4)]);
  }
  return color;
}

// The id of a value, small and the same whenever it comes.
class Ids {
  constructor(property) {
    this.property = property;
    this.numbers = new Map();
    if (property.type !== "string") return;
    for (const text of property.values) if (!this.numbers.has(text)) this.numbers.set(text, this.numbers.size);
  }

  of(index) {
    const value = this.property.values[index];
    if (this.property.type === "string") return this.numbers.get(value);
    const id = Number(value);
    return id >= 0 && id <= 0xffff ? id : Math.abs(id * 2654435761 % 65521);
  }
}

// How one property of all models is shown: the function that fills rows of a vertex's value and tint, and the
// range that the models have in common.
class Coloring {
  constructor(key, models) {
    this.style = "plain";
    this.least = Infinity;
    this.most = -Infinity;
    this.sources = models.map(model => this.find(key, model));
    for (const source of this.sources) if (source && this.style === "number") this.widen(source);
    if (!(this.least <= this.most)) this.least = this.most = 0;
  }

  find(key, model) {
    for (const property of model.properties)
      for (const look of property.looks())
        if (look.key === key) {
          this.style = look.style;
          this.label = look.label;
          return {property, look, ids: look.style === "id" ? new Ids(property) : null};
        }
    return null;
  }

  widen({property, look}) {
    const {values, columns} = property;
    for (let i = 0; i < values.length; i += columns) {
      const x = columns === 1 ? Number(values[i]) : look.pick(values.subarray(i, i + columns));
      if (x < this.least && x > -Infinity) this.least = x;
      if (x > this.most && x < Infinity) this.most = x;
    }
  }

  // Writes what element `e` of the model's property looks like as vertex `v`. A tint without opacity is no value.
  write(source, e, v, value, tint) {
    const {property, look} = source, index = property.index(e), first = index * property.columns;
    tint[4 * v + 3] = 0;
    if (index < 0) return;
    if (this.style === "number") {
      const x = look.pick(property.columns === 1 ? [property.values[index]] : property.values.subarray(first, first + property.columns));
      if (!Number.isFinite(x)) return;
      value[2 * v] = this.most > this.least ? (x - this.least) / (this.most - this.least) : 0.5;
    } else if (this.style === "checker") {
      value[2 * v] = Number(property.values[first]);
      value[2 * v + 1] = Number(property.values[first + 1]);
      if (!Number.isFinite(value[2 * v] + value[2 * v + 1])) return;
    } else {
      this.writeTint(source, index, first, 4 * v, tint);
    }
    tint[4 * v + 3] = 255;
  }

  writeTint({property, ids}, index, first, at, tint) {
    if (this.style === "id") {
      const color = idColor(ids.of(index));
      for (let k = 0; k < 3; ++k) tint[at + k] = color[k];
      return;
    }
    const scale = this.style === "direction" ? 127.5 : property.isReal ? 255 : 1;
    const shift = this.style === "direction" ? 127.5 : 0;
    for (let k = 0; k < 3; ++k)
      tint[at + k] = Math.max(0, Math.min(255, Math.round(Number(property.values[first + k]) * scale + shift)));
  }
}
