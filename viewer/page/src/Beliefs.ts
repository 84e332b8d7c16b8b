// Draws a player's belief into the scene: itself as a ghost, the ball and the others where it has
// them, its target with the way there, and what it has in view.

import * as THREE from "three";

import type { Robot } from "./Chunk.ts";
import type { RobotModel } from "./Index.ts";
import { headingOf } from "./Kinematics.ts";
import type { Mind } from "./Mind.ts";
import { Ribbon } from "./Pitch.ts";
import { Robots } from "./Robots.ts";

type Point = [number, number];

export interface Belief {
  self: Robot; // pose as believed, hinges as sensed
  lookHeading: number; // degrees, of the camera over the ground
  ball?: Point;
  target?: Point;
  others: { side: 0 | 1; number: number; place: Point }[];
  path: [number, number, number][]; // where it believed to be, up to now
}

const kColour = "#45e0bd";
const kHalfView = 60; // degrees to each side
const kViewLength = 6; // m that are drawn of it
const kPathCycles = 250;
const kPathStep = 5;
const kMaxOthers = 21;
const kTeams = ["#8fb6ff", "#ffab8c"];

// What is believed in a row, in the frame of the world. `truth` is the robot as it is: the player
// has no belief of its height.
export function beliefAt(mind: Mind, row: number, truth: Robot): Belief {
  const at = (name: string): number => mind.value(name, row);
  const point = (name: string): Point | undefined => {
    const x = at(`${name}.x`);
    const y = at(`${name}.y`);
    return Number.isFinite(x) && Number.isFinite(y) ? [x, y] : undefined;
  };
  const pose = Float32Array.from(truth.pose);
  pose[0] = at("self.x");
  pose[1] = at("self.y");
  ["qw", "qx", "qy", "qz"].forEach((part, i) => (pose[3 + i] = at(`self.${part}`)));
  const hinges = mind.columns.filter((column) => column.group === "Hinges");
  const joints = Float32Array.from(truth.joints, (angle, i) => hinges[i]?.values[row] ?? angle);
  const others: Belief["others"] = [];
  for (const [side, team] of [[0, "left"], [1, "right"]] as const) {
    for (let number = 1; number <= 11; ++number) {
      const place = point(`${team}${number}`);
      if (place) others.push({ side, number, place });
    }
  }
  const path: Belief["path"] = [];
  for (let r = Math.max(0, row - kPathCycles); r <= row; r += kPathStep) {
    path.push([mind.value("self.x", r), mind.value("self.y", r), 0.01]);
  }
  const ball = point("ball");
  const target = point("target");
  return {
    self: { ...truth, pose, joints },
    lookHeading: headingOf(pose) + (Number.isFinite(joints[0]) ? (joints[0] ?? 0) : 0),
    ...(ball && { ball }),
    ...(target && { target }),
    others,
    path,
  };
}

function onGround(geometry: THREE.BufferGeometry, color: string, opacity: number): THREE.Mesh {
  const material = new THREE.MeshBasicMaterial({ color, transparent: true, opacity, depthWrite: false, side: THREE.DoubleSide });
  const mesh = new THREE.Mesh(geometry, material);
  mesh.renderOrder = 1;
  return mesh;
}

export class Beliefs {
  readonly group = new THREE.Group();
  private readonly ghost: Robots;
  private readonly ball: THREE.Mesh;
  private readonly target: THREE.Group;
  private readonly view: THREE.Mesh;
  private readonly way: THREE.Line;
  private readonly path = new Ribbon(kPathCycles / kPathStep + 2, kColour, 0.02);
  private readonly others: THREE.Mesh[] = [];

  constructor(models: RobotModel[], ballRadius: number) {
    this.ghost = new Robots(models, { teams: [kColour, kColour], software: true, ghost: kColour });
    this.ball = new THREE.Mesh(
      new THREE.SphereGeometry(ballRadius * 1.9, 24, 16),
      new THREE.MeshBasicMaterial({ color: kColour, transparent: true, opacity: 0.55, depthWrite: false }),
    );
    const ring = onGround(new THREE.RingGeometry(0.16, 0.2, 40), kColour, 0.95);
    const dot = onGround(new THREE.CircleGeometry(0.05, 20), kColour, 0.95);
    this.target = new THREE.Group().add(ring, dot);
    const half = (kHalfView * Math.PI) / 180;
    this.view = onGround(new THREE.CircleGeometry(kViewLength, 40, -half, 2 * half), kColour, 0.1);
    const dashes = new THREE.LineDashedMaterial({ color: kColour, dashSize: 0.2, gapSize: 0.12 });
    this.way = new THREE.Line(new THREE.BufferGeometry().setFromPoints([new THREE.Vector3(), new THREE.Vector3()]), dashes);
    this.way.frustumCulled = false;
    for (let i = 0; i < kMaxOthers + 1; ++i) this.others.push(onGround(new THREE.RingGeometry(0.2, 0.25, 32), "#ffffff", 0.9));
    this.group.add(this.ghost.group, this.ball, this.target, this.view, this.way, this.path.mesh, ...this.others);
    this.group.visible = false;
  }

  show(belief: Belief | undefined): void {
    this.group.visible = belief !== undefined;
    if (!belief) return;
    const [x, y] = belief.self.pose;
    this.ghost.show([belief.self]);
    this.put(this.ball, belief.ball, 0.05);
    this.put(this.target, belief.target, 0.012);
    this.view.position.set(x ?? 0, y ?? 0, 0.006);
    this.view.rotation.z = (belief.lookHeading * Math.PI) / 180;
    this.path.show(belief.path);
    this.way.visible = belief.target !== undefined;
    if (belief.target) {
      const ends = this.way.geometry.getAttribute("position") as THREE.BufferAttribute;
      ends.setXYZ(0, x ?? 0, y ?? 0, 0.03);
      ends.setXYZ(1, belief.target[0], belief.target[1], 0.03);
      ends.needsUpdate = true;
      this.way.computeLineDistances();
    }
    this.others.forEach((ring, i) => {
      const other = belief.others[i];
      this.put(ring, other?.place, 0.01);
      if (other) (ring.material as THREE.MeshBasicMaterial).color.set(kTeams[other.side] ?? "#fff");
    });
  }

  private put(object: THREE.Object3D, place: Point | undefined, height: number): void {
    object.visible = place !== undefined;
    if (place) object.position.set(place[0], place[1], height);
  }
}
