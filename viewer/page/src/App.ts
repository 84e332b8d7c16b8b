// The page around the view: scoreboard, timeline, tools and panels.

import { beliefAt, type Belief } from "./Beliefs.ts";
import { kCameraModes, type CameraMode } from "./Cameras.ts";
import type { Cycle, Robot } from "./Chunk.ts";
import type { Film } from "./Film.ts";
import { fillHelp, onKey, type Key } from "./Help.ts";
import type { Mark } from "./Index.ts";
import { Mind } from "./Mind.ts";
import { MindPanel } from "./MindPanel.ts";
import { cycleBetween } from "./Moment.ts";
import { clockText, exactTime, kSpeeds, Playback } from "./Playback.ts";
import { markText, modeText, Timeline } from "./Timeline.ts";
import { Trainer, type Command, type Grabbed } from "./Trainer.ts";
import { View, type Label, type ThemeName } from "./View.ts";

const kTrailSeconds = 3;
const kAhead = 3; // s that are unpacked in advance, times the speed
const kSpeechSeconds = 1;
const kNoticeTime = 5000; // ms
const kPlay = "M6 4l10 6-10 6z";
const kPause = "M6 4h3v12H6zM12 4h3v12h-3z";
const kSides = ["left", "right"] as const;

export function element<T extends HTMLElement>(id: string): T {
  const found = document.getElementById(id);
  if (!found) throw new Error(`The page has no ${id}.`);
  return found as T;
}

export function cover(title: string, text = "", over = false): void {
  const covering = element("cover");
  covering.hidden = title === "";
  covering.classList.toggle("over", over);
  element("cover-title").textContent = title;
  element("cover-text").textContent = text;
}

// "left/7", by which players are chosen and minds are named.
function keyOf(robot: { side: 0 | 1; number: number }): string {
  return `${kSides[robot.side]}/${robot.number}`;
}

export class App {
  private readonly view: View;
  private readonly playback: Playback;
  private readonly timeline: Timeline;
  private readonly trainer?: Trainer;
  private readonly keys: Key[];
  private chosen = "";
  private shown?: Cycle;
  private mindPanel?: MindPanel;
  private readonly minds = new Map<string, Promise<Mind>>();
  private trailOn = true;
  private namesOn = true;
  private dirty = true;
  private timelineStale = true;
  private listed = "";
  private grabbed: Grabbed | undefined;
  private told = 0;
  private stopped = false;
  private sizes?: ResizeObserver;
  private readonly abort = new AbortController();

  constructor(
    private readonly film: Film,
    { opening = film.first, send }: { opening?: number; send?: (command: Command) => void },
  ) {
    const { index } = film;
    document.title = `${index.title} – match`;
    this.view = new View(element("view"), element("labels"), index);
    this.playback = new Playback(() => ({ first: film.first, last: film.last }), film.cycleSeconds);
    this.timeline = new Timeline(element("marks"), film);
    film.onChange = () => {
      this.dirty = true;
      const failure = film.failures.shift();
      if (failure) this.notice(failure);
    };
    if (send && index.trainer) {
      this.trainer = new Trainer(this.clear("trainer"), index, send, () => this.chosenPlayer());
      element("train").hidden = false;
    }
    element("live").hidden = !index.live;
    element("mind").hidden = index.minds.length === 0;
    this.keys = this.makeKeys();
    this.wire();
    this.setTheme(this.preferredTheme());
    this.seek(opening);
    if (index.live) this.toPresent();
    this.exposeState();
    requestAnimationFrame((now) => this.frame(now, now));
  }

  // No more of it: another film takes its place.
  stop(): void {
    this.stopped = true;
    this.view.dispose();
    this.sizes?.disconnect();
    this.abort.abort();
  }

  // Live: the film has grown.
  grown(): void {
    this.timelineStale = true;
    this.dirty = true;
  }

  connection(connected: boolean, text: string): void {
    const live = element("live");
    live.classList.toggle("gone", !connected);
    live.title = `To the present (L). ${text}`;
    if (this.film.index.cycles === 0) cover(connected ? "Waiting for the match" : "No match yet", text);
    else if (connected) this.view.pitchChanged();
    if (!connected && this.film.index.cycles > 0) this.notice(text);
  }

