// Where a robot's bodies are, from its torso and the angles of its hinges.

import type { RobotModel } from "./Index.ts";

// Quaternions are w x y z, as in the recording.
type Quaternion = [number, number, number, number];
type Triple = [number, number, number];

const kDegree = Math.PI / 180;

function multiply(a: Quaternion, b: Quaternion): Quaternion {
  return [
    a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3],
    a[0] * b[1] + a[1] * b[0] + a[2] * b[3] - a[3] * b[2],
    a[0] * b[2] - a[1] * b[3] + a[2] * b[0] + a[3] * b[1],
    a[0] * b[3] + a[1] * b[2] - a[2] * b[1] + a[3] * b[0],
  ];
}

export function rotate(q: Quaternion, v: Triple): Triple {
  const [w, x, y, z] = q;
  const tx = 2 * (y * v[2] - z * v[1]);
  const ty = 2 * (z * v[0] - x * v[2]);
  const tz = 2 * (x * v[1] - y * v[0]);
  return [
    v[0] + w * tx + y * tz - z * ty,
    v[1] + w * ty + z * tx - x * tz,
    v[2] + w * tz + x * ty - y * tx,
  ];
}

interface Step {
  child: number;
  parent: number;
  hinge: number; // its joint; -1: fixed
  axis: Triple;
  toAnchor: Triple; // from the parent's place, in its frame
  toChild: Triple; // from the anchor, in the child's frame
}

const minus = (a: Triple, b: Triple): Triple => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];

// The chain of a robot type. In the zero pose all bodies are aligned with the torso.
export class Skeleton {
  private readonly steps: Step[] = [];

  constructor(readonly model: RobotModel) {
    model.bodies.forEach((body, child) => {
      if (body.parent < 0) return;
      const hinge = model.joints.findIndex((joint) => joint.child === child);
      const joint = model.joints[hinge];
      const parent = model.bodies[body.parent];
      if (!parent) throw new Error("The film's robots make no sense.");
      const anchor = joint?.anchor ?? body.position;
      const axis = joint?.axis ?? [0, 0, 1];
      const length = Math.hypot(...axis) || 1;
      this.steps.push({
        child,
        parent: body.parent,
        hinge,
        axis: [axis[0] / length, axis[1] / length, axis[2] / length],
        toAnchor: minus(anchor, parent.position),
        toChild: minus(body.position, anchor),
      });
    });
  }

  get bodies(): number {
    return this.model.bodies.length;
  }

  // Writes x y z w x y z of each body into `poses`, in the order of the model.
  place(torso: ArrayLike<number>, joints: ArrayLike<number>, poses: Float32Array): void {
    for (let i = 0; i < 7; ++i) poses[i] = torso[i] ?? 0;
    for (const { child, parent, hinge, axis, toAnchor, toChild } of this.steps) {
      const p = parent * 7;
      const turn: Quaternion = [
        poses[p + 3] ?? 1,
        poses[p + 4] ?? 0,
        poses[p + 5] ?? 0,
        poses[p + 6] ?? 0,
      ];
      const half = ((joints[hinge] ?? 0) * kDegree) / 2;
      const s = Math.sin(half);
      const own = multiply(turn, [Math.cos(half), axis[0] * s, axis[1] * s, axis[2] * s]);
      const anchor = rotate(turn, toAnchor);
      const centre = rotate(own, toChild);
      for (let i = 0; i < 3; ++i) {
        poses[child * 7 + i] = (poses[p + i] ?? 0) + (anchor[i] ?? 0) + (centre[i] ?? 0);
      }
      poses.set(own, child * 7 + 3);
    }
  }
}

// The direction in which a torso looks over the ground, degrees from +x to the left. Its front is
// the body's y axis.
export function headingOf(pose: ArrayLike<number>): number {
  const front = rotate([pose[3] ?? 1, pose[4] ?? 0, pose[5] ?? 0, pose[6] ?? 0], [0, 1, 0]);
  return Math.atan2(front[1], front[0]) / kDegree;
}

// Between two poses, 0 to 1: linear in place, the shorter way in rotation.
export function between(
  a: ArrayLike<number>,
  b: ArrayLike<number>,
  share: number,
  result: Float32Array,
): void {
  let dot = 0;
  for (let i = 3; i < 7; ++i) dot += (a[i] ?? 0) * (b[i] ?? 0);
  const sign = dot < 0 ? -1 : 1;
  let norm = 0;
  for (let i = 0; i < 7; ++i) {
    const value = (a[i] ?? 0) * (1 - share) + (b[i] ?? 0) * share * (i < 3 ? 1 : sign);
    result[i] = value;
    if (i > 2) norm += value * value;
  }
  norm = Math.sqrt(norm) || 1;
  for (let i = 3; i < 7; ++i) result[i] = (result[i] ?? 0) / norm;
}
