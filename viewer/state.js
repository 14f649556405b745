// What the page shows, and its address: a link to it shows the same.

class State {
  constructor() {
    Object.assign(this, {color: null, shading: "flat", faces: true, edges: true, fan: false, points: null, size: 0, up: "y",
      layout: "beside", theme: "", bare: false, marks: new Set(["nonmanifold", "samedirection", "crease", "places"]),
      camera: null, select: ""});
    const words = new URLSearchParams(location.hash.slice(1));
    for (const [key, text] of words) this.read(key, text);
  }

  read(key, text) {
    if (key === "marks") this.marks = new Set(text.split(",").filter(word => word));
    else if (key === "camera") this.camera = text.split(",").map(Number);
    else if (key === "size") this.size = Number(text) || 0;
    else if (["faces", "edges", "fan", "points", "bare"].includes(key)) this[key] = text === "1";
    else if (["color", "shading", "up", "layout", "theme", "select"].includes(key)) this[key] = text;
  }

  write(orbit) {
    const round = x => Number(x.toFixed(4));
    const camera = [orbit.yaw, orbit.pitch, orbit.distance, ...orbit.target.toArray()].map(round).join(",");
    const flag = value => value ? "1" : "0";
    const words = new URLSearchParams({color: this.color, shading: this.shading, faces: flag(this.faces), edges: flag(this.edges),
      fan: flag(this.fan), points: flag(this.points), size: this.size, up: this.up, layout: this.layout, marks: [...this.marks].join(","),
      theme: this.theme, bare: flag(this.bare), select: this.select, camera});
    try {
      history.replaceState(null, "", "#" + words);
    } catch {
      // A page inside another one may have no address of its own.
    }
  }
}
