// The trainer's panel: what a live match is commanded by.

import type { Cycle } from "./Chunk.ts";
import type { FilmIndex } from "./Index.ts";
import { headingOf } from "./Kinematics.ts";
import { modeText } from "./Timeline.ts";

export type Command = Record<string, string | number>;

const kSides = ["Left", "Right"] as const;
const kGrab = 0.6; // m from a thing within which a drag takes it

// What a drag over the pitch takes.
export type Grabbed = { kind: "ball" } | { kind: "player"; side: 0 | 1; number: number; heading: number };

export class Trainer {
  constructor(
    private readonly panel: HTMLElement,
    private readonly index: FilmIndex,
    private readonly send: (command: Command) => void,
    private readonly chosen: () => { side: 0 | 1; number: number } | undefined,
  ) {
    this.build();
  }

  private button(row: HTMLElement, text: string, act: () => void): HTMLButtonElement {
    const button = row.appendChild(document.createElement("button"));
    button.type = "button";
    button.textContent = text;
    button.addEventListener("click", act);
    return button;
  }

  private row(): HTMLElement {
    const row = this.panel.appendChild(document.createElement("div"));
    row.className = "row";
    return row;
  }

  private field(row: HTMLElement, label: string, value: number, step = 1): HTMLInputElement {
    const input = row.appendChild(document.createElement("input"));
    Object.assign(input, { type: "number", min: "0", step: String(step), value: String(value) });
    input.setAttribute("aria-label", label);
    return input;
  }

  private build(): void {
    const title = this.panel.appendChild(document.createElement("h2"));
    title.textContent = "Trainer";
    const kick = this.row();
    this.button(kick, "Kick-off left", () => this.send({ trainer: "kickOff", side: "Left" }));
    this.button(kick, "Kick-off right", () => this.send({ trainer: "kickOff", side: "Right" }));
    this.button(this.row(), "Drop ball", () => this.send({ trainer: "dropBall" }));

    const modes = this.row();
    const mode = modes.appendChild(document.createElement("select"));
    mode.setAttribute("aria-label", "Play mode to set");
    mode.append(new Option("Set play mode …", ""));
    for (const name of this.index.playModes) mode.append(new Option(modeText(name, ["left", "right"]), name));
    mode.addEventListener("change", () => {
      if (mode.value) this.send({ trainer: "playMode", mode: mode.value });
      mode.value = "";
    });

    const scores = this.row();
    const left = this.field(scores, "Score of the left team", 0);
    const right = this.field(scores, "Score of the right team", 0);
    this.button(scores, "Set score", () =>
      this.send({ trainer: "score", left: left.valueAsNumber || 0, right: right.valueAsNumber || 0 }),
    );
    const times = this.row();
    const time = this.field(times, "Game time in seconds", 0, 0.02);
    this.button(times, "Set time", () => this.send({ trainer: "time", time: time.valueAsNumber || 0 }));

    const hint = this.panel.appendChild(document.createElement("p"));
    hint.textContent = "Drag the ball or a player over the pitch to move it.";
    const kill = this.button(this.row(), "Remove the chosen player", () => {
      const player = this.chosen();
      if (player) this.send({ trainer: "kill", side: kSides[player.side], number: player.number });
    });
    kill.className = "danger";
  }

  // What lies at a point of the ground.
  grab(cycle: Cycle, x: number, y: number): Grabbed | undefined {
    let best: Grabbed | undefined;
    let nearest = kGrab;
    const offer = (pose: Float32Array, bonus: number, thing: Grabbed): void => {
      const away = Math.hypot((pose[0] ?? 0) - x, (pose[1] ?? 0) - y) - bonus;
      if (away < nearest) [best, nearest] = [thing, away];
    };
    for (const robot of cycle.robots) {
      offer(robot.pose, 0, { kind: "player", side: robot.side, number: robot.number, heading: headingOf(robot.pose) });
    }
    offer(cycle.ball, 0.1, { kind: "ball" });
    return best;
  }

  move(thing: Grabbed, x: number, y: number): void {
    if (thing.kind === "ball") {
      this.send({ trainer: "ball", x, y });
    } else {
      const { side, number, heading } = thing;
      this.send({ trainer: "player", side: kSides[side], number, x, y, heading });
    }
  }
}
