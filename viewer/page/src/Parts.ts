// How the parts of many robots get to the screen at once.

import * as THREE from "three";

// Towards the sun.
export const kSun = new THREE.Vector3(-9, -13, 22);

// A kind of part: its shape, its paint, and how many of them are shown at most.
export interface Kind {
  shape: THREE.BufferGeometry;
  material: THREE.Material;
  colour: THREE.Color;
  most: number;
}

export interface Parts {
  readonly objects: THREE.Object3D[];
  // A picture begins: nothing is shown.
  begin(): void;
  // Shows a part of the kind with this number. `colour` takes the place of its kind's colour.
  put(kind: number, place: THREE.Matrix4, colour?: THREE.Color): void;
  end(): void;
}

// One instanced mesh for each kind.
export class InstancedParts implements Parts {
  readonly objects: THREE.InstancedMesh[];

  constructor(kinds: Kind[], ghost: boolean) {
    this.objects = kinds.map(({ shape, material, most }) => {
      const mesh = new THREE.InstancedMesh(shape, material, most);
      mesh.instanceMatrix.setUsage(THREE.DynamicDrawUsage);
      mesh.frustumCulled = false;
      mesh.castShadow = !ghost;
      if (ghost) mesh.renderOrder = 2;
      return mesh;
    });
  }

  begin(): void {
    for (const mesh of this.objects) mesh.count = 0;
  }

  put(kind: number, place: THREE.Matrix4, colour?: THREE.Color): void {
    const mesh = this.objects[kind];
    if (!mesh) return;
    mesh.setMatrixAt(mesh.count, place);
    if (colour) mesh.setColorAt(mesh.count, colour);
    ++mesh.count;
  }

  end(): void {
    for (const mesh of this.objects) {
      mesh.instanceMatrix.needsUpdate = true;
      if (mesh.instanceColor) mesh.instanceColor.needsUpdate = true;
    }
  }
}

// One mesh of everything, whose corners are placed and lit here. Without graphics hardware an instance
// costs as much as a draw of its own, and light for every pixel more than for every corner.
export class MergedParts implements Parts {
  readonly objects: THREE.Mesh[];
  private readonly shapes: { corners: Float32Array; normals: Float32Array; index: ArrayLike<number>; colour: THREE.Color }[];
  private readonly places: THREE.BufferAttribute;
  private readonly colours: THREE.BufferAttribute;
  private readonly index: THREE.BufferAttribute;
  private readonly sun = kSun.clone().normalize();
  private corners = 0;
  private indices = 0;
  private reordered = false;

  constructor(kinds: Kind[]) {
    this.shapes = kinds.map(({ shape, colour }) => ({
      corners: shape.getAttribute("position").array as Float32Array,
      normals: shape.getAttribute("normal").array as Float32Array,
      index: shape.getIndex()?.array ?? [],
      colour,
    }));
    const total = (size: (shape: (typeof this.shapes)[number]) => number): number =>
      this.shapes.reduce((sum, shape, i) => sum + size(shape) * (kinds[i]?.most ?? 0), 0);
    const corners = total((shape) => shape.corners.length / 3);
    this.places = new THREE.BufferAttribute(new Float32Array(3 * corners), 3);
    this.colours = new THREE.BufferAttribute(new Uint8Array(4 * corners).fill(255), 4, true);
    this.index = new THREE.BufferAttribute(new Uint32Array(total((shape) => shape.index.length)), 1);
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", this.places.setUsage(THREE.DynamicDrawUsage));
    geometry.setAttribute("color", this.colours.setUsage(THREE.DynamicDrawUsage));
    geometry.setIndex(this.index);
    const mesh = new THREE.Mesh(geometry, new THREE.MeshBasicMaterial({ vertexColors: true }));
    mesh.frustumCulled = false;
    this.objects = [mesh];
  }

  begin(): void {
    this.corners = 0;
    this.indices = 0;
    this.reordered = false;
  }

  put(kind: number, place: THREE.Matrix4, colour?: THREE.Color): void {
    const shape = this.shapes[kind];
    if (!shape) return;
    this.putIndex(shape.index);
    const { corners, normals } = shape;
    const paint = colour ?? shape.colour;
    const places = this.places.array;
    const colours = this.colours.array;
    const { sun } = this;
    const m = place.elements;
    for (let i = 0; i < corners.length; i += 3, ++this.corners) {
      const x = corners[i] as number;
      const y = corners[i + 1] as number;
      const z = corners[i + 2] as number;
      const p = 3 * this.corners;
      places[p] = m[0] * x + m[4] * y + m[8] * z + m[12];
      places[p + 1] = m[1] * x + m[5] * y + m[9] * z + m[13];
      places[p + 2] = m[2] * x + m[6] * y + m[10] * z + m[14];
      // Scales are so near to 1 that normals stay what they are.
      const a = normals[i] as number;
      const b = normals[i + 1] as number;
      const c = normals[i + 2] as number;
      const up = m[2] * a + m[6] * b + m[10] * c;
      const lit = (m[0] * a + m[4] * b + m[8] * c) * sun.x + (m[1] * a + m[5] * b + m[9] * c) * sun.y + up * sun.z;
      const light = Math.min(255 * (0.6 + 0.14 * up + 0.32 * Math.max(lit, 0)), 255);
      const q = 4 * this.corners;
      colours[q] = paint.r * light;
      colours[q + 1] = paint.g * light;
      colours[q + 2] = paint.b * light;
    }
  }

  // The order of the parts changes with who is on the pitch, and then alone.
  private putIndex(shape: ArrayLike<number>): void {
    const index = this.index.array;
    for (let i = 0; i < shape.length; ++i, ++this.indices) {
      const corner = this.corners + (shape[i] as number);
      if (index[this.indices] === corner) continue;
      index[this.indices] = corner;
      this.reordered = true;
    }
  }

  end(): void {
    const upload = (attribute: THREE.BufferAttribute, numbers: number): void => {
      attribute.clearUpdateRanges();
      attribute.addUpdateRange(0, numbers);
      attribute.needsUpdate = true;
    };
    upload(this.places, 3 * this.corners);
    upload(this.colours, 4 * this.corners);
    if (this.reordered) upload(this.index, this.indices);
    this.objects[0]?.geometry.setDrawRange(0, this.indices);
  }
}