  private clear(id: string): HTMLElement {
    const panel = element(id);
    panel.replaceChildren();
    return panel;
  }

  private listen<K extends keyof HTMLElementEventMap>(id: string, type: K, act: (event: HTMLElementEventMap[K]) => void): void {
    element(id).addEventListener(type, act, { signal: this.abort.signal });
  }

  private wire(): void {
    const { signal } = this.abort;
    const click = (id: string, act: () => void): void => this.listen(id, "click", act);
    click("play", () => this.togglePlay());
    click("back", () => this.step(-1));
    click("forth", () => this.step(1));
    click("before", () => this.jump(-1));
    click("after", () => this.jump(1));
    click("live", () => this.toPresent());
    click("trail", () => this.toggleTrail());
    click("names", () => this.toggleNames());
    click("mind", () => void this.toggleMind());
    click("train", () => this.toggleTrainer());
    click("theme", () => this.setTheme(this.theme === "dark" ? "light" : "dark"));
    click("help", () => this.help());

    const speed = element<HTMLSelectElement>("speed");
    speed.replaceChildren(...kSpeeds.map((value) => new Option(`${value}×`, String(value))));
    speed.value = "1";
    this.listen("speed", "change", () => {
      this.playback.speed = Number(speed.value);
      this.playback.following = false;
    });
    this.listen("camera", "change", () => this.setCamera(element<HTMLSelectElement>("camera").value as CameraMode));
    this.listen("player", "change", () => this.choose(element<HTMLSelectElement>("player").value));

    const time = element<HTMLInputElement>("time");
    this.listen("time", "input", () => this.seek(Number(time.value)));
    this.listen("time", "pointermove", (event) => this.hover(event));
    this.listen("time", "pointerleave", () => (element("hover").hidden = true));
    this.listen("time", "click", (event) => {
      const mark = this.timeline.markNear(event.offsetX);
      if (mark) this.seek(mark.cycle);
    });

    window.addEventListener("keydown", (event) => onKey(event, this.keys), { signal });
    this.wireFocus();
    this.sizes = new ResizeObserver(() => {
      this.view.resize();
      this.timelineStale = true;
      this.dirty = true;
    });
    this.sizes.observe(element("stage"));
    this.listen("view", "dblclick", (event) => this.pick(event));
    this.wireDrag();
  }

  // Who has used a button or a list with the pointer goes on with the page's keys; who uses the
  // keyboard stays where it was.
  private wireFocus(): void {
    const { signal } = this.abort;
    let pointed = false;
    const byPointer = (now: boolean) => (): void => void (pointed = now);
    window.addEventListener("pointerdown", byPointer(true), { capture: true, signal });
    window.addEventListener("keydown", byPointer(false), { capture: true, signal });
    const leave = ({ target }: Event): void => {
      if (pointed && target instanceof Element) target.closest<HTMLElement>("button, select")?.blur();
    };
    window.addEventListener("click", (event) => !(event.target instanceof HTMLSelectElement) && leave(event), { signal });
    window.addEventListener("change", leave, { signal });
  }

