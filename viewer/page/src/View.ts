// The picture of one moment: pitch, ball, robots, and over them the labels.

import * as THREE from "three";

import { Cameras, type Subject } from "./Cameras.ts";
import type { Cycle, Robot } from "./Chunk.ts";
import type { FilmIndex } from "./Index.ts";
import { headingOf } from "./Kinematics.ts";
import { Beliefs, type Belief } from "./Beliefs.ts";
import { ballMesh, Field, kThemes, Ribbon, shadowDisc } from "./Pitch.ts";
import { kSun } from "./Parts.ts";
import { Robots } from "./Robots.ts";

export type ThemeName = "dark" | "light";

const kTeamColours: [string, string] = ["#2f6fe4", "#e8562a"];
const kMaxShadows = 65;
const kTrailPoints = 160;
const kTooSlow = 1 / 24; // s a picture, above which the picture gets coarser
const kLabelHeight = 0.36; // m above the torso

export interface Label {
  robot: Robot;
  chosen: boolean;
  speech: string;
}

// Whether the browser draws without graphics hardware.
function drawsInSoftware(): boolean {
  const gl = document.createElement("canvas").getContext("webgl2");
  const info = gl?.getExtension("WEBGL_debug_renderer_info");
  const name = gl && info ? String(gl.getParameter(info.UNMASKED_RENDERER_WEBGL)) : "";
  gl?.getExtension("WEBGL_lose_context")?.loseContext();
  return /swiftshader|llvmpipe|software|basic render/i.test(name);
}

export class View {
  readonly cameras: Cameras;
  readonly software = drawsInSoftware();
  private readonly renderer: THREE.WebGLRenderer;
  private readonly scene = new THREE.Scene();
  private readonly field: Field;
  private readonly robots: Robots;
  private readonly beliefs: Beliefs;
  private readonly ball: THREE.Mesh;
  private readonly halo: THREE.Mesh;
  private readonly shadows: THREE.InstancedMesh;
  private readonly trail = new Ribbon(kTrailPoints, "#ffd54a", 0.07);
  private readonly sun = new THREE.DirectionalLight("#fff6e8", 2.1);
  private readonly labels: HTMLSpanElement[] = [];
  private theme: ThemeName = "dark";
  private pixelRatio: number;
  private slow = 0;
  private stale = true;
  pictures = 0; // drawn so far

  constructor(
    private readonly canvas: HTMLCanvasElement,
    private readonly labelLayer: HTMLElement,
    private readonly index: FilmIndex,
  ) {
    this.renderer = new THREE.WebGLRenderer({
      canvas,
      antialias: !this.software,
      powerPreference: "high-performance",
    });
    // Turning every pixel into the colours of the screen takes longer than all else together: without
    // hardware, colours are drawn as they are named.
    THREE.ColorManagement.enabled = !this.software;
    this.renderer.outputColorSpace = this.software ? THREE.LinearSRGBColorSpace : THREE.SRGBColorSpace;
    document.documentElement.classList.toggle("software", this.software);
    this.pixelRatio = this.software ? 1 : Math.min(window.devicePixelRatio, 2);
    this.renderer.shadowMap.enabled = !this.software;
    this.renderer.shadowMap.type = THREE.PCFSoftShadowMap;
    this.cameras = new Cameras(canvas, index.pitch, () => this.touch());
    this.field = new Field("dark", this.software);
    this.robots = new Robots(index.robots, { teams: kTeamColours, software: this.software });
    this.beliefs = new Beliefs(index.robots, index.pitch.ballRadius);
    this.ball = ballMesh(index.pitch.ballRadius, this.software);
    this.halo = new THREE.Mesh(
      new THREE.RingGeometry(0.11, 0.15, 40),
      new THREE.MeshBasicMaterial({ color: "#ffd54a", transparent: true, opacity: 0.8, depthWrite: false, side: THREE.DoubleSide }),
    );
    const disc = shadowDisc();
    this.shadows = new THREE.InstancedMesh(disc.geometry, disc.material, kMaxShadows);
    this.shadows.frustumCulled = false;
    this.addLights();
    this.scene.add(this.field.group, this.shadows, this.trail.mesh, this.robots.group, this.ball, this.halo, this.beliefs.group);
    this.resize();
  }

