// The bar below: play modes as bands, goals, fouls and falls as marks.

import type { Film } from "./Film.ts";
import type { Mark, MarkKind } from "./Index.ts";

const kRows: { kind: MarkKind; y: number; height: number }[] = [
  { kind: "goal", y: 0, height: 34 },
  { kind: "foul", y: 5, height: 8 },
  { kind: "fall", y: 25, height: 5 },
  { kind: "note", y: 0, height: 34 },
];
const kModeBand = { y: 15, height: 8 };
// What the event keys jump to: all but falls, of which there are many.
const kEvents: MarkKind[] = ["goal", "foul", "mode", "note"];
// Beyond so many, falls are left out of what is drawn one by one.
const kSnap = 5; // px, within which the pointer means a mark

interface Paint {
  left: string;
  right: string;
  soft: string;
  faint: string;
  ink: string;
  accent: string;
}

function isPlay(mode: string): boolean {
  return mode === "PlayOn" || mode.startsWith("pass");
}

export class Timeline {
  private readonly pen: CanvasRenderingContext2D | null;

  constructor(
    private readonly canvas: HTMLCanvasElement,
    private readonly film: Film,
  ) {
    this.pen = canvas.getContext("2d");
  }

  private get span(): { first: number; length: number } {
    return { first: this.film.first, length: Math.max(this.film.last - this.film.first, 1) };
  }

  x(cycle: number): number {
    const { first, length } = this.span;
    return ((cycle - first) / length) * this.canvas.clientWidth;
  }

  cycleAt(x: number): number {
    const { first, length } = this.span;
    return first + (Math.min(Math.max(x, 0), this.canvas.clientWidth) / this.canvas.clientWidth) * length;
  }

  draw(): void {
    const { pen, canvas } = this;
    if (!pen || canvas.clientWidth === 0) return;
    const ratio = Math.min(window.devicePixelRatio, 2);
    canvas.width = Math.round(canvas.clientWidth * ratio);
    canvas.height = Math.round(canvas.clientHeight * ratio);
    pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    const style = getComputedStyle(document.documentElement);
    const colour = (name: string): string => style.getPropertyValue(`--${name}`).trim();
    const paint: Paint = {
      left: colour("left"),
      right: colour("right"),
      soft: colour("soft"),
      faint: colour("faint"),
      ink: colour("ink"),
      accent: colour("accent"),
    };
    this.drawModes(pen, paint);
    for (const row of kRows) {
      for (const mark of this.film.marks) {
        if (mark.kind === row.kind) this.drawMark(pen, mark, row.y, row.height, paint);
      }
    }
  }

  private drawModes(pen: CanvasRenderingContext2D, paint: Paint): void {
    const modes = this.film.marks.filter((mark) => mark.kind === "mode");
    modes.forEach((mark, i) => {
      const from = this.x(mark.cycle);
      const to = i + 1 < modes.length ? this.x(modes[i + 1]?.cycle ?? 0) : this.canvas.clientWidth;
      pen.globalAlpha = isPlay(mark.text) ? 0.5 : mark.side === 2 ? 0.35 : 0.75;
      pen.fillStyle = isPlay(mark.text) ? paint.accent : this.colour(mark, paint);
      pen.fillRect(from, kModeBand.y, Math.max(to - from - 0.5, 1), kModeBand.height);
    });
    pen.globalAlpha = 1;
  }

  private colour(mark: Mark, paint: Paint): string {
    return mark.side === 0 ? paint.left : mark.side === 1 ? paint.right : paint.soft;
  }

  private drawMark(pen: CanvasRenderingContext2D, mark: Mark, y: number, height: number, paint: Paint): void {
    const x = this.x(mark.cycle);
    pen.fillStyle = this.colour(mark, paint);
    if (mark.kind === "goal") {
      pen.fillRect(x - 1, y, 2, height);
      pen.beginPath();
      pen.arc(x, y + 5, 5, 0, 2 * Math.PI);
      pen.fill();
      pen.strokeStyle = paint.ink;
      pen.lineWidth = 1.5;
      pen.stroke();
    } else if (mark.kind === "foul") {
      pen.beginPath();
      pen.moveTo(x - 4, y);
      pen.lineTo(x + 4, y);
      pen.lineTo(x, y + height);
      pen.fill();
    } else if (mark.kind === "note") {
      pen.fillStyle = "#e0a000";
      pen.fillRect(x - 1, y, 2, height);
    } else {
      pen.globalAlpha = 0.8;
      pen.fillRect(x - 1, y, 2, height);
      pen.globalAlpha = 1;
    }
  }

  // The mark that the pointer means, if any.
  markNear(x: number): Mark | undefined {
    let best: Mark | undefined;
    let distance = kSnap;
    for (const mark of this.film.marks) {
      const away = Math.abs(this.x(mark.cycle) - x) + (mark.kind === "goal" ? 0 : mark.kind === "foul" ? 0.5 : 1);
      if (away < distance) [best, distance] = [mark, away];
    }
    return best;
  }

  // The event after (1) or before (-1) a moment.
  event(position: number, direction: 1 | -1): Mark | undefined {
    const events = this.film.marks.filter((mark) => kEvents.includes(mark.kind));
    return direction > 0
      ? events.find((mark) => mark.cycle > position + 0.5)
      : events.filter((mark) => mark.cycle < position - 0.5).at(-1);
  }
}

const kModeWords: Record<string, string> = {
  BeforeKickOff: "before kick-off",
  KickOff: "kick-off",
  PlayOn: "play on",
  KickIn: "kick-in",
  corner_kick: "corner kick",
  goal_kick: "goal kick",
  offside: "offside",
  GameOver: "game over",
  Goal: "goal",
  free_kick: "free kick",
  direct_free_kick: "direct free kick",
  pass: "pass",
};

// A play mode in words, with the team that it belongs to.
export function modeText(mode: string, teams: [string, string]): string {
  const found = /^(.*)_(left|right)$/i.exec(mode);
  const words = kModeWords[found?.[1] ?? mode] ?? mode;
  if (!found?.[2]) return words;
  const left = found[2].toLowerCase() === "left";
  return `${words} ${teams[left ? 0 : 1] || (left ? "left" : "right")}`;
}

export function markText(mark: Mark, teams: [string, string]): string {
  const team = mark.side < 2 ? teams[mark.side as 0 | 1] || (mark.side === 0 ? "left" : "right") : "";
  const who = mark.number > 0 ? `${team} ${mark.number}` : team;
  switch (mark.kind) {
    case "mode":
      return modeText(mark.text, teams);
    case "goal":
      return mark.text === "own goal" ? `goal for ${team} (own goal)` : `goal for ${who}`;
    case "note":
      return mark.text;
    default:
      return `${mark.text}: ${who}`;
  }
}