  private makeKeys(): Key[] {
    const camera = (mode: CameraMode): (() => void) => () => this.setCamera(mode);
    return [
      { keys: [" ", "k"], shown: "Space", text: "Play or pause", act: () => this.togglePlay() },
      { keys: [","], shown: "", text: "One cycle back", act: () => this.step(-1) },
      { keys: ["."], shown: "", text: "One cycle on", act: () => this.step(1) },
      { keys: ["ArrowLeft"], shown: "", text: "Five seconds back", act: () => this.skip(-5) },
      { keys: ["ArrowRight"], shown: "", text: "Five seconds on", act: () => this.skip(5) },
      { keys: ["["], shown: "", text: "To the event before", act: () => this.jump(-1) },
      { keys: ["]"], shown: "", text: "To the next event", act: () => this.jump(1) },
      { keys: ["Home"], shown: "", text: "To the beginning", act: () => this.seek(this.film.first) },
      { keys: ["End"], shown: "", text: "To the end", act: () => this.seek(this.film.last) },
      { keys: ["-"], shown: "", text: "Slower", act: () => this.faster(-1) },
      { keys: ["+", "="], shown: "+", text: "Faster", act: () => this.faster(1) },
      { keys: ["1"], shown: "", text: "Free camera", act: camera("orbit") },
      { keys: ["2"], shown: "", text: "From above", act: camera("above") },
      { keys: ["3"], shown: "", text: "Behind the ball", act: camera("ball") },
      { keys: ["4"], shown: "", text: "Follow the chosen player", act: camera("player") },
      { keys: ["5"], shown: "", text: "Through the chosen player's eyes", act: camera("eyes") },
      { keys: ["p"], shown: "", text: "Next player", act: () => this.nextPlayer(1) },
      { keys: ["P"], shown: "Shift P", text: "Player before", act: () => this.nextPlayer(-1) },
      { keys: ["t"], shown: "", text: "Ball trail", act: () => this.toggleTrail() },
      { keys: ["n"], shown: "", text: "Labels", act: () => this.toggleNames() },
      { keys: ["m"], shown: "", text: "What the chosen player believes", act: () => void this.toggleMind() },
      { keys: ["l"], shown: "", text: "Live: to the present", act: () => this.toPresent() },
      { keys: ["r"], shown: "", text: "Live: the trainer's panel", act: () => this.toggleTrainer() },
      { keys: ["d"], shown: "", text: "Dark or light", act: () => element("theme").click() },
      { keys: ["?", "h"], shown: "?", text: "This help", act: () => this.help() },
    ];
  }

  // --- Moving in time ---

  private seek(cycle: number): void {
    this.playback.following = false;
    this.playback.seek(cycle);
    this.dirty = true;
  }

  private togglePlay(): void {
    this.playback.toggle();
    this.dirty = true;
  }

  private step(cycles: number): void {
    this.playback.step(cycles);
    this.dirty = true;
  }

  private skip(seconds: number): void {
    this.seek(this.playback.position + seconds / this.film.cycleSeconds);
  }

  private jump(direction: 1 | -1): void {
    const mark = this.timeline.event(this.playback.position, direction);
    if (!mark) return;
    this.seek(mark.cycle);
    this.notice(markText(mark, this.film.index.teams));
  }

  private faster(steps: number): void {
    this.playback.faster(steps);
    this.playback.following = false;
    element<HTMLSelectElement>("speed").value = String(this.playback.speed);
  }

  private toPresent(): void {
    if (!this.film.index.live) return;
    this.playback.following = true;
    this.playback.playing = true;
    this.playback.speed = 1;
    element<HTMLSelectElement>("speed").value = "1";
    this.dirty = true;
  }

  // --- What is shown ---

  private get theme(): ThemeName {
    return document.documentElement.dataset.theme === "light" ? "light" : "dark";
  }

  private preferredTheme(): ThemeName {
    const kept = document.documentElement.dataset.theme;
    if (kept === "dark" || kept === "light") return kept;
    return window.matchMedia("(prefers-color-scheme: light)").matches ? "light" : "dark";
  }

  private setTheme(theme: ThemeName): void {
    document.documentElement.dataset.theme = theme;
    this.view.setTheme(theme);
    this.timelineStale = true;
  }

  private setCamera(mode: CameraMode): void {
    if (!kCameraModes.includes(mode)) return;
    if ((mode === "player" || mode === "eyes") && !this.chosen) this.nextPlayer(1);
    this.view.cameras.mode = mode;
    element<HTMLSelectElement>("camera").value = mode;
    this.dirty = true;
  }

  private setPressed(id: string, on: boolean): void {
    element(id).setAttribute("aria-pressed", String(on));
    this.dirty = true;
  }

  private toggleTrail(): void {
    this.trailOn = !this.trailOn;
    this.setPressed("trail", this.trailOn);
  }

  private toggleNames(): void {
    this.namesOn = !this.namesOn;
    this.setPressed("names", this.namesOn);
  }

  private toggleTrainer(): void {
    if (!this.trainer) return;
    const panel = element("trainer");
    panel.hidden = !panel.hidden;
    this.setPressed("train", !panel.hidden);
  }

