// From the elements of the page to typed arrays.

const TYPES = {
  bool: Uint8Array, int8: Int8Array, uint8: Uint8Array, int16: Int16Array, uint16: Uint16Array,
  int32: Int32Array, uint32: Uint32Array, int64: BigInt64Array, uint64: BigUint64Array,
  float32: Float32Array, float64: Float64Array, texts: Uint8Array,
};

function bytesOfBase64(text) {
  const characters = atob(text), bytes = new Uint8Array(characters.length);
  for (let i = 0; i < bytes.length; ++i) bytes[i] = characters.charCodeAt(i);
  return bytes;
}

// Which byte a character of windows-1252 is: each of the 256 is another character.
function bytesOfCharacters() {
  const characters = new TextDecoder("windows-1252").decode(Uint8Array.from({length: 256}, (_, i) => i));
  const table = new Uint8Array(0x10000);
  for (let byte = 0; byte < 256; ++byte) table[characters.charCodeAt(byte)] = byte;
  return table;
}

function bytesOfEscaped(text, table) {
  const bytes = new Uint8Array(text.length);
  let size = 0;
  for (let i = 0; i < text.length; ++i) {
    const byte = table[text.charCodeAt(i)];
    bytes[size++] = byte === 0x3d ? table[text.charCodeAt(++i)] ^ 0x40 : byte;
  }
  return bytes.subarray(0, size);
}

async function inflate(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// First bytes of all numbers, then second ones -> numbers, into `out` from `begin` on.
function gather(bytes, width, out, begin) {
  const rows = bytes.length / width;
  for (let k = 0; k < width; ++k)
    for (let i = 0, from = k * rows, to = begin + k; i < rows; ++i, to += width) out[to] = bytes[from + i];
}

// The reals that were rounded to 16 bits, by least value and step of each column.
function expand(codes, scale) {
  const reals = new Float64Array(codes.length);
  for (let i = 0; i < codes.length; ++i) {
    const [least, step] = scale[i % scale.length];
    reals[i] = codes[i] === 0xffff ? NaN : least + step * codes[i];
  }
  return reals;
}

class Arrays {
  constructor(encoding) {
    this.parts = [...document.querySelectorAll("script.part")];
    const table = encoding === "escaped" ? bytesOfCharacters() : null;
    if (table && document.characterSet !== "windows-1252")
      throw new Error("This page was sent as " + document.characterSet +
        ", but is windows-1252: open it from disk, or let the server name no encoding.");
    this.loaded = new Map();  // by their first parts: properties share indices
    this.bytesOf = table ? text => bytesOfEscaped(text, table) : bytesOfBase64;
  }

  async part(index) {
    const element = this.parts[index], text = element.textContent;
    element.textContent = "";  // a page of a gigabyte need not stay there twice
    return inflate(this.bytesOf(text));
  }

  // The array that the page describes so; null for null.
  async load(description) {
    if (!description) return null;
    const {first, parts} = description;
    if (parts > 0 && this.loaded.has(first)) return this.loaded.get(first);
    const array = this.valuesOf(await this.numbers(description), description);
    if (parts > 0) this.loaded.set(first, array);
    return array;
  }

  async numbers({type, count, first, parts}) {
    const Type = TYPES[type], array = new Type(count), bytes = new Uint8Array(array.buffer);
    let done = 0;
    for (let k = 0; k < parts; ++k) {
      const part = await this.part(first + k);
      gather(part, Type.BYTES_PER_ELEMENT, bytes, done);
      done += part.length;
    }
    if (done !== bytes.length) throw new Error("The page is damaged: an array is too short.");
    return array;
  }

  valuesOf(numbers, {type, scale}) {
    if (type === "texts") return JSON.parse(new TextDecoder().decode(numbers));
    return scale ? expand(numbers, scale) : numbers;
  }
}