  private addLights(): void {
    this.scene.add(new THREE.HemisphereLight("#f2f7ff", "#56705c", 1.7));
    this.sun.position.copy(kSun);
    this.sun.castShadow = !this.software;
    this.sun.shadow.mapSize.set(2048, 2048);
    const { left, right } = { left: -19, right: 19 };
    Object.assign(this.sun.shadow.camera, { left, right, top: 16, bottom: -16, near: 5, far: 50 });
    this.sun.shadow.bias = -0.0006;
    this.sun.shadow.normalBias = 0.02;
    this.scene.add(this.sun);
  }

  // Lets go of the canvas.
  dispose(): void {
    this.cameras.controls.dispose();
    this.labelLayer.replaceChildren();
  }

  // The next call of draw() makes a picture even if nothing has moved.
  touch(): void {
    this.stale = true;
  }

  setTheme(theme: ThemeName): void {
    this.theme = theme;
    this.scene.background = new THREE.Color(kThemes[theme].ground);
    this.field.show(this.index.pitch, theme);
    this.touch();
  }

  pitchChanged(): void {
    this.cameras.setPitch(this.index.pitch);
    this.field.show(this.index.pitch, this.theme);
    this.touch();
  }

  resize(): void {
    const { clientWidth, clientHeight } = this.canvas;
    if (clientWidth === 0 || clientHeight === 0) return;
    this.renderer.setPixelRatio(this.pixelRatio);
    this.renderer.setSize(clientWidth, clientHeight, false);
    this.cameras.resize(clientWidth / clientHeight);
    this.touch();
  }

  show(cycle: Cycle, chosen: Robot | undefined, labels: Label[], trail: [number, number, number][], belief?: Belief): void {
    const hidden = this.cameras.mode === "eyes" ? chosen : undefined;
    this.robots.show(cycle.robots.filter((robot) => robot !== hidden));
    const [x, y, z, qw, qx, qy, qz] = cycle.ball;
    this.ball.position.set(x ?? 0, y ?? 0, z ?? 0);
    this.ball.quaternion.set(qx ?? 0, qy ?? 0, qz ?? 0, qw ?? 1);
    this.halo.position.set(x ?? 0, y ?? 0, 0.008);
    this.trail.show(trail);
    this.placeShadows(cycle);
    this.beliefs.show(belief);
    this.shownLabels = labels;
    this.subject = this.subjectOf(cycle, chosen);
    this.touch();
  }

  private shownLabels: Label[] = [];
  private subject: Subject = { ball: new THREE.Vector3() };

  private subjectOf(cycle: Cycle, chosen: Robot | undefined): Subject {
    const ball = new THREE.Vector3(cycle.ball[0], cycle.ball[1], cycle.ball[2]);
    const head = chosen && this.robots.bodyPose(chosen, "head");
    if (!chosen || !head) return { ball };
    const [, , , w, qx, qy, qz] = head;
    return {
      ball,
      player: {
        place: new THREE.Vector3(chosen.pose[0], chosen.pose[1], chosen.pose[2]),
        heading: headingOf(chosen.pose),
        head: new THREE.Vector3(head[0], head[1], head[2]),
        look: new THREE.Quaternion(qx, qy, qz, w),
      },
    };
  }

  private placeShadows(cycle: Cycle): void {
    const matrix = new THREE.Matrix4();
    let count = 0;
    const add = (pose: Float32Array, size: number, from: number): void => {
      if (count >= kMaxShadows) return;
      const height = Math.max((pose[2] ?? 0) - from, 0);
      const s = size * (1 + height * 0.7);
      matrix.makeScale(s, s, 1).setPosition(pose[0] ?? 0, pose[1] ?? 0, 0.003);
      this.shadows.setMatrixAt(count++, matrix);
    };
    const share = this.software ? 1 : 0.55; // beside real shadows only the dark at the feet
    for (const robot of cycle.robots) add(robot.pose, 0.62 * share, 0.4);
    add(cycle.ball, 0.16, 0.04);
    this.shadows.count = count;
    this.shadows.instanceMatrix.needsUpdate = true;
  }

