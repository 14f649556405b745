// The values of a property: where they are, how they read, and how they can be shown as colours.

const NO_VALUE = 0xffffffff;
const isColorName = name => /colou?r|rgb|tint|albedo|^cd$/i.test(name);
const isDirectionName = name => /normal|tangent|direction|^n$/i.test(name);
const isPlaneName = name => /^(uvw?|st|texcoord)|uv$|texture/i.test(name);

class Property {
  constructor(description, values, indices) {
    Object.assign(this, {name: description.name, component: description.component, type: description.type,
      columns: description.columns, blended: description.blended, through: description.through, values, indices});
    this.rowCount = values.length / this.columns;
    this.isReal = /^(float|double)/.test(this.type);
  }

  // The place of an element's value, -1 where it has none.
  index(element) {
    const index = this.indices ? this.indices[element] : element;
    return index !== undefined && index < this.rowCount ? index : -1;
  }

  // The value of an element for people.
  text(element) {
    const index = this.index(element);
    if (index < 0) return "none";
    if (this.type === "string") return this.values[index];
    if (this.type === "bool") return this.values[index] ? "true" : "false";
    const numbers = [...this.values.subarray(index * this.columns, (index + 1) * this.columns)];
    return numbers.map(x => this.isReal ? shortNumber(x, this.type.startsWith("float")) : String(x)).join("  ") +
      (this.indices ? "  (value " + index + ")" : "");
  }

  // One number for each value: of the column `k`, or the length of a vector.
  column(k) {
    const numbers = new Float64Array(this.rowCount), {values, columns} = this;
    for (let i = 0; i < numbers.length; ++i) numbers[i] = Number(values[columns * i + k]);
    return numbers;
  }

  lengths() {
    const numbers = new Float64Array(this.rowCount), {values, columns} = this;
    for (let i = 0; i < values.length; ++i) numbers[Math.floor(i / columns)] += Number(values[i]) ** 2;
    return numbers.map(Math.sqrt);
  }

  // What the list of colours offers for it: a key that stays, words, and how it is drawn.
  looks() {
    const {name, columns, type} = this, look = (style, words = "", numbers = null) =>
      ({key: name + (words ? ":" + words : ""), label: name + (words ? " (" + words + ")" : ""), style, numbers});
    const axis = (k, words) => look("number", words, () => this.column(k));
    if (type === "string" || type === "bool") return [look("id")];
    if (columns === 1) return this.isReal ? [axis(0, "")] : [look("id"), axis(0, "numbers")];
    if (isColorName(name) && (columns === 3 || columns === 4)) return [look("color")];
    if (columns === 2 || isPlaneName(name) && columns === 3) return [look("checker"), axis(0, "first"), axis(1, "second")];
    if (columns > 4 || type.includes("x")) return [];
    return [...(isDirectionName(name) && columns === 3 ? [look("direction")] : []), look("number", "length", () => this.lengths()),
      ..."xyzw".slice(0, columns).split("").map((word, k) => axis(k, word))];
  }
}

function shortNumber(x, isFloat) {
  if (!Number.isFinite(x)) return String(x);
  return String(isFloat ? Number(x.toPrecision(7)) : x);
}