  private help(): void {
    const dialog = element<HTMLDialogElement>("help-panel");
    fillHelp(dialog, this.keys);
    dialog.showModal();
  }

  private notice(text: string): void {
    const box = element("notice");
    box.textContent = text;
    box.hidden = false;
    window.clearTimeout(this.told);
    this.told = window.setTimeout(() => (box.hidden = true), kNoticeTime);
  }

  // --- Choosing a player ---

  private robotOf(key: string, cycle = this.shown): Robot | undefined {
    return cycle?.robots.find((robot) => keyOf(robot) === key);
  }

  private chosenPlayer(): { side: 0 | 1; number: number } | undefined {
    const [side, number] = this.chosen.split("/");
    if (!number) return undefined;
    return { side: side === "left" ? 0 : 1, number: Number(number) };
  }

  private choose(key: string): void {
    const changed = key !== this.chosen;
    this.chosen = key;
    element<HTMLSelectElement>("player").value = key;
    const { cameras } = this.view;
    if (!key && (cameras.mode === "player" || cameras.mode === "eyes")) this.setCamera("orbit");
    else if (changed && cameras.mode === "player") cameras.mode = "player";
    if (changed && !element("head").hidden) void this.openMind();
    this.dirty = true;
  }

  private nextPlayer(direction: 1 | -1): void {
    const keys = [...element<HTMLSelectElement>("player").options].map((option) => option.value).filter(Boolean);
    if (keys.length === 0) return;
    const at = keys.indexOf(this.chosen);
    const next = at < 0 ? (direction > 0 ? 0 : keys.length - 1) : (at + direction + keys.length) % keys.length;
    this.choose(keys[next] ?? "");
  }

  private pick(event: MouseEvent): void {
    const box = element("view").getBoundingClientRect();
    let best = "";
    let nearest = 40; // px
    for (const robot of this.shown?.robots ?? []) {
      const at = this.view.project(robot.pose[0] ?? 0, robot.pose[1] ?? 0, robot.pose[2] ?? 0);
      if (!at) continue;
      const away = Math.hypot(at[0] - (event.clientX - box.left), at[1] - (event.clientY - box.top));
      if (away < nearest) [best, nearest] = [keyOf(robot), away];
    }
    if (!best) return;
    this.choose(best);
    if (this.view.cameras.mode === "orbit") this.setCamera("player");
  }

  // The list of players, kept as they come and go.
  private listPlayers(cycle: Cycle): void {
    const robots = [...cycle.robots].sort((a, b) => a.side - b.side || a.number - b.number);
    const listed = `${robots.map(keyOf).join(" ")} ${cycle.teams.join(" ")}`;
    if (listed === this.listed) return;
    this.listed = listed;
    const select = element<HTMLSelectElement>("player");
    const options = robots.map((robot) => {
      const mind = this.film.index.minds.includes(keyOf(robot)) ? " ◉" : "";
      return new Option(`${cycle.teams[robot.side] || kSides[robot.side]} ${robot.number}${mind}`, keyOf(robot));
    });
    select.replaceChildren(new Option("No player", ""), ...options);
    select.value = this.chosen;
    if (select.value !== this.chosen) this.choose("");
  }

  // --- Into a player's head ---

  private async toggleMind(): Promise<void> {
    if (this.film.index.minds.length === 0) return;
    const panel = element("head");
    panel.hidden = !panel.hidden;
    this.setPressed("mind", !panel.hidden);
    if (panel.hidden) return;
    if (!this.film.index.minds.includes(this.chosen)) this.choose(this.film.index.minds[0] ?? "");
    await this.openMind();
  }

  private async openMind(): Promise<void> {
    const player = this.chosen;
    const panel = this.clear("head");
    this.mindPanel = undefined;
    const title = panel.appendChild(document.createElement("h2"));
    if (!this.film.index.minds.includes(player)) {
      title.textContent = player ? "Nothing was recorded of what this player believed." : "Choose a player.";
      return;
    }
    title.textContent = "Bringing back what it believed …";
    try {
      let mind = this.minds.get(player);
      if (!mind) this.minds.set(player, (mind = this.film.mind(player).then((packed) => Mind.unpack(packed))));
      const ready = await mind;
      if (player === this.chosen) {
        this.mindPanel = new MindPanel(panel, this.nameOf(player), ready, (cycle) => this.seek(Math.round(cycle)));
      }
    } catch (error) {
      this.minds.delete(player);
      title.textContent = error instanceof Error ? error.message : String(error);
    }
    this.dirty = true;
  }

