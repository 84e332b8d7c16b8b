// The pitch with its lines and goals, the ball, and what is drawn on the ground.

import * as THREE from "three";
import { mergeGeometries } from "three/examples/jsm/utils/BufferGeometryUtils.js";

import type { Pitch } from "./Index.ts";

const kLine = 0.06; // m, width of the lines
const kLineHeight = 0.004; // m, above the grass
const kStripes = 14;
const kBorder = 3; // m of grass around the lines

interface Theme {
  grass: [string, string];
  border: string;
  ground: string;
  line: string;
  net: string;
}
export const kThemes: Record<"dark" | "light", Theme> = {
  dark: { grass: ["#2f6b43", "#2b643e"], border: "#28593a", ground: "#161b21", line: "#e8efe9", net: "#c9d2d8" },
  light: { grass: ["#5aa66e", "#549e68"], border: "#4c9260", ground: "#dfe7ec", line: "#ffffff", net: "#6b7780" },
};

function quad(x0: number, y0: number, x1: number, y1: number, z: number): THREE.BufferGeometry {
  const geometry = new THREE.PlaneGeometry(x1 - x0, y1 - y0);
  return geometry.translate((x0 + x1) / 2, (y0 + y1) / 2, z);
}

// Of one colour and drawn at once.
function flat(parts: THREE.BufferGeometry[], color: string, software: boolean): THREE.Mesh {
  const material = software ? new THREE.MeshBasicMaterial({ color }) : new THREE.MeshLambertMaterial({ color });
  const mesh = new THREE.Mesh(mergeGeometries(parts), material);
  mesh.receiveShadow = true;
  return mesh;
}

// The four sides of a rectangle, as broad as `width` inside its edges; they do not overlap.
function frame(x0: number, y0: number, x1: number, y1: number, width: number, z: number): THREE.BufferGeometry[] {
  return [
    quad(x0, y0, x1, y0 + width, z),
    quad(x0, y1 - width, x1, y1, z),
    quad(x0, y0 + width, x0 + width, y1 - width, z),
    quad(x1 - width, y0 + width, x1, y1 - width, z),
  ];
}

function lineFrame(x0: number, y0: number, x1: number, y1: number): THREE.BufferGeometry[] {
  return frame(x0, y0, x1, y1, kLine, kLineHeight);
}

function bar(from: THREE.Vector3, to: THREE.Vector3, radius: number, plain: boolean): THREE.BufferGeometry {
  const along = to.clone().sub(from);
  const geometry = plain ? new THREE.CapsuleGeometry(radius, along.length(), 1, 6) : new THREE.CapsuleGeometry(radius, along.length(), 4, 12);
  const turn = new THREE.Quaternion().setFromUnitVectors(new THREE.Vector3(0, 1, 0), along.normalize());
  const middle = from.clone().add(to).multiplyScalar(0.5);
  return geometry.applyQuaternion(turn).translate(middle.x, middle.y, middle.z);
}

export class Field {
  readonly group = new THREE.Group();
  private shown = "";

  constructor(
    private theme: "dark" | "light",
    private readonly software: boolean,
  ) {}

  // Builds what is not there yet for these measures and this theme.
  show(pitch: Pitch, theme: "dark" | "light"): void {
    const key = JSON.stringify(pitch) + theme;
    if (key === this.shown) return;
    this.shown = key;
    this.theme = theme;
    this.group.clear();
    this.addGrass(pitch);
    this.addLines(pitch);
    this.addGoal(pitch, -1);
    this.addGoal(pitch, 1);
  }

  private addGrass(pitch: Pitch): void {
    const theme = kThemes[this.theme];
    const x = pitch.length / 2;
    const y = pitch.width / 2;
    // Nothing lies under anything: what is hidden costs as much as what is seen. Beyond the border is
    // the background, in the colour of the ground.
    const border = frame(-x - kBorder, -y - kBorder, x + kBorder, y + kBorder, kBorder, 0);
    this.group.add(flat(border, theme.border, this.software));
    const width = pitch.length / kStripes;
    const stripes = Array.from({ length: kStripes }, (_, i) => quad(-x + i * width, -y, -x + (i + 1) * width, y, 0));
    theme.grass.forEach((colour, odd) => {
      this.group.add(flat(stripes.filter((_, i) => i % 2 === odd), colour, this.software));
    });
  }

