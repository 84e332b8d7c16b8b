// The five cameras. Free, behind the ball and behind a player can be turned and zoomed; the latter
// two move along with what they follow.

import * as THREE from "three";
import { OrbitControls } from "three/examples/jsm/controls/OrbitControls.js";

import type { Pitch } from "./Index.ts";

export type CameraMode = "orbit" | "above" | "ball" | "player" | "eyes";
export const kCameraModes: CameraMode[] = ["orbit", "above", "ball", "player", "eyes"];

const kUp = new THREE.Vector3(0, 0, 1);
const kNormalView = 42; // degrees, vertical
const kEyesView = 74;
const kFollow = 5; // 1/s: how fast a camera catches up

// What the cameras look at in one moment.
export interface Subject {
  ball: THREE.Vector3;
  player?: { place: THREE.Vector3; heading: number; head: THREE.Vector3; look: THREE.Quaternion };
}

export class Cameras {
  readonly camera = new THREE.PerspectiveCamera(kNormalView, 1, 0.05, 500);
  readonly controls: OrbitControls;
  private chosen: CameraMode = "orbit";
  private followed = false;
  private readonly wanted = new THREE.Vector3();

  constructor(
    canvas: HTMLElement,
    private pitch: Pitch,
    onChange: () => void,
  ) {
    this.camera.up.copy(kUp);
    this.controls = new OrbitControls(this.camera, canvas);
    this.controls.maxPolarAngle = Math.PI * 0.495;
    this.controls.minDistance = 0.4;
    this.controls.maxDistance = 120;
    this.controls.zoomToCursor = true;
    this.controls.addEventListener("change", onChange);
    this.home();
  }

  get mode(): CameraMode {
    return this.chosen;
  }

  set mode(mode: CameraMode) {
    const before = this.chosen;
    this.chosen = mode;
    this.followed = false;
    this.controls.enabled = mode !== "above" && mode !== "eyes";
    this.controls.enablePan = mode === "orbit";
    this.controls.zoomToCursor = mode === "orbit";
    this.camera.fov = mode === "eyes" ? kEyesView : kNormalView;
    this.camera.up.copy(kUp);
    this.camera.updateProjectionMatrix();
    if (mode === "orbit" && before !== "orbit") this.home();
  }

  setPitch(pitch: Pitch): void {
    this.pitch = pitch;
  }

  resize(aspect: number): void {
    this.camera.aspect = aspect;
    this.camera.updateProjectionMatrix();
    if (this.chosen === "orbit") this.home();
  }

  // Where the whole pitch is seen: from the main stand, or on an upright screen from behind a goal.
  home(): void {
    const { aspect } = this.camera;
    const { length, width } = this.pitch;
    if (aspect < 1) {
      const halfView = Math.tan((kNormalView * Math.PI) / 360) * aspect;
      const away = (width * 0.53) / halfView + length * 0.35;
      this.camera.position.set(-away * 0.7, 0, away * 0.7);
      this.controls.target.set(-1, 0, 0);
    } else {
      const away = length * 1.05 * Math.max(1, 1.78 / aspect);
      this.camera.position.set(0, -away * 0.8, away * 0.6);
      this.controls.target.set(0, -1.2, 0);
    }
    this.controls.update();
  }

  // True while the camera moves by itself.
  update(subject: Subject, seconds: number): boolean {
    switch (this.chosen) {
      case "orbit":
        return false;
      case "above":
        return this.above();
      case "ball":
        return this.follow(subject.ball, 0, seconds, 4.2, 1.5);
      case "player":
        if (!subject.player) return false;
        return this.follow(subject.player.place, subject.player.heading, seconds, 2.3, 0.9);
      case "eyes":
        return this.eyes(subject);
    }
  }

  private above(): boolean {
    const { aspect } = this.camera;
    const upright = aspect < 1;
    const margin = 2.2;
    const across = (upright ? this.pitch.width : this.pitch.length) + margin;
    const down = (upright ? this.pitch.length : this.pitch.width) + margin;
    const size = Math.max(down, across / aspect);
    const height = (size * 1.18) / 2 / Math.tan((this.camera.fov * Math.PI) / 360);
    this.camera.position.set(0, 0, height);
    this.camera.up.set(upright ? 1 : 0, upright ? 0 : 1, 0);
    this.camera.lookAt(0, 0, 0);
    return false;
  }

  private follow(
    target: THREE.Vector3,
    heading: number,
    seconds: number,
    away: number,
    height: number,
  ): boolean {
    this.wanted.copy(target);
    if (!this.followed) {
      this.followed = true;
      this.controls.target.copy(this.wanted);
      const angle = (heading * Math.PI) / 180;
      this.camera.position.set(
        target.x - Math.cos(angle) * away,
        target.y - Math.sin(angle) * away,
        target.z + height,
      );
    }
    const step = this.wanted.sub(this.controls.target);
    // A jump is no motion to be smoothed.
    if (step.length() < 4) step.multiplyScalar(1 - Math.exp(-kFollow * seconds));
    this.controls.target.add(step);
    this.camera.position.add(step);
    this.controls.update();
    return step.length() > 1e-4;
  }

  private eyes({ player }: Subject): boolean {
    if (!player) return false;
    const front = new THREE.Vector3(0, 1, 0).applyQuaternion(player.look);
    this.camera.position.copy(player.head).addScaledVector(front, 0.075);
    this.camera.up.set(0, 0, 1).applyQuaternion(player.look);
    this.camera.lookAt(this.camera.position.clone().add(front));
    return false;
  }
}
