// Draws robots: out of which parts they are made, and where these are.

import * as THREE from "three";
import { RoundedBoxGeometry } from "three/examples/jsm/geometries/RoundedBoxGeometry.js";

import type { Robot } from "./Chunk.ts";
import type { RobotModel } from "./Index.ts";
import { Skeleton } from "./Kinematics.ts";
import { InstancedParts, MergedParts, type Kind, type Parts } from "./Parts.ts";

type Paint = "team" | "white" | "dark" | "grey";
type Triple = [number, number, number];

// A visible part in the frame of its body: +x the robot's right, +y its front, +z up; metres. A
// box without a size is the body's own box from the table, made larger or smaller by `grow`.
interface Part {
  bodies: string[];
  shape: "box" | "ball" | "rod";
  paint: Paint;
  size?: Triple; // box: edges; ball: its three radii; rod: radius, length, 0; along z
  grow?: Triple;
  at?: Triple;
}

const kParts: Part[] = [
  { bodies: ["body"], shape: "box", paint: "team", grow: [0.026, 0.004, 0.0] },
  { bodies: ["body"], shape: "box", paint: "white", size: [0.086, 0.03, 0.07], at: [0, 0.043, 0.03] },
  { bodies: ["body"], shape: "box", paint: "dark", size: [0.1, 0.09, 0.04], at: [0, 0, -0.1] },
  { bodies: ["body"], shape: "rod", paint: "dark", size: [0.024, 0.15, 1], at: [0, 0, 0.075] },
  { bodies: ["neck"], shape: "ball", paint: "dark", size: [0.026, 0.026, 0.035] },
  { bodies: ["head"], shape: "ball", paint: "white", size: [0.065, 0.065, 0.062] },
  { bodies: ["head"], shape: "ball", paint: "dark", size: [0.046, 0.03, 0.026], at: [0, 0.044, 0.004] },
  { bodies: ["head"], shape: "box", paint: "team", size: [0.134, 0.04, 0.04], at: [0, 0, 0] },
  // A cap, by which teams are told apart from above.
  { bodies: ["head"], shape: "ball", paint: "team", size: [0.05, 0.05, 0.028], at: [0, -0.006, 0.044] },
  { bodies: ["rupperarm", "lupperarm"], shape: "box", paint: "white", grow: [-0.012, 0.016, -0.004] },
  { bodies: ["relbow", "lelbow"], shape: "ball", paint: "dark", size: [0.026, 0.026, 0.026] },
  { bodies: ["rlowerarm", "llowerarm"], shape: "box", paint: "team", grow: [0, -0.02, 0] },
  { bodies: ["rlowerarm", "llowerarm"], shape: "ball", paint: "white", size: [0.023, 0.028, 0.025], at: [0, 0.052, 0] },
  { bodies: ["rhip1", "lhip1"], shape: "ball", paint: "dark", size: [0.036, 0.036, 0.036] },
  { bodies: ["rthigh", "lthigh"], shape: "box", paint: "white", grow: [0, 0, -0.012] },
  { bodies: ["rshank", "lshank"], shape: "box", paint: "team", grow: [-0.008, -0.004, 0.006] },
  { bodies: ["rshank", "lshank"], shape: "ball", paint: "dark", size: [0.033, 0.033, 0.033], at: [0, -0.01, 0.06] },
  { bodies: ["rankle", "lankle"], shape: "ball", paint: "dark", size: [0.03, 0.03, 0.03] },
  { bodies: ["rfoot", "lfoot"], shape: "box", paint: "white", grow: [0.004, 0.004, 0.014], at: [0, 0, 0.007] },
  { bodies: ["rtoe", "ltoe"], shape: "box", paint: "team", grow: [0.004, 0.004, 0.014], at: [0, 0, 0.007] },
];

const kCapacity = 64;
const kPaints: Record<Exclude<Paint, "team">, string> = {
  white: "#eceef0",
  dark: "#2b3036",
  grey: "#8b929a",
};

export interface Look {
  teams: [THREE.ColorRepresentation, THREE.ColorRepresentation];
  software: boolean; // plainer, for machines without graphics hardware
  ghost?: THREE.ColorRepresentation; // all of one colour, to be seen through
}

// A part of one robot type: its kind, and how it sits on its body.
interface Piece {
  kind: number;
  team: boolean;
  body: number;
  scale: THREE.Vector3;
  at: THREE.Vector3;
}

const kSmallBall = 0.04; // m, a radius; below it fewer corners will do

function ball([around, down]: [number, number]): THREE.BufferGeometry {
  return new THREE.SphereGeometry(1, around, down);
}

function shapeOf(part: Part, size: Triple, plain: boolean): THREE.BufferGeometry {
  switch (part.shape) {
    case "box":
      return plain
        ? new THREE.BoxGeometry(...size)
        : new RoundedBoxGeometry(...size, 2, Math.min(...size) * 0.28);
    case "ball":
      return ball(plain ? (Math.max(...size) < kSmallBall ? [6, 4] : [9, 6]) : [20, 14]).scale(...size);
    case "rod":
      return new THREE.CapsuleGeometry(size[0], size[1], plain ? 1 : 4, plain ? 6 : 12).rotateZ(Math.PI / 2);
  }
}