  private addLines(pitch: Pitch): void {
    const x = pitch.length / 2;
    const y = pitch.width / 2;
    const { penaltyLength: l, penaltyWidth: w } = pitch;
    const lines = [
      ...lineFrame(-x, -y, x, y),
      ...lineFrame(-x, -w / 2, -x + l, w / 2),
      ...lineFrame(x - l, -w / 2, x, w / 2),
      quad(-kLine / 2, -y, kLine / 2, y, kLineHeight),
      new THREE.RingGeometry(pitch.circle - kLine / 2, pitch.circle + kLine / 2, 72).translate(0, 0, kLineHeight),
      new THREE.CircleGeometry(kLine * 1.4, 24).translate(0, 0, kLineHeight),
    ];
    const material = new THREE.MeshBasicMaterial({
      color: kThemes[this.theme].line,
      polygonOffset: true,
      polygonOffsetFactor: -2,
      polygonOffsetUnits: -2,
    });
    this.group.add(new THREE.Mesh(mergeGeometries(lines), material));
  }

  private addGoal(pitch: Pitch, end: -1 | 1): void {
    const x = (end * pitch.length) / 2;
    const back = x + end * pitch.goalDepth;
    const y = pitch.goalWidth / 2;
    const h = pitch.goalHeight;
    const v = (px: number, py: number, pz: number): THREE.Vector3 => new THREE.Vector3(px, py, pz);
    const paint = new THREE.MeshLambertMaterial({ color: "#f5f6f7" });
    const thin = 0.015;
    const bars: [THREE.Vector3, THREE.Vector3, number][] = [
      [v(x, -y, 0), v(x, -y, h), 0.03],
      [v(x, y, 0), v(x, y, h), 0.03],
      [v(x, -y, h), v(x, y, h), 0.03],
      [v(back, -y, 0), v(back, -y, h), thin],
      [v(back, y, 0), v(back, y, h), thin],
      [v(back, -y, h), v(back, y, h), thin],
      [v(x, -y, h), v(back, -y, h), thin],
      [v(x, y, h), v(back, y, h), thin],
    ];
    const mesh = new THREE.Mesh(mergeGeometries(bars.map(([from, to, radius]) => bar(from, to, radius, this.software))), paint);
    mesh.castShadow = true;
    this.group.add(mesh);
    this.group.add(this.net(x, back, y, h));
  }

  private net(x: number, back: number, y: number, h: number): THREE.Object3D {
    const points: number[] = [];
    const step = 0.1;
    const line = (...ends: number[]): void => void points.push(...ends);
    const along = (size: number): number[] =>
      Array.from({ length: Math.round(size / step) + 1 }, (_, i) => (i * size) / Math.round(size / step));
    for (const dy of along(2 * y)) {
      line(back, dy - y, 0, back, dy - y, h);
      line(x, dy - y, h, back, dy - y, h);
    }
    for (const z of along(h)) {
      line(back, -y, z, back, y, z);
      for (const s of [-y, y]) line(x, s, z, back, s, z);
    }
    for (const d of along(Math.abs(back - x))) {
      const px = x + Math.sign(back - x) * d;
      line(px, -y, h, px, y, h);
      for (const s of [-y, y]) line(px, s, 0, px, s, h);
    }
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", new THREE.Float32BufferAttribute(points, 3));
    const material = new THREE.LineBasicMaterial({ color: kThemes[this.theme].net, transparent: true, opacity: 0.35 });
    return new THREE.LineSegments(geometry, material);
  }
}

