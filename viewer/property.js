// The values of a property: where they are, how they read, and how they can be shown as colours.

const NO_VALUE = 0xffffffff;
const isColorName = name => /colou?r|rgb|tint|albedo|^cd$/i.test(name);
const isDirectionName = name => /normal|tangent|direction|^n$/i.test(name);
const isPlaneName = name => /^(uvw?|st|texcoord)|uv$|texture/i.test(name);

class Property {
  constructor(description, values, indices) {
    Object.assign(this, {name: description.name, component: description.component, type: description.type,
      columns: description.columns, blended: description.blended, through: description.through, values, indices});
    this.isReal = /^(float|double)/.test(this.type);
  }

  // The place of an element's value, -1 where it has none.
  index(element) {
    const index = this.indices ? this.indices[element] : element;
    return index !== undefined && index < this.values.length / this.columns ? index : -1;
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

  // What the list of colours offers for it: an id that stays, words, and how it is drawn.
  looks() {
    const {name, columns, type} = this, look = (style, words = "", pick = null) =>
      ({key: name + (words ? ":" + words : ""), label: name + (words ? " (" + words + ")" : ""), style, pick});
    if (type === "string" || type === "bool") return [look("id")];
    if (columns === 1) {
      const number = look("number", this.isReal ? "" : "numbers", v => Number(v[0]));
      return this.isReal ? [number] : [look("id"), number];
    }
    if (isColorName(name) && (columns === 3 || columns === 4)) return [look("color")];
    if (columns === 2 && type !== "float2x2" || isPlaneName(name) && columns <= 3)
      return [look("checker"), look("number", "first", v => Number(v[0])), look("number", "second", v => Number(v[1]))];
    if (isDirectionName(name) && columns === 3) return [look("direction")];
    if (columns === 3 || columns === 4)
      return [look("number", "length", v => Math.hypot(...Array.from(v, Number))),
        ..."xyzw".slice(0, columns).split("").map((axis, k) => look("number", axis, v => Number(v[k])))];
    return [];
  }
}

function shortNumber(x, isFloat) {
  if (!Number.isFinite(x)) return String(x);
  return String(isFloat ? Number(x.toPrecision(7)) : x);
}
