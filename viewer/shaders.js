// What runs on the graphics card.

const LIGHT = `
// A colour that says something is shaded less, so that it can be read.
vec3 lit(vec3 color, vec3 n, bool says) {
  float key = max(0.0, dot(n, normalize(vec3(-0.35, 0.55, 0.75))));
  float fill = max(0.0, dot(n, normalize(vec3(0.7, -0.1, 0.5))));
  float sky = 0.5 + 0.5 * n.y;
  vec3 h = normalize(normalize(vec3(-0.35, 0.55, 0.75)) + vec3(0, 0, 1));
  float gloss = pow(max(0.0, dot(n, h)), 40.0);
  float light = 0.36 + 0.16 * sky + 0.5 * key + 0.12 * fill;
  return says ? color * mix(light, 1.0, 0.45) : color * light + 0.06 * gloss;
}
`;

const VALUE_COLOR = `
uniform int style;       // 0 plain, 1 by the map, 2 tints, 3 checker
uniform vec3 plain;
uniform sampler2D map;
const vec3 kNone = vec3(0.55, 0.55, 0.58);
vec3 colorOf(vec2 value, vec4 tint) {
  if (style == 0) return plain;
  if (tint.a < 0.999) return kNone;
  if (style == 1) return texture(map, vec2(clamp(value.x, 0.0, 1.0) * 255.0 / 256.0 + 0.5 / 256.0, 0.5)).rgb;
  if (style == 2) return tint.rgb;
  vec2 cell = floor(value * 16.0);
  bool odd = mod(cell.x + cell.y, 2.0) > 0.5;
  vec3 hue = vec3(fract(value), 0.35);
  return mix(odd ? vec3(0.93) : vec3(0.38, 0.41, 0.46), hue, 0.25);
}
`;

const SURFACE_VERTEX = `#version 300 es
precision highp float;
uniform mat4 projectionMatrix, modelViewMatrix;
in vec3 position;
in vec4 normal;  // its last number has the sides of the triangle that are sides of its polygon, as bits
in vec2 value;
in vec4 tint;
out vec3 eye, across, share;
out vec2 itsValue;
out vec4 itsTint, tint0, tint1, tint2;
flat out int sides;
void main() {
  vec4 p = modelViewMatrix * vec4(position, 1.0);
  eye = p.xyz;
  across = mat3(modelViewMatrix) * normal.xyz;
  int k = gl_VertexID % 3;
  share = vec3(k == 0, k == 1, k == 2);
  tint0 = share.x * tint;
  tint1 = share.y * tint;
  tint2 = share.z * tint;
  itsTint = tint;
  itsValue = value;
  sides = int(normal.w * 32767.0 + 0.5);
  gl_Position = projectionMatrix * p;
}`;

const SURFACE_FRAGMENT = `#version 300 es
precision highp float;
in vec3 eye, across, share;
in vec2 itsValue;
in vec4 itsTint, tint0, tint1, tint2;
flat in int sides;
uniform bool picksTint;  // of the nearest corner: ids do not blend
uniform bool showsFaces, showsEdges, showsFan;
uniform vec3 ink;
uniform float lineWidth, inkShare, pixels, usualSide;
uniform mat4 projectionMatrix;
out vec4 color;
${LIGHT}
${VALUE_COLOR}
vec4 nearestTint() {
  vec4 t = share.x >= share.y && share.x >= share.z ? tint0 / share.x :
    share.y >= share.z ? tint1 / share.y : tint2 / share.z;
  return t;
}
// Lines give way where the usual side of a polygon is but a few pixels long.
float usualShare() {
  return smoothstep(3.0, 9.0, usualSide * projectionMatrix[1][1] * pixels / -eye.z);
}
float lineShare(float wide, vec3 along, bool inner) {
  vec3 pixels = share / max(along, vec3(1e-12));
  float far = 1e9;
  // Side k lies opposite corner k + 2.
  if (((sides & 1) == 0) == inner) far = min(far, pixels.z);
  if (((sides & 2) == 0) == inner) far = min(far, pixels.x);
  if (((sides & 4) == 0) == inner) far = min(far, pixels.y);
  float small = max(along.x, max(along.y, along.z));
  return (1.0 - smoothstep(wide - 0.5, wide + 0.5, far)) * smoothstep(1.2, 0.6, small) * (showsFaces ? usualShare() : 0.35 + 0.65 * usualShare());
}
void main() {
  vec3 along = fwidth(share);
  float line = showsEdges ? inkShare * lineShare(lineWidth, along, false) : 0.0;
  if (showsFan) line = max(line, 0.45 * lineShare(0.7 * lineWidth, along, true));
  vec3 n = normalize(across);
  vec3 flatNormal = normalize(cross(dFdx(eye), dFdy(eye)));
  if (!(dot(n, n) > 0.5)) n = flatNormal;
  bool back = dot(flatNormal, n) < 0.0 && !gl_FrontFacing || !gl_FrontFacing;
  if (back) n = -n;
  if (!showsFaces) {
    if (line < 0.08) discard;
    color = vec4(ink, line);
    return;
  }
  vec3 base = colorOf(itsValue, picksTint ? nearestTint() : itsTint);
  if (back && style == 0) base = mix(base, vec3(0.55, 0.38, 0.32), 0.45);
  color = vec4(mix(lit(base, n, style != 0), ink, line), 1.0);
}`;

