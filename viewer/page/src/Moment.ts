// What is shown between two cycles.

import type { Cycle, Robot } from "./Chunk.ts";
import { between } from "./Kinematics.ts";

// Who moves farther in a cycle was put somewhere else: no picture between the two places. m
const kJump = 0.5;

function apart(a: Float32Array, b: Float32Array): number {
  return Math.hypot((a[0] ?? 0) - (b[0] ?? 0), (a[1] ?? 0) - (b[1] ?? 0), (a[2] ?? 0) - (b[2] ?? 0));
}

function robotBetween(a: Robot, b: Robot | undefined, share: number): Robot {
  if (!b || b.type !== a.type || apart(a.pose, b.pose) > kJump) return a;
  const pose = new Float32Array(7);
  between(a.pose, b.pose, share, pose);
  const joints = a.joints.map((angle, i) => angle * (1 - share) + (b.joints[i] ?? angle) * share);
  return { ...a, pose, joints };
}

export function cycleBetween(a: Cycle, b: Cycle | undefined, share: number): Cycle {
  if (!b || share <= 0) return a;
  const ball = new Float32Array(7);
  between(a.ball, b.ball, apart(a.ball, b.ball) > kJump * 2 ? 0 : share, ball);
  const robots = a.robots.map((robot, i) => {
    const same = b.robots[i];
    const match =
      same?.side === robot.side && same.number === robot.number
        ? same
        : b.robots.find((other) => other.side === robot.side && other.number === robot.number);
    return robotBetween(robot, match, share);
  });
  return { ...a, ball, robots };
}