  // "Quolnaris 7"
  private nameOf(player: string): string {
    const robot = this.robotOf(player);
    return robot && this.shown ? `${this.shown.teams[robot.side] || kSides[robot.side]} ${robot.number}` : player;
  }

  private get mind(): Mind | undefined {
    return element("head").hidden ? undefined : this.mindPanel?.mind;
  }

  private belief(robot: Robot | undefined): Belief | undefined {
    const row = this.mind?.row(this.playback.position);
    return this.mind && robot && row !== undefined ? beliefAt(this.mind, row, robot) : undefined;
  }

  // What the chosen player has said just now.
  private speech(): string {
    const { mind } = this;
    const row = mind?.row(this.playback.position);
    if (!mind || row === undefined) return "";
    const rows = Math.round(kSpeechSeconds / this.film.cycleSeconds);
    for (let r = row; r > row - rows && r >= 0; --r) {
      const text = mind.text("said", r);
      if (text) return text;
    }
    return "";
  }

  // --- Dragging ball and players ---

  private wireDrag(): void {
    const place = (event: PointerEvent): [number, number] | undefined =>
      this.view.groundAt(event.clientX, event.clientY);
    const armed = (): boolean => this.trainer !== undefined && !element("trainer").hidden && this.shown !== undefined;
    // In front of the camera's own listener, which would turn the view.
    element("view").addEventListener(
      "pointerdown",
      (event) => {
        const at = armed() && event.button === 0 ? place(event) : undefined;
        this.grabbed = at && this.shown ? this.trainer?.grab(this.shown, ...at) : undefined;
        if (!this.grabbed) return;
        event.stopImmediatePropagation();
        element("view").setPointerCapture(event.pointerId);
        element("view").style.cursor = "grabbing";
      },
      { capture: true, signal: this.abort.signal },
    );
    this.listen("view", "pointerup", (event) => {
      const at = this.grabbed && place(event);
      if (this.grabbed && at) this.trainer?.move(this.grabbed, ...at);
      this.grabbed = undefined;
      element("view").style.cursor = "";
    });
  }

  // --- Every picture ---

  private frame(now: number, before: number): void {
    if (this.stopped) return;
    const seconds = (now - before) / 1000;
    const moved = this.playback.advance(Math.min(seconds, 0.25), (cycle) => this.film.at(cycle) !== undefined);
    if (moved || this.dirty) this.compose();
    this.view.draw(seconds);
    if (this.timelineStale) {
      this.timelineStale = false;
      this.timeline.draw();
    }
    requestAnimationFrame((next) => this.frame(next, now));
  }

  private compose(): void {
    this.dirty = false;
    const at = Math.floor(this.playback.position);
    const cycle = this.film.at(at) ?? (this.playback.following ? this.newest(at) : undefined);
    this.controls();
    if (!cycle) return;
    if (!element("cover").hidden) cover("");
    const { position } = this.playback;
    if (this.playback.playing) this.film.prefetch(at + Math.round((kAhead * this.playback.speed) / this.film.cycleSeconds));
    const shown = cycleBetween(cycle, position > at ? this.film.at(at + 1) : undefined, position - at);
    this.shown = shown;
    this.listPlayers(shown);
    const robot = this.robotOf(this.chosen);
    const speech = this.speech();
    const labels: Label[] = shown.robots
      .filter((other) => this.namesOn || other === robot)
      .filter((other) => other !== robot || this.view.cameras.mode !== "eyes")
      .map((other) => ({ robot: other, chosen: other === robot, speech: other === robot ? speech : "" }));
    this.view.show(shown, robot, labels, this.trailOn ? this.trail(at) : [], this.belief(robot));
    this.board(shown);
    this.mindPanel?.show(this.playback);
  }