const SURFACE_ID_VERTEX = `#version 300 es
precision highp float;
uniform mat4 projectionMatrix, modelViewMatrix;
in vec3 position;
flat out uint id;
void main() {
  id = uint(gl_VertexID) / 3u + 1u;
  gl_Position = projectionMatrix * (modelViewMatrix * vec4(position, 1.0));
}`;

const ID_COLOR = "vec4(id & 255u, id >> 8 & 255u, id >> 16 & 255u, id >> 24) / 255.0";

const SURFACE_ID_FRAGMENT = `#version 300 es
precision highp float;
flat in uint id;
out vec4 color;
void main() { color = ${ID_COLOR}; }`;

const POINT_VERTEX = `#version 300 es
precision highp float;
uniform mat4 projectionMatrix, modelViewMatrix;
uniform float pixels, worldSize, least, lift;
in vec3 position;
in vec2 value;
in vec4 tint;
out vec2 itsValue;
out vec4 itsTint;
out float size;
flat out uint id;
void main() {
  id = uint(gl_VertexID) + 0x80000001u;
  itsValue = value;
  itsTint = tint;
  gl_Position = projectionMatrix * (modelViewMatrix * vec4(position, 1.0));
  size = max(least, worldSize * projectionMatrix[1][1] * pixels / gl_Position.w);
  gl_PointSize = size + 1.0;
  gl_Position.z -= lift * gl_Position.w;
}`;

const POINT_FRAGMENT = `#version 300 es
precision highp float;
in vec2 itsValue;
in vec4 itsTint;
in float size;
flat in uint id;
uniform bool asId;
out vec4 color;
${LIGHT}
${VALUE_COLOR}
void main() {
  vec2 p = (gl_PointCoord * 2.0 - 1.0) * (size + 1.0) / size;
  float r = dot(p, p);
  float edge = 2.0 / size;
  float cover = 1.0 - smoothstep(1.0 - edge, 1.0 + edge, sqrt(r));
  if (cover < (asId ? 0.5 : 0.05)) discard;
  if (asId) { color = ${ID_COLOR}; return; }
  vec3 base = colorOf(itsValue, itsTint);
  vec3 n = vec3(p.x, -p.y, sqrt(max(0.0, 1.0 - r)));
  color = vec4(mix(base, lit(base, n, style != 0), smoothstep(4.0, 7.0, size)), cover);
}`;

const LINE_VERTEX = `#version 300 es
precision highp float;
uniform mat4 projectionMatrix, modelViewMatrix;
uniform vec2 viewport;
uniform float width, lift;
in vec3 position;  // which end, and to which side
in vec3 start, end;
out float aside;
void main() {
  vec4 a = projectionMatrix * (modelViewMatrix * vec4(start, 1.0));
  vec4 b = projectionMatrix * (modelViewMatrix * vec4(end, 1.0));
  float near = 1e-4;
  if (a.w < near && b.w >= near) a = mix(a, b, (near - a.w) / (b.w - a.w));
  if (b.w < near && a.w >= near) b = mix(b, a, (near - b.w) / (a.w - b.w));
  vec2 way = (b.xy / b.w - a.xy / a.w) * viewport;
  way = length(way) > 1e-6 ? normalize(way) : vec2(1.0, 0.0);
  vec4 p = position.x < 0.5 ? a : b;
  float half_ = 0.5 * (width + 1.5);
  aside = position.y * half_;
  vec2 off = (vec2(-way.y, way.x) * position.y + way * (position.x * 2.0 - 1.0) * 0.5) * half_;
  p.xy += off * 2.0 / viewport * p.w;
  p.z -= lift * p.w;
  gl_Position = p;
}`;

const LINE_FRAGMENT = `#version 300 es
precision highp float;
uniform vec3 plain;
uniform float width, opacity;
in float aside;
out vec4 color;
void main() {
  float cover = 1.0 - smoothstep(0.5 * width - 0.5, 0.5 * width + 0.5, abs(aside));
  if (cover < 0.02) discard;
  color = vec4(plain, opacity * cover);
}`;
