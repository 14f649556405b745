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

// How one property of all models is shown, over the range that they have in common.
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
          return {property, numbers: look.style === "number" ? look.numbers() : null,
            ids: look.style === "id" ? new Ids(property) : null};
        }
    return null;
  }

  widen({numbers}) {
    for (const x of numbers) {
      if (x < this.least && x > -Infinity) this.least = x;
      if (x > this.most && x < Infinity) this.most = x;
    }
  }

  // What the values of a property look like: two numbers and a tint each. A tint without opacity is no value.
  rows(source) {
    const {property} = source, count = property.rowCount;
    const values = new Float32Array(2 * count), tints = new Uint8Array(4 * count);
    if (this.style === "number") this.writeNumbers(source, values, tints);
    else if (this.style === "checker") this.writePlaces(property, values, tints);
    else if (this.style === "id") this.writeIds(source, tints);
    else this.writeColors(property, tints);
    return {values, tints: new Uint32Array(tints.buffer)};
  }

  writeNumbers({numbers}, values, tints) {
    const scale = this.most > this.least ? 1 / (this.most - this.least) : 0;
    for (let i = 0; i < numbers.length; ++i) {
      values[2 * i] = scale ? (numbers[i] - this.least) * scale : 0.5;
      tints[4 * i + 3] = Number.isFinite(numbers[i]) ? 255 : 0;
      if (!tints[4 * i + 3]) values[2 * i] = 0;
    }
  }

  writePlaces({values: from, columns}, values, tints) {
    for (let i = 0; 4 * i < tints.length; ++i) {
      const u = Number(from[columns * i]), v = Number(from[columns * i + 1]);
      if (!Number.isFinite(u + v)) continue;
      values[2 * i] = u;
      values[2 * i + 1] = v;
      tints[4 * i + 3] = 255;
    }
  }

  writeIds({ids}, tints) {
    for (let i = 0; 4 * i < tints.length; ++i) {
      const color = idColor(ids.of(i));
      for (let k = 0; k < 3; ++k) tints[4 * i + k] = color[k];
      tints[4 * i + 3] = 255;
    }
  }

  // Colours as they are; directions with zero in the middle.
  writeColors({values: from, columns, isReal}, tints) {
    const isDirection = this.style === "direction", scale = isDirection ? 127.5 : isReal ? 255 : 1, shift = isDirection ? 127.5 : 0;
    for (let i = 0; 4 * i < tints.length; ++i) {
      for (let k = 0; k < 3; ++k)
        tints[4 * i + k] = Math.max(0, Math.min(255, Math.round(Number(from[columns * i + k]) * scale + shift)));
      tints[4 * i + 3] = 255;
    }
  }
}

// The row of the value that each vertex shows, into its numbers and its tint.
function scatter(property, rows, elements, values, tints) {
  const {indices, rowCount} = property;
  for (let v = 0; v < elements.length; ++v) {
    const row = indices ? indices[elements[v]] : elements[v], has = row < rowCount;
    values[2 * v] = has ? rows.values[2 * row] : 0;
    values[2 * v + 1] = has ? rows.values[2 * row + 1] : 0;
    tints[v] = has ? rows.tints[row] : 0;
  }
}