  // Live: the last picture before a moment, where some were passed over.
  private newest(at: number): Cycle | undefined {
    for (let back = 1; back < 50; ++back) {
      const cycle = this.film.at(at - back);
      if (cycle) return cycle;
    }
    return undefined;
  }

  private trail(at: number): [number, number, number][] {
    const points: [number, number, number][] = [];
    const cycles = Math.round(kTrailSeconds / this.film.cycleSeconds);
    for (let c = Math.max(at - cycles, this.film.first); c <= at; ++c) {
      const ball = this.film.chunkOf(c) || this.film.index.live ? this.film.at(c)?.ball : undefined;
      if (!ball) continue;
      const last = points.at(-1);
      const point: [number, number, number] = [ball[0] ?? 0, ball[1] ?? 0, ball[2] ?? 0];
      // A ball that was put somewhere else begins a new trail.
      if (last && Math.hypot(point[0] - last[0], point[1] - last[1]) > 1) points.length = 0;
      if (!last || Math.hypot(point[0] - last[0], point[1] - last[1]) > 0.01) points.push(point);
    }
    return points;
  }

  private setText(id: string, text: string): void {
    const target = element(id);
    if (target.textContent !== text) target.textContent = text;
  }

  private board(cycle: Cycle): void {
    this.setText("team-left", cycle.teams[0] || "Left");
    this.setText("team-right", cycle.teams[1] || "Right");
    this.setText("score", `${cycle.score[0]} : ${cycle.score[1]}`);
    this.setText("clock", clockText(cycle.time));
    this.setText("half", cycle.half === 1 ? "1st half" : "2nd half");
    this.setText("mode", modeText(this.film.index.playModes[cycle.mode] ?? "", cycle.teams));
    this.setText("moment", exactTime(cycle.time));
    element("time").setAttribute("aria-valuetext", `game time ${clockText(cycle.time)}`);
  }

  private controls(): void {
    const { playing, following, position } = this.playback;
    const time = element<HTMLInputElement>("time");
    time.min = String(this.film.first);
    time.max = String(this.film.last);
    time.value = String(Math.round(position));
    this.setText("play-text", playing ? "Pause" : "Play");
    element("play-shape").setAttribute("d", playing ? kPause : kPlay);
    element("live").classList.toggle("on", following);
  }

  private hover(event: PointerEvent): void {
    const box = element("hover");
    const mark = this.timeline.markNear(event.offsetX);
    const cycle = mark?.cycle ?? Math.round(this.timeline.cycleAt(event.offsetX));
    box.hidden = false;
    box.style.left = `${Math.min(Math.max(event.offsetX, 60), element("time").clientWidth - 60)}px`;
    const time = this.timeAt(cycle);
    box.textContent = mark ? `${time}  ${markText(mark, this.film.index.teams)}` : time;
  }

  // Game time at a cycle, from the chunk around it: good enough where it is not unpacked.
  private timeAt(cycle: number): string {
    const chunk = this.film.chunkOf(cycle);
    if (!chunk) return clockText(this.shown?.time ?? 0);
    const next = this.film.index.chunks.find((other) => other.first === chunk.first + chunk.cycles);
    const share = (cycle - chunk.first) / chunk.cycles;
    return clockText(chunk.time + share * ((next?.time ?? chunk.time) - chunk.time));
  }

  // For tests and for the curious: what the page shows, as numbers.
  private exposeState(): void {
    const state = {
      position: () => this.playback.position,
      playing: () => this.playback.playing,
      following: () => this.playback.following,
      cycles: () => this.film.index.cycles,
      chosen: () => this.chosen,
      camera: () => this.view.cameras.mode,
      software: () => this.view.software,
      pictures: () => this.view.pictures,
      marks: (): Mark[] => this.film.marks,
      shown: () => this.shown,
      mindRow: () => this.mind?.row(this.playback.position),
      belief: () => this.belief(this.robotOf(this.chosen)),
      project: (x: number, y: number, z: number) => this.view.project(x, y, z),
      seek: (cycle: number) => this.seek(cycle),
    };
    Object.assign(window, { viewer: state });
  }
}