// A body's box; others have none.
function boxOf(model: RobotModel, body: string): Triple | undefined {
  const found = model.bodies.find((other) => other.name === body);
  return found?.shape === "box" ? found.size : undefined;
}

function grown(box: Triple, part: Part): Triple {
  const grow = part.grow ?? [0, 0, 0];
  return [box[0] + grow[0], box[1] + grow[1], box[2] + grow[2]];
}

export class Robots {
  readonly group = new THREE.Group();
  private readonly skeletons: Skeleton[];
  private readonly pieces: Piece[][]; // by type
  private readonly parts: Parts;
  private readonly poses = new Float32Array(7 * 32);
  private readonly colours: [THREE.Color, THREE.Color];

  constructor(
    private readonly models: RobotModel[],
    look: Look,
  ) {
    this.skeletons = models.map((model) => new Skeleton(model));
    this.pieces = models.map(() => []);
    this.colours = [new THREE.Color(look.teams[0]), new THREE.Color(look.teams[1])];
    const kinds: Kind[] = [];
    const materials = new Map<Paint, THREE.Material>();
    for (const part of kParts) {
      const size = part.size ?? this.firstBox(part);
      if (!size) continue;
      const material = materials.get(part.paint) ?? Robots.material(part.paint, look);
      materials.set(part.paint, material);
      const colour = new THREE.Color(part.paint === "team" ? "#ffffff" : kPaints[part.paint]);
      this.addPieces(part, size, kinds.length);
      kinds.push({ shape: shapeOf(part, size, look.software), material, colour, most: kCapacity * part.bodies.length });
    }
    const merged = look.software && look.ghost === undefined;
    this.parts = merged ? new MergedParts(kinds) : new InstancedParts(kinds, look.ghost !== undefined);
    this.group.add(...this.parts.objects);
  }

  private addPieces(part: Part, size: Triple, kind: number): void {
    this.models.forEach((model, type) => {
      for (const name of part.bodies) {
        const body = model.bodies.findIndex((other) => other.name === name);
        if (body < 0) continue;
        const box = boxOf(model, name);
        const own = !part.size && box ? grown(box, part) : size;
        const scale = new THREE.Vector3(own[0] / size[0], own[1] / size[1], own[2] / size[2]);
        const at = new THREE.Vector3(...(part.at ?? [0, 0, 0]));
        this.pieces[type]?.push({ kind, team: part.paint === "team", body, scale, at });
      }
    });
  }

  private static material(paint: Paint, look: Look): THREE.Material {
    if (look.ghost !== undefined) {
      return new THREE.MeshLambertMaterial({
        color: look.ghost,
        transparent: true,
        opacity: paint === "dark" ? 0.25 : 0.45,
        depthWrite: false,
        emissive: look.ghost,
        emissiveIntensity: 0.25,
      });
    }
    const color = paint === "team" ? "#ffffff" : kPaints[paint];
    return new THREE.MeshStandardMaterial({ color, roughness: paint === "dark" ? 0.45 : 0.62, metalness: 0.05 });
  }

  private firstBox(part: Part): Triple | undefined {
    for (const model of this.models) {
      const box = boxOf(model, part.bodies[0] ?? "");
      if (box) return grown(box, part);
    }
    return undefined;
  }

  // Where the body of this name is: x y z w x y z; undefined if the type has none.
  bodyPose(robot: Robot, body: string): Float32Array | undefined {
    const skeleton = this.skeletons[robot.type];
    const at = skeleton?.model.bodies.findIndex((other) => other.name === body) ?? -1;
    if (!skeleton || at < 0) return undefined;
    skeleton.place(robot.pose, robot.joints, this.poses);
    return this.poses.slice(at * 7, at * 7 + 7);
  }

  show(robots: Robot[]): void {
    this.parts.begin();
    for (const robot of robots.slice(0, kCapacity)) this.place(robot);
    this.parts.end();
  }

  private readonly matrix = new THREE.Matrix4();
  private readonly turn = new THREE.Quaternion();
  private readonly centre = new THREE.Vector3();

  private place(robot: Robot): void {
    this.skeletons[robot.type]?.place(robot.pose, robot.joints, this.poses);
    const { poses, turn, centre } = this;
    for (const { kind, team, body, scale, at } of this.pieces[robot.type] ?? []) {
      const p = body * 7;
      turn.set(poses[p + 4] ?? 0, poses[p + 5] ?? 0, poses[p + 6] ?? 0, poses[p + 3] ?? 1);
      centre.copy(at).applyQuaternion(turn);
      centre.x += poses[p] ?? 0;
      centre.y += poses[p + 1] ?? 0;
      centre.z += poses[p + 2] ?? 0;
      this.parts.put(kind, this.matrix.compose(centre, turn, scale), team ? this.colours[robot.side] : undefined);
    }
  }
}