// A ball with dark patches around the corners of an icosahedron, so that its turning is seen.
export function ballMesh(radius: number, software: boolean): THREE.Mesh {
  const geometry = software ? new THREE.SphereGeometry(radius, 24, 16) : new THREE.SphereGeometry(radius, 40, 28);
  const corners = new THREE.IcosahedronGeometry(1).getAttribute("position");
  const places = geometry.getAttribute("position");
  const colours = new Float32Array(places.count * 3);
  const point = new THREE.Vector3();
  const corner = new THREE.Vector3();
  for (let i = 0; i < places.count; ++i) {
    point.fromBufferAttribute(places, i).normalize();
    let nearest = -1;
    for (let c = 0; c < corners.count; ++c) {
      nearest = Math.max(nearest, corner.fromBufferAttribute(corners, c).normalize().dot(point));
    }
    colours.fill(nearest > 0.94 ? 0.03 : 0.95, i * 3, i * 3 + 3);
  }
  geometry.setAttribute("color", new THREE.BufferAttribute(colours, 3));
  const mesh = new THREE.Mesh(geometry, new THREE.MeshLambertMaterial({ vertexColors: true }));
  mesh.castShadow = true;
  return mesh;
}

// A soft dark disc: the shadow of what stands above it.
export function shadowDisc(): { geometry: THREE.BufferGeometry; material: THREE.Material } {
  const size = 64;
  const canvas = document.createElement("canvas");
  canvas.width = canvas.height = size;
  const pen = canvas.getContext("2d");
  if (pen) {
    const shade = pen.createRadialGradient(size / 2, size / 2, 0, size / 2, size / 2, size / 2);
    shade.addColorStop(0, "rgba(0,0,0,0.55)");
    shade.addColorStop(0.55, "rgba(0,0,0,0.28)");
    shade.addColorStop(1, "rgba(0,0,0,0)");
    pen.fillStyle = shade;
    pen.fillRect(0, 0, size, size);
  }
  return {
    geometry: new THREE.PlaneGeometry(1, 1),
    material: new THREE.MeshBasicMaterial({
      map: new THREE.CanvasTexture(canvas),
      transparent: true,
      depthWrite: false,
      polygonOffset: true,
      polygonOffsetFactor: -4,
      polygonOffsetUnits: -4,
    }),
  };
}

// A ribbon over the ground through points, fading towards its first.
export class Ribbon {
  readonly mesh: THREE.Mesh;
  private readonly places: Float32Array;
  private readonly alphas: Float32Array;

  constructor(
    private readonly capacity: number,
    color: THREE.ColorRepresentation,
    private readonly width: number,
  ) {
    this.places = new Float32Array(capacity * 6);
    this.alphas = new Float32Array(capacity * 8);
    const index: number[] = [];
    for (let i = 0; i + 1 < capacity; ++i) {
      const a = 2 * i;
      index.push(a, a + 1, a + 2, a + 1, a + 3, a + 2);
    }
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", new THREE.BufferAttribute(this.places, 3));
    geometry.setAttribute("color", new THREE.BufferAttribute(this.alphas, 4));
    geometry.setIndex(index);
    const material = new THREE.MeshBasicMaterial({
      vertexColors: true,
      transparent: true,
      depthWrite: false,
      side: THREE.DoubleSide,
    });
    this.mesh = new THREE.Mesh(geometry, material);
    this.mesh.frustumCulled = false;
    this.mesh.renderOrder = 1;
    const paint = new THREE.Color(color);
    for (let i = 0; i < capacity * 2; ++i) this.alphas.set([paint.r, paint.g, paint.b, 0], i * 4);
  }

  show(points: [number, number, number][]): void {
    const shown = points.slice(-this.capacity);
    shown.forEach((point, i) => {
      const next = shown[Math.min(i + 1, shown.length - 1)] ?? point;
      const last = shown[Math.max(i - 1, 0)] ?? point;
      const dx = next[0] - last[0];
      const dy = next[1] - last[1];
      const length = Math.hypot(dx, dy) || 1;
      const sx = (-dy / length) * this.width * 0.5;
      const sy = (dx / length) * this.width * 0.5;
      const z = Math.max(point[2], 0.012);
      this.places.set([point[0] + sx, point[1] + sy, z, point[0] - sx, point[1] - sy, z], i * 6);
      const alpha = 0.85 * ((i + 1) / shown.length) ** 1.5;
      this.alphas[i * 8 + 3] = this.alphas[i * 8 + 7] = alpha;
    });
    const { geometry } = this.mesh;
    geometry.setDrawRange(0, Math.max(shown.length - 1, 0) * 6);
    for (const name of ["position", "color"]) {
      (geometry.getAttribute(name) as THREE.BufferAttribute).needsUpdate = true;
    }
  }
}