  // Draws if something has changed; true if it did.
  draw(seconds: number): boolean {
    if (this.cameras.update(this.subject, Math.min(seconds, 0.1))) this.touch();
    if (!this.stale) return false;
    this.stale = false;
    this.halo.scale.setScalar(
      Math.max(1, this.cameras.camera.position.distanceTo(this.halo.position) * 0.055),
    );
    const begin = performance.now();
    this.renderer.render(this.scene, this.cameras.camera);
    ++this.pictures;
    this.placeLabels();
    this.adapt(Math.max(seconds, (performance.now() - begin) / 1000));
    return true;
  }

  // Coarser pictures where finer ones take too long.
  private adapt(seconds: number): void {
    this.slow = seconds > kTooSlow && seconds < 1 ? this.slow + 1 : Math.max(this.slow - 2, 0);
    const least = this.software ? 0.6 : 0.75;
    if (this.slow < 40 || this.pixelRatio <= least) return;
    this.slow = 0;
    this.pixelRatio = Math.max(least, this.pixelRatio * 0.8);
    this.renderer.setPixelRatio(this.pixelRatio);
    this.renderer.setSize(this.canvas.clientWidth, this.canvas.clientHeight, false);
  }

  private placeLabels(): void {
    const wanted = this.shownLabels;
    while (this.labels.length < wanted.length) {
      this.labels.push(this.labelLayer.appendChild(document.createElement("span")));
    }
    this.labels.forEach((element, i) => {
      const label = wanted[i];
      const at = label && this.project(label.robot.pose[0] ?? 0, label.robot.pose[1] ?? 0, (label.robot.pose[2] ?? 0) + kLabelHeight);
      element.hidden = !at;
      if (!label || !at) return;
      const text = label.speech ? `${label.robot.number}: ${label.speech}` : `${label.robot.number}`;
      if (element.textContent !== text) element.textContent = text;
      const look = (label.robot.side === 0 ? "left" : "right") + (label.chosen ? " chosen" : "") + (label.speech ? " speech" : "");
      if (element.className !== look) element.className = look;
      element.style.transform = `translate(${at[0].toFixed(1)}px, ${at[1].toFixed(1)}px) translate(-50%, -100%)`;
      element.style.zIndex = String(Math.round(10000 * (1 - at[2])));
    });
  }

  // Where a point of the world is on the screen, in CSS pixels, with its depth; undefined behind
  // the camera or far off the picture.
  project(x: number, y: number, z: number): [number, number, number] | undefined {
    const point = new THREE.Vector3(x, y, z).project(this.cameras.camera);
    if (point.z > 1 || Math.abs(point.x) > 1.1 || Math.abs(point.y) > 1.1) return undefined;
    const { clientWidth, clientHeight } = this.canvas;
    return [((point.x + 1) / 2) * clientWidth, ((1 - point.y) / 2) * clientHeight, point.z];
  }

  // The point of the ground under a place on the screen.
  groundAt(clientX: number, clientY: number): [number, number] | undefined {
    const box = this.canvas.getBoundingClientRect();
    const pointer = new THREE.Vector2(
      ((clientX - box.left) / box.width) * 2 - 1,
      1 - ((clientY - box.top) / box.height) * 2,
    );
    const ray = new THREE.Raycaster();
    ray.setFromCamera(pointer, this.cameras.camera);
    const hit = ray.ray.intersectPlane(new THREE.Plane(new THREE.Vector3(0, 0, 1), 0), new THREE.Vector3());
    return hit ? [hit.x, hit.y] : undefined;
  }
}
